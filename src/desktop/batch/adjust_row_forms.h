#pragma once

#include <string>

#include "core/batch/record.h"
#include "desktop/kit/window.h"

namespace vellumark::desktop {

/// The amount of one row of the Batch, typed anew. Opened with {"Record", BatchRecord*} and {"Row", row}; it changes
/// the record.
class AdjustRowForm : public Dialog {
  Q_OBJECT

 public:
  void OnOpen(const Arguments& arguments) override;

 public Q_SLOTS:
  void cmdSave_Click();

 protected:
  /// `text` stands above the amount, `note` below it.
  AdjustRowForm(WindowList& windowList, QWidget* owner, const char* name, const QString& title, const QString& text,
                const QString& note = {});
  /// False after a refusal was shown.
  virtual bool Apply(BatchRecord& record, std::size_t row, const std::string& amount) = 0;

 private:
  BatchRecord* record_ = nullptr;
  std::size_t row_ = 0;
  ValueField* name_;
  NumberField* amount_;
  QLabel* unit_;
};

/// Too much of a basic row was poured: what is there now. Gives {"Overpour", Overpour} of the core.
class AdjustBasicForm : public AdjustRowForm {
  Q_OBJECT

 public:
  AdjustBasicForm(WindowList& windowList, QWidget* owner);

 protected:
  bool Apply(BatchRecord& record, std::size_t row, const std::string& amount) override;
};

/// Another amount of an addition.
class AdjustAdditionForm : public AdjustRowForm {
  Q_OBJECT

 public:
  AdjustAdditionForm(WindowList& windowList, QWidget* owner);

 protected:
  bool Apply(BatchRecord& record, std::size_t row, const std::string& amount) override;
};

}  // namespace vellumark::desktop
