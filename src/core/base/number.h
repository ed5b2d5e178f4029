#pragma once

#include <compare>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace vellumark {

/// The n-decimals text of a number, with a point and no grouping. The value is first taken as the shortest decimal
/// that reads back as the same Single (or double) and then rounded half away from zero, so that it rounds as a person
/// who sees it would: 0.0005 gives "0.001", 1.0005 gives "1.001". A result of zero has no sign. `decimals` is 0 to 15.
std::string Fixed(float value, int decimals);
std::string Fixed(double value, int decimals);

/// The number that `Fixed` shows, as a double and as a Single.
double RoundTo(double value, int decimals);
double RoundTo(float value, int decimals);
float RoundSingle(double value, int decimals);
float RoundSingle(float value, int decimals);
/// The same as a whole number of its last decimals: 1.0005 with three of them is 1001. What is added up stays exact so.
std::int64_t WholeUnits(double value, int decimals);
std::int64_t WholeUnits(float value, int decimals);
/// The number again: 1001 with three decimals is 1.001.
double OfWholeUnits(std::int64_t units, int decimals);

/// The shortest decimal that reads back as the same number, never with an exponent: "0.1", "100", "-12.5".
std::string ShortestText(float value);
std::string ShortestText(double value);

/// A number as a person types it: blanks around it, a sign, digits and at most one point. Nothing for anything else:
/// no grouping, no exponent, no second point, no empty text.
std::optional<double> ParseNumber(std::string_view text);

/// The number at the front of a text, 0 when there is none: how settings are read. Leading blanks are skipped, reading
/// stops at the first character that does not belong to a decimal number (an exponent does).
double LeadingNumber(std::string_view text);
/// The same, cut to a whole number and held in the range of 32 bits.
std::int32_t LeadingInteger(std::string_view text);

/// Money in ten-thousandths, 64 bits. Conversion from a number rounds half to even.
class Currency {
 public:
  constexpr Currency() = default;
  static Currency From(double value);
  static constexpr Currency OfTenThousandths(std::int64_t units) {
    Currency c;
    c.units_ = units;
    return c;
  }

  constexpr std::int64_t TenThousandths() const { return units_; }
  double ToDouble() const { return static_cast<double>(units_) / 10000.0; }
  /// Rounded half away from zero to `decimals` (0 to 4).
  Currency Rounded(int decimals) const;
  std::string Fixed(int decimals) const;

  constexpr auto operator<=>(const Currency&) const = default;
  constexpr Currency operator+(Currency other) const { return OfTenThousandths(units_ + other.units_); }
  constexpr Currency operator-(Currency other) const { return OfTenThousandths(units_ - other.units_); }
  Currency& operator+=(Currency other) {
    units_ += other.units_;
    return *this;
  }

 private:
  std::int64_t units_ = 0;
};

}  // namespace vellumark
