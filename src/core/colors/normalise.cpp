#include "core/colors/normalise.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <limits>

#include "core/base/number.h"
#include "core/base/text.h"

namespace vellumark {
namespace {

constexpr int kDecimals = 3;
constexpr std::int64_t kHundred = 100'000;  // 100.000 parts in thousandths

// Sums run in whole thousandths, where a sum of three-decimal values is exact.
std::int64_t Thousandths(double amount) {
  return std::llround(RoundTo(amount, kDecimals) * 1000);
}

double FromThousandths(std::int64_t thousandths) {
  return RoundTo(static_cast<double>(thousandths) / 1000, kDecimals);
}

std::int64_t TotalThousandths(const Recipe& recipe) {
  std::int64_t total = 0;
  for (const Ingredient& line : recipe) total += Thousandths(line.amount);
  return total;
}

// The first of the largest; the recipe holds at least one line.
Ingredient& FirstLargest(Recipe& recipe) {
  return *std::ranges::max_element(recipe, {}, &Ingredient::amount);
}

__extension__ using Wide = __int128;

// An amount as the decimal that a person reads: digits times a power of ten, digits below 10^17.
struct Decimal {
  std::int64_t digits = 0;
  int exponent = 0;
};

Decimal DecimalOf(double amount) {
  if (amount == 0 || !std::isfinite(amount)) return {};
  std::array<char, 32> text{};
  const auto end = std::to_chars(text.data(), text.data() + text.size(), amount, std::chars_format::scientific).ptr;
  Decimal decimal;
  const char* at = text.data();
  bool point = false;
  for (; *at != 'e'; ++at) {
    if (*at >= '0' && *at <= '9') decimal.digits = decimal.digits * 10 + (*at - '0');
    if (*at >= '0' && *at <= '9' && point) --decimal.exponent;
    point = point || *at == '.';
  }
  int power = 0;
  std::from_chars(at[1] == '+' ? at + 2 : at + 1, end, power);
  decimal.exponent += power;
  if (amount < 0) decimal.digits = -decimal.digits;
  return decimal;
}

int Magnitude(const Decimal& decimal) {
  int magnitude = decimal.exponent;
  for (std::int64_t rest = decimal.digits; rest != 0; rest /= 10) ++magnitude;
  return magnitude;
}

// The decimal in whole units of that power of ten; what is below half a unit goes.
Wide InUnits(const Decimal& decimal, int unit) {
  Wide whole = decimal.digits;
  for (int power = decimal.exponent; power > unit && whole != 0; --power) whole *= 10;
  for (int power = decimal.exponent; power < unit && whole != 0; ++power)
    whole = power + 1 == unit ? (whole + (whole < 0 ? -5 : 5)) / 10 : whole / 10;
  return whole;
}

// So many digits of the largest amount count; sums and products of them fit.
constexpr int kDigits = 30;

// The amounts in whole units of one power of ten, the finest that any of them needs.
std::vector<Wide> WholeUnits(const Recipe& recipe) {
  std::vector<Decimal> decimals;
  int largest = std::numeric_limits<int>::min();
  int finest = std::numeric_limits<int>::max();
  for (const Ingredient& line : recipe) {
    decimals.push_back(DecimalOf(line.amount));
    if (decimals.back().digits == 0) continue;
    largest = std::max(largest, Magnitude(decimals.back()));
    finest = std::min(finest, decimals.back().exponent);
  }
  if (largest == std::numeric_limits<int>::min()) return std::vector<Wide>(recipe.size(), 0);
  const int unit = std::max(finest, largest - kDigits);
  std::vector<Wide> units;
  for (const Decimal& decimal : decimals) units.push_back(decimal.digits == 0 ? 0 : InUnits(decimal, unit));
  return units;
}

// Scales the lines to `share` thousandths of a part, each rounded half up to a thousandth; false when there is nothing
// to scale. Whole units keep the division exact: what is a half by hand is a half here.
bool Rescale(Recipe& recipe, std::int64_t share) {
  const std::vector<Wide> units = WholeUnits(recipe);
  Wide total = 0;
  for (const Wide unit : units) total += unit;
  if (total <= 0) return false;
  for (std::size_t i = 0; i < recipe.size(); ++i)
    recipe[i].amount = FromThousandths(static_cast<std::int64_t>((2 * units[i] * share + total) / (2 * total)));
  return true;
}

// The same, and the first largest takes the residue of rounding.
void ScaleTo(Recipe& recipe, std::int64_t share) {
  if (!Rescale(recipe, share)) return;
  if (const std::int64_t residue = share - TotalThousandths(recipe); residue != 0) {
    Ingredient& largest = FirstLargest(recipe);
    largest.amount = FromThousandths(Thousandths(largest.amount) + residue);
  }
}

Recipe Compressed(Recipe recipe) {
  std::erase_if(recipe, [](const Ingredient& line) { return line.name.empty(); });
  return recipe;
}

Recipe WithoutName(Recipe recipe, std::string_view name) {
  std::erase_if(recipe, [&](const Ingredient& line) { return EqualNoCase(line.name, name); });
  return recipe;
}

double AmountOf(const Recipe& recipe, std::string_view name) {
  double amount = 0;
  for (const Ingredient& line : recipe)
    if (EqualNoCase(line.name, name)) amount += line.amount;
  return amount;
}

}  // namespace

double ShownAmount(float stored) {
  return RoundTo(stored, kDecimals);
}

bool HoldsIngredient(const Recipe& recipe, std::string_view name) {
  return std::ranges::any_of(recipe, [&](const Ingredient& line) { return EqualNoCase(line.name, name); });
}

std::vector<std::string> NamesOf(const Recipe& recipe) {
  std::vector<std::string> names;
  for (const Ingredient& line : recipe) names.push_back(line.name);
  return names;
}

Recipe WithoutSet(const Recipe& recipe, const Recipe& set) {
  Recipe rest;
  for (const Ingredient& line : recipe)
    if (!HoldsIngredient(set, line.name)) rest.push_back(line);
  return rest;
}

double ChangedByPercent(double amount, double percent) {
  constexpr Wide kWhole = 10'000;  // 100.00 percent in hundredths
  const Wide part = Thousandths(amount);
  return FromThousandths(
      static_cast<std::int64_t>((2 * part * (kWhole + std::llround(percent * 100)) + kWhole) / (2 * kWhole)));
}

const Ingredient* LostShare(const Recipe& recipe) {
  const auto lost = std::ranges::find_if(recipe, [](const Ingredient& line) { return Thousandths(line.amount) < 1; });
  return lost == recipe.end() ? nullptr : &*lost;
}

std::string LostShareText(const Ingredient& line) {
  return "the share of " + line.name + " is below 0.001 of 100";
}

double TotalOf(const Recipe& recipe) {
  return FromThousandths(TotalThousandths(recipe));
}

Recipe Normalise(Recipe recipe) {
  recipe = Compressed(std::move(recipe));
  ScaleTo(recipe, kHundred);
  return recipe;
}

Recipe NormaliseWithSet(const Recipe& recipe, const Recipe& set) {
  Recipe rest = Compressed(WithoutSet(recipe, set));
  ScaleTo(rest, kHundred - TotalThousandths(set));
  rest.insert(rest.end(), set.begin(), set.end());
  return rest;
}

Recipe FoldAdditions(Recipe recipe, const Recipe& additions) {
  for (const Ingredient& addition : additions) {
    const auto held =
        std::ranges::find_if(recipe, [&](const Ingredient& line) { return EqualNoCase(line.name, addition.name); });
    if (held == recipe.end()) {
      recipe.push_back(addition);
    } else {
      held->amount += addition.amount;
    }
  }
  std::erase_if(recipe, [](const Ingredient& line) { return !(line.amount > 0); });
  return recipe;
}

Recipe MergeIngredients(const Recipe& recipe, std::string_view oldName, std::string_view newName) {
  Recipe merged = WithoutName(WithoutName(recipe, oldName), newName);
  const double amount = RoundTo(AmountOf(recipe, oldName) + AmountOf(recipe, newName), kDecimals);
  merged.push_back({std::string(newName), amount});
  return merged;
}

Recipe MergeIngredientsWithSet(const Recipe& recipe, std::string_view oldName, const Recipe& set) {
  Recipe rest = WithoutSet(WithoutName(recipe, oldName), set);
  const std::int64_t setTotal = TotalThousandths(set);
  if (Rescale(rest, kHundred - setTotal)) {
    if (const std::int64_t newTotal = TotalThousandths(rest); newTotal + setTotal != kHundred) {
      Ingredient& largest = FirstLargest(rest);
      largest.amount = FromThousandths(Thousandths(largest.amount) + kHundred - newTotal);
    }
  }
  rest.insert(rest.end(), set.begin(), set.end());
  return rest;
}

}  // namespace vellumark
