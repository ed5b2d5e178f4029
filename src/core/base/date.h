#pragma once

#include <compare>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace vellumark {

/// A calendar date with a time of day, no zone: what an operator's clock on the wall says.
struct DateTime {
  int year = 1900;
  int month = 1;
  int day = 1;
  int hour = 0;
  int minute = 0;
  int second = 0;

  auto operator<=>(const DateTime&) const = default;

  DateTime Midnight() const { return {year, month, day, 0, 0, 0}; }
  /// Days since 1970-01-01; the time of day is left out.
  std::int64_t DayNumber() const;
  /// Seconds since 1970-01-01 00:00:00.
  std::int64_t SecondNumber() const;
  /// "YYYY-MM-DD HH:MM:SS", the form in which the Data File keeps dates; it sorts as the time does.
  std::string ToText() const;
  /// "YYYY-MM-DD".
  std::string DateText() const;

  static DateTime FromDayNumber(std::int64_t days);
};

/// Reads "YYYY-MM-DD" or "YYYY-MM-DD HH:MM[:SS]" (a "T" may stand for the blank); nothing for any other text or a day
/// that the calendar does not have. Years 100 to 9999.
std::optional<DateTime> ParseDateTime(std::string_view text);

}  // namespace vellumark
