#pragma once

#include <cstdint>
#include <string_view>

#include "core/datafile/value.h"

namespace vellumark {

/// A value as it stands in a row that is being read, of which nothing is copied: a text is valid until the next row.
struct KeptValue {
  /// The numbers are those of the engine, and the digests of rows are made of them too.
  enum class Kind { Whole = 1, Number = 2, Text = 3, Bytes = 4, Null = 5 };
  Kind kind = Kind::Null;
  std::int64_t whole = 0;
  double number = 0;
  std::string_view text;  ///< of bytes too

  KeptValue() = default;
  explicit KeptValue(std::int64_t held) : kind(Kind::Whole), whole(held) {}
  explicit KeptValue(double held) : kind(Kind::Number), number(held) {}
  KeptValue(Kind kindOfText, std::string_view held) : kind(kindOfText), text(held) {}
  /// As long as the value stands.
  static KeptValue Of(const Value& value) {
    if (value.IsWhole()) return KeptValue(value.Whole());
    if (value.IsNumber()) return KeptValue(value.Number());
    if (value.IsText()) return {Kind::Text, std::get<std::string>(value.Held())};
    return {};
  }
};

}  // namespace vellumark
