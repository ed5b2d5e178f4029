#pragma once

#include <array>

#include "core/session/user_fields.h"
#include "desktop/kit/form.h"

namespace vellumark::desktop {

/// Where the texts and numbers of the house's own are named, each with its default or its decimals: two pages of a window
/// of settings. The controls bear the names that CheckUserFields refuses with.
class UserFieldsPanel {
 public:
  void BuildTexts(Form form, const QString& meaning);
  void BuildNumbers(Form form, const QString& meaning);
  void Show(const UserFieldOptions& options);
  UserFieldOptions Typed() const;
  void UpdateEnabled();

 private:
  struct TextLine {
    TextField* caption;
    CheckField* hasDefault;
    TextField* value;
    CheckField* required;
  };
  struct NumberLine {
    TextField* caption;
    ComboField* decimals;
  };
  std::array<TextLine, kUserFields> texts_{};
  std::array<NumberLine, kUserFields> numbers_{};
};

}  // namespace vellumark::desktop
