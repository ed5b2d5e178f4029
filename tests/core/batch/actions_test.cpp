#include "core/batch/actions.h"

#include <gtest/gtest.h>

#include "batch_room.h"
#include "core/batch/additions.h"
#include "core/batch/adjust.h"

namespace vellumark {
namespace {

using test::Lines;

constexpr const char* kDecrease = "Batch Window - Allow Recycled Ink Amounts to Decrease?";
constexpr const char* kIncrease = "Batch Window - Allow Recycled Ink Amounts to Increase?";
constexpr const char* kRemove = "Batch Window - Remove Mix Colors From Batch?";

struct Actions : test::BatchRoomTest {
  Actions() {
    room.Basics({"RED", "BLUE", "YELLOW"});
    room.Mix("TARGET", {{"RED", 60}, {"BLUE", 40}});
    room.Ink("VIOLET", {{"RED", 50}, {"BLUE", 50}}, 30);
  }
};

TEST_F(Actions, QuantityIsValidatedBeforeAnythingIsTouched) {
  room.Recycled("TARGET", "100");
  const Lines before = room.Lines();
  for (const char* bad :
       {"", "   ", "abc", "1,5", "1e3", "1.2.3", "0", "0.0", "-5", "99999.001", "100000", "--1", "5 lb"}) {
    SetQuantityText(work, bad);
    for (const auto& action : {MixAction, RecycleAction}) {
      const auto done = action(session, work);
      ASSERT_FALSE(done) << bad;
      EXPECT_EQ(done.error(), (Refusal{"Batch Window - Invalid Amount",
                                       "You must enter an amount between 0.000 and 99999.000", "txtQuantity"}));
    }
    EXPECT_EQ(room.Lines(), before);
    EXPECT_TRUE(work.QuantityChanged);
  }
  for (const char* good : {"0.001", "99999", " 7 ", "+3.5", ".5"}) {
    work.QuantityText = good;
    EXPECT_TRUE(ValidateQuantity(work)) << good;
  }
}

TEST_F(Actions, QuantityChangedFollowsEditsAndCalculations) {
  room.Start("TARGET", "1");
  SetQuantityText(work, "100");
  EXPECT_FALSE(work.QuantityChanged);  // nothing was calculated yet
  ASSERT_TRUE(MixAction(session, work));
  EXPECT_EQ(work.QuantityText, "100.000");
  SetQuantityText(work, "100.000");
  EXPECT_FALSE(work.QuantityChanged);
  SetQuantityText(work, "50");
  EXPECT_TRUE(work.QuantityChanged);
  ASSERT_TRUE(MixAction(session, work));
  EXPECT_FALSE(work.QuantityChanged);
}

TEST_F(Actions, MixAfterAutomaticRecyclingDoesNotAsk) {
  room.Recycled("TARGET", "100");
  ASSERT_TRUE(MixAction(session, work));
  EXPECT_EQ(room.Lines(), (Lines{"Basic RED 60.000", "Basic BLUE 40.000"}));
}

TEST_F(Actions, MixAfterAnAdjustmentByHandAsks) {
  for (const bool remove : {false, true}) {
    room.Recycled("TARGET", "100");
    ASSERT_TRUE(AdjustMixRow(session, work, 0, {.amount = "10"}));
    EXPECT_EQ(work.ClickedIndex, 0);
    room.prompt.Expect(kRemove, remove ? Answer::Yes : Answer::No,
                       "This action will remove all Recycled Colors from the Batch\n\n"
                       "Remove the Recycled Colors from the Batch?");
    ASSERT_TRUE(MixAction(session, work));
    EXPECT_EQ(room.prompt.last.icon, Icon::Question);
    EXPECT_EQ(room.Lines(), remove ? (Lines{"Basic RED 60.000", "Basic BLUE 40.000"})
                                   : (Lines{"Mix VIOLET 10.000", "Basic RED 55.000", "Basic BLUE 35.000"}));
    EXPECT_EQ(work.ClickedIndex, -1);
  }
}

TEST_F(Actions, RecycleAgainWithTheSameQuantityAsksNothing) {
  for (const char* quantity : {"100", "1500.001", "98765.432", "0.013"}) {
    room.Recycled("TARGET", quantity);
    const Lines before = room.Lines();
    ASSERT_TRUE(RecycleAction(session, work)) << quantity;
    EXPECT_EQ(room.Lines(), before);
  }
}

TEST_F(Actions, SmallerQuantity) {
  // 100: VIOLET 30 of at most 80. At 50 it may be 40: still room, no question.
  room.Recycled("TARGET", "100");
  SetQuantityText(work, "50");
  ASSERT_TRUE(RecycleAction(session, work));
  EXPECT_EQ(room.Lines(), (Lines{"Mix VIOLET 30.000", "Basic RED 15.000", "Basic BLUE 5.000"}));

  // At 20 at most 16: it must shrink. No puts the old quantity back.
  const std::string text =
      "Decreasing the Batch Quantity will cause the\nRecycled Ink Amounts used in this Batch to decrease.\n\n"
      "Allow Recycled Ink Amounts to Decrease?";
  SetQuantityText(work, "20");
  room.prompt.Expect(kDecrease, Answer::No, text);
  auto done = RecycleAction(session, work);
  ASSERT_TRUE(done);
  EXPECT_FALSE(*done);
  EXPECT_EQ(work.QuantityText, "50.000");
  EXPECT_EQ(room.Lines(), (Lines{"Mix VIOLET 30.000", "Basic RED 15.000", "Basic BLUE 5.000"}));

  SetQuantityText(work, "20");
  room.prompt.Expect(kDecrease, Answer::Yes, text);
  done = RecycleAction(session, work);
  ASSERT_TRUE(done);
  EXPECT_TRUE(*done);
  EXPECT_EQ(room.Lines(), (Lines{"Mix VIOLET 16.000", "Basic RED 4.000"}));
}

TEST_F(Actions, NoToADecreaseLeavesTheBatchAsItWasCalculated) {
  room.Recycled("TARGET", "50");
  ASSERT_TRUE(AddAdditions(session, work, {{"YELLOW", "5"}}));
  const Lines before = room.Lines();
  SetQuantityText(work, "20");
  room.prompt.Expect(kDecrease, Answer::No);
  ASSERT_FALSE(*RecycleAction(session, work));
  EXPECT_EQ(work.QuantityText, "50.000");  // not the 55 of the total
  EXPECT_FALSE(work.QuantityChanged);      // it can be saved and adjusted
  EXPECT_EQ(room.Lines(), before);
  // The quantity is no smaller one for the additions that stand beside it, nor is a larger one.
  SetQuantityText(work, "50.0");
  ASSERT_TRUE(*RecycleAction(session, work));
  ASSERT_TRUE(AddAdditions(session, work, {{"YELLOW", "25"}}));
  SetQuantityText(work, "60");
  ASSERT_TRUE(*RecycleAction(session, work));
  EXPECT_EQ(room.Lines(), (Lines{"Mix VIOLET 30.000", "Basic RED 21.000", "Basic BLUE 9.000"}));
}

TEST_F(Actions, SmallerQuantityThatFitsInOneDecimalDoesNotAsk) {
  // 37.5 x .8 = 30.0; 37.45 x .8 = 29.96 shows 30.0, 37.4 x .8 = 29.92 shows 29.9.
  for (const auto& [quantity, asks] : {std::pair{"37.45", false}, std::pair{"37.4", true}}) {
    room.Recycled("TARGET", "100");
    SetQuantityText(work, quantity);
    if (asks) room.prompt.Expect(kDecrease, Answer::Yes);
    ASSERT_TRUE(RecycleAction(session, work));
    EXPECT_EQ(Fixed(work.ShownTotal, 3), Fixed(*ParseNumber(quantity), 3));
  }
}

TEST_F(Actions, LargerQuantity) {
  const std::string text =
      "Increasing the Batch Quantity will cause the\nRecycled Ink Amounts used in this Batch to increase.\n\n"
      "Allow Recycled Ink Amounts to increase?";
  // All stock is used already: nothing to ask.
  room.Recycled("TARGET", "100");
  SetQuantityText(work, "200");
  ASSERT_TRUE(RecycleAction(session, work));
  EXPECT_EQ(room.Lines(), (Lines{"Mix VIOLET 30.000", "Basic RED 105.000", "Basic BLUE 65.000"}));

  // 20 used 16 of 30. No: the colour keeps its 16, and nothing else is recycled.
  for (const bool more : {false, true}) {
    room.Recycled("TARGET", "20");
    SetQuantityText(work, "30");
    room.prompt.Expect(kIncrease, more ? Answer::Yes : Answer::No, text);
    ASSERT_TRUE(RecycleAction(session, work));
    // Yes: 30 x .8 = 24 VIOLET, all the BLUE.
    EXPECT_EQ(room.Lines(), more ? (Lines{"Mix VIOLET 24.000", "Basic RED 6.000"})
                                 : (Lines{"Mix VIOLET 16.000", "Basic RED 10.000", "Basic BLUE 4.000"}));
  }
}

TEST_F(Actions, AColorOfWhichNothingCanBeUsedIsDroppedByARefit) {
  room.Recycled("TARGET", "100");
  work.QuantityText = "0.001";
  room.prompt.Expect(kDecrease, Answer::Yes);
  ASSERT_TRUE(RecycleAction(session, work));
  // .001 x .8 = .0008 shows .001: the colour stays at the most that can be weighed.
  EXPECT_EQ(Fixed(work.ShownTotal, 3), "0.001");
  EXPECT_LE(work.RecycledColors.size(), 1U);
}

TEST_F(Actions, AdditionsEndWithTheNextCalculation) {
  room.Mixed("TARGET", "100");
  BatchIngredient addition;
  addition.IngName = "YELLOW";
  addition.Amount = 1;
  work.Additions.push_back(addition);
  ASSERT_TRUE(MixAction(session, work));
  EXPECT_TRUE(work.Additions.empty());
  EXPECT_EQ(Fixed(work.ShownTotal, 3), "100.000");
}

TEST_F(Actions, FormulasAreFoundByNameNumberAndCode) {
  room.Mix("PANTONE 123", {{"RED", 100}}, {{"Color_Code", "C-77"}});
  EXPECT_EQ(*FindBatchFormula(session, "target"), "TARGET");
  EXPECT_EQ(*FindBatchFormula(session, " 123 "), "PANTONE 123");
  EXPECT_EQ(*FindBatchFormula(session, "c-77"), "PANTONE 123");
  const auto basic = FindBatchFormula(session, "RED");
  ASSERT_FALSE(basic);
  EXPECT_EQ(basic.error(), (Refusal{"Cannot make a batch from a Basic Color",
                                    "RED is a Basic Color in your database.\nYou can only make batches from Mix "
                                    "Colors.\nIf you are using RED in a job,\nyou can add it to a job record using "
                                    "the Job Window.",
                                    "Color_Name"}));
  EXPECT_EQ(FindBatchFormula(session, "O'NO").error().title, "Color Not Found");
  EXPECT_FALSE(FindBatchFormula(session, ""));
}

TEST_F(Actions, GraphicOnlyWhenSomethingIsRecycledAndTheSettingAllows) {
  room.Mixed("TARGET", "100");
  EXPECT_FALSE(ShowsBatchGraphic(work));
  room.Recycled("TARGET", "100");
  EXPECT_TRUE(ShowsBatchGraphic(work));
  room.Setting("ShowBatchGraphic", "0");
  work.settings = ReadBatchSettings(session);
  EXPECT_FALSE(ShowsBatchGraphic(work));
}

}  // namespace
}  // namespace vellumark
