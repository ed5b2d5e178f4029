#include "core/base/number.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <stdexcept>

#include "core/base/text.h"

namespace vellumark {
namespace {

// The shortest decimal of a number as digits d1 d2 d3 ... and the place of the point: value = 0.d1d2d3... x 10^point.
struct Decimal {
  bool negative = false;
  std::array<char, 24> digits{};
  int count = 0;
  int point = 0;
};

template <class Float>
Decimal Shortest(Float value) {
  if (!std::isfinite(value)) throw std::domain_error("a number that is not finite has no decimal text");
  std::array<char, 40> buffer{};
  const auto written =
      std::to_chars(buffer.data(), buffer.data() + buffer.size(), value, std::chars_format::scientific);
  Decimal result;
  const char* p = buffer.data();
  if (*p == '-') {
    result.negative = true;
    ++p;
  }
  for (; p != written.ptr && *p != 'e'; ++p) {
    if (*p != '.') result.digits[static_cast<std::size_t>(result.count++)] = *p;
  }
  int exponent = 0;
  const char* e = p + 1;
  if (*e == '+') ++e;
  std::from_chars(e, written.ptr, exponent);
  result.point = exponent + 1;
  if (result.digits[0] == '0') result.point = 1;
  return result;
}

// Rounds half away from zero so that `decimals` digits stand behind the point.
void RoundDecimal(Decimal& d, int decimals) {
  const int keep = d.point + decimals;
  if (keep >= d.count) return;
  if (keep < 0) {
    d.count = 0;
    return;
  }
  const bool up = d.digits[static_cast<std::size_t>(keep)] >= '5';
  d.count = keep;
  if (!up) return;
  int i = keep - 1;
  while (i >= 0 && d.digits[static_cast<std::size_t>(i)] == '9') --i;
  if (i < 0) {
    d.digits[0] = '1';
    d.count = 1;
    d.point += 1;
    return;
  }
  d.digits[static_cast<std::size_t>(i)] += 1;
  d.count = i + 1;
}

std::string DecimalText(const Decimal& d, int decimals) {
  const auto digit = [&d](int place) {
    return place >= 0 && place < d.count ? d.digits[static_cast<std::size_t>(place)] : '0';
  };
  bool zero = true;
  for (int i = 0; i < d.count; ++i) zero = zero && d.digits[static_cast<std::size_t>(i)] == '0';
  std::string text;
  if (d.negative && !zero) text += '-';
  if (d.point <= 0) text += '0';
  for (int i = 0; i < d.point; ++i) text += digit(i);
  if (decimals > 0) {
    text += '.';
    for (int i = 0; i < decimals; ++i) text += digit(d.point + i);
  }
  return text;
}

template <class Float>
std::string FixedText(Float value, int decimals) {
  Decimal d = Shortest(value);
  RoundDecimal(d, decimals);
  return DecimalText(d, decimals);
}

template <class Float>
std::string ShortestOf(Float value) {
  const Decimal d = Shortest(value);
  return DecimalText(d, d.count > d.point && d.digits[0] != '0' ? d.count - d.point : 0);
}

template <class Target>
Target Read(const std::string& text) {
  Target value{};
  std::from_chars(text.data(), text.data() + text.size(), value);
  return value;
}

constexpr std::array kPowersOfTen{1.0, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};

// Two of the largest can still be added. What lies beyond is larger than anything that is counted, and stays so.
constexpr double kMostUnits = 4611686018427387904.0;

// The shortest decimal of a number is no further from it than `error` times its size, and only close to a half does
// that decide which way it is rounded.
template <class Float>
std::int64_t Units(Float value, int decimals, double error) {
  const double power = kPowersOfTen[static_cast<std::size_t>(decimals)];
  const double scaled = static_cast<double>(value) * power;
  const double size = std::abs(scaled);
  if (size < 1e9 && std::abs(size - std::floor(size) - 0.5) > size * error + 1e-12)
    return static_cast<std::int64_t>(std::floor(size + 0.5)) * (scaled < 0 ? -1 : 1);
  return std::llround(std::clamp(RoundTo(value, decimals) * power, -kMostUnits, kMostUnits));
}

}  // namespace

std::string Fixed(float value, int decimals) {
  return FixedText(value, decimals);
}
std::string Fixed(double value, int decimals) {
  return FixedText(value, decimals);
}

double RoundTo(double value, int decimals) {
  return Read<double>(FixedText(value, decimals));
}
double RoundTo(float value, int decimals) {
  return Read<double>(FixedText(value, decimals));
}
std::int64_t WholeUnits(double value, int decimals) {
  return Units(value, decimals, 1e-14);
}
std::int64_t WholeUnits(float value, int decimals) {
  return Units(value, decimals, 1.3e-7);
}
double OfWholeUnits(std::int64_t units, int decimals) {
  return static_cast<double>(units) / kPowersOfTen[static_cast<std::size_t>(decimals)];
}

float RoundSingle(double value, int decimals) {
  return Read<float>(FixedText(value, decimals));
}
float RoundSingle(float value, int decimals) {
  return Read<float>(FixedText(value, decimals));
}

std::string ShortestText(float value) {
  return ShortestOf(value);
}
std::string ShortestText(double value) {
  return ShortestOf(value);
}

std::optional<double> ParseNumber(std::string_view text) {
  text = TrimView(text);
  std::string_view digits = text;
  if (!digits.empty() && (digits.front() == '-' || digits.front() == '+')) digits.remove_prefix(1);
  bool point = false;
  bool any = false;
  for (const char c : digits) {
    if (c == '.' && !point) {
      point = true;
    } else if (c >= '0' && c <= '9') {
      any = true;
    } else {
      return std::nullopt;
    }
  }
  if (!any) return std::nullopt;
  if (text.front() == '+') text.remove_prefix(1);
  double value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc{} || end != text.data() + text.size()) return std::nullopt;
  return value;
}

double LeadingNumber(std::string_view text) {
  while (!text.empty() && (text.front() == ' ' || text.front() == '\t')) text.remove_prefix(1);
  if (!text.empty() && text.front() == '+') text.remove_prefix(1);
  if (text.empty() || !(text.front() == '-' || text.front() == '.' || (text.front() >= '0' && text.front() <= '9')))
    return 0;
  double value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  return error == std::errc{} && std::isfinite(value) ? value : 0;
}

std::int32_t LeadingInteger(std::string_view text) {
  const double value = std::trunc(LeadingNumber(text));
  constexpr double low = std::numeric_limits<std::int32_t>::min();
  constexpr double high = std::numeric_limits<std::int32_t>::max();
  return static_cast<std::int32_t>(value < low ? low : value > high ? high : value);
}

Currency Currency::From(double value) {
  // The product in binary would move a tie such as 0.00125; the shortest decimal keeps it where a person sees it.
  Decimal d = Shortest(value);
  const int keep = d.point + 4;
  if (keep < d.count && keep >= 0) {
    const bool tie = keep == d.count - 1 && d.digits[static_cast<std::size_t>(keep)] == '5';
    const bool odd = keep > 0 && (d.digits[static_cast<std::size_t>(keep - 1)] - '0') % 2 == 1;
    if (tie && !odd) d.count = keep;
  }
  RoundDecimal(d, 4);
  if (d.point > 14) throw std::out_of_range("an amount of money beyond the range of Currency");
  std::int64_t units = 0;
  for (int i = 0; i < d.point + 4; ++i)
    units = units * 10 + (i >= 0 && i < d.count ? d.digits[static_cast<std::size_t>(i)] - '0' : 0);
  return OfTenThousandths(d.negative ? -units : units);
}

Currency Currency::Rounded(int decimals) const {
  std::int64_t step = 1;
  for (int i = decimals; i < 4; ++i) step *= 10;
  const std::int64_t half = step / 2;
  const std::int64_t rounded = units_ >= 0 ? (units_ + half) / step : -((-units_ + half) / step);
  return OfTenThousandths(rounded * step);
}

std::string Currency::Fixed(int decimals) const {
  const std::int64_t value = Rounded(decimals).units_;
  const std::int64_t magnitude = value < 0 ? -value : value;
  std::string fraction = std::to_string(10000 + magnitude % 10000).substr(1, static_cast<std::size_t>(decimals));
  std::string text = value < 0 ? "-" : "";
  text += std::to_string(magnitude / 10000);
  if (decimals > 0) text += "." + fraction;
  return text;
}

}  // namespace vellumark
