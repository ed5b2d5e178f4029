#include "core/batch/recipe.h"

#include <gtest/gtest.h>

#include "batch_room.h"
#include "core/batch/recycle_list.h"
#include "core/batch/rows.h"

namespace vellumark {
namespace {

using test::Lines;
using Parts = std::vector<std::pair<std::string, float>>;

struct Ink {
  std::string name;
  Parts parts;
  float stock;
  bool recycle = true;
};

// A recipe, what stands in stock, and the lines as worked out on paper.
struct Worked {
  std::string title;
  Parts recipe;
  std::string quantity;
  std::vector<Ink> inks;
  Lines lines;
  std::string percentRecycled;
  float roundoff = 0;
  std::string arithmetic;
};

class WorkedRecipe : public testing::TestWithParam<Worked> {};

TEST_P(WorkedRecipe, GivesTheLines) {
  const Worked& example = GetParam();
  SCOPED_TRACE(example.arithmetic);
  test::BatchRoom room;
  room.Breaks("FormulaTotals");
  room.Basics({"RED", "BLUE", "YELLOW", "WHITE", "BLACK"});
  room.Mix("TARGET", example.recipe);
  for (const Ink& ink : example.inks) room.Ink(ink.name, ink.parts, ink.stock, {{"Recycle", ink.recycle}});
  room.Recycled("TARGET", example.quantity);
  EXPECT_EQ(room.Lines(), example.lines);
  EXPECT_EQ(PercentRecycledText(room.work), example.percentRecycled);
  EXPECT_EQ(room.work.Roundoff, example.roundoff);
}

INSTANTIATE_TEST_SUITE_P(
    OnPaper, WorkedRecipe,
    testing::Values(Worked{"NothingInStock",
                           {{"RED", 60}, {"BLUE", 40}},
                           "100",
                           {{"VIOLET", {{"RED", 50}, {"BLUE", 50}}, 0}},
                           {"Basic RED 60.000", "Basic BLUE 40.000"},
                           "0.00%",
                           0,
                           "RED 100 x .6, BLUE 100 x .4; VIOLET has no stock and is passed over"},
                    Worked{"OneColorLimitedByStock",
                           {{"RED", 60}, {"BLUE", 40}},
                           "100",
                           {{"VIOLET", {{"RED", 50}, {"BLUE", 50}}, 30}},
                           {"Mix VIOLET 30.000", "Basic RED 45.000", "Basic BLUE 25.000"},
                           "30.00%",
                           0,
                           "30 VIOLET bring 15 RED and 15 BLUE: 60 - 15, 40 - 15"},
                    Worked{"OneColorLimitedByTheRecipe",
                           {{"RED", 60}, {"BLUE", 40}},
                           "100",
                           {{"VIOLET", {{"RED", 50}, {"BLUE", 50}}, 500}},
                           {"Mix VIOLET 80.000", "Basic RED 20.000"},
                           "80.00%",
                           0,
                           "BLUE: 40 / 50 = .8 of the Batch; 80 bring 40 BLUE, all of it, and 40 RED"},
                    Worked{"SameProportionsEmptyTheRecipe",
                           {{"RED", 60}, {"BLUE", 40}},
                           "100",
                           {{"SAME", {{"RED", 60}, {"BLUE", 40}}, 500}},
                           {"Mix SAME 100.000"},
                           "100.00%",
                           0,
                           "60/60 = 40/40 = 1: the whole Batch; no ingredient is left"},
                    Worked{"LeftoverOfTheFormulaItself",
                           {{"RED", 60}, {"BLUE", 40}},
                           "100",
                           {{"TARGET 2", {{"BLUE", 40}, {"RED", 60}}, 25}},
                           {"Mix TARGET 2 25.000", "Basic RED 45.000", "Basic BLUE 30.000"},
                           "25.00%",
                           0,
                           "slots in another order: 25 bring 10 BLUE and 15 RED"},
                    Worked{"TwoColorsLargestShareFirst",
                           {{"RED", 50}, {"BLUE", 30}, {"YELLOW", 20}},
                           "100",
                           {{"GREEN", {{"BLUE", 50}, {"YELLOW", 50}}, 10}, {"VIOLET", {{"RED", 60}, {"BLUE", 40}}, 20}},
                           {"Mix VIOLET 20.000", "Mix GREEN 10.000", "Basic RED 38.000", "Basic BLUE 17.000",
                            "Basic YELLOW 15.000"},
                           "30.00%",
                           0,
                           "VIOLET 30/40 = .75 before GREEN 20/50 = .4; RED 50-12, BLUE 30-8-5, YELLOW 20-5"},
                    Worked{"FlagOff",
                           {{"RED", 60}, {"BLUE", 40}},
                           "100",
                           {{"VIOLET", {{"RED", 50}, {"BLUE", 50}}, 30, false}},
                           {"Basic RED 60.000", "Basic BLUE 40.000"},
                           "0.00%",
                           0,
                           "the automatic choice leaves what is not to be recycled"},
                    Worked{"ForeignIngredient",
                           {{"RED", 60}, {"BLUE", 40}},
                           "100",
                           {{"BROWN", {{"RED", 50}, {"BLACK", 50}}, 30}},
                           {"Basic RED 60.000", "Basic BLUE 40.000"},
                           "0.00%",
                           0,
                           "BLACK is not in the recipe"},
                    Worked{"ShareOfZeroMakesItUnusable",
                           {{"RED", 60}, {"BLUE", 40}},
                           "100",
                           {{"ODD", {{"RED", 100}, {"BLUE", 0}}, 30}},
                           {"Basic RED 60.000", "Basic BLUE 40.000"},
                           "0.00%",
                           0,
                           "BLUE at 0 in ODD: ratio 0"},
                    Worked{"RoundoffToTheFirstLargest",
                           {{"RED", 33.333F}, {"BLUE", 33.333F}, {"YELLOW", 33.333F}},
                           "100",
                           {},
                           {"Basic RED 33.334", "Basic BLUE 33.333", "Basic YELLOW 33.333"},
                           "0.00%",
                           0.001F,
                           "3 x 33.333 = 99.999; RED is the first of the largest and takes .001"},
                    Worked{"RoundoffCanTakeAway",
                           {{"RED", 29}, {"BLUE", 35.5F}, {"YELLOW", 35.5F}},
                           "0.01",
                           {},
                           {"Basic BLUE 0.003", "Basic YELLOW 0.004", "Basic RED 0.003"},
                           "0.00%",
                           -0.001F,
                           ".00355 twice shows .004, .0029 shows .003: .011 in all, BLUE gives .001"},
                    Worked{"TooLittleToWeigh",
                           {{"RED", 99.99F}, {"BLUE", 0.01F}},
                           "1",
                           {},
                           {"Basic RED 1.000", "Basic BLUE 0.000"},
                           "0.00%",
                           0,
                           ".9999 shows 1.000, .0001 shows 0.000"},
                    Worked{"FirstRowTakesAllWhenNoneCanBeWeighed",
                           {{"RED", 40}, {"BLUE", 30}, {"YELLOW", 30}},
                           "0.001",
                           {},
                           {"Basic RED 0.001", "Basic BLUE 0.000", "Basic YELLOW 0.000"},
                           "0.00%",
                           0.001F,
                           ".0004, .0003, .0003 all show 0.000; the round-off is the whole Batch"}),
    [](const auto& info) { return info.param.title; });

TEST(Recipe, AnIngredientBelowHalfAThousandthLeavesAndOneAtItStays) {
  test::BatchRoom room;
  room.Breaks("StockHistory");
  room.Basics({"RED", "BLUE"});
  // 1 x .0005 = .0005 BLUE stays; 1 x .0004 leaves once something is taken.
  struct Case {
    float blue;
    Lines lines;
  };
  for (const Case& c : {Case{0.05F, {"Mix LEFT 0.500", "Basic RED 0.499", "Basic BLUE 0.001"}},
                        Case{0.04F, {"Mix LEFT 0.500", "Basic RED 0.500"}}}) {
    const std::string name = "T" + ShortestText(c.blue);
    room.Mix(name, {{"RED", 100 - c.blue}, {"BLUE", c.blue}});
    room.session.File().Execute("DELETE FROM INK_Mix WHERE Color_Name = 'LEFT'");
    room.Ink("LEFT", {{"RED", 100}}, 0.5F);
    room.Recycled(name, "1");
    EXPECT_EQ(room.Lines(), c.lines) << c.blue;
  }
}

TEST(Recipe, MissingBasicColorKeepsItsLineWithZeroFigures) {
  test::BatchRoom room;
  room.Breaks("Ingredients");
  room.Basic("RED", {{"PurchaseCost", 2.0F}, {"VOC", 1.0F}});
  room.Mix("TARGET", {{"RED", 50}, {"GONE", 50}});
  room.Mixed("TARGET", "10");
  EXPECT_EQ(room.Lines(), (Lines{"Basic RED 5.000", "Basic GONE 5.000"}));
  EXPECT_EQ(room.work.Ingredients[1].PurchaseCost, 0);
  EXPECT_EQ(room.work.Ingredients[1].Inventory, 0);
}

TEST(Recipe, UnknownFormulaGivesNoRows) {
  test::BatchRoom room;
  room.Mixed("NOBODY", "10");
  EXPECT_TRUE(room.work.Rows.empty());
  EXPECT_EQ(room.work.Total, 0);
  room.Start("", "10");
  const auto started = RecycleAction(room.session, room.work);
  ASSERT_TRUE(started);
  EXPECT_FALSE(*started);
}

TEST(Recipe, StockCountsLotsOnlyWhileTheyAreInUseAndComesInTheUnitOfTheBatch) {
  test::BatchRoom room;
  room.Basic("RED", {{"Inventory", 10.0F}, {"Reorder", 2.0F}});
  room.Lot(schema::BasicLotInv, "red", 4.5F);
  room.Lot(schema::BasicLotInv, "RED", 0.25F, true);
  room.Mix("TARGET", {{"RED", 100}});
  room.Ink("REST", {{"RED", 100}}, 1.0F, {{"Reorder", 3.0F}});
  room.Lot(schema::MixLotInv, "REST", 2.0F);
  struct Case {
    int lots, unit;
    float basic, basicReorder, ink;
  };
  for (const Case& c : {Case{1, 1, 14.75F, 2, 3}, Case{0, 1, 10, 2, 1}, Case{1, 4, 236, 32, 48}}) {
    room.Setting("InvLotTracking", std::to_string(c.lots));
    room.Start("TARGET", "100");
    room.work.UMF = c.unit;
    ASSERT_TRUE(MixAction(room.session, room.work));
    EXPECT_EQ(room.work.Ingredients[0].Inventory, c.basic) << c.lots << c.unit;
    EXPECT_EQ(room.work.Ingredients[0].Reorder, c.basicReorder);
    ASSERT_NE(room.Listed("REST"), nullptr);
    EXPECT_EQ(room.Listed("REST")->Inventory, c.ink);
    ASSERT_TRUE(RecycleAction(room.session, room.work));
    ASSERT_EQ(room.work.RecycledColors.size(), 1U);
    EXPECT_EQ(room.work.RecycledColors[0].Reorder, c.unit == 4 ? 48 : 3);
  }
}

// What the whole of the stock weighs in the Batch's unit, for every pair of units: 1 lb. is 0.45359237 kg, 16 oz.
TEST(Recipe, AllSixteenPairsOfUnits) {
  const double perPound[] = {0, 1, 0.45359237, 453.59237, 16};
  for (int inventory = 1; inventory <= 4; ++inventory) {
    test::BatchRoom room;
    room.Setting("UMI", std::to_string(inventory));
    room.Basics({"RED"});
    room.Mix("TARGET", {{"RED", 100}});
    room.Ink("REST", {{"RED", 100}}, 3.0F);
    for (int batch = 1; batch <= 4; ++batch) {
      room.Start("TARGET", "9999");
      room.work.UMF = batch;
      ASSERT_TRUE(RecycleAction(room.session, room.work));
      const double expected = 3.0 * perPound[batch] / perPound[inventory];
      ASSERT_EQ(room.work.Rows.empty(), false);
      if (expected < 0.0005) continue;
      EXPECT_NEAR(room.work.Rows[0].amount, expected, 0.0006 + expected * 1e-6) << inventory << " to " << batch;
    }
  }
}

TEST(Recipe, FifteenIngredientsAndTheLimitOfLines) {
  test::BatchRoom room;
  room.Breaks("FormulaTotals");
  Parts recipe;
  for (int i = 0; i < 15; ++i) {
    const std::string name = "B" + std::to_string(i);
    room.Basic(name);
    recipe.emplace_back(name, i == 0 ? 30.0F : 5.0F);
  }
  room.Mix("TARGET", recipe);
  for (int i = 0; i < 10; ++i) room.Ink("INK" + std::to_string(i), {recipe[static_cast<std::size_t>(i) + 1]}, 0.1F);
  room.Recycled("TARGET", "100");
  // 15 ingredients and 5 inks: the loop ends once the two exceed 19.
  EXPECT_EQ(room.work.RecycledColors.size(), 5U);
  EXPECT_EQ(room.work.Rows.size(), 20U);
  EXPECT_EQ(Fixed(room.work.ShownTotal, 3), "100.000");
  // Equal shares are taken in table order.
  EXPECT_EQ(room.work.RecycledColors[0].Color_Name, "INK0");
  EXPECT_EQ(room.work.RecycledColors[4].Color_Name, "INK4");
}

TEST(Recipe, StockBookedBelowZeroIsNotRecycled) {
  test::BatchRoom room;
  room.Breaks("Quantities");
  room.Basics({"RED", "BLUE"});
  room.Mix("TARGET", {{"RED", 50}, {"BLUE", 50}});
  room.Ink("REST", {{"RED", 100}}, -4.0F);
  room.Recycled("TARGET", "10");
  EXPECT_EQ(room.Lines(), (Lines{"Basic RED 5.000", "Basic BLUE 5.000"}));
}

TEST(Recipe, SlotsCountWhereTheSetIsOutOfStep) {
  test::BatchRoom room;
  room.Breaks("ColorSets");
  room.Basics({"RED", "BLUE", "YELLOW"});
  room.Mix("TARGET", {{"RED", 50}, {"BLUE", 50}});
  room.Ink("LIAR", {{"RED", 40}, {"BLUE", 30}, {"YELLOW", 30}}, 5);
  room.Ink("HONEST", {{"BLUE", 100}}, 5);
  room.session.File().Execute("UPDATE INK_Mix SET Color_Set = '<RED>' WHERE Color_Name = 'LIAR'");
  room.Recycled("TARGET", "100");
  EXPECT_EQ(room.Lines(), (Lines{"Mix HONEST 5.000", "Basic RED 50.000", "Basic BLUE 45.000"}));
  ASSERT_NE(room.Listed("LIAR"), nullptr);
  EXPECT_EQ(room.Listed("LIAR")->slots->size(), 3U);
  EXPECT_EQ(room.Listed("LIAR")->Recycle_Percent, 0);
}

TEST(Recipe, SharesOfLaterColorsReferToWhatRemains) {
  test::BatchRoom room;
  room.Basics({"RED", "BLUE"});
  room.Mix("TARGET", {{"RED", 60}, {"BLUE", 40}});
  room.Ink("VIOLET", {{"RED", 50}, {"BLUE", 50}}, 30);
  room.Mix("LILAC", {{"RED", 80}, {"BLUE", 20}});
  room.Recycled("TARGET", "100");
  // 45 RED and 25 BLUE remain, 64.2857 and 35.7143 percent: 64.2857 / 80 = .803571.
  ASSERT_NE(room.Listed("LILAC"), nullptr);
  EXPECT_NEAR(room.Listed("LILAC")->Recycle_Percent, 0.803571, 1e-6);
  EXPECT_EQ(room.Listed("VIOLET"), nullptr);
}

TEST(Recipe, SortIsBySixDecimalsAndKeepsTies) {
  BatchWork work;
  for (const float share : {0.1234562F, 0.5F, 0.1234564F, 0.1234568F, 0.5000001F}) {
    RecycleColor color;
    color.Color_Name = ShortestText(share);
    color.Recycle_Percent = share;
    work.RecycleList.push_back(color);
  }
  SortRecycleList(work);
  Lines names;
  for (const RecycleColor& color : work.RecycleList) names.push_back(color.Color_Name);
  EXPECT_EQ(names, (Lines{"0.5", "0.5000001", "0.1234568", "0.1234562", "0.1234564"}));
}

}  // namespace
}  // namespace vellumark
