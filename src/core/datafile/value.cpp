#include "core/datafile/value.h"

#include "core/base/number.h"

namespace vellumark {

std::int64_t Value::Whole() const {
  if (const auto* whole = std::get_if<std::int64_t>(&held_)) return *whole;
  if (const auto* number = std::get_if<double>(&held_)) return static_cast<std::int64_t>(*number);
  if (const auto* text = std::get_if<std::string>(&held_)) return LeadingInteger(*text);
  return 0;
}

double Value::Number() const {
  if (const auto* number = std::get_if<double>(&held_)) return *number;
  if (const auto* whole = std::get_if<std::int64_t>(&held_)) return static_cast<double>(*whole);
  if (const auto* text = std::get_if<std::string>(&held_)) return LeadingNumber(*text);
  return 0;
}

std::string Value::Text() const {
  if (const auto* text = std::get_if<std::string>(&held_)) return *text;
  if (const auto* whole = std::get_if<std::int64_t>(&held_)) return std::to_string(*whole);
  if (const auto* number = std::get_if<double>(&held_)) return ShortestText(*number);
  return {};
}

std::optional<DateTime> Value::Date() const {
  if (const auto* text = std::get_if<std::string>(&held_)) return ParseDateTime(*text);
  return std::nullopt;
}

}  // namespace vellumark
