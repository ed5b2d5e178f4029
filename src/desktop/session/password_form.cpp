#include "desktop/session/password_form.h"

#include "core/session/users.h"

namespace vellumark::desktop {

PasswordForm::PasswordForm(WindowList& windowList, QWidget* owner)
    : Dialog(windowList, owner, "PasswordForm", tr("Login As ...")) {
  Form form(*this);
  form.Row(tr("Username"), username_ = form.Value("lblUsername", 1));
  form.Row(tr("&Password"), password_ = PasswordField(form, "txtPassword"));
  form.Stretch();
  form.Buttons({form.Button("cmdOK", tr("OK")), form.Button("cmdCancel", tr("Cancel"))});
}

void PasswordForm::OnOpen(const Arguments& arguments) {
  username_->SetText(arguments.Text("Username"));
}

void PasswordForm::cmdOK_Click() {
  if (!Accepted(SwitchUser(session, username_->Text(), password_->Text()))) return;
  result.Set("changed", true);
  accept();
}

}  // namespace vellumark::desktop
