#include "desktop/session/delete_user_form.h"

#include "core/session/users.h"
#include "desktop/session/user_fields.h"

namespace vellumark::desktop {

DeleteUserForm::DeleteUserForm(WindowList& windowList, QWidget* owner)
    : Dialog(windowList, owner, "DeleteUserForm", tr("Delete User")) {
  Form form(*this);
  form.Row(tr("&Username"), username_ = form.Combo("cmbUsername"));
  username_->setFixedWidth(kUserFieldWidth);
  username_->SetItems(DeletableUserNames(session));
  username_->setCurrentIndex(username_->count() > 0 ? 0 : -1);
  form.Row(form.Hint(tr("Administrators cannot be deleted here.")));
  form.Stretch();
  form.ButtonsWithoutDefault({delete_ = form.Button("cmdDelete", tr("&Delete")), form.Button("cmdCancel", tr("Cancel"))});
}

void DeleteUserForm::UpdateEnabled() {
  delete_->setEnabled(username_->currentIndex() >= 0);
}

void DeleteUserForm::cmdDelete_Click() {
  const auto deleted = DeleteUser(session, username_->Text());
  if (!Accepted(deleted) || !*deleted) return;
  result.Set("changed", true);
  accept();
}

}  // namespace vellumark::desktop
