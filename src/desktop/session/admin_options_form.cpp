#include "desktop/session/admin_options_form.h"

#include <QGridLayout>

#include "core/session/users.h"
#include "desktop/kit/look.h"

namespace vellumark::desktop {

AdminOptionsForm::AdminOptionsForm(WindowList& windowList, QWidget* owner)
    : Dialog(windowList, owner, "AdminOptionsForm", tr("Admin Options")) {
  Form form(*this);
  ValueField* username = form.Value("lblUsername", 1);
  username->SetText(session.CurrentUser);
  form.Row(tr("Username"), username);
  form.Row(tr("&Password"), password_ = PasswordField(form, "txtPassword"));
  form.Heading(tr("Users"));
  const struct {
    CommandButton* button;
    QString what;
  } commands[] = {
      {form.Button("cmdAddUser", tr("&Add User")), tr("with a Password and rights of their own")},
      {form.Button("cmdModifyUser", tr("&Modify User")), tr("Password, rights, Administrator status")},
      {form.Button("cmdDeleteUser", tr("De&lete User")), tr("who is no Administrator")},
      {form.Button("cmdDisableUsernames", tr("&Deactivate")), tr("the Users feature: everyone has all rights")},
  };
  auto* list = new QWidget;
  auto* grid = new QGridLayout(list);
  grid->setContentsMargins(0, 0, 0, 0);
  grid->setHorizontalSpacing(space::kGap);
  grid->setVerticalSpacing(space::kUnit);
  grid->setColumnStretch(1, 1);
  for (const auto& command : commands) {
    const int row = grid->rowCount();
    grid->addWidget(command.button, row, 0);
    grid->addWidget(form.Hint(command.what), row, 1);
  }
  form.Wide(list);
  SetDefaultButton(commands[0].button);
  form.Stretch();
  form.ButtonsWithoutDefault({form.Button("cmdClose", tr("Close"))});
}

bool AdminOptionsForm::PasswordIsRight() {
  return Accepted(CheckPassword(session, password_->Text()));
}

void AdminOptionsForm::Run(const std::string& dialog) {
  if (!PasswordIsRight()) return;
  if (windows.RunDialog(dialog)) result.Set("changed", true);
}

void AdminOptionsForm::cmdDisableUsernames_Click() {
  if (!PasswordIsRight()) return;
  const auto done = DeactivateUsers(session);
  if (!Accepted(done) || !*done) return;
  result.Set("changed", true);
  accept();
}

void AdminOptionsForm::reject() {
  if (result.IsEmpty()) return Dialog::reject();
  accept();
}

}  // namespace vellumark::desktop
