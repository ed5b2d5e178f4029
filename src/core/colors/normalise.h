#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace vellumark {

/// One line of a recipe. The amount is the decimal that a person sees, three places at most once it is normalised.
struct Ingredient {
  std::string name;
  double amount = 0;
  bool operator==(const Ingredient&) const = default;
};

using Recipe = std::vector<Ingredient>;

/// A stored amount as the decimal that it shows.
double ShownAmount(float stored);

bool HoldsIngredient(const Recipe& recipe, std::string_view name);
std::vector<std::string> NamesOf(const Recipe& recipe);
/// The lines whose names do not stand in the set.
Recipe WithoutSet(const Recipe& recipe, const Recipe& set);

/// The amount with so many percent, of two decimals, added to it (taken off it, below 0): three decimals, a half by
/// hand rounded up.
double ChangedByPercent(double amount, double percent);

/// The first line of a recipe in parts of 100 whose share is below 0.001, so that nothing of it could be weighed; null
/// when there is none.
const Ingredient* LostShare(const Recipe& recipe);
/// The words of that.
std::string LostShareText(const Ingredient& line);

/// The sum, rounded to three decimals after each addition.
double TotalOf(const Recipe& recipe);

/// Brings the amounts, however large or small they are, to parts of 100: each is rounded to three decimals and the
/// first largest takes what is missing, so that the lines total exactly 100.000. Lines without a name are closed up. A
/// recipe whose total is not above 0 comes back as it is.
Recipe Normalise(Recipe recipe);

/// The same beside an Additive Set: lines that stand in the set go, the others share what the set's percentages leave
/// of 100, and the set's lines come last with their percentages. Without other lines nothing is left to share: the
/// set's lines alone come back.
Recipe NormaliseWithSet(const Recipe& recipe, const Recipe& set);

/// The recipe with amounts added to it: to the line of that name, else as a new line. A line that comes to 0 or below
/// goes.
Recipe FoldAdditions(Recipe recipe, const Recipe& additions);

/// A recipe after the ingredient `oldName` was merged into `newName`, both of which it holds. Without a set the two are
/// added into one line, which goes last.
Recipe MergeIngredients(const Recipe& recipe, std::string_view oldName, std::string_view newName);
/// With a set the old line goes, the set's lines are taken out, the rest are rescaled to what the set leaves of 100,
/// and the set's lines are appended. When rounding misses 100, the first largest takes 100 less the total of the
/// rescaled lines, the set's share not counted: such a formula totals 100 and the set's share until its next save.
Recipe MergeIngredientsWithSet(const Recipe& recipe, std::string_view oldName, const Recipe& set);

}  // namespace vellumark
