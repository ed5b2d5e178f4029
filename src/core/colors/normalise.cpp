#include "core/colors/normalise.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

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

// Scales the lines to `share` thousandths of a part, each rounded half up to a thousandth; false when there is nothing
// to scale. Whole millionths keep the division exact: what is a half by hand is a half here.
bool Rescale(Recipe& recipe, std::int64_t share) {
  const auto millionths = [](const Ingredient& line) { return std::llround(line.amount * 1e6); };
  std::int64_t total = 0;
  for (const Ingredient& line : recipe) total += millionths(line);
  if (total <= 0) return false;
  for (Ingredient& line : recipe) line.amount = FromThousandths((2 * millionths(line) * share + total) / (2 * total));
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
