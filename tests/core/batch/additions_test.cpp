#include "core/batch/additions.h"

#include <gtest/gtest.h>

#include <functional>

#include "batch_room.h"
#include "core/batch/adjust.h"

namespace vellumark {
namespace {

using test::Lines;

struct Additions : test::BatchRoomTest {
  Additions() {
    room.Setting("InvLotTracking", "0");
    room.Basics({"RED", "BLUE", "YELLOW"});
    room.Basic("DRIER", {{"PurchaseCost", 3.0F}, {"VOC", 0.5F}});
    room.Basic("PANTONE 500");
    room.Mix("TARGET", {{"RED", 60}, {"BLUE", 40}});
    room.Mixed("TARGET", "100");
  }
};

TEST_F(Additions, JoinTheBatchAndRaiseItsTotalOnly) {
  ASSERT_TRUE(AddAdditions(session, work, {{"drier", "2.5"}, {"500", "1"}, {"RED", "0.25"}}));
  EXPECT_EQ(room.Lines(), (Lines{"Basic RED 60.000", "Basic BLUE 40.000", "Addition DRIER 2.500",
                                 "Addition PANTONE 500 1.000", "Addition RED 0.250"}));
  EXPECT_EQ(Fixed(work.ShownTotal, 3), "103.750");
  EXPECT_EQ(work.AdditionsTotal, 3.75F);
  EXPECT_EQ(work.Roundoff, 0);
  EXPECT_EQ(work.QuantityText, "100.000");
  EXPECT_EQ(work.figures.CostOfBasics.Fixed(2), "7.50");
  EXPECT_EQ(work.figures.VOC, 1.25F);
}

TEST_F(Additions, EveryFaultRefusesAllLines) {
  struct Case {
    std::vector<AdditionLine> lines;
    AdditionFault fault;
    Refusal refusal;
  };
  const Refusal number{"Batch Additions - Invalid Amount", "Enter an amount between\n-99999.000  and  99999.000",
                       "txtAmount"};
  const Refusal negative{"Batch Addition Adjustment",
                         "The negative amount entered is more\nthan what can be remove from the batch.", "txtAmount"};
  const Refusal duplicate{"Duplicate Item",
                          "Basic / Additive is already selected.\nRemove reference and choose another item.",
                          "cmbColorName"};
  const Refusal unknown{"Invalid Color", "Invalid Basic / Additive selected.\nUpdate the exisiting selection.",
                        "cmbColorName"};
  const std::vector<Case> cases{
      {{{"DRIER", "1,5"}}, AdditionFault::InvalidNumber, number},
      {{{"DRIER", ""}}, AdditionFault::InvalidNumber, number},
      {{{"DRIER", "99999.5"}}, AdditionFault::InvalidNumber, number},
      {{{"DRIER", "0.0001"}}, AdditionFault::InvalidNumber, number},
      {{{"RED", "-60.001"}}, AdditionFault::InvalidNegative, negative},
      {{{"DRIER", "-1"}}, AdditionFault::InvalidNegative, negative},
      {{{"DRIER", "1"}, {"YELLOW", "1"}, {"Drier", "2"}}, AdditionFault::DupFormAdd, duplicate},
      {{{"DRIER", "1"}, {"NOBODY", "1"}}, AdditionFault::InvalidBasic, unknown},
      {{{"", "1"}}, AdditionFault::InvalidBasic, unknown},
      {{{"TARGET", "1"}}, AdditionFault::InvalidBasic, unknown}};
  const Lines before = room.Lines();
  for (const Case& c : cases) {
    const auto done = AddAdditions(session, work, c.lines);
    ASSERT_FALSE(done);
    EXPECT_EQ(done.error(), c.refusal);
    EXPECT_EQ(AdditionRefusal(c.fault), c.refusal);
    EXPECT_TRUE(work.Additions.empty());
    EXPECT_EQ(room.Lines(), before);
  }
}

TEST_F(Additions, TheyCannotBringTheBatchToNothing) {
  const auto done = AddAdditions(session, work, {{"RED", "-60"}, {"BLUE", "-40"}});
  ASSERT_FALSE(done);
  EXPECT_EQ(done.error().title, "Negative Additions - Batch Size");
  EXPECT_TRUE(AddAdditions(session, work, {{"RED", "-60"}, {"BLUE", "-39.999"}}));
  EXPECT_EQ(Fixed(work.ShownTotal, 3), "0.001");
}

TEST_F(Additions, AColorThatIsAnAdditionAlreadyIsAdjustedNotAddedAgain) {
  ASSERT_TRUE(AddAdditions(session, work, {{"DRIER", "1"}, {"YELLOW", "2"}, {"RED", "-1"}}));
  EXPECT_EQ(AddAdditions(session, work, {{"DRIER", "1"}}).error().title, "Duplicate Item");
  ASSERT_TRUE(AdjustAddition(session, work, 3, "5"));
  EXPECT_EQ(Fixed(work.ShownTotal, 3), "105.000");
  ASSERT_TRUE(AdjustAddition(session, work, 2, "0"));  // taken out, the later ones move up
  EXPECT_EQ(room.Lines(),
            (Lines{"Basic RED 60.000", "Basic BLUE 40.000", "Addition YELLOW 5.000", "Addition RED -1.000"}));
  EXPECT_EQ(AdjustAddition(session, work, 2, "x").error(),
            (Refusal{"Adjust Addition", "Please enter a valid amount.", "txtAmount"}));
  EXPECT_EQ(AdjustAddition(session, work, 3, "-60.5").error().title, "Batch Addition Adjustment");
  EXPECT_TRUE(AdjustAddition(session, work, 3, "-60"));
}

TEST_F(Additions, RefusedWhileTheQuantityWasEdited) {
  SetQuantityText(work, "90");
  EXPECT_EQ(AddAdditions(session, work, {{"DRIER", "1"}}).error(),
            (Refusal{"Recalculate Batch",
                     "You've changed the Quantity of this batch.\nClick the Recycle(F2) or Mix(F3) button to "
                     "recalculate\nthe batch before adding batch additions to the batch.",
                     "txtQuantity"}));
}

TEST_F(Additions, ANegativeOneWithLotsWarns) {
  room.Setting("InvLotTracking", "1");
  room.prompt.Expect("Re-enter Inventory Lot Selections", Answer::Ok,
                     "This negative Batch Addition can impact prior Inv. Lot Selections.\n"
                     "The Basic Color that matches this negative Batch Addition,\n"
                     "may need to have its Lotted Inventory selections updated.");
  ASSERT_TRUE(AddAdditions(session, work, {{"RED", "-2"}}));
  ASSERT_TRUE(AdjustAddition(session, work, 2, "3"));
}

TEST_F(Additions, NoMoreThanTwentyLines) {
  std::vector<AdditionLine> lines;
  for (int i = 0; i < 19; ++i) {
    room.Basic("A" + std::to_string(i));
    lines.push_back({"A" + std::to_string(i), "1"});
  }
  EXPECT_FALSE(AddAdditions(session, work, lines));
  EXPECT_TRUE(work.Additions.empty());
  lines.pop_back();
  ASSERT_TRUE(AddAdditions(session, work, lines));
  EXPECT_FALSE(AddAdditions(session, work, {{"DRIER", "1"}}));
  EXPECT_FALSE(AdjustAddition(session, work, 19, "2"));
}

TEST_F(Additions, AnUnknownColorIsAddedToTheDatabaseAfterAQuestion) {
  const std::string text =
      "NEW ONE is not found in this database.\nWould you like to add this item to this database?\n"
      "Hint: Check the spelling in case another reference exists.";
  room.prompt.Expect("Add Basic / Additive To Database?", Answer::No, text);
  EXPECT_EQ(*ReadAdditionName(session, "new one"), std::nullopt);
  room.prompt.Expect("Add Basic / Additive To Database?", Answer::Yes, text);
  EXPECT_EQ(*ReadAdditionName(session, "new one"), "NEW ONE");
  EXPECT_EQ(*ReadAdditionName(session, "New One"), "NEW ONE");
  EXPECT_EQ(*ReadAdditionName(session, "500"), "PANTONE 500");
  EXPECT_TRUE(AddAdditions(session, work, {{"NEW ONE", "1"}}));
}

// A negative addition takes from what the rows hold; a change of the rows that leaves less than that is refused,
// whatever the change, and the Batch is as it was.
TEST_F(Additions, NegativeOnesHoldWhenTheRowsChange) {
  room.Ink("LEFT", {{"RED", 50}, {"BLUE", 50}}, 40);
  room.Ink("REDDISH", {{"RED", 100}}, 50);
  struct Case {
    const char* name;
    std::function<Refusal()> act;
  };
  const auto refusal = [](const auto& result) { return result ? Refusal{} : result.error(); };
  const Case cases[] = {
      {"take", [&] { return refusal(ChooseFromRecycleList(session, work, "LEFT", "40")); }},
      {"adjust", [&] { return refusal(AdjustMixRow(session, work, 0, {.amount = "16"})); }},
      {"adjust and recycle", [&] { return refusal(AdjustMixRow(session, work, 0, {.amount = "5", .recycle = true})); }},
      {"empty", [&] { return refusal(AdjustMixRow(session, work, 0, {.amount = "16", .removeFromInventory = true})); }},
      {"pour", [&] {
         room.prompt.Expect("Excess Recycle Color Weight", Answer::Yes);
         return refusal(OverpourMixRow(session, work, 0, 16));
       }}};
  for (const Case& test : cases) {
    SCOPED_TRACE(test.name);
    room.Mixed("TARGET", "100");
    ASSERT_TRUE(ChooseFromRecycleList(session, work, "REDDISH", "10"));
    ASSERT_TRUE(AddAdditions(session, work, {{"RED", "-45"}}));  // of 60 - 10
    const Lines before = room.Lines();
    EXPECT_EQ(test.act(), (Refusal{"Batch Addition Adjustment",
                                   "The Batch would hold less RED than its negative addition takes back.\n"
                                   "Change the addition first.",
                                   "fgRecList"}));
    EXPECT_EQ(room.Lines(), before);
    EXPECT_EQ(work.QuantityText, "100.000");
    EXPECT_EQ(work.RecycleList.size(), 2U);
    EXPECT_EQ(room.Scalar("SELECT Inventory FROM INK_Mix WHERE Color_Name = 'REDDISH'").Number(), 50);
    ASSERT_TRUE(AdjustMixRow(session, work, 0, {.amount = "15"}));
  }
}

}  // namespace
}  // namespace vellumark
