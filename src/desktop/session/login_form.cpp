#include "desktop/session/login_form.h"

#include <QFileInfo>
#include <QHBoxLayout>

#include "core/session/users.h"
#include "desktop/kit/look.h"
#include "desktop/kit/text.h"

namespace vellumark::desktop {

LoginForm::LoginForm(WindowList& windowList, QWidget* owner) : Dialog(windowList, owner, "LoginForm", tr("Login")) {
  Form form(*this);
  auto* file = form.Label("lblDataFile", QFileInfo(Q(session.DataFileName)).completeBaseName());
  file->setFont(Look::Heading());
  file->setTextFormat(Qt::PlainText);
  file->setWordWrap(true);
  CommandButton* close = form.Link("lblClose", tr("Close"), [this] { reject(); });
  close->setFocusPolicy(Qt::NoFocus);  // the keyboard has Escape and Cancel
  auto* top = new QWidget;
  auto* line = new QHBoxLayout(top);
  line->setContentsMargins(0, 0, 0, space::kUnit);
  line->addWidget(file, 1);
  line->addWidget(close, 0, Qt::AlignTop);
  form.Wide(top);
  form.Row(tr("&Username"), username_ = form.Add(new UserBox("cmbUsername")));
  form.Row(tr("&Password"), password_ = PasswordField(form, "txtPassword"));
  form.Stretch();
  form.Buttons({form.Button("cmdOK", tr("OK")), form.Button("cmdCancel", tr("Cancel"))});
  username_->SetUsers(UserNames(session));
}

void LoginForm::cmdOK_Click() {
  if (const auto in = LogIn(session, username_->Text(), password_->Text()); !in) {
    username_->SetText({});
    password_->clear();
    ShowRefusal(in.error());
    return;
  }
  result.Set("changed", true);
  accept();
}

void LoginForm::reject() {
  if (!session.CurrentUser.empty()) return Dialog::reject();
  if (!session.prompt.Ask(U8(tr("Exit Now?")), U8(tr("Exit The Vellumark now?")))) return;
  result.Set("exit", true);
  accept();
}

}  // namespace vellumark::desktop
