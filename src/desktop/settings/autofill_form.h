#pragma once

#include "desktop/kit/window.h"

namespace vellumark::desktop {

/// Autofill Text: whether name boxes complete what is typed.
class AutofillForm : public Dialog {
  Q_OBJECT

 public:
  AutofillForm(WindowList& windowList, QWidget* owner);

 public Q_SLOTS:
  void cmdSave_Click();

 private:
  CheckField* on_;
};

}  // namespace vellumark::desktop
