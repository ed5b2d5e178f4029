#include "desktop/session/modify_user_form.h"

#include "core/base/text.h"
#include "core/session/users.h"
#include "desktop/kit/tall_page.h"
#include "desktop/kit/text.h"

namespace vellumark::desktop {

ModifyUserForm::ModifyUserForm(WindowList& windowList, QWidget* owner)
    : Dialog(windowList, owner, "ModifyUserForm", tr("Modify User")) {
  Form whole(*this);
  Form form = TallPart(*this, whole);
  form.Row(tr("&Username"), username_ = form.Combo("cmbUsername"));
  form.Row(tr("&Password"), password_ = PasswordField(form, "txtPassword"));
  form.Row(admin_ = form.Check("chkIsAdmin", tr("&Administrator")));
  form.Wide(rights_ = new RightsPanel(*this));
  form.Stretch();
  whole.Buttons({form.Button("cmdSave", tr("&Save"), QKeySequence::Save), form.Button("cmdCancel", tr("Cancel"))});
  username_->DoNotTrack();
  username_->setFixedWidth(kUserFieldWidth);
  username_->SetItems(UserNames(session));
  username_->setCurrentIndex(username_->count() > 0 ? 0 : -1);
  username_->OnChosen([this](int) { ChooseUser(); });
  ShowUser();
  FitScreen(*this);
}

void ModifyUserForm::UpdateEnabled() {
  const bool any = !shown_.empty();
  password_->setEnabled(any);
  rights_->setEnabled(any);
  // Administrators cannot take their own standing away.
  admin_->setEnabled(any && !EqualNoCase(shown_, session.CurrentUser));
  DefaultButton()->setEnabled(any);
}

void ModifyUserForm::ChooseUser() {
  if (username_->Text() == shown_) return;
  if (IsDirty() && !session.prompt.Ask(windowTitle().toStdString(),
                                       U8(tr("Leave the changes to user %1 unsaved?").arg(Q(shown_))), Answer::No)) {
    username_->SetText(shown_);
    return;
  }
  ShowUser();
}

void ModifyUserForm::ShowUser() {
  const auto user = ReadUser(session, username_->Text()).value_or(UserRow{});
  shown_ = user.Username;
  password_->SetText(user.Password);
  admin_->setChecked(user.IsAdmin);
  rights_->SetRights(user.rights);
  MarkClean();
}

void ModifyUserForm::cmdSave_Click() {
  if (!Accepted(ModifyUser(session, {shown_, password_->Text(), admin_->isChecked(), rights_->Rights()}))) return;
  result.Set("changed", true);
  accept();
}

}  // namespace vellumark::desktop
