#pragma once

#include "core/batch/record.h"
#include "desktop/kit/window.h"

namespace vellumark::desktop {

/// Too much of a basic row was poured: what is there now. Opened with {"Record", BatchRecord*} and {"Row", row}; it
/// changes the record and gives {"Overpour", Overpour} of the core.
class AdjustBasicForm : public Dialog {
  Q_OBJECT

 public:
  AdjustBasicForm(WindowList& windowList, QWidget* owner);
  void OnOpen(const Arguments& arguments) override;

 public Q_SLOTS:
  void cmdSave_Click();
  void cmdCancel_Click() { reject(); }

 private:
  BatchRecord* record_ = nullptr;
  std::size_t row_ = 0;
  ValueField* name_;
  NumberField* amount_;
  QLabel* unit_;
};

/// Another amount of an addition. Opened with {"Record", BatchRecord*} and {"Row", row}; it changes the record.
class AdjustAdditionForm : public Dialog {
  Q_OBJECT

 public:
  AdjustAdditionForm(WindowList& windowList, QWidget* owner);
  void OnOpen(const Arguments& arguments) override;

 public Q_SLOTS:
  void cmdSave_Click();
  void cmdCancel_Click() { reject(); }

 private:
  BatchRecord* record_ = nullptr;
  std::size_t row_ = 0;
  ValueField* name_;
  NumberField* amount_;
  QLabel* unit_;
};

}  // namespace vellumark::desktop
