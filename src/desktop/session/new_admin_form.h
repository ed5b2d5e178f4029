#pragma once

#include "desktop/kit/window.h"
#include "desktop/session/user_fields.h"

namespace vellumark::desktop {

/// Switches the login on, with the first administrator.
class NewAdminForm : public Dialog {
  Q_OBJECT

 public:
  NewAdminForm(WindowList& windowList, QWidget* owner);

 public Q_SLOTS:
  void cmdOK_Click();

 private:
  TextField* username_;
  TextField* password_;
};

}  // namespace vellumark::desktop
