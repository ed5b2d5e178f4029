#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "core/base/date.h"
#include "core/base/refusal.h"
#include "core/session/session.h"

namespace vellumark {

/// Both days count.
struct DateRange {
  DateTime from{};
  DateTime to{};
  bool operator==(const DateRange&) const = default;
};

/// The place of "Custom" in the list, which has no dates of its own.
constexpr int kCustomRange = 10;

/// The names in the order of their places, which the settings keep.
std::span<const std::string_view> DateRangeNames();
/// The place of a name, in any case.
std::optional<int> FindDateRange(std::string_view name);

/// The days of a range, seen from `today`; of "Custom", today alone. "All Dates" begins in 1989 on the day and month of
/// today, which is the 28th where that year has no 29 February.
DateRange RangeOf(int place, const DateTime& today);

/// A range that somebody keeps under a name.
struct NamedRange {
  std::string name;
  DateRange dates;
};
/// In the order of their names.
std::vector<NamedRange> ReadCustomRanges(const Session& session);
/// Under its name, in the place of one that has it. Refuses a name that is empty, of the list, or holds "|" or "=".
Result<void> SaveCustomRange(Session& session, const NamedRange& range);
Result<void> DeleteCustomRange(Session& session, std::string_view name);
/// The days of a range of the list or of one that was saved. Refuses a name that is neither, and "Custom".
Result<DateRange> RangeNamed(const Session& session, std::string_view name);

/// Midnight of the day from which ranges are counted: today, and of an archive the last day of its Batches and Jobs.
DateTime ReportToday(const Session& session);

}  // namespace vellumark
