#pragma once

#include "desktop/kit/window.h"
#include "desktop/session/user_fields.h"

namespace vellumark::desktop {

/// Switches to the user named by the argument "Username", whose password it asks for.
class PasswordForm : public Dialog {
  Q_OBJECT

 public:
  PasswordForm(WindowList& windowList, QWidget* owner);
  void OnOpen(const Arguments& arguments) override;

 public Q_SLOTS:
  void cmdOK_Click();

 private:
  ValueField* username_;
  TextField* password_;
};

}  // namespace vellumark::desktop
