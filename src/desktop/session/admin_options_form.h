#pragma once

#include "desktop/kit/window.h"
#include "desktop/session/user_fields.h"

namespace vellumark::desktop {

/// An administrator's commands, each of which first checks the password typed here.
class AdminOptionsForm : public Dialog {
  Q_OBJECT

 public:
  AdminOptionsForm(WindowList& windowList, QWidget* owner);
  /// What was done stays done, so closing gives it back.
  void reject() override;

 public Q_SLOTS:
  void cmdAddUser_Click() { Run("NewUserForm"); }
  void cmdModifyUser_Click() { Run("ModifyUserForm"); }
  void cmdDeleteUser_Click() { Run("DeleteUserForm"); }
  void cmdDisableUsernames_Click();

 private:
  bool PasswordIsRight();
  void Run(const std::string& dialog);

  TextField* password_;
};

}  // namespace vellumark::desktop
