#include "core/inventory/lot_selection.h"

#include "core/base/units.h"
#include "support/stock_room.h"

namespace vellumark::test {
namespace {

struct LotSelectionTest : ::testing::Test, StockRoom {
  LotSelectionWork Load(float need, int unit = 1, const LotSelection& earlier = {}) {
    auto work = LoadLotSelection(session, "Red", LineKind::Basic, need, unit, earlier);
    EXPECT_TRUE(work);
    return *work;
  }
  // Rows by the way: 0 unlotted, then lots.
  void Stock(float unlotted, const std::vector<float>& lots) {
    Color(ColorKind::Basic, "Red", unlotted);
    for (std::size_t i = 0; i < lots.size(); ++i)
      Lot(ColorKind::Basic, "Red", static_cast<std::int32_t>(i + 1), lots[i]);
  }
  static std::vector<float> Used(const LotSelectionWork& work) {
    std::vector<float> used;
    for (const LotSelectionRow& row : work.rows) used.push_back(row.lot.LotQty);
    return used;
  }
};

TEST_F(LotSelectionTest, TheOrderOfCheckingDecidesWhichLotIsUsedUp) {
  Stock(2, {6, 7});
  LotSelectionWork work = Load(10);
  ASSERT_EQ(work.rows.size(), 3U);
  EXPECT_EQ(work.rows[0].lot.LotNumber, "Unlotted Inv.");
  EXPECT_EQ(work.rows[0].lot.LotPrice, 4.0F);
  EXPECT_EQ(work.Balance(), 10.0F);
  EXPECT_TRUE(work.CheckRow(1));
  EXPECT_EQ(work.Balance(), 4.0F);
  EXPECT_EQ(work.SuggestAdjust(2), 4.0F);
  EXPECT_EQ(work.SuggestAdjust(0), 2.0F);
  EXPECT_FALSE(work.Selection().CompleteFor(10));
  EXPECT_TRUE(work.CheckRow(2));
  EXPECT_EQ(Used(work), (std::vector<float>{0, 6, 4}));
  EXPECT_EQ(work.Balance(), 0.0F);
  EXPECT_EQ(work.SuggestAdjust(2), 0.0F);
  EXPECT_FALSE(work.CheckRow(0)) << "nothing is left to place";
  EXPECT_FALSE(work.rows[0].checked);

  work.UncheckRow(1);
  EXPECT_EQ(work.Balance(), 6.0F);
  work.UncheckRow(2);
  EXPECT_TRUE(work.CheckRow(2));
  EXPECT_TRUE(work.CheckRow(1));
  EXPECT_EQ(Used(work), (std::vector<float>{0, 3, 7}));
  const LotSelection selection = work.Selection();
  ASSERT_EQ(selection.uses.size(), 2U);
  EXPECT_EQ(selection.uses[0].LotRefID, 2) << "in the order of checking";
  EXPECT_EQ(selection.uses[0].LotPrice, 1.0F);
  EXPECT_EQ(selection.uses[0].LotDate, (DateTime{2026, 1, 15}));
  EXPECT_TRUE(selection.CompleteFor(10));
}

TEST_F(LotSelectionTest, ListsWhatABatchMayConsume) {
  Breaks("LotColors");
  Stock(1, {});
  Lot(ColorKind::Basic, "Red", 5, 4, {{"LotNumber", "b"}});
  Lot(ColorKind::Basic, "Red", 6, 4, {{"LotNumber", "A"}, {"LotConsignment", true}});
  Lot(ColorKind::Basic, "Red", 7, 4, {{"LotNumber", "C"}, {"LotConsignment", nullptr}});
  Lot(ColorKind::Mix, "Red", 8, 4);
  const LotSelectionWork work = Load(10);
  std::vector<std::string> numbers;
  for (const LotSelectionRow& row : work.rows) numbers.push_back(row.lot.LotNumber);
  EXPECT_EQ(numbers, (std::vector<std::string>{"Unlotted Inv.", "b", "C"}));

  Setting("InvLotTracking", "0");
  EXPECT_EQ(Load(10).rows.size(), 1U);
}

TEST_F(LotSelectionTest, MeasuresStockInTheUnitOfTheBatch) {
  Stock(10, {2.5F});
  LotSelectionWork work = Load(5000, UnitGram);
  EXPECT_EQ(work.rows[0].InvQty, 4535.924F);
  EXPECT_EQ(work.rows[1].InvQty, 1133.981F);
  EXPECT_TRUE(work.CheckRow(0));
  EXPECT_TRUE(work.CheckRow(1));
  EXPECT_EQ(Used(work), (std::vector<float>{4535.924F, 464.076F}));
  EXPECT_EQ(work.Balance(), 0.0F);
}

TEST_F(LotSelectionTest, StockBelowZeroGivesNothing) {
  Stock(-3, {2});
  LotSelectionWork work = Load(1);
  EXPECT_EQ(work.rows[0].InvQty, -3.0F);
  EXPECT_FALSE(work.CheckRow(0));
  EXPECT_EQ(work.SuggestAdjust(0), 0.0F);
  EXPECT_EQ(work.Balance(), 1.0F);
}

TEST_F(LotSelectionTest, MarksTheEarlierSelectionAsFarAsStockGoes) {
  Breaks("StockHistory");
  Stock(2, {6, 7, 5});
  LotSelectionWork work = Load(14);
  EXPECT_TRUE(work.CheckRow(3));
  EXPECT_TRUE(work.CheckRow(1));
  EXPECT_TRUE(work.CheckRow(2));
  work.SetRemove(1, true);
  work.SetRemove(0, true);
  EXPECT_FALSE(work.rows[0].lot.Remove) << "nothing is deleted of Unlotted Inventory";
  const LotSelection earlier = work.Selection();
  session.File().Execute("DELETE FROM INK_Basic_LotInv WHERE LotRefID = 3");
  session.File().Execute("UPDATE INK_Basic_LotInv SET LotQty = 5.5, LotNumber = 'Z' WHERE LotRefID = 1");
  session.File().Execute("UPDATE INK_Basic_LotInv SET LotConsignment = 1 WHERE LotRefID = 2");
  const LotSelectionWork again = Load(14, 1, earlier);
  EXPECT_EQ(Used(again), (std::vector<float>{0, 5.5F}));
  EXPECT_EQ(again.Balance(), 8.5F);
  EXPECT_EQ(again.order, (std::vector<std::size_t>{1}));
  EXPECT_TRUE(again.rows[1].lot.Remove);
  EXPECT_EQ(again.Selection().uses[0].LotNumber, "Z") << "as it is called now";

  const LotSelectionWork smaller = Load(3, 1, again.Selection());
  EXPECT_EQ(smaller.Balance(), 2.5F) << "taken beyond the need";
  EXPECT_EQ(smaller.ToPlace(), 0.0F);
  EXPECT_TRUE(smaller.Selection().CompleteFor(3));
}

TEST_F(LotSelectionTest, OffersNothingThatTheOpenBatchMade) {
  Stock(5, {6, 4});
  const LotSelection earlier{{{1, "L1", "", "", {}, 4, 1, false}, {2, "L2", "", "", {}, 3, 1, false}}};
  const auto work = LoadLotSelection(session, "Red", LineKind::Basic, 8, 1, earlier, {1.5F, 1});
  ASSERT_TRUE(work);
  ASSERT_EQ(work->rows.size(), 2U);
  EXPECT_EQ(work->rows[0].InvQty, 3.5F);
  EXPECT_EQ(work->rows[1].lot.LotRefID, 2);
  EXPECT_EQ(Used(*work), (std::vector<float>{0, 3}));
}

TEST_F(LotSelectionTest, UpdateAddsToWhatTheRowGives) {
  Stock(2, {6});
  LotSelectionWork work = Load(3);
  ASSERT_TRUE(work.UpdateRow(1, " 3.0004 "));
  EXPECT_EQ(Used(work), (std::vector<float>{0, 3}));
  struct Case {
    std::string adjust, title, text;
  };
  for (const Case& c : {
           Case{"-4", "Adjust Amount", "Max adjust amount is: -3.000"},
           Case{"3.001", "Adjust Amount", "Max adjust amount is: 3.000"},
           Case{"three", "Bad Number", "three is not a number\nEnter a number"},
           Case{"", "Bad Number", " is not a number\nEnter a number"},
           Case{"1e3", "Bad Number", "1e3 is not a number\nEnter a number"},
       }) {
    const auto result = work.UpdateRow(1, c.adjust);
    ASSERT_FALSE(result) << c.adjust;
    EXPECT_EQ(result.error().title, std::string(25, ' ') + c.title);
    EXPECT_EQ(result.error().text, c.text);
    EXPECT_EQ(Used(work), (std::vector<float>{0, 3}));
  }
  ASSERT_TRUE(work.UpdateRow(1, "3")) << "a container may be emptied";
  EXPECT_EQ(work.Balance(), 3.0F);
  EXPECT_FALSE(work.CheckRow(0));
  ASSERT_TRUE(work.UpdateRow(1, "-6"));
  EXPECT_FALSE(work.rows[1].checked);
  EXPECT_TRUE(work.Selection().uses.empty());
  EXPECT_EQ(work.Balance(), 3.0F);
}

TEST_F(LotSelectionTest, AsksBeforeAllIsDeselected) {
  Stock(2, {6});
  LotSelectionWork work = Load(7);
  EXPECT_TRUE(work.CheckRow(1));
  EXPECT_TRUE(work.CheckRow(0));
  prompt.Expect("Lot Selections", Answer::No, "Deselect all Lot Selections?");
  EXPECT_FALSE(work.DeselectAll(session));
  EXPECT_EQ(work.Used(), 7.0F);
  prompt.Expect("Lot Selections", Answer::Yes);
  EXPECT_TRUE(work.DeselectAll(session));
  EXPECT_EQ(work.Balance(), 7.0F);
  EXPECT_TRUE(work.order.empty());
}

TEST_F(LotSelectionTest, ClosesWhenAnAdditionTookTheNeedAway) {
  Stock(2, {});
  for (const float need : {0.0F, 0.0004F, -2.0F}) {
    const auto work = LoadLotSelection(session, "Red", LineKind::Basic, need, 1);
    ASSERT_FALSE(work) << need;
    EXPECT_EQ(work.error().title, std::string(40, ' ') + "Lot Selection Disabled");
    EXPECT_EQ(work.error().text,
              "A negative Batch Addition has been applied to this color.\n\nIt has created a Zero Quantity for the "
              "Ingredient.");
  }
}

}  // namespace
}  // namespace vellumark::test
