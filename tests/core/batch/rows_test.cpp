#include "core/batch/rows.h"

#include <gtest/gtest.h>

#include "batch_room.h"
#include "core/batch/additions.h"
#include "core/batch/adjust.h"
#include "core/batch/recycle_list.h"

namespace vellumark {
namespace {

using test::Lines;

TEST(Rows, HintsMaximumAndMarks) {
  test::BatchRoom room;
  room.Setting("InvLotTracking", "0");
  room.Basic("RED", {{"Inventory", 5.0F}, {"Reorder", 5.0F}});
  room.Basic("BLUE", {{"Inventory", 4.999F}, {"Reorder", 5.0F}});
  room.Mix("TARGET", {{"RED", 60}, {"BLUE", 40}});
  room.Ink("VIOLET", {{"RED", 50}, {"BLUE", 50}}, 30, {{"Reorder", 31.0F}});
  room.Recycled("TARGET", "100");
  const std::vector<BatchRow>& rows = room.work.Rows;
  EXPECT_EQ(AmountHint(room.work, rows[0]), "30.000 (Max Amount = 80.000lb.)");
  EXPECT_TRUE(rows[0].moreUsable);
  EXPECT_TRUE(rows[0].lowStock);
  EXPECT_FALSE(rows[0].lotLink);
  EXPECT_EQ(AmountHint(room.work, rows[1]), "");
  EXPECT_FALSE(rows[1].lowStock);
  EXPECT_TRUE(rows[2].lowStock);

  room.Setting("Overpour", "1");
  room.Setting("InvLotTracking", "1");
  room.Recycled("TARGET", "0.002");  // BLUE is used up by .0016 VIOLET, .0004 RED remain
  EXPECT_EQ(room.Lines(), (Lines{"Mix VIOLET 0.002"}));
  room.Mixed("TARGET", "0.001");
  EXPECT_EQ(AmountHint(room.work, rows[0]), "Click to Adjust this Amount");
  EXPECT_TRUE(rows[0].lotLink);   // .0006
  EXPECT_FALSE(rows[1].lotLink);  // .0004
  EXPECT_TRUE(rows[1].zero);
  EXPECT_EQ(room.work.zeroRows, 1);
}

TEST(Rows, MaximumIsCutNotRounded) {
  test::BatchRoom room;
  room.Basics({"RED", "BLUE"});
  room.Mix("TARGET", {{"RED", 66.667F}, {"BLUE", 33.333F}});
  room.Ink("VIOLET", {{"RED", 50}, {"BLUE", 50}}, 0.5F);
  room.Recycled("TARGET", "1");
  EXPECT_EQ(AmountHint(room.work, room.work.Rows[0]), "0.500 (Max Amount = 0.666lb.)");  // .66666
}

// A half of the last decimal goes up, whatever the numbers look like in binary.
TEST(Rows, PercentagesRoundAsTheyReadOnPaper) {
  test::BatchRoom room;
  room.Basics({"RED", "BLUE"});
  room.Mix("TARGET", {{"RED", 66.665F}, {"BLUE", 33.335F}});
  room.Ink("RED INK", {{"RED", 100}}, 0.115F);
  room.Ink("BLUE INK", {{"BLUE", 100}}, 0, {{"Recycle", false}});
  room.Mixed("TARGET", "100");
  std::vector<std::string> shares;
  const TableOf<RecycleListRow> table = RecycleListColumns({}, 1);
  for (const RecycleListRow& row : RecycleListRows(room.work, {}))
    shares.push_back(row.Color_Name + " " + CellText(table.Columns()[1], table.ValueOf(row, 1)));
  EXPECT_EQ(shares, (std::vector<std::string>{"TARGET 100.00%", "RED INK 66.67%", "BLUE INK 33.34%"}));
  room.Recycled("TARGET", "100");
  EXPECT_EQ(PercentRecycledText(room.work), "0.12%");  // .115
}

TEST(Rows, OrderBySetting) {
  test::BatchRoom room;
  room.Basic("THIRD", {{"IngSort", 30}});
  room.Basic("FIRST", {{"IngSort", 10}});
  room.Basic("SECOND", {{"IngSort", 20}});
  room.Mix("TARGET", {{"THIRD", 25}, {"FIRST", 25}, {"SECOND", 50}});
  room.Mixed("TARGET", "10");
  EXPECT_EQ(room.Lines(), (Lines{"Basic SECOND 5.000", "Basic THIRD 2.500", "Basic FIRST 2.500"}));
  room.Setting("IngSortOrder", "1");
  room.Mixed("TARGET", "10");
  EXPECT_EQ(room.Lines(), (Lines{"Basic FIRST 2.500", "Basic SECOND 5.000", "Basic THIRD 2.500"}));
  EXPECT_EQ(room.work.LargestAmountIndex, 0);
  room.Mixed("TARGET", "0.003");  // .00075, .0015, .00075: .001, .002, .001 less .001
  EXPECT_EQ(room.Lines(), (Lines{"Basic FIRST 0.001", "Basic SECOND 0.001", "Basic THIRD 0.001"}));
  EXPECT_EQ(room.work.LargestAmountIndex, 1);
  EXPECT_EQ(room.work.Ingredients[1].Amount, 0.0015F);  // what is stored leaves the round-off out
}

// A Single holds such amounts only to 1/128; the lines give the quantity all the same.
TEST(Rows, LargeQuantitiesAddUpToTheThousandth) {
  test::BatchRoom room;
  std::vector<std::pair<std::string, float>> recipe;
  for (int i = 0; i < 15; ++i) {
    room.Basic("B" + std::to_string(i));
    recipe.emplace_back("B" + std::to_string(i), i == 0 ? 6.676F : 6.666F);
  }
  room.Mix("TARGET", recipe);
  for (const char* quantity : {"99999", "98765.432", "65535.999", "99998.765"}) {
    room.Mixed("TARGET", quantity);
    double sum = 0;
    for (const BatchRow& row : room.work.Rows) sum += row.amount;
    EXPECT_EQ(Fixed(sum, 3), Fixed(*ParseNumber(quantity), 3));
    EXPECT_EQ(Fixed(room.work.ShownTotal, 3), Fixed(*ParseNumber(quantity), 3));
  }
}

TEST(Rows, RoundoffFallsOnIngredientsAloneAndWithoutThemStaysInTheBooks) {
  test::BatchRoom room;
  room.Basics({"RED", "BLUE", "YELLOW", "WHITE"});
  room.Mix("TARGET", {{"RED", 50}, {"BLUE", 25}, {"YELLOW", 25}});
  room.Ink("HALF", {{"RED", 100}}, 500);
  room.Recycled("TARGET", "0.006");  // .003, .0015, .0015
  ASSERT_TRUE(AddAdditions(room.session, room.work, {{"WHITE", "1"}}));
  EXPECT_EQ(room.Lines(), (Lines{"Mix HALF 0.003", "Basic BLUE 0.001", "Basic YELLOW 0.002", "Addition WHITE 1.000"}));
  EXPECT_EQ(room.work.LargestAmountIndex, 1);
  room.Ink("REST", {{"BLUE", 50}, {"YELLOW", 50}}, 500);
  room.Recycled("TARGET", "0.003");
  // HALF .0015 shows .002, REST .0015 shows .002.
  EXPECT_EQ(room.Lines(), (Lines{"Mix HALF 0.002", "Mix REST 0.002"}));
  EXPECT_EQ(Fixed(room.work.ShownTotal, 3), "0.004");
  EXPECT_EQ(room.work.Roundoff, -0.001F);
  EXPECT_EQ(room.work.LargestAmountIndex, 0);
  EXPECT_EQ(PercentRecycledText(room.work), "100.00%");
}

}  // namespace
}  // namespace vellumark
