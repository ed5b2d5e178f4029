#include "desktop/session/user_fields.h"

#include <QCompleter>

#include "core/session/users.h"
#include "desktop/kit/text.h"

namespace vellumark::desktop {

TextRule UserTextRule() {
  return TextRule::UpperName(static_cast<int>(kUserTextLength));
}

TextField* UsernameField(Form& form, const QString& name) {
  TextField* field = form.Text(name, UserTextRule());
  field->setFixedWidth(kUserFieldWidth);
  return field;
}

TextField* PasswordField(Form& form, const QString& name) {
  TextField* field = UsernameField(form, name);
  field->setEchoMode(QLineEdit::Password);
  return field;
}

UserBox::UserBox(const QString& name) : ComboField(name), line_(new TextField("txtTyped", UserTextRule())) {
  setFixedWidth(kUserFieldWidth);
  line_->setMinimumWidth(0);
  line_->setMaximumWidth(QWIDGETSIZE_MAX);
  setLineEdit(line_);
  setInsertPolicy(QComboBox::NoInsert);
  // A name that another make of file brought in may hold what cannot be typed; chosen, it stands as it is.
  OnChosen([this](int row) { line_->SetText(U8(itemText(row))); });
}

void UserBox::SetUsers(const std::vector<std::string>& names) {
  SetItems(names);
  setCurrentIndex(-1);
  // Completed to ADMINISTRATOR, ADMIN could not be typed any more.
  QStringList completed;
  for (const std::string& name : names) {
    if (!name.starts_with(kRescueUser)) completed += Q(name);
  }
  auto* completer = new QCompleter(completed, this);
  completer->setCaseSensitivity(Qt::CaseInsensitive);
  completer->setCompletionMode(QCompleter::InlineCompletion);
  setCompleter(completer);
}

}  // namespace vellumark::desktop
