#pragma once

#include <concepts>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "core/base/refusal.h"

namespace vellumark {

// What is told of a setting, and its value in both forms: the text of the settings file and the type that rules work
// with. The settings themselves stand in settings.h.

enum class SettingKind : std::uint8_t { Switch, Whole, Number, Text };
enum class TextForm : std::uint8_t { Plain, ColumnSet, LayoutList };

inline constexpr double kNoLimit = std::numeric_limits<double>::infinity();

/// What a value can be. One on file that is outside counts as `other`, without one as the initial value.
struct SettingLimits {
  double least = 0;
  double most = kNoLimit;
  std::string_view other = {};
  TextForm form = TextForm::Plain;  ///< of a text
  bool emptyIsInitial = false;      ///< as those of list windows, which may not be on file yet
  int perRow = 0;                   ///< above 0: a group numbered by row and column, so many columns in a row
};

struct SettingInfo {
  std::string_view key;      ///< of a group what stands before the number, of a list window what follows the prefix
  std::string_view initial;  ///< in a new file; in a group of each member, between bars, the last one for the rest
  std::string_view meaning;
  SettingLimits limits;
  SettingKind kind = SettingKind::Text;
  int count = 0;  ///< above 0: a group, numbered from 0
};

/// A key and its value as the settings file has them.
struct SettingText {
  std::string key;
  std::string value;
};

namespace detail {

/// What the text means in a switch (0 or 1) or number, the initial value or `other` where it means nothing.
double SettingNumber(const SettingInfo& info, std::string_view initial, std::string_view text);
/// Throws BadValue for what the setting cannot be.
void RequireSettingText(const SettingInfo& info, std::string_view key, std::string_view text);
std::string NumberText(float value);

template <class T>
consteval SettingKind KindOf() {
  if (std::same_as<T, bool>) return SettingKind::Switch;
  if (std::same_as<T, int>) return SettingKind::Whole;
  return std::same_as<T, float> ? SettingKind::Number : SettingKind::Text;
}

template <class T>
consteval SettingInfo Told(std::string_view key, int count, std::string_view initial, std::string_view meaning,
                           SettingLimits limits) {
  static_assert(std::same_as<T, bool> || std::same_as<T, int> || std::same_as<T, float> ||
                std::same_as<T, std::string>);
  if (std::same_as<T, bool>) limits.most = 1;
  if (std::same_as<T, int> && limits.most == kNoLimit) limits.most = std::numeric_limits<int>::max();
  if (std::same_as<T, float> && limits.most == kNoLimit) limits.most = std::numeric_limits<float>::max();
  return {key, initial, meaning, limits, KindOf<T>(), count};
}

}  // namespace detail

/// One key of the settings with its type: a single one, or a member of a group or of a list window's family.
template <class T>
struct NamedSetting {
  std::string key;
  std::string_view initial;
  const SettingInfo* info;

  /// The value that a text on file means. An empty text, such as that of a key that is not there, is 0 or nothing where
  /// the setting can be that, else the initial value.
  T Of(std::string_view text) const {
    if constexpr (std::same_as<T, std::string>)
      return std::string(text);
    else
      return static_cast<T>(detail::SettingNumber(*info, initial, text));
  }
  /// The value as it goes to the file. Throws BadValue for one out of range: whoever takes it from a person asks
  /// before.
  SettingText To(const T& value) const {
    std::string text;
    if constexpr (std::same_as<T, bool>)
      text = value ? "1" : "0";
    else if constexpr (std::same_as<T, int>)
      text = std::to_string(value);
    else if constexpr (std::same_as<T, float>)
      text = detail::NumberText(value);
    else
      text = value;
    detail::RequireSettingText(*info, key, text);
    return {key, std::move(text)};
  }
  SettingText Initial() const { return {key, std::string(initial)}; }
  bool operator==(std::string_view other) const { return key == other; }
};

template <class T>
struct Setting : SettingInfo {
  using Value = T;
  consteval Setting(std::string_view name, std::string_view value, std::string_view means, SettingLimits bounds = {})
      : SettingInfo(detail::Told<T>(name, 0, value, means, bounds)) {}
  NamedSetting<T> Named() const { return {std::string(key), initial, this}; }
  SettingText To(const T& value) const { return Named().To(value); }
};

std::string MemberKey(const SettingInfo& group, int number);
std::string_view MemberInitial(const SettingInfo& group, int number);

/// Keys that a number follows, from 0.
template <class T>
struct SettingGroup : SettingInfo {
  consteval SettingGroup(std::string_view name, int members, std::string_view values, std::string_view means,
                         SettingLimits bounds = {})
      : SettingInfo(detail::Told<T>(name, members, values, means, bounds)) {}
  NamedSetting<T> operator[](int number) const {
    return {MemberKey(*this, number), MemberInitial(*this, number), this};
  }
};

/// A key that each list window and report has for itself, behind its own prefix. One that is not on file yet comes in
/// with the first StoreSettings (core/session/settings.h), so a new report needs a prefix and nothing else:
/// `setting::SortCol.Of("Reorder")`, `setting::ColWidth.Of("Reorder", 3)`.
template <class T>
struct WindowSetting : SettingInfo {
  consteval WindowSetting(std::string_view suffix, std::string_view value, std::string_view means,
                          SettingLimits bounds = {})
      : SettingInfo(detail::Told<T>(suffix, 0, value, means, bounds)) {
    limits.emptyIsInitial = true;
  }
  NamedSetting<T> Of(std::string_view prefix) const { return {std::string(prefix).append(key), initial, this}; }
  NamedSetting<T> Of(std::string_view prefix, int number) const {
    return {std::string(prefix).append(key).append(std::to_string(number)), initial, this};
  }
};

/// The initial records of a single setting or of members `first` to `last` of a group.
std::vector<SettingText> InitialValues(const SettingInfo& info);
std::vector<SettingText> InitialValues(const SettingInfo& group, int first, int last);

/// Whether a text means something in this setting, in range. Empty ones do: nothing was chosen.
bool IsUsable(const SettingInfo& info, std::string_view text);

/// Whether an operator may give a key this value: by its kind and range, and by what the file can hold. The refusal
/// tells what the key can be.
Result<void> CheckSettingText(const SettingInfo* info, std::string_view key, std::string_view text);

}  // namespace vellumark
