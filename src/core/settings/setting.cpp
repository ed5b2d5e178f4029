#include "core/settings/setting.h"

#include <fmt/format.h>

#include <cmath>

#include "core/base/number.h"
#include "core/base/text.h"
#include "core/settings/support_records.h"

namespace vellumark {
namespace {

bool IsInRange(const SettingInfo& info, double number) {
  return number >= info.limits.least && number <= info.limits.most;
}

// As whoever reads the file takes it: of a whole number the part before the point counts.
std::optional<double> Meant(const SettingInfo& info, std::string_view text) {
  auto number = ParseNumber(text);
  if (!number) return std::nullopt;
  if (info.kind != SettingKind::Number) number = std::trunc(*number);
  return IsInRange(info, *number) ? number : std::nullopt;
}

std::string RangeText(const SettingInfo& info) {
  if (info.kind == SettingKind::Switch) return "0 or 1";
  const bool whole = info.kind == SettingKind::Whole;
  const std::string text = whole ? "a whole number" : "a number";
  const double endless = whole ? double{std::numeric_limits<int>::max()} : double{std::numeric_limits<float>::max()};
  if (info.limits.most >= endless) return fmt::format("{} of {} or more", text, info.limits.least);
  return fmt::format("{} from {} to {}", text, info.limits.least, info.limits.most);
}

// "|A||B|", each title between bars of its own, or nothing.
bool IsColumnSet(std::string_view value) {
  while (!value.empty()) {
    const std::size_t end = value.starts_with('|') ? value.find('|', 1) : std::string_view::npos;
    if (end == std::string_view::npos || end == 1) return false;
    value.remove_prefix(end + 1);
  }
  return true;
}

// What the setting can be, where the text is not that.
std::optional<std::string> WhatItShouldBe(const SettingInfo& info, std::string_view text) {
  if (info.kind != SettingKind::Text) {
    const auto number = ParseNumber(text);
    const bool right =
        number && IsInRange(info, *number) && (info.kind == SettingKind::Number || *number == std::floor(*number));
    return right ? std::nullopt : std::optional(RangeText(info));
  }
  if (info.limits.form == TextForm::ColumnSet && !IsColumnSet(text))
    return "a list of column titles, each between bars as in \"|Color Code||Reorder|\"";
  if (info.limits.form == TextForm::LayoutList && !text.ends_with('|'))
    return "a list of layouts, each closed by a bar as in \"Default Label|\"";
  return std::nullopt;
}

}  // namespace

namespace detail {

double SettingNumber(const SettingInfo& info, std::string_view initial, std::string_view text) {
  if (TrimView(text).empty()) return IsInRange(info, 0) && !info.limits.emptyIsInitial ? 0 : LeadingNumber(initial);
  if (const auto number = Meant(info, text)) return *number;
  return LeadingNumber(info.limits.other.empty() ? initial : info.limits.other);
}

void RequireSettingText(const SettingInfo& info, std::string_view key, std::string_view text) {
  if (const auto should = WhatItShouldBe(info, text))
    throw BadValue(fmt::format("{} is {}, not \"{}\".", key, *should, text));
}

std::string NumberText(float value) {
  return ShortestText(value);
}

}  // namespace detail

std::string MemberKey(const SettingInfo& group, int number) {
  if (group.limits.perRow == 0) return fmt::format("{}{}", group.key, number);
  return fmt::format("{}{}{}", group.key, number / group.limits.perRow, number % group.limits.perRow);
}

std::string_view MemberInitial(const SettingInfo& group, int number) {
  std::string_view rest = group.initial;
  for (std::size_t bar = 0; number > 0 && (bar = rest.find('|')) != std::string_view::npos; --number)
    rest.remove_prefix(bar + 1);
  return rest.substr(0, rest.find('|'));
}

std::vector<SettingText> InitialValues(const SettingInfo& group, int first, int last) {
  std::vector<SettingText> values;
  for (int i = first; i <= last; ++i) values.push_back({MemberKey(group, i), std::string(MemberInitial(group, i))});
  return values;
}

std::vector<SettingText> InitialValues(const SettingInfo& info) {
  if (info.count > 0) return InitialValues(info, 0, info.count - 1);
  return {{std::string(info.key), std::string(info.initial)}};
}

bool IsUsable(const SettingInfo& info, std::string_view text) {
  return info.kind == SettingKind::Text || TrimView(text).empty() || Meant(info, text).has_value();
}

Result<void> CheckSettingText(const SettingInfo* info, std::string_view key, std::string_view text) {
  if (HoldsForeignName(key)) return {};
  if (text.find_first_of("\"\r\n") != std::string_view::npos)
    return Refuse("Settings", "A value cannot hold a double quote or a line end.", "VALUE");
  if (info == nullptr) return {};
  if (const auto should = WhatItShouldBe(*info, text))
    return Refuse("Settings", fmt::format("{} is {}, not \"{}\".", key, *should, text), "VALUE");
  return {};
}

}  // namespace vellumark
