#include "desktop/session/new_admin_form.h"

#include "core/session/users.h"

namespace vellumark::desktop {

NewAdminForm::NewAdminForm(WindowList& windowList, QWidget* owner)
    : Dialog(windowList, owner, "NewAdminForm", tr("Create Users / Passwords")) {
  Form form(*this);
  form.Heading(tr("First Administrator"));
  form.Wide(form.Hint(tr("From then on this Data File asks for a Username and Password when it is opened.")));
  form.Row(tr("&Username"), username_ = UsernameField(form, "txtUsername"));
  form.Row(tr("&Password"), password_ = PasswordField(form, "txtPassword"));
  form.Stretch();
  form.Buttons({form.Button("cmdOK", tr("OK")), form.Button("cmdCancel", tr("Cancel"))});
}

void NewAdminForm::cmdOK_Click() {
  if (!Accepted(CreateUsers(session, username_->Text(), password_->Text()))) return;
  result.Set("changed", true);
  accept();
}

}  // namespace vellumark::desktop
