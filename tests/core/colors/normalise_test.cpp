#include "core/colors/normalise.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "core/base/number.h"

namespace vellumark {
namespace {

Recipe Lines(const std::vector<double>& amounts) {
  Recipe recipe;
  for (std::size_t i = 0; i < amounts.size(); ++i) recipe.push_back({"C" + std::to_string(i), amounts[i]});
  return recipe;
}

std::vector<std::string> Texts(const Recipe& recipe) {
  std::vector<std::string> texts;
  for (const Ingredient& line : recipe) texts.push_back(Fixed(line.amount, 3));
  return texts;
}

// What the stored Singles show, summed in whole thousandths.
std::int64_t StoredThousandths(const Recipe& recipe) {
  std::int64_t total = 0;
  for (const Ingredient& line : recipe) total += std::llround(ShownAmount(static_cast<float>(line.amount)) * 1000);
  return total;
}

TEST(Normalise, WorkedExamples) {
  const struct {
    std::vector<double> amounts;
    std::vector<std::string> parts;
  } cases[] = {
      {{1, 1, 1}, {"33.334", "33.333", "33.333"}},
      {{0.001}, {"100.000"}},
      {{1, 2}, {"33.333", "66.667"}},
      {{7, 7, 7, 7, 7, 7, 7}, {"14.284", "14.286", "14.286", "14.286", "14.286", "14.286", "14.286"}},
      {{999, 0.001}, {"100.000", "0.000"}},
      {{12.5, 3.125, 0.375}, {"78.125", "19.531", "2.344"}},
      {{}, {}},
      {{0, 0}, {"0.000", "0.000"}},
  };
  for (const auto& c : cases) EXPECT_EQ(Texts(Normalise(Lines(c.amounts))), c.parts);
}

TEST(Normalise, WithASet) {
  const Recipe recipe = NormaliseWithSet({{"A", 60}, {"DRIER", 9}, {"B", 40}}, {{"DRIER", 5}});
  EXPECT_EQ(NamesOf(recipe), (std::vector<std::string>{"A", "B", "DRIER"}));
  EXPECT_EQ(Texts(recipe), (std::vector<std::string>{"57.000", "38.000", "5.000"}));
  // A half by hand is a half here: 33.35 of 100 beside 5 is 31.6825.
  EXPECT_EQ(Texts(NormaliseWithSet({{"A", 33.35}, {"B", 66.65}}, {{"S", 5}}))[0], "31.683");
}

TEST(Normalise, AnyRecipeTotalsHundredAsStored) {
  std::mt19937 random(20260310);
  const auto pick = [&](int low, int high) { return std::uniform_int_distribution<int>(low, high)(random); };
  for (int round = 0; round < 20000; ++round) {
    std::vector<double> amounts;
    const int lines = round % 7 == 0 ? 15 : pick(1, 15);
    for (int i = 0; i < lines; ++i) {
      const int kind = pick(0, 3);
      amounts.push_back(kind == 0 ? 0.001 : kind == 1 ? pick(1, 999'000) / 1000.0 : pick(1, 40) / 1.0);
    }
    const Recipe recipe = Lines(amounts);
    ASSERT_EQ(StoredThousandths(Normalise(recipe)), 100'000) << "round " << round;
    // Saving again what was saved changes nothing.
    Recipe stored = Normalise(recipe);
    for (Ingredient& line : stored) line.amount = ShownAmount(static_cast<float>(line.amount));
    ASSERT_EQ(Normalise(stored), stored) << "round " << round;

    Recipe set;
    for (int i = 0, additives = pick(1, 5); i < additives; ++i)
      set.push_back({"S" + std::to_string(i), round % 3 == 0 ? 10.0 : pick(1, 1000) / 100.0});
    ASSERT_EQ(StoredThousandths(NormaliseWithSet(recipe, set)), 100'000) << "round " << round;
  }
}

// An independent reckoning: amounts are whole numbers of units that the test itself chose, and shares are divided by
// hand, quotient and remainder.
std::vector<std::int64_t> SharesByHand(const std::vector<std::int64_t>& units, std::int64_t share) {
  __extension__ using Wide = __int128;
  Wide total = 0;
  for (const std::int64_t unit : units) total += unit;
  std::vector<std::int64_t> shares;
  std::int64_t sum = 0;
  for (const std::int64_t unit : units) {
    const Wide product = static_cast<Wide>(unit) * share;
    Wide quotient = product / total;
    if (2 * (product % total) >= total) ++quotient;
    shares.push_back(static_cast<std::int64_t>(quotient));
    sum += shares.back();
  }
  std::size_t largest = 0;
  for (std::size_t i = 1; i < shares.size(); ++i)
    if (shares[i] > shares[largest]) largest = i;
  shares[largest] += share - sum;
  return shares;
}

TEST(Normalise, AmountsOfAnySizeAgainstAReckoningByHand) {
  std::mt19937_64 random(20260311);
  const auto pick = [&](std::int64_t low, std::int64_t high) {
    return std::uniform_int_distribution<std::int64_t>(low, high)(random);
  };
  for (int round = 0; round < 20000; ++round) {
    // The unit: from a hundred-millionth to ten thousand, amounts up to 10^13 of it.
    const int power = static_cast<int>(pick(-8, 4));
    const auto highest = static_cast<std::int64_t>(std::pow(10, pick(1, 13)));
    std::vector<std::int64_t> units;
    std::vector<double> amounts;
    for (std::int64_t line = 0, lines = pick(1, 15); line < lines; ++line) {
      units.push_back(pick(0, 3) == 0 ? pick(1, 9) : pick(1, highest));
      amounts.push_back(std::stod(std::to_string(units.back()) + "e" + std::to_string(power)));
    }
    const std::vector<std::int64_t> right = SharesByHand(units, 100'000);
    const Recipe recipe = Normalise(Lines(amounts));
    for (std::size_t i = 0; i < right.size(); ++i)
      ASSERT_EQ(std::llround(recipe[i].amount * 1000), right[i]) << "round " << round << ", " << amounts[i];
  }
}

TEST(Normalise, APercentageRoundsAHalfUpAsByHand) {
  std::mt19937 random(20260312);
  const auto pick = [&](int low, int high) { return std::uniform_int_distribution<int>(low, high)(random); };
  for (int round = 0; round < 50000; ++round) {
    const std::int64_t amount = pick(1, 999'000);
    const std::int64_t hundredths = round % 2 == 0 ? pick(1, 9999) : 50 * pick(1, 199);
    const std::int64_t changed = amount * (10'000 + (round % 3 == 0 ? -hundredths : hundredths));
    const std::int64_t right = changed / 10'000 + (changed % 10'000 >= 5000 ? 1 : 0);
    const double percent = std::stod((round % 3 == 0 ? "-" : "") + Fixed(static_cast<double>(hundredths) / 100, 2));
    ASSERT_EQ(std::llround(ChangedByPercent(static_cast<double>(amount) / 1000, percent) * 1000), right)
        << amount << " by " << percent;
  }
}

TEST(Normalise, AdditionsFoldIntoARecipe) {
  const Recipe folded = FoldAdditions({{"A", 30}, {"B", 10}}, {{"b", 5}, {"C", 5}, {"A", -30}});
  EXPECT_EQ(folded, (Recipe{{"B", 15}, {"C", 5}}));
  EXPECT_EQ(Texts(Normalise(folded)), (std::vector<std::string>{"75.000", "25.000"}));
}

TEST(Normalise, MergedIngredients) {
  EXPECT_EQ(MergeIngredients({{"OLD", 20.001}, {"A", 50}, {"NEW", 29.999}}, "OLD", "NEW"),
            (Recipe{{"A", 50}, {"NEW", 50}}));
  // With a set the rest shares what the set leaves; the residue leaves out the set's share, so three equal lines gain
  // it.
  EXPECT_EQ(MergeIngredientsWithSet({{"OLD", 5}, {"NEW", 30}, {"A", 60}, {"S", 5}}, "OLD", {{"S", 5}}),
            (Recipe{{"NEW", 31.667}, {"A", 63.333}, {"S", 5}}));
  EXPECT_EQ(
      Texts(MergeIngredientsWithSet({{"OLD", 5}, {"NEW", 30}, {"A", 30}, {"B", 30}, {"S", 5}}, "OLD", {{"S", 5}})),
      (std::vector<std::string>{"36.666", "31.667", "31.667", "5.000"}));
}

}  // namespace
}  // namespace vellumark
