#include "core/batch/adjust.h"

#include <gtest/gtest.h>

#include "batch_room.h"
#include "core/batch/recycle_list.h"

namespace vellumark {
namespace {

using test::Lines;

struct Adjust : testing::Test {
  Adjust() {
    room.Basics({"RED", "BLUE", "YELLOW"});
    room.Mix("TARGET", {{"RED", 50}, {"BLUE", 30}, {"YELLOW", 20}});
    room.Ink("VIOLET", {{"RED", 60}, {"BLUE", 40}}, 20);
    room.Ink("GREEN", {{"BLUE", 50}, {"YELLOW", 50}}, 10);
    room.Ink("ORANGE", {{"RED", 50}, {"YELLOW", 50}}, 0);
  }
  test::BatchRoom room;
  BatchWork& work = room.work;
  Session& session = room.session;
};

TEST_F(Adjust, RecycledRowThenMix) {
  room.Recycled("TARGET", "100");
  ASSERT_EQ(room.Lines(), (Lines{"Mix VIOLET 20.000", "Mix GREEN 10.000", "Basic RED 38.000", "Basic BLUE 17.000",
                                 "Basic YELLOW 15.000"}));
  const auto window = OpenMixAdjustment(session, work, 1);
  ASSERT_TRUE(window);
  EXPECT_EQ(window->caption, " Adjust GREEN");
  EXPECT_EQ(window->amount, "10.000");
  // YELLOW 20 of the 80 that remain, 25 percent of them; 25 / 50 x 80 = 40.
  EXPECT_EQ(window->maximum, "40.000");
  EXPECT_FALSE(window->offersRemoval);
  ASSERT_TRUE(AdjustMixRow(session, work, 1, {.amount = "4"}));
  // 4 GREEN: BLUE 22 - 2, YELLOW 20 - 2.
  EXPECT_EQ(room.Lines(), (Lines{"Mix VIOLET 20.000", "Mix GREEN 4.000", "Basic RED 38.000", "Basic BLUE 20.000",
                                 "Basic YELLOW 18.000"}));
  EXPECT_EQ(work.ClickedIndex, 1);
  EXPECT_FALSE(work.Rows[0].moreUsable);  // above the row last clicked
  EXPECT_TRUE(work.Rows[1].moreUsable);
}

TEST_F(Adjust, RowAboveTheLastClickedAsksAndRowsBelowAreChosenAnew) {
  room.Recycled("TARGET", "100");
  ASSERT_TRUE(AdjustMixRow(session, work, 1, {.amount = "4"}));
  const std::string text =
      "Adjusting this color now will change the colors and / or amounts\n"
      "which appear below this color. Do you want to continue?";
  room.prompt.Expect("Batch Window - Adjust This Color?", Answer::No, text);
  EXPECT_TRUE(OpenMixAdjustment(session, work, 0)->Color_Name.empty());
  EXPECT_EQ(room.prompt.last.icon, Icon::Exclamation);
  room.prompt.Expect("Batch Window - Adjust This Color?", Answer::Yes, text);
  ASSERT_EQ(OpenMixAdjustment(session, work, 0)->Color_Name, "VIOLET");
  ASSERT_TRUE(AdjustMixRow(session, work, 0, {.amount = "5", .recycle = true}));
  // GREEN comes back by itself with its whole stock: BLUE 30 - 2 - 5, YELLOW 20 - 5.
  EXPECT_EQ(room.Lines(), (Lines{"Mix VIOLET 5.000", "Mix GREEN 10.000", "Basic RED 47.000", "Basic BLUE 23.000",
                                 "Basic YELLOW 15.000"}));
  EXPECT_EQ(work.ClickedIndex, 0);
}

TEST_F(Adjust, ZeroTakesTheColorOutUntilTheNextCalculation) {
  room.Recycled("TARGET", "100");
  ASSERT_TRUE(AdjustMixRow(session, work, 0, {.amount = "0", .recycle = true}));
  EXPECT_EQ(room.Lines(), (Lines{"Mix GREEN 10.000", "Basic RED 50.000", "Basic BLUE 25.000", "Basic YELLOW 15.000"}));
  EXPECT_EQ(work.ClickedIndex, -1);
  ASSERT_NE(room.Listed("VIOLET"), nullptr);  // it may still be chosen by hand
  EXPECT_GT(room.Listed("VIOLET")->Recycle_Percent, 0);
  EXPECT_EQ(room.Scalar("SELECT Inventory FROM INK_Mix WHERE Color_Name='VIOLET'").Number(), 20);
  room.Recycled("TARGET", "100");
  EXPECT_EQ(work.Rows[0].name, "VIOLET");
}

TEST_F(Adjust, ClickedIndexMovesUpWithTheRowTakenOut) {
  room.Recycled("TARGET", "100");
  ASSERT_TRUE(AdjustMixRow(session, work, 1, {.amount = "4"}));
  ASSERT_TRUE(AdjustMixRow(session, work, 1, {.amount = "0"}));
  EXPECT_EQ(work.ClickedIndex, 0);
  EXPECT_EQ(work.RecycledColors.size(), 1U);
}

TEST_F(Adjust, RemovalFromInventoryIsWrittenOnlyWithoutLots) {
  for (const bool lots : {true, false}) {
    room.Setting("InvLotTracking", lots ? "1" : "0");
    room.Recycled("TARGET", "100");
    EXPECT_EQ(OpenMixAdjustment(session, work, 0)->offersRemoval, !lots);
    std::vector<Change> told;
    const auto listening = session.changes.Subscribe([&](const std::vector<Change>& changes) { told = changes; });
    ASSERT_TRUE(AdjustMixRow(session, work, 0, {.amount = "0", .recycle = true, .removeFromInventory = true}));
    EXPECT_EQ(room.Scalar("SELECT Inventory FROM INK_Mix WHERE Color_Name='VIOLET'").Number(), lots ? 20 : 0);
    EXPECT_EQ(told.size(), lots ? 0U : 1U);
    EXPECT_EQ(room.Listed("VIOLET")->Inventory, lots ? 20 : 0);
    EXPECT_EQ(work.Rows[0].name, "GREEN");
  }
  session.ArchiveView = true;
  const Lines before = room.Lines();
  EXPECT_FALSE(AdjustMixRow(session, work, 0, {.amount = "0", .removeFromInventory = true}));
  EXPECT_EQ(room.Lines(), before);
}

TEST_F(Adjust, BadAmountsAreRefusedAndChangeNothing) {
  room.Recycled("TARGET", "100");
  const Lines before = room.Lines();
  for (const char* bad : {"", "-1", "1,5", "abc"}) {
    const auto done = AdjustMixRow(session, work, 0, {.amount = bad});
    ASSERT_FALSE(done);
    EXPECT_EQ(done.error(),
              (Refusal{"Invalid Amount", std::string(bad) + " is not a valid amount. Please enter a valid amount.",
                       "txtAmount"}));
  }
  SetQuantityText(work, "90");
  EXPECT_EQ(AdjustMixRow(session, work, 0, {.amount = "1"}).error().text,
            "You've changed the Quantity of this batch.\nClick the Recycle(F2) or Mix(F3) button to recalculate\n"
            "the batch before adjusting a color's amount.");
  EXPECT_EQ(room.Lines(), before);
}

TEST_F(Adjust, ChoosingFromTheList) {
  room.Mixed("TARGET", "100");
  ASSERT_TRUE(*ChooseFromRecycleList(session, work, "green"));
  EXPECT_EQ(room.Lines(), (Lines{"Mix GREEN 10.000", "Basic RED 50.000", "Basic BLUE 25.000", "Basic YELLOW 15.000"}));
  EXPECT_EQ(work.ClickedIndex, 0);
  EXPECT_EQ(room.Listed("GREEN"), nullptr);
  // Not in stock: the quantity is offered, and the recipe leaves room for 15 YELLOW / .5.
  ASSERT_TRUE(*ChooseFromRecycleList(session, work, "ORANGE"));
  EXPECT_EQ(room.Lines(), (Lines{"Mix GREEN 10.000", "Mix ORANGE 30.000", "Basic RED 35.000", "Basic BLUE 25.000"}));
  EXPECT_EQ(work.ClickedIndex, 1);
  // YELLOW is used up: nothing with YELLOW in it can be chosen any more.
  EXPECT_FALSE(*ChooseFromRecycleList(session, work, "NOBODY"));
  ASSERT_TRUE(*ChooseFromRecycleList(session, work, "VIOLET", "7.5"));
  EXPECT_EQ(room.Lines().at(2), "Mix VIOLET 7.500");
  SetQuantityText(work, "90");
  EXPECT_EQ(ChooseFromRecycleList(session, work, "TARGET").value_or(true), false);
}

TEST_F(Adjust, ChoosingNeedsACalculatedQuantity) {
  room.Mixed("TARGET", "100");
  SetQuantityText(work, "90");
  const auto chosen = ChooseFromRecycleList(session, work, "GREEN");
  ASSERT_FALSE(chosen);
  EXPECT_EQ(chosen.error().title, "Recalculate Batch");
  EXPECT_EQ(chosen.error().text,
            "You've changed the Quantity of this batch. Click the Recycle(F2) or Mix(F3) button to recalculate the "
            "batch before selecting a color from the Recycle List.");
}

TEST_F(Adjust, TakingTheMaximumFollowsTheRecipeToTheLastDigit) {
  room.Basics({"WHITE", "BLACK"});
  room.Mix("GREY", {{"WHITE", 77.777F}, {"BLACK", 22.223F}});
  room.Ink("DARK", {{"WHITE", 33.333F}, {"BLACK", 66.667F}}, 500);
  room.Mixed("GREY", "100");
  const float share = room.Listed("DARK")->Recycle_Percent;  // 22.223 / 66.667
  ASSERT_TRUE(*ChooseFromRecycleList(session, work, "DARK", Fixed(100.0 * share, 3)));
  EXPECT_EQ(work.Rows.size(), 2U);  // no crumb of BLACK is left
  EXPECT_EQ(work.Rows[1].name, "WHITE");
}

struct Overpours : Adjust {
  Overpours() { room.Setting("Overpour", "1"); }
};

TEST_F(Overpours, BasicRowGrowsTheBatch) {
  room.Mixed("TARGET", "100");
  room.prompt.Expect("Excess Basic Color Weight", Answer::Yes, "Reformulate Batch due to over pour?")
      .Expect("Change in Amounts" + std::string(50, ' '), Answer::Yes,
              "Print out this detail?\n\n"
              "RED                                50.000 lb.  --->  55.000 lb.\n"
              "BLUE                               30.000 lb.  --->  33.000 lb.\n"
              "YELLOW                             20.000 lb.  --->  22.000 lb.");
  // (33 - 30) x 100 / 30 = 10 more.
  const auto done = OverpourBasicRow(session, work, 1, "33");
  ASSERT_TRUE(done);
  EXPECT_TRUE(done->reformulated);
  EXPECT_TRUE(done->printDetail);
  EXPECT_EQ(room.Lines(), (Lines{"Basic RED 55.000", "Basic BLUE 33.000", "Basic YELLOW 22.000"}));
  EXPECT_EQ(work.QuantityText, "110.000");
  EXPECT_FALSE(work.QuantityChanged);
}

TEST_F(Overpours, BasicRowRefusals) {
  room.Mixed("TARGET", "100");
  EXPECT_EQ(OverpourBasicRow(session, work, 1, "1,5").error(),
            (Refusal{"Adjust Basic Color", "Please Enter a valid amount.", "txtAmount"}));
  EXPECT_EQ(OverpourBasicRow(session, work, 1, "29.999").error(),
            (Refusal{"Adjust Basic Color",
                     "You can only enter an amount larger than the current amount.\nTo use a smaller amount, make a "
                     "smaller batch.",
                     "txtAmount"}));
  room.prompt.Expect("Excess Basic Color Weight", Answer::No);
  EXPECT_FALSE(OverpourBasicRow(session, work, 1, "33")->reformulated);
  room.prompt.Expect("Excess Basic Color Weight", Answer::Yes);
  EXPECT_EQ(OverpourBasicRow(session, work, 1, "30000").error().title, "Batch Window - Invalid Amount");
  EXPECT_EQ(work.QuantityText, "100.000");
  work.settings.overpour = false;
  EXPECT_FALSE(OverpourBasicRow(session, work, 1, "33")->reformulated);
}

TEST_F(Overpours, RecycledRowGrowsTheBatchAndKeepsTheOthers) {
  room.Recycled("TARGET", "100");
  // VIOLET can be .75 of the Batch: 84 / .75 = 112.
  room.prompt.Expect("Excess Recycle Color Weight", Answer::Yes, "Reformulate Batch due to over pour?");
  const auto done = OverpourMixRow(session, work, 0, 84);
  ASSERT_TRUE(done);
  EXPECT_TRUE(done->reformulated);
  EXPECT_EQ(work.QuantityText, "112.000");
  // 84 VIOLET bring all 33.6 BLUE and 50.4 of 56 RED; nothing can be used of GREEN any more.
  EXPECT_EQ(room.Lines(), (Lines{"Mix VIOLET 84.000", "Mix GREEN 0.000", "Basic YELLOW 22.400", "Basic RED 5.600"}));
  EXPECT_EQ(work.TotalText, "112.000");
  EXPECT_EQ(work.ClickedIndex, 0);
  EXPECT_FALSE(OverpourMixRow(session, work, 0, 84)->reformulated);  // no more than it has
}

TEST_F(Overpours, NotWhileTwentyLinesAreInUse) {
  test::BatchRoom full;
  full.Breaks("FormulaTotals");
  full.Setting("Overpour", "1");
  std::vector<std::pair<std::string, float>> recipe;
  for (int i = 0; i < 15; ++i) {
    full.Basic("B" + std::to_string(i));
    recipe.emplace_back("B" + std::to_string(i), i == 0 ? 30.0F : 5.0F);
  }
  full.Mix("TARGET", recipe);
  for (std::size_t i = 1; i <= 6; ++i) full.Ink("INK" + std::to_string(i), {recipe[i]}, 0.1F);
  full.Recycled("TARGET", "100");
  ASSERT_EQ(full.work.Rows.size(), 20U);
  EXPECT_TRUE(BatchIsFull(full.work));
  EXPECT_FALSE(OverpourBasicRow(full.session, full.work, 5, "500")->reformulated);
  EXPECT_FALSE(*ChooseFromRecycleList(full.session, full.work, "INK6"));
}

TEST_F(Adjust, RecycleListPanel) {
  room.Mix("TEAL", {{"BLUE", 90}, {"YELLOW", 10}}, {{"Inventory", 7.0F}});
  room.Mixed("TARGET", "100");
  const auto names = [&](const RecycleListView& view) {
    Lines lines;
    for (const RecycleListRow& row : RecycleListRows(work, view))
      lines.push_back(row.Color_Name + " " + row.recycle + " " + row.inventory + (row.highlighted ? " *" : ""));
    return lines;
  };
  RecycleListView view;
  EXPECT_EQ(names(view), (Lines{"TARGET 100.00% 0.000", "VIOLET 75.00% 20.000 *", "GREEN 40.00% 10.000 *",
                                "ORANGE 40.00% 0.000", "TEAL 33.33% 7.000"}));
  EXPECT_EQ(RecycleListCaptions(view, 1), (std::array<std::string, 3>{"Color Name", "Recycle", "Inventory (lb.)"}));
  view.inventoryOnly = true;
  EXPECT_EQ(names(view), (Lines{"VIOLET 75.00% 20.000 *", "GREEN 40.00% 10.000 *"}));
  view.inventoryOnly = false;
  struct Click {
    RecycleColumn column;
    std::size_t place;
    const char* caption;
    const char* first;
  };
  for (const Click& click : {Click{RecycleColumn::Name, 0, "Color Name  A-Z", "GREEN"},
                             Click{RecycleColumn::Name, 0, "Color Name  Z-A", "VIOLET"},
                             Click{RecycleColumn::Recycle, 1, ">  Recycle", "TARGET"},
                             Click{RecycleColumn::Recycle, 1, "<  Recycle", "TEAL"},
                             Click{RecycleColumn::Inventory, 2, ">  Inventory", "VIOLET"},
                             Click{RecycleColumn::Inventory, 2, "<  Inventory", "TARGET"},
                             Click{RecycleColumn::Name, 0, "Color Name  A-Z", "GREEN"}}) {
    ClickHeader(view, click.column);
    EXPECT_EQ(RecycleListCaptions(view, 1)[click.place], click.caption);
    const auto rows = RecycleListRows(work, view);
    EXPECT_EQ(rows[0].Color_Name, click.first) << click.caption;
    EXPECT_EQ(work.RecycleList[rows[0].place].Color_Name, click.first);
  }
}

}  // namespace
}  // namespace vellumark
