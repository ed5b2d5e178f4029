#pragma once

#include "desktop/kit/window.h"
#include "desktop/session/user_fields.h"

namespace vellumark::desktop {

/// Lets a user in. While nobody is logged in it cannot be left but by ending the program.
class LoginForm : public Dialog {
  Q_OBJECT

 public:
  LoginForm(WindowList& windowList, QWidget* owner);
  void reject() override;

 public Q_SLOTS:
  void cmdOK_Click();

 private:
  UserBox* username_;
  TextField* password_;
};

}  // namespace vellumark::desktop
