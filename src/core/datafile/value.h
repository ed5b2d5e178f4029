#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <variant>

#include "core/base/date.h"

namespace vellumark {

/// One value of the Data File: null, a whole number (Boolean, Byte, Integer, Long), a number (Single, kept as the
/// double of the 32-bit value) or a text (Text, Memo, and Date as "YYYY-MM-DD HH:MM:SS").
class Value {
 public:
  Value() = default;
  Value(std::nullptr_t) {}
  template <class T>
  requires std::is_integral_v<T> Value(T whole) : held_(static_cast<std::int64_t>(whole)) {}
  Value(float number) : held_(static_cast<double>(number)) {}
  Value(double number) : held_(number) {}
  Value(std::string text) : held_(std::move(text)) {}
  Value(std::string_view text) : held_(std::string(text)) {}
  Value(const char* text) : held_(std::string(text)) {}
  Value(const DateTime& date) : held_(date.ToText()) {}
  Value(const std::optional<DateTime>& date) {
    if (date) held_ = date->ToText();
  }

  bool IsNull() const { return std::holds_alternative<std::monostate>(held_); }
  bool IsWhole() const { return std::holds_alternative<std::int64_t>(held_); }
  bool IsNumber() const { return std::holds_alternative<double>(held_); }
  bool IsText() const { return std::holds_alternative<std::string>(held_); }

  /// Null reads as 0, false or empty text; a text reads as the number at its front.
  std::int64_t Whole() const;
  double Number() const;
  float Single() const { return static_cast<float>(Number()); }
  bool Bool() const { return Whole() != 0; }
  std::string Text() const;
  std::optional<DateTime> Date() const;

  const auto& Held() const { return held_; }
  bool operator==(const Value&) const = default;

 private:
  std::variant<std::monostate, std::int64_t, double, std::string> held_;
};

}  // namespace vellumark
