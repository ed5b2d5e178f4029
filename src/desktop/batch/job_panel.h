#pragma once

#include <QWidget>

#include "core/batch/record.h"
#include "desktop/kit/form.h"

namespace vellumark::desktop {

class CellButton;

/// Who gets what is made: the job, what it uses, what returns to inventory and into which lot. It works on the record
/// through the core's rules as its fields are left.
class JobPanel : public QWidget {
  Q_OBJECT

 public:
  JobPanel(FormHost& host, Form& form, BatchRecord& record);

  void Show();
  /// What was typed into the job's fields and not left yet; false after a refusal was shown.
  bool Enter();

 Q_SIGNALS:
  /// The record became another one.
  void Edited();
  void SplitClicked();

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void Build(Form& form);
  void Listen();
  bool EnterJob();
  bool EnterQty();
  void ReturnToggled(bool checked);
  template <class R>
  bool Done(const R& result);

  FormHost& host_;
  BatchRecord& record_;
  bool showing_ = false;
  TextField* job_ = nullptr;
  NumberField* used_ = nullptr;
  QLabel* usedUnit_ = nullptr;
  CommandButton* split_ = nullptr;
  CheckField* returns_ = nullptr;
  CellButton* returned_ = nullptr;
  QLabel* returnedUnit_ = nullptr;
  TextField* lot_ = nullptr;
  TextField* location_ = nullptr;
  TextField* container_ = nullptr;
  QWidget* lotLine_ = nullptr;
};

}  // namespace vellumark::desktop
