#include "core/reports/date_ranges.h"

#include <fmt/format.h>

#include <array>
#include <filesystem>

#include "core/base/text.h"

namespace vellumark {
namespace {

constexpr int kFirstYear = 1989;

constexpr std::array<std::string_view, 14> kNames{
    "All Dates",    "Month To Date", "Quarter To Date", "Year To Date", "Today",      "Last 7 Days",  "Last 30 Days",
    "Last 90 Days", "Last 180 Days", "Last 365 Days",   "Custom",       "Last Month", "Last Quarter", "Last Year"};
constexpr std::array<int, 5> kDaysBack{7, 30, 90, 180, 365};  // from "Last 7 Days" on
constexpr int kLast7Days = 5;

DateTime DaysFrom(const DateTime& day, std::int64_t days) {
  return DateTime::FromDayNumber(day.DayNumber() + days);
}

DateTime InFirstYear(const DateTime& today) {
  const bool leapDay = today.month == 2 && today.day == 29;
  return {kFirstYear, today.month, leapDay ? 28 : today.day};
}

// The `count` months before the one that begins on `first`.
DateRange MonthsBefore(const DateTime& first, int count) {
  DateTime from = first;
  from.month -= count;
  if (from.month < 1) {
    from.month += 12;
    from.year -= 1;
  }
  return {from, DaysFrom(first, -1)};
}

// "Ink Archive 2026.vkd", and "Ink (2020-1-1 To 2021-6-30).vkd" of an earlier program, however its system wrote dates.
bool IsArchiveName(const std::filesystem::path& path) {
  const std::string name = path.filename().string();
  return name.find("Archive") != std::string::npos ||
         (name.find(" To ") != std::string::npos && FindNoCase(name, ").vkd") != std::string_view::npos);
}

}  // namespace

std::span<const std::string_view> DateRangeNames() {
  return kNames;
}

std::optional<int> FindDateRange(std::string_view name) {
  for (std::size_t i = 0; i < kNames.size(); ++i)
    if (EqualNoCase(kNames[i], name)) return static_cast<int>(i);
  return std::nullopt;
}

DateRange RangeOf(int place, const DateTime& now) {
  const DateTime today = now.Midnight();
  const DateTime month{today.year, today.month, 1};
  const DateTime quarter{today.year, (today.month - 1) / 3 * 3 + 1, 1};
  switch (place) {
    case 0:
      return {InFirstYear(today), today};
    case 1:
      return {month, today};
    case 2:
      return {quarter, today};
    case 3:
      return {{today.year, 1, 1}, today};
    case 11:
      return MonthsBefore(month, 1);
    case 12:
      return MonthsBefore(quarter, 3);
    case 13:
      return MonthsBefore({today.year, 1, 1}, 12);
    default:
      break;
  }
  if (place >= kLast7Days && place < kCustomRange)
    return {DaysFrom(today, -kDaysBack[static_cast<std::size_t>(place - kLast7Days)]), today};
  return {today, today};
}

DateTime ReportToday(const Session& session) {
  if (!session.ArchiveView || !session.DataFileDB || !IsArchiveName(session.DataFileName)) return session.clock.Today();
  std::optional<DateTime> last;
  const auto look = [&](std::string_view column, const std::string& table) {
    const auto day = session.File().Scalar(fmt::format("SELECT MAX({}) FROM {}", column, table)).Date();
    if (day && (!last || *last < *day)) last = day;
  };
  for (const std::string& database : session.databaseList)
    look("Date_Entered", session.QuotedTable(schema::Batch, database));
  // Ink comes back and Jobs are closed after the last Batch was made.
  for (const std::string_view column : {"Date_Entered", "Date_Returned", "Date_Completed"})
    look(column, Quoted(schema::JobRecords.name));
  return last ? last->Midnight() : session.clock.Today();
}

}  // namespace vellumark
