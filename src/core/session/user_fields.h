#pragma once

#include <array>
#include <string>
#include <type_traits>
#include <vector>

#include "core/base/text.h"
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

/// The numbered settings that keep them, of Batches or of Jobs.
struct UserFieldSettings {
  const SettingGroup<std::string>& textCaption;
  const SettingGroup<bool>& hasDefault;
  const SettingGroup<std::string>& value;
  const SettingGroup<bool>& required;
  const SettingGroup<std::string>& numberCaption;
  const SettingGroup<int>& decimals;
};

/// Calls `visit` with each of those settings and the option that it keeps.
template <class Options, class Visit>
void ForEachUserField(Options& options, const UserFieldSettings& settings, const Visit& visit) {
  for (int i = 0; i < kUserFields; ++i) {
    auto& text = options.texts.at(static_cast<std::size_t>(i));
    visit(settings.textCaption[i], text.caption);
    visit(settings.hasDefault[i], text.hasDefault);
    visit(settings.value[i], text.value);
    visit(settings.required[i], text.required);
    auto& number = options.numbers.at(static_cast<std::size_t>(i));
    visit(settings.numberCaption[i], number.caption);
    visit(settings.decimals[i], number.decimals);
  }
}

/// Visits settings and their options: what is to be stored of each, texts without blanks around them.
inline auto TrimmedInto(std::vector<SettingText>& values) {
  return [&values](const auto& named, auto& value) {
    if constexpr (std::is_same_v<decltype(value), std::string&>) value = Trim(value);
    values.push_back(named.To(value));
  };
}

/// Refuses captions that are empty, too long or hold what a column's title cannot; a default that the field cannot
/// hold. The field of the refusal says which, with its number ("txtTextCaption2").
Result<void> CheckUserFields(const UserFieldOptions& options, const char* title);

}  // namespace vellumark
