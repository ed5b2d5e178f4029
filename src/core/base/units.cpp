#include "core/base/units.h"

#include <stdexcept>

#include "core/base/number.h"
#include "core/base/text.h"

namespace vellumark {
namespace {

struct UnitEntry {
  std::string_view name;
  float perPound;
};

constexpr std::array<UnitEntry, 4> kUnits{{
    {"lb.", 1.0F},
    {"kg.", 0.45359237F},
    {"g.", 453.59237F},
    {"oz.", 16.0F},
}};

const UnitEntry& Entry(int unit) {
  if (unit < 1 || unit > 4) throw std::out_of_range("no unit has the code " + std::to_string(unit));
  return kUnits[static_cast<std::size_t>(unit - 1)];
}

}  // namespace

std::string_view UnitName(int unit) {
  return unit >= 1 && unit <= 4 ? Entry(unit).name : std::string_view{};
}

std::optional<int> ParseUnit(std::string_view text) {
  const std::string_view wanted = TrimView(text);
  for (int unit = 1; unit <= 4; ++unit) {
    const std::string_view name = Entry(unit).name;
    if (EqualNoCase(wanted, name) || EqualNoCase(wanted, name.substr(0, name.size() - 1)) ||
        wanted == std::to_string(unit))
      return unit;
  }
  return std::nullopt;
}

float UnitFactor(int from, int to) {
  const double quotient = static_cast<double>(Entry(to).perPound) / static_cast<double>(Entry(from).perPound);
  return RoundSingle(quotient, 10);
}

}  // namespace vellumark
