#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <random>
#include <set>
#include <type_traits>

#include "batch_room.h"
#include "core/base/units.h"
#include "core/batch/additions.h"
#include "core/batch/adjust.h"
#include "core/batch/recipe.h"
#include "core/batch/recycle_list.h"
#include "core/colors/color_set.h"

namespace vellumark {
namespace {

using Parts = std::vector<std::pair<std::string, float>>;

// Thousands of recipe books, from a fixed seed: some basics, formulas of 1 to 15 of them whose shares add up to 100,
// stock here and there, some of it in lots, some not to be recycled.
class Book {
 public:
  /// Fills the room anew. The room is to stand in a transaction that nobody commits: thousands of books need no disk.
  Book(test::BatchRoom& emptied, unsigned seed) : room(emptied), random_(seed) {
    room.session.UMI = Pick(1, 4);
    room.session.InvLotTracking = Pick(0, 1);
    for (const Table* table : {&schema::Basic, &schema::Mix, &schema::MixLotInv})
      room.session.File().Execute("DELETE FROM " + room.session.QuotedTable(*table));
    const int basics = Pick(1, 16);
    for (int i = 0; i < basics; ++i) basics_.push_back((Pick(0, 4) == 0 ? "PANTONE B" : "B") + std::to_string(i));
    for (const std::string& name : basics_) room.Basic(name);
    const int formulas = Pick(1, 40);
    for (int i = 0; i < formulas; ++i) {
      const std::string name = "F" + std::to_string(i);
      const float stock = Pick(0, 2) == 0 ? 0 : RoundSingle(std::exp(Real(-4, 7)), 3);
      parts_[name] = RandomParts();
      room.Ink(name, parts_[name], stock, {{"Recycle", Pick(0, 5) != 0}});
      if (Pick(0, 3) == 0) room.Lot(schema::MixLotInv, name, RoundSingle(std::exp(Real(-3, 5)), 3));
    }
  }

  int Pick(int least, int most) { return std::uniform_int_distribution(least, most)(random_); }
  double Real(double least, double most) { return std::uniform_real_distribution(least, most)(random_); }

  std::string AnyFormula() { return "F" + std::to_string(Pick(0, static_cast<int>(parts_.size()) - 1)); }
  /// From a thousandth to the most that a Batch may be, all magnitudes alike; the ends now and then.
  std::string AnyQuantity() {
    if (Pick(0, 30) == 0) return Pick(0, 1) == 0 ? "0.001" : "99999";
    return Fixed(std::max(0.001, std::exp(Real(std::log(0.001), std::log(99999)))), 3);
  }
  const Parts& PartsOf(const std::string& name) { return parts_.at(name); }

  test::BatchRoom& room;

 private:
  Parts RandomParts() {
    std::vector<std::string> names = basics_;
    std::ranges::shuffle(names, random_);
    names.resize(
        static_cast<std::size_t>(Pick(1, std::min<int>(Pick(0, 3) == 0 ? 15 : 4, static_cast<int>(names.size())))));
    int left = 100000 - static_cast<int>(names.size());
    Parts parts;
    for (std::size_t i = 0; i < names.size(); ++i) {
      const int part = i + 1 == names.size() ? left : Pick(0, left);
      left -= part;
      parts.emplace_back(names[i], static_cast<float>((part + 1) / 1000.0));
    }
    return parts;
  }

  std::mt19937 random_;
  std::vector<std::string> basics_;
  std::map<std::string, Parts> parts_;
};

// How far a Single may stand from the number it holds.
double Grain(double value) {
  return std::abs(value) * 1.2e-7;
}

void CheckLines(const BatchWork& work) {
  double sum = 0;
  double recycled = 0;
  double additions = 0;
  for (const BatchRow& row : work.Rows) {
    sum += row.amount;
    if (row.kind == LineKind::Mix) recycled += row.amount;
    if (row.kind == LineKind::Addition) {
      additions += row.amount;
    } else {
      EXPECT_GE(row.amount, 0) << row.name;
    }
  }
  // Ingredients that come back beside additions can be more than a Batch holds; the save refuses them.
  EXPECT_LE(work.RecycledColors.size() + work.Additions.size(), 20U);
  if (work.Ingredients.empty()) {
    EXPECT_NEAR(sum - additions, work.Quantity(), 0.0151 + Grain(work.Quantity()) * 16);
  } else {
    EXPECT_EQ(Fixed(sum - additions, 3), work.QuantityText);
  }
  EXPECT_EQ(Fixed(sum, 3), Fixed(work.ShownTotal, 3));
  EXPECT_EQ(work.Total, static_cast<float>(RoundTo(sum, 3)));
  EXPECT_NEAR(work.RecycledTotal, recycled, 0.0005 + Grain(recycled));
}

// No recycled line exceeds its stock, nor the share of the remaining recipe that it can supply.
void CheckRecycled(const BatchWork& work) {
  double above = 0;
  for (const RecycleColor& color : work.RecycledColors) {
    EXPECT_GT(color.Usable, 0);
    EXPECT_TRUE(color.Recycle) << color.Color_Name;
    EXPECT_LE(color.Usable, color.Inventory + 0.00051 + Grain(color.Inventory)) << color.Color_Name;
    const double share = (work.Quantity() - above) * color.Recycle_Percent;
    // The shares of later colours carry the rounding of the earlier ones.
    EXPECT_LE(color.Usable, share * (1 + 1e-4) + 0.002 * static_cast<double>(work.RecycledColors.size()))
        << color.Color_Name;
    above += color.Usable;
  }
}

// What the recycled inks contain and what remains of the recipe are the recipe.
void CheckConserved(const BatchWork& work, const Parts& recipe, const std::string& name) {
  const double quantity = work.Quantity();
  for (const auto& [ingredient, share] : recipe) {
    double amount = 0;
    for (const BatchIngredient& remaining : work.Ingredients)
      if (remaining.IngName == ingredient) amount += remaining.Amount;
    for (const RecycleColor& color : work.RecycledColors)
      for (std::size_t i = 0; i < color.slots->size(); ++i)
        if ((*color.slots)[i].BC == ingredient) amount += color.RecAmount[i];
    EXPECT_NEAR(amount, quantity * share / 100, 0.00051 + Grain(quantity) * 20) << ingredient << " of " << name;
  }
}

TEST(Properties, OverRandomRecipeBooks) {
  std::size_t recycledLines = 0;
  test::BatchRoom room;
  const Transaction neverCommitted(room.session.File());
  for (unsigned seed = 0; seed < 2000; ++seed) {
    Book book(room, seed);
    for (int batch = 0; batch < 3; ++batch) {
      const std::string name = book.AnyFormula();
      book.room.Start(name, book.AnyQuantity());
      BatchWork& work = book.room.work;
      work.UMF = book.Pick(1, 4);
      work.settings.userOrder = book.Pick(0, 1) == 1;
      SCOPED_TRACE(testing::Message() << "seed " << seed << " batch " << batch << ' ' << name << ' '
                                      << work.QuantityText);
      ASSERT_TRUE(RecycleAction(book.room.session, work));
      CheckLines(work);
      CheckRecycled(work);
      recycledLines += work.RecycledColors.size();
      CheckConserved(work, book.PartsOf(name), name);
      for (const RecycleColor& color : work.RecycleList) {
        EXPECT_GE(color.Recycle_Percent, 0);
        EXPECT_LE(color.Recycle_Percent, 1);
      }
      if (testing::Test::HasFailure()) return;
    }
  }
  EXPECT_GT(recycledLines, 5000U);
}

// The automatic choice as a person would do it: whole records in a sorted list, ingredients found by their names.
void RecycleStepByStep(BatchWork& work) {
  const auto sort = [&work] {
    std::ranges::sort(work.RecycleList, {}, &RecycleColor::key);
    SortRecycleList(work);
  };
  sort();
  for (;;) {
    std::size_t taken = 0;
    for (; taken < work.RecycleList.size(); ++taken) {
      RecycleColor& color = work.RecycleList[taken];
      if (work.Ingredients.size() + work.RecycledColors.size() > 19 || color.Recycle_Percent == 0) return;
      CapRecycleAmount(work, color);
      if (color.Usable > 0 && color.Recycle) break;
    }
    if (taken == work.RecycleList.size()) return;
    const RecycleColor color = work.RecycleList[taken];
    for (std::size_t i = 0; i < color.slots->size(); ++i)
      for (BatchIngredient& ingredient : work.Ingredients)
        if (EqualNoCase(ingredient.IngName, (*color.slots)[i].BC)) ingredient.Amount -= color.RecAmount[i];
    std::erase_if(work.Ingredients, [](const BatchIngredient& ingredient) { return ingredient.Amount < 0.0005; });
    double sum = 0;
    for (const BatchIngredient& ingredient : work.Ingredients) sum += ingredient.Amount;
    for (BatchIngredient& ingredient : work.Ingredients)
      ingredient.Percent = static_cast<float>(ingredient.Amount * 100.0 / sum);
    work.RecycledColors.push_back(color);
    work.RecycleList.erase(work.RecycleList.begin() + static_cast<std::ptrdiff_t>(taken));
    for (RecycleColor& left : work.RecycleList) CalcRecyclePercent(work, left);
    sort();
  }
}

TEST(Properties, AutoRecycleTakesWhatStepByStepTakes) {
  test::BatchRoom room;
  const Transaction neverCommitted(room.session.File());
  for (unsigned seed = 4000; seed < 4600; ++seed) {
    Book book(room, seed);
    room.Start(book.AnyFormula(), book.AnyQuantity());
    LoadFormulaIngredients(room.session, room.work);
    BuildRecycleList(room.session, room.work);
    BatchWork plain = room.work;
    AutoRecycle(room.session, room.work);
    RecycleStepByStep(plain);
    const auto figures = [](const std::vector<RecycleColor>& list) {
      std::vector<std::tuple<std::string, float, float>> colors;
      for (const RecycleColor& c : list) colors.emplace_back(c.Color_Name, c.Usable, c.Recycle_Percent);
      return colors;
    };
    ASSERT_EQ(figures(room.work.RecycledColors), figures(plain.RecycledColors)) << seed;
    ASSERT_EQ(figures(room.work.RecycleList), figures(plain.RecycleList)) << seed;
  }
}

// The same quantity again changes nothing beyond what the rounding of the chosen amounts to thousandths can move.
TEST(Properties, RefitToTheSameQuantityChangesNothing) {
  test::BatchRoom room;
  const Transaction neverCommitted(room.session.File());
  int lines = 0;
  int movedLines = 0;
  for (unsigned seed = 1000; seed < 1600; ++seed) {
    Book book(room, seed);
    for (int batch = 0; batch < 3; ++batch) {
      book.room.Start(book.AnyFormula(), book.AnyQuantity());
      BatchWork& work = book.room.work;
      SCOPED_TRACE(testing::Message() << "seed " << seed << " batch " << batch << ' ' << work.QuantityText);
      ASSERT_TRUE(RecycleAction(book.room.session, work));
      const std::vector<BatchRow> before = work.Rows;
      ASSERT_TRUE(RecycleAction(book.room.session, work));
      std::map<std::string, double> amounts;
      for (const BatchRow& row : before) amounts[std::string(LineKindName(row.kind)) + row.name] += row.amount;
      for (const BatchRow& row : work.Rows) amounts[std::string(LineKindName(row.kind)) + row.name] -= row.amount;
      const double rounding = 0.001 * (1.1 + static_cast<double>(work.RecycledColors.size()));
      for (const auto& [line, moved] : amounts) {
        EXPECT_NEAR(moved, 0, rounding + Grain(work.Quantity()) * 8) << line;
        ++lines;
        if (std::abs(moved) > 0.0005) ++movedLines;
      }
      CheckLines(work);
      if (testing::Test::HasFailure()) return;
    }
  }
  EXPECT_LT(movedLines, lines / 10);
}

// What the operator sees worked out anew from the recipe book alone, in long double: of each ingredient the recipe's
// part of the quantity, less what the rows above bring in, is what one more recycled row may bring.
class Bench {
 public:
  Bench(Book& book, std::string name) : book_(book), name_(std::move(name)) {}

  /// How much of the colour fits on top of the first `count` rows, told as what is left over when `amount` of it is
  /// taken: below zero when it is too much.
  long double Spare(const BatchWork& work, std::size_t count, const std::string& color, long double amount,
                    long double quantity) const {
    long double spare = quantity - amount;
    for (std::size_t i = 0; i < count; ++i) spare -= Exact(Fixed(work.Rows[i].amount, 3));
    for (const auto& [ingredient, part] : book_.PartsOf(color)) {
      long double left = quantity * ShareOf(book_.PartsOf(name_), ingredient) / 100 - amount * Exact(part) / 100;
      for (std::size_t i = 0; i < count; ++i)
        left -= Exact(Fixed(work.Rows[i].amount, 3)) * ShareOf(book_.PartsOf(work.Rows[i].name), ingredient) / 100;
      spare = std::min(spare, left);
    }
    return spare;
  }
  // Each row above may be half a thousandth off, and a Single holds seven digits.
  static long double Slack(const BatchWork& work) {
    return 0.0011L + 0.00051L * static_cast<long double>(work.RecycledColors.size()) + Grain(work.Quantity()) * 24;
  }

  void Check(const BatchWork& work) const {
    CheckLines(work);
    CheckConserved(work, book_.PartsOf(name_), name_);
    std::set<std::string> names;
    for (std::size_t row = 0; row < work.RecycledColors.size(); ++row) {
      const RecycleColor& color = work.RecycledColors[row];
      EXPECT_TRUE(names.insert(color.Color_Name).second);
      const double most = RoundTo(work.Rows[row].max, 3);
      EXPECT_GE(most, work.Rows[row].amount) << color.Color_Name;
      if (color.Recycle_Percent == 0) continue;
      const long double spare = Spare(work, row, color.Color_Name, most, work.Quantity());
      EXPECT_LE(std::abs(spare), Slack(work) + 1e-5L * most) << "maximum of " << color.Color_Name << " in row " << row;
    }
    for (const BatchIngredient& addition : work.Additions) {
      double held = RoundTo(addition.Amount, 3);
      for (const BatchRow& row : work.Rows)
        if (row.kind == LineKind::Basic && row.name == addition.IngName) held += row.amount;
      EXPECT_TRUE(addition.Amount >= 0 || RoundTo(held, 3) >= 0) << addition.IngName;
    }
  }

  /// After a pour of a recycled row: the Batch did not shrink nor grow further than it had to, the row is what was
  /// poured and those above it are what they were.
  void CheckPour(const BatchWork& before, const BatchWork& after, std::size_t row, double poured) const {
    EXPECT_GE(after.Quantity(), before.Quantity());
    EXPECT_NEAR(after.Rows[row].amount, poured, 0.0001 + Grain(poured) * 4);
    for (std::size_t i = 0; i < row; ++i)
      EXPECT_NEAR(after.Rows[i].amount, before.Rows[i].amount, 0.00101 + Grain(poured) * 4);
    if (poured <= RoundTo(before.Rows[row].max, 3)) {
      EXPECT_EQ(after.QuantityText, before.QuantityText);
    } else {
      EXPECT_LT(Spare(after, row, after.Rows[row].name, poured, after.Quantity() - 0.0011), Slack(after));
    }
  }

 private:
  template <class T>
  static long double Exact(const T& decimal) {
    if constexpr (std::is_same_v<T, float>) {
      return std::stold(ShortestText(decimal));
    } else {
      return std::stold(decimal);
    }
  }
  static long double ShareOf(const Parts& parts, const std::string& ingredient) {
    for (const auto& [name, share] : parts)
      if (name == ingredient) return Exact(share);
    return 0;
  }

  Book& book_;
  std::string name_;
};

// One act by chance on a calculated Batch; false when it was refused.
class Hand {
 public:
  Hand(Book& book, const Bench& bench) : book_(book), bench_(bench) {}

  bool Act() {
    switch (book_.Pick(0, 9)) {
      case 0:
      case 1:
        return Choose();
      case 2:
      case 3:
        return Adjust();
      case 4:
        return PourMix();
      case 5:
        return PourBasic();
      case 6:
      case 7:
        return Add();
      case 8:
        // The same quantity once more, whatever additions stand beside it, is no question.
        return RecycleAction(session_, work_).has_value();
      default:
        return Remix();
    }
  }
  int poured = 0;

 private:
  std::string Amount() { return Fixed(book_.Real(0.001, work_.Quantity()), 3); }
  std::size_t Row(std::size_t count) { return static_cast<std::size_t>(book_.Pick(0, static_cast<int>(count) - 1)); }

  bool Choose() {
    const auto listed = RecycleListRows(work_, {});
    if (listed.empty()) return true;
    const std::string name = listed[Row(listed.size())].Color_Name;
    return (book_.Pick(0, 1) == 0 ? ChooseFromRecycleList(session_, work_, name)
                                  : ChooseFromRecycleList(session_, work_, name, Amount()))
        .has_value();
  }
  bool Adjust() {
    if (work_.RecycledColors.empty()) return true;
    const std::size_t row = Row(work_.RecycledColors.size());
    const int kind = book_.Pick(0, 3);
    const std::string most = Fixed(work_.Rows[row].max, 3);
    const bool done = AdjustMixRow(session_, work_, row,
                                   {.amount = kind == 0   ? "0"
                                              : kind == 1 ? most
                                                          : Amount(),
                                    .recycle = book_.Pick(0, 2) == 0})
                          .has_value();
    // Of thousands a Single holds no whole thousandths: what the maximum leaves is its grain.
    if (done && kind == 1 && LeadingNumber(most) > 0) {
      EXPECT_LE(RoundTo(work_.Rows[row].max, 3) - work_.Rows[row].amount, Grain(work_.Quantity()) * 8) << most;
    }
    return done;
  }
  bool PourMix() {
    if (work_.RecycledColors.empty()) return true;
    const std::size_t row = Row(work_.RecycledColors.size());
    const double more = work_.Rows[row].amount + RoundTo(book_.Real(0.001, work_.Quantity() * 0.3), 3);
    const BatchWork before = work_;
    book_.room.prompt.Expect("Excess Recycle Color Weight", Answer::Yes);
    const auto done = OverpourMixRow(session_, work_, row, more);
    if (!done) return false;
    ++poured;
    EXPECT_TRUE(done->reformulated);
    bench_.CheckPour(before, work_, row, RoundTo(more, 3));
    return true;
  }
  bool PourBasic() {
    if (work_.Ingredients.empty() || BatchIsFull(work_)) return true;
    const std::size_t row = work_.RecycledColors.size() + Row(work_.Ingredients.size());
    const double share = work_.Ingredients[row - work_.RecycledColors.size()].recipeSlot < 0 ? 0 : FormulaShare(row);
    const double more = RoundTo(work_.Rows[row].amount + book_.Real(0, work_.Quantity() * 0.3) * share / 100, 3);
    const double before = work_.Quantity();
    book_.room.prompt.Expect("Excess Basic Color Weight", Answer::Yes)
        .Expect("Change in Amounts" + std::string(50, ' '), Answer::No);
    const auto done = OverpourBasicRow(session_, work_, row, Fixed(more, 3));
    EXPECT_GE(work_.Quantity(), before);
    return done.has_value();
  }
  double FormulaShare(std::size_t row) const {
    for (const BatchIngredient& ingredient : work_.FormulaIngredients)
      if (ingredient.IngName == work_.Rows[row].name) return ingredient.Percent;
    return 0;
  }
  bool Add() {
    const std::size_t first = work_.RecycledColors.size() + work_.Ingredients.size();
    const std::string amount = (book_.Pick(0, 1) == 0 ? "-" : "") + Fixed(book_.Real(0, work_.Quantity() * 0.4), 3);
    if (!work_.Additions.empty() && book_.Pick(0, 2) == 0)
      return AdjustAddition(session_, work_, first + Row(work_.Additions.size()), book_.Pick(0, 1) == 0 ? "0" : amount)
          .has_value();
    if (work_.Rows.empty()) return true;
    return AddAdditions(session_, work_,
                        {{work_.FormulaIngredients[Row(work_.FormulaIngredients.size())].IngName, amount}})
        .has_value();
  }
  bool Remix() {
    if (work_.ClickedIndex != -1 && !work_.RecycledColors.empty())
      book_.room.prompt.Expect("Batch Window - Remove Mix Colors From Batch?",
                               book_.Pick(0, 1) == 0 ? Answer::Yes : Answer::No);
    SetQuantityText(work_, Fixed(book_.Real(1, 5000), 3));
    return MixAction(session_, work_).has_value();
  }

  Book& book_;
  const Bench& bench_;
  Session& session_ = book_.room.session;
  BatchWork& work_ = book_.room.work;
};

// Colours put in by hand in any order and amount, taken out, changed, poured too full, additions beside them: the lines
// give the quantity, nothing that a colour brings in is weighed twice, maxima are what the recipe takes, no Batch
// shrinks under a pour, no negative addition takes what is not there, and what is refused changes nothing.
TEST(Properties, ActsByHandKeepTheRecipe) {
  test::BatchRoom room;
  room.Setting("InvLotTracking", "0");
  const Transaction neverCommitted(room.session.File());
  int refused = 0;
  int poured = 0;
  for (unsigned seed = 2000; seed < 2600; ++seed) {
    Book book(room, seed);
    room.session.InvLotTracking = 0;  // negative additions tell of lots
    const std::string name = book.AnyFormula();
    room.Start(name, Fixed(book.Real(1, 5000), 3));
    BatchWork& work = room.work;
    work.UMF = book.Pick(1, 4);
    work.settings.Overpour = true;
    ASSERT_TRUE(MixAction(room.session, work));
    const Bench bench(book, name);
    Hand hand(book, bench);
    for (int step = 0; step < 16; ++step) {
      SCOPED_TRACE(testing::Message() << "seed " << seed << " step " << step << ' ' << name << ' '
                                      << work.QuantityText);
      const test::Lines lines = room.Lines();
      const std::string quantity = work.QuantityText;
      if (!hand.Act()) {
        ++refused;
        EXPECT_EQ(room.Lines(), lines);
        EXPECT_EQ(work.QuantityText, quantity);
      }
      bench.Check(work);
      if (testing::Test::HasFailure()) return;
    }
    poured += hand.poured;
  }
  EXPECT_GT(refused, 300);
  EXPECT_GT(poured, 500);
}

// The walk over the index finds exactly the rows that the plain test of every row finds.
TEST(Properties, IndexWalkFindsWhatAScanFinds) {
  test::BatchRoom room;
  const Transaction neverCommitted(room.session.File());
  for (unsigned seed = 3000; seed < 3200; ++seed) {
    Book book(room, seed);
    const std::vector<Value> strange{"", nullptr, "<>", "<B1", "B1>", "<B1>B2>", "<b1><PANTONE b2>", "<B10><B1>"};
    for (std::size_t i = 0; i < strange.size(); ++i)
      book.room.AddRow(schema::Mix, {{"Color_Name", "S" + std::to_string(i)}, {"Color_Set", strange[i]}});
    for (int i = 0; i < 30; ++i)
      book.room.Mix("M" + std::to_string(i), {{"B1", 50}, {"X" + std::to_string(i), 25}, {"B2", 25}});
    const std::string set = book.room.Scalar("SELECT Color_Set FROM INK_Mix WHERE Color_Name = 'F0'").Text();
    for (const std::string& formulaSet : {set, std::string(), std::string("<B1><PANTONE B2>")}) {
      std::vector<std::int64_t> expected;
      Statement all = book.room.session.File().Prepare("SELECT RowKey, Color_Set FROM INK_Mix ORDER BY RowKey");
      while (all.Step())
        if (ColorSetContains(formulaSet, all.Text(1))) expected.push_back(all.Whole(0));
      EXPECT_EQ(FindContainedFormulas(book.room.session, formulaSet).rows, expected) << seed << formulaSet;
    }
  }
}

}  // namespace
}  // namespace vellumark
