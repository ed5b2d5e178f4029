#pragma once

#include "core/datafile/stock_history.h"
#include "desktop/kit/record_source.h"
#include "desktop/kit/window.h"

namespace vellumark::desktop {

/// A new Job Number; with {"JobNumber", number} another one for that Job, which is renamed. Gives {"JobNumber", number}
/// back.
class NewJobNumberForm : public Dialog {
  Q_OBJECT

 public:
  NewJobNumberForm(WindowList& windowList, QWidget* owner);
  void OnOpen(const Arguments& arguments) override;

 public Q_SLOTS:
  void cmdSave_Click();

 private:
  std::string renamed_;
  QLabel* oldCaption_;
  ValueField* oldNumber_;
  TextField* number_;
};

/// The steps of adding an item to a Job.
class JobAddItem_Help : public Dialog {
  Q_OBJECT

 public:
  JobAddItem_Help(WindowList& windowList, QWidget* owner);
};

/// What a Job issued and gave back, line by line; a line can be taken back. Opened with {"JobNumber", number}.
class JobBookingsForm : public Dialog {
  Q_OBJECT

 public:
  JobBookingsForm(WindowList& windowList, QWidget* owner);
  void OnOpen(const Arguments& arguments) override;
  void UpdateEnabled() override;

 public Q_SLOTS:
  void cmdUndo_Click();

 private:
  void ListLines();

  std::string job_;
  QLabel* title_;
  std::shared_ptr<RecordRows<StockLine>> rows_;
  Grid* list_;
  CommandButton* undo_ = nullptr;
};

}  // namespace vellumark::desktop
