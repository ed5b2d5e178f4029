#include <fmt/format.h>

#include <algorithm>

#include "core/base/text.h"
#include "core/reports/date_ranges.h"
#include "core/reports/report_settings.h"
#include "core/session/settings.h"

// Ranges of dates that somebody keeps under a name.

namespace vellumark {
namespace {

constexpr std::size_t kLongestName = 40;
constexpr std::string_view kTitle = "Date Range";
constexpr std::string_view kField = "cmbDateRange";

void Store(Session& session, std::vector<NamedRange> ranges) {
  std::ranges::sort(ranges, [](const auto& a, const auto& b) { return CompareNoCase(a.name, b.name) < 0; });
  std::vector<std::string> items;
  for (const NamedRange& range : ranges)
    items.push_back(fmt::format("{}={}..{}", range.name, range.dates.from.DateText(), range.dates.to.DateText()));
  StoreSettings(session, {setting::CustomDateRanges.To(JoinColumnSet(items))});
}

std::unexpected<Refusal> RefuseRange(std::string text) {
  return Refuse(std::string(kTitle), std::move(text), std::string(kField));
}

}  // namespace

std::vector<NamedRange> ReadCustomRanges(const Session& session) {
  std::vector<NamedRange> ranges;
  for (const std::string& item : SplitColumnSet(GetSetting(session, setting::CustomDateRanges))) {
    const std::size_t sign = item.find('=');
    const std::size_t dots = item.find("..");
    if (sign == std::string::npos || dots == std::string::npos || dots < sign) continue;
    const auto from = ParseDateTime(item.substr(sign + 1, dots - sign - 1));
    const auto to = ParseDateTime(item.substr(dots + 2));
    if (from && to) ranges.push_back({item.substr(0, sign), {*from, *to}});
  }
  return ranges;
}

Result<void> SaveCustomRange(Session& session, const NamedRange& range) {
  NamedRange kept{Trim(range.name), {range.dates.from.Midnight(), range.dates.to.Midnight()}};
  if (kept.name.empty()) return RefuseRange("Enter a name for the range of dates.");
  if (FindDateRange(kept.name)) return RefuseRange(fmt::format("{} is a range of the list.", kept.name));
  if (kept.name.find_first_of("|=\"\r\n\t") != std::string::npos || kept.name.find("..") != std::string::npos ||
      CharCount(kept.name) > kLongestName || !FitsCp1252(kept.name))
    return RefuseRange(
        fmt::format("The name of a range has at most {} letters and no bar, quote or equals sign.", kLongestName));
  if (kept.dates.to < kept.dates.from) std::swap(kept.dates.from, kept.dates.to);
  std::vector<NamedRange> ranges = ReadCustomRanges(session);
  std::erase_if(ranges, [&](const NamedRange& one) { return EqualNoCase(one.name, kept.name); });
  ranges.push_back(std::move(kept));
  Store(session, std::move(ranges));
  return {};
}

Result<void> DeleteCustomRange(Session& session, std::string_view name) {
  std::vector<NamedRange> ranges = ReadCustomRanges(session);
  if (std::erase_if(ranges, [&](const NamedRange& one) { return EqualNoCase(one.name, TrimView(name)); }) == 0)
    return RefuseRange(fmt::format("There is no saved range {}.", name));
  Store(session, std::move(ranges));
  return {};
}

Result<DateRange> RangeNamed(const Session& session, std::string_view name) {
  std::string known;
  if (const auto place = FindDateRange(TrimView(name))) {
    if (*place == kCustomRange)
      return Refuse("Custom Date Range", "A custom range needs a From and a To date.", "CalFrom");
    return RangeOf(*place, ReportToday(session));
  }
  for (const std::string_view of : DateRangeNames()) known += (known.empty() ? "" : ", ") + std::string(of);
  for (const NamedRange& range : ReadCustomRanges(session)) {
    if (EqualNoCase(range.name, TrimView(name))) return range.dates;
    known += ", " + range.name;
  }
  return RefuseRange(fmt::format("{} is no range of dates, which are {}.", name, known));
}

}  // namespace vellumark
