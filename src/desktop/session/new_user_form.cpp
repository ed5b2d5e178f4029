#include "desktop/session/new_user_form.h"

#include "core/session/users.h"
#include "desktop/kit/tall_page.h"

namespace vellumark::desktop {

NewUserForm::NewUserForm(WindowList& windowList, QWidget* owner)
    : Dialog(windowList, owner, "NewUserForm", tr("Add User")) {
  Form whole(*this);
  Form form = TallPart(*this, whole);
  form.Row(tr("&Username"), username_ = UsernameField(form, "txtUsername"));
  form.Row(tr("&Password"), password_ = PasswordField(form, "txtPassword"));
  form.Wide(rights_ = new RightsPanel(*this));
  form.Stretch();
  whole.Buttons({form.Button("cmdSave", tr("&Save"), QKeySequence::Save), form.Button("cmdCancel", tr("Cancel"))});
  FitScreen(*this);
}

void NewUserForm::cmdSave_Click() {
  const auto added = AddUser(session, {username_->Text(), password_->Text(), false, rights_->Rights()});
  if (!Accepted(added)) return;
  if (!*added) {
    FocusField("txtPassword");
    return;
  }
  result.Set("changed", true);
  accept();
}

}  // namespace vellumark::desktop
