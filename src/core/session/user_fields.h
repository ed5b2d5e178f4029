#pragma once

#include <string>
#include <string_view>

#include "core/session/session.h"
#include "core/settings/settings.h"

namespace vellumark {

// The user-defined texts and numbers of Batches and of Jobs: what the settings tell of them.

constexpr int kUserFields = setting::BatchUDTxtValue.count;  ///< texts, and as many numbers
constexpr int kMostUserDecimals = static_cast<int>(setting::Batches_UDNum_Format.limits.most);
constexpr std::size_t kUserTextWidth = 30;  ///< characters of a user-defined text, of captions too

/// A user-defined text.
struct UserTextOption {
  std::string caption;
  bool hasDefault = false;  ///< a new record starts with `value`
  std::string value;
  bool required = false;  ///< a record without it is not saved
  bool operator==(const UserTextOption&) const = default;
};

/// A user-defined number.
struct UserNumberOption {
  std::string caption;
  int decimals = 3;
  bool operator==(const UserNumberOption&) const = default;
};

struct UserFieldOptions {
  std::array<UserTextOption, kUserFields> texts;
  std::array<UserNumberOption, kUserFields> numbers;
  bool operator==(const UserFieldOptions&) const = default;
};

/// Refuses captions that are empty, too long or hold what a column's title cannot; a default that the field cannot
/// hold. The field of the refusal says which, with its number ("txtTextCaption2").
Result<void> CheckUserFields(const UserFieldOptions& options, const char* title);

}  // namespace vellumark
