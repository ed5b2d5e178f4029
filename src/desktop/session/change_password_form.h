#pragma once

#include "desktop/kit/window.h"
#include "desktop/session/user_fields.h"

namespace vellumark::desktop {

/// The current user's own password.
class ChangePasswordForm : public Dialog {
  Q_OBJECT

 public:
  ChangePasswordForm(WindowList& windowList, QWidget* owner);

 public Q_SLOTS:
  void cmdOK_Click();

 private:
  TextField* current_;
  TextField* new_;
  TextField* confirm_;
};

}  // namespace vellumark::desktop
