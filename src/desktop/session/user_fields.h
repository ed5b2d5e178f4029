#pragma once

#include <QString>

#include "desktop/kit/form.h"

namespace vellumark::desktop {

/// Room for fifteen of the widest capitals; every box for a username or a password is this wide.
inline constexpr int kUserFieldWidth = 240;

/// What a box for a username or a password lets in: capitals, digits, blank and . / - up to the width of the file's
/// fields.
TextRule UserTextRule();

TextField* UsernameField(Form& form, const QString& name);
/// What stands in it is never shown, nor read out, nor copied.
TextField* PasswordField(Form& form, const QString& name);

/// A username, chosen from the list or typed. Names are completed while typing, but `ADMIN`, which is on no list, can
/// always be typed as it is.
class UserBox : public ComboField {
  Q_OBJECT

 public:
  explicit UserBox(const QString& name);
  void SetUsers(const std::vector<std::string>& names);

 private:
  TextField* line_;
};

}  // namespace vellumark::desktop
