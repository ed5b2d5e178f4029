#include "core/batch/adjust.h"

#include <gtest/gtest.h>

#include "batch_room.h"
#include "core/batch/recycle_list.h"

namespace vellumark {
namespace {

using test::Lines;

struct Adjust : test::BatchRoomTest {
  Adjust() {
    room.Basics({"RED", "BLUE", "YELLOW"});
    room.Mix("TARGET", {{"RED", 50}, {"BLUE", 30}, {"YELLOW", 20}});
    room.Ink("VIOLET", {{"RED", 60}, {"BLUE", 40}}, 20);
    room.Ink("GREEN", {{"BLUE", 50}, {"YELLOW", 50}}, 10);
    room.Ink("ORANGE", {{"RED", 50}, {"YELLOW", 50}}, 0);
  }
};

TEST_F(Adjust, RecycledRowThenMix) {
  room.Recycled("TARGET", "100");
  ASSERT_EQ(room.Lines(), (Lines{"Mix VIOLET 20.000", "Mix GREEN 10.000", "Basic RED 38.000", "Basic BLUE 17.000",
                                 "Basic YELLOW 15.000"}));
  const auto window = OpenMixAdjustment(session, work, 1);
  ASSERT_TRUE(window);
  EXPECT_EQ(window->caption, " Adjust GREEN");
  EXPECT_EQ(window->amount, 10.0);
  // YELLOW 20 of the 80 that remain, 25 percent of them; 25 / 50 x 80 = 40.
  EXPECT_EQ(window->maximum, 40.0F);
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
  EXPECT_TRUE(OpenMixAdjustment(session, work, 0).error().declined);
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

// The maximum is what a person works out: no noise of a Single takes a thousandth of it, it is never below what is in
// use, and taking it leaves no stray thousandth of an ingredient.
TEST_F(Adjust, TheMaximumIsNeverShortOfAThousandth) {
  room.Basics({"WHITE", "BLACK"});
  room.Ink("PURE", {{"WHITE", 100}}, 0);
  struct Case {
    std::pair<float, float> shares;
    const char* quantity;
    const char* most;
  };
  for (const Case& test : {Case{{35, 65}, "100", "35.000"},       //
                           Case{{70, 30}, "100", "70.000"},       //
                           Case{{0.7F, 99.3F}, "1000", "7.000"},  //
                           Case{{1.1F, 98.9F}, "90", "0.990"},    //
                           Case{{33.333F, 66.667F}, "300", "99.999"}}) {
    SCOPED_TRACE(test.most);
    const std::string grey = std::string("GREY ") + test.most;
    room.Mix(grey, {{"WHITE", test.shares.first}, {"BLACK", test.shares.second}});
    room.Mixed(grey, test.quantity);
    ASSERT_TRUE(*ChooseFromRecycleList(session, work, "PURE", "0.100"));
    EXPECT_EQ(Fixed(OpenMixAdjustment(session, work, 0)->maximum, 3), test.most);
    ASSERT_TRUE(AdjustMixRow(session, work, 0, {.amount = test.most}));
    ASSERT_EQ(work.Rows.size(), 2U);
    EXPECT_EQ(Fixed(work.Rows[0].amount, 3), test.most);
    EXPECT_EQ(work.Rows[1].name, "BLACK");
    EXPECT_EQ(Fixed(OpenMixAdjustment(session, work, 0)->maximum, 3), test.most);
    EXPECT_FALSE(work.Rows[0].moreUsable);
  }
}

TEST_F(Adjust, TheMaximumDoesNotFollowTheRoundingOfTheStock) {
  room.Ink("SAME", {{"RED", 50}, {"BLUE", 30}, {"YELLOW", 20}}, 0.003F);  // 0.00136 kg.
  room.Start("TARGET", "100");
  work.UMF = 2;
  ASSERT_TRUE(RecycleAction(session, work));
  ASSERT_EQ(room.Lines().at(0), "Mix SAME 0.001");
  EXPECT_EQ(Fixed(OpenMixAdjustment(session, work, 0)->maximum, 3), "100.000");
}

TEST_F(Adjust, TheMaximumOfAnUnevenShareLeavesNoCrumb) {
  room.Ink("DEEP", {{"RED", 75}, {"BLUE", 25}}, 0);
  room.Ink("SKY", {{"YELLOW", 30}, {"BLUE", 70}}, 0);
  room.Mixed("TARGET", "100");
  // 50 RED / .75 = 66.667, then 30 - 16.667 of BLUE / .7 = 19.047: each the maximum of its row.
  for (const auto& [name, most, used] :
       {std::tuple{"DEEP", "66.666", "66.667"}, std::tuple{"SKY", "19.047", "19.047"}}) {
    const std::size_t row = work.RecycledColors.size();
    ASSERT_TRUE(*ChooseFromRecycleList(session, work, name, "1"));
    EXPECT_EQ(Fixed(OpenMixAdjustment(session, work, row)->maximum, 3), most);
    ASSERT_TRUE(AdjustMixRow(session, work, row, {.amount = most}));
    EXPECT_EQ(Fixed(work.Rows[row].amount, 3), used);
    EXPECT_EQ(Fixed(OpenMixAdjustment(session, work, row)->maximum, 3), used);
  }
  EXPECT_EQ(room.Lines(), (Lines{"Mix DEEP 66.667", "Mix SKY 19.047", "Basic YELLOW 14.286"}));
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
  work.settings.Overpour = false;
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
  EXPECT_EQ(Fixed(work.ShownTotal, 3), "112.000");
  EXPECT_EQ(work.ClickedIndex, 0);
  EXPECT_FALSE(OverpourMixRow(session, work, 0, 84)->reformulated);  // no more than it has
}

// The Batch never shrinks. Within the row's maximum it keeps its quantity and the rows below give way; above it it
// grows until the pour is the row's maximum, the rows above it counted.
TEST_F(Overpours, RecycledRowNeverShrinksTheBatch) {
  struct Case {
    std::size_t row;
    double poured;
    const char* quantity;
    Lines lines;
  };
  // VIOLET 60/40 up to 75 of 100, GREEN 50/50 of BLUE and YELLOW.
  const Case cases[] = {
      {0,
       22,
       "100.000",
       {"Mix VIOLET 22.000", "Mix GREEN 10.000", "Basic RED 36.800", "Basic BLUE 16.200", "Basic YELLOW 15.000"}},
      // 70 VIOLET leave 2 of BLUE: GREEN gives way.
      {0, 70, "100.000", {"Mix VIOLET 70.000", "Mix GREEN 4.000", "Basic YELLOW 18.000", "Basic RED 8.000"}},
      // 20 VIOLET bring 8 BLUE: 0.3 x Q - 8 = 25 of BLUE, 0.2 x Q = 25 of YELLOW.
      {1, 50, "125.000", {"Mix VIOLET 20.000", "Mix GREEN 50.000", "Basic RED 50.500", "Basic BLUE 4.500"}},
      {1, 40, "100.000", {"Mix VIOLET 20.000", "Mix GREEN 40.000", "Basic RED 38.000", "Basic BLUE 2.000"}},
      {1,
       12.344,
       "100.000",
       {"Mix VIOLET 20.000", "Mix GREEN 12.344", "Basic RED 38.000", "Basic BLUE 15.828", "Basic YELLOW 13.828"}}};
  for (const Case& test : cases) {
    SCOPED_TRACE(testing::Message() << "row " << test.row << " poured " << test.poured);
    room.Recycled("TARGET", "100");
    room.prompt.Expect("Excess Recycle Color Weight", Answer::Yes);
    ASSERT_TRUE(OverpourMixRow(session, work, test.row, test.poured)->reformulated);
    EXPECT_EQ(work.QuantityText, test.quantity);
    EXPECT_EQ(room.Lines(), test.lines);
    EXPECT_EQ(Fixed(work.ShownTotal, 3), test.quantity);
    EXPECT_GE(work.Rows[test.row].max, static_cast<float>(test.poured));
  }
  // An even share at which the quotient has no end: the Batch grows to the next thousandth, the pour stands.
  room.Ink("DEEP", {{"RED", 75}, {"BLUE", 25}}, 5);
  room.Mixed("TARGET", "10");
  ASSERT_TRUE(*ChooseFromRecycleList(session, work, "DEEP", "5"));
  room.prompt.Expect("Excess Recycle Color Weight", Answer::Yes);
  ASSERT_TRUE(OverpourMixRow(session, work, 0, 7.001)->reformulated);
  EXPECT_EQ(work.QuantityText, "10.502");  // 7.001 x .75 / .5 = 10.5015
  EXPECT_EQ(Fixed(work.Rows[0].amount, 3), "7.001");
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
    const TableOf<RecycleListRow> table = RecycleListColumns(view, 1);
    for (const RecycleListRow& row : RecycleListRows(work, view)) {
      std::string line;
      for (std::size_t i = 0; i < 3; ++i)
        line += (i == 0 ? "" : " ") + CellText(table.Columns()[i], table.ValueOf(row, i));
      lines.push_back(line + (row.highlighted ? " *" : ""));
    }
    return lines;
  };
  RecycleListView view;
  EXPECT_EQ(names(view), (Lines{"TARGET 100.00% 0.000", "VIOLET 75.00% 20.000 *", "GREEN 40.00% 10.000 *",
                                "ORANGE 40.00% 0.000", "TEAL 33.33% 7.000"}));
  const auto caption = [&](std::size_t place) { return RecycleListColumns(view, 1).Columns()[place].Caption(); };
  EXPECT_EQ((Lines{caption(0), caption(1), caption(2)}), (Lines{"Color Name", "Recycle", "Inventory (lb.)"}));
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
    EXPECT_EQ(caption(click.place), click.caption);
    const auto rows = RecycleListRows(work, view);
    EXPECT_EQ(rows[0].Color_Name, click.first) << click.caption;
    EXPECT_EQ(work.RecycleList[rows[0].place].Color_Name, click.first);
  }
}

}  // namespace
}  // namespace vellumark
