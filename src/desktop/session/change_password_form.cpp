#include "desktop/session/change_password_form.h"

#include "core/session/users.h"

namespace vellumark::desktop {

ChangePasswordForm::ChangePasswordForm(WindowList& windowList, QWidget* owner)
    : Dialog(windowList, owner, "ChangePasswordForm", tr("Change Password")) {
  Form form(*this);
  ValueField* username = form.Value("lblUsername", 1);
  username->SetText(session.CurrentUser);
  form.Row(tr("Username"), username);
  form.Row(tr("&Current Password"), current_ = PasswordField(form, "txtCurrentPassword"));
  form.Row(tr("&New Password"), new_ = PasswordField(form, "txtNewPassword"));
  form.Row(tr("New Password &again"), confirm_ = PasswordField(form, "txtConfirmPassword"));
  // A refusal of the new password may call it as the administrator's windows do.
  new_->Means("txtPassword");
  form.Stretch();
  form.Buttons({form.Button("cmdOK", tr("OK")), form.Button("cmdCancel", tr("Cancel"))});
}

void ChangePasswordForm::cmdOK_Click() {
  const auto changed = ChangePassword(session, current_->Text(), new_->Text(), confirm_->Text());
  if (!Accepted(changed)) return;
  if (!*changed) {
    FocusField("txtNewPassword");
    return;
  }
  accept();
}

}  // namespace vellumark::desktop
