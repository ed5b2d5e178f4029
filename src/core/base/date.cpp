#include "core/base/date.h"

#include <fmt/format.h>

#include <charconv>
#include <chrono>
#include <iterator>
#include <memory>

namespace vellumark {
namespace {

std::chrono::sys_days SysDays(int year, int month, int day) {
  return std::chrono::year{year} / std::chrono::month{static_cast<unsigned>(month)} /
         std::chrono::day{static_cast<unsigned>(day)};
}

// Takes exactly `digits` decimal digits off the front of `text`.
std::optional<int> TakeNumber(std::string_view& text, std::size_t digits) {
  if (text.size() < digits) return std::nullopt;
  int value = 0;
  const char* const first = std::to_address(text.begin());
  const char* const last = std::next(first, static_cast<std::ptrdiff_t>(digits));
  const auto [end, error] = std::from_chars(first, last, value);
  if (error != std::errc{} || end != last || text[0] == '-') return std::nullopt;
  text.remove_prefix(digits);
  return value;
}

bool TakeChar(std::string_view& text, std::string_view oneOf) {
  if (text.empty() || oneOf.find(text.front()) == std::string_view::npos) return false;
  text.remove_prefix(1);
  return true;
}

}  // namespace

std::int64_t DateTime::DayNumber() const {
  return SysDays(year, month, day).time_since_epoch().count();
}

std::int64_t DateTime::SecondNumber() const {
  return DayNumber() * 86400 + hour * std::int64_t{3600} + minute * std::int64_t{60} + second;
}

std::string DateTime::ToText() const {
  return fmt::format("{:04}-{:02}-{:02} {:02}:{:02}:{:02}", year, month, day, hour, minute, second);
}

std::string DateTime::DateText() const {
  return fmt::format("{:04}-{:02}-{:02}", year, month, day);
}

DateTime DateTime::FromDayNumber(std::int64_t days) {
  const std::chrono::year_month_day ymd{std::chrono::sys_days{std::chrono::days{days}}};
  return {static_cast<int>(ymd.year()),
          static_cast<int>(static_cast<unsigned>(ymd.month())),
          static_cast<int>(static_cast<unsigned>(ymd.day())),
          0,
          0,
          0};
}

std::optional<DateTime> ParseDateTime(std::string_view text) {
  DateTime result;
  const auto year = TakeNumber(text, 4);
  if (!year || !TakeChar(text, "-")) return std::nullopt;
  const auto month = TakeNumber(text, 2);
  if (!month || !TakeChar(text, "-")) return std::nullopt;
  const auto day = TakeNumber(text, 2);
  if (!day) return std::nullopt;
  result = {*year, *month, *day, 0, 0, 0};
  if (!text.empty()) {
    if (!TakeChar(text, " T")) return std::nullopt;
    const auto hour = TakeNumber(text, 2);
    if (!hour || !TakeChar(text, ":")) return std::nullopt;
    const auto minute = TakeNumber(text, 2);
    if (!minute) return std::nullopt;
    result.hour = *hour;
    result.minute = *minute;
    if (!text.empty()) {
      if (!TakeChar(text, ":")) return std::nullopt;
      const auto second = TakeNumber(text, 2);
      if (!second || !text.empty()) return std::nullopt;
      result.second = *second;
    }
  }
  const std::chrono::year_month_day ymd{std::chrono::year{result.year},
                                        std::chrono::month{static_cast<unsigned>(result.month)},
                                        std::chrono::day{static_cast<unsigned>(result.day)}};
  if (!ymd.ok() || result.year < 100) return std::nullopt;
  if (result.hour > 23 || result.minute > 59 || result.second > 59) return std::nullopt;
  return result;
}

}  // namespace vellumark
