// The lots of one line of a Batch, chosen by keys and clicks.

#include <gtest/gtest.h>

#include <QCheckBox>
#include <QTest>

#include "core/inventory/lot_selection.h"
#include "desktop/inventory/inventory_desk.h"

namespace vellumark::test {
namespace {

const std::string kPad25(25, ' ');

struct LotSelectorTest : testing::Test, InventoryDesk {
  LotSelectorTest() {
    Color(ColorKind::Basic, "RED", 2);
    Lot(ColorKind::Basic, "RED", 1, 6, {{"LotLoc", "SHELF A"}});
    Lot(ColorKind::Basic, "RED", 2, 7);
    Lot(ColorKind::Basic, "RED", 3, 50, {{"LotConsignment", true}});
  }

  std::optional<desktop::Arguments> Select(float need, const std::function<void(QWidget&)>& inside,
                                           const LotSelection& earlier = {}) {
    std::optional<desktop::Arguments> result;
    // A window behind it, as the Batch window is.
    QWidget behind;
    ShowActive(behind);
    WithModal(
        [&] {
          result = windows.RunDialog(
              "BatchLotInvSelector",
              {{"IngName", "RED"}, {"Kind", LineKind::Basic}, {"IngQty", need}, {"Unit", 1}, {"Selection", earlier}});
        },
        [&](QWidget& dialog) {
          list = &Control<desktop::Grid>(dialog, "InvColorList");
          selector = &dialog;
          inside(dialog);
        });
    return result;
  }
  std::string Value(const char* name) { return Control<QLabel>(*selector, name).text().toStdString(); }
  std::string Used(int row) { return list->Model().Source()->Text(row, 5); }
  bool IsChecked(int row) { return std::string(list->Model().Source()->Mark(row, 0)) == "box-checked"; }
  /// Goes to the row and presses the space bar.
  void Check(int row) {
    list->setFocus();
    list->SetCurrentRow(row);
    PressOn(Qt::Key_Space);
  }

  desktop::Grid* list = nullptr;
  QWidget* selector = nullptr;
};

TEST_F(LotSelectorTest, TheOrderOfCheckingIsTheOrderOfPicking) {
  const struct {
    std::vector<int> order;
    const char* first;   // used of lot 1
    const char* second;  // used of lot 2
  } cases[] = {{{1, 2}, "6.000", "4.000"}, {{2, 1}, "3.000", "7.000"}};
  for (const auto& c : cases) {
    const auto result = Select(10, [&](QWidget& dialog) {
      EXPECT_EQ(dialog.windowTitle(), " Inv. Lot Selections");
      EXPECT_EQ(list->ShownRows().size(), 3U) << "consignment stock is not offered";
      for (const int row : c.order) Check(row);
      EXPECT_EQ(Used(1), c.first);
      EXPECT_EQ(Used(2), c.second);
      EXPECT_EQ(Value("QtyConsumed"), "0.000");
      Check(0);
      EXPECT_FALSE(IsChecked(0)) << "nothing is left to place";
      PressOn(Qt::Key_S, Qt::ControlModifier);
    });
    ASSERT_TRUE(result);
    const auto selection = result->Get<LotSelection>("Selection");
    ASSERT_EQ(selection.uses.size(), 2U);
    EXPECT_EQ(selection.uses[0].LotRefID, c.order[0]);
    EXPECT_TRUE(selection.CompleteFor(10));
    EXPECT_FALSE(result->Has("AdjustInventory"));
  }
}

TEST_F(LotSelectorTest, AQuantityIsAdjustedAndTheRestWrittenOff) {
  LotSelection earlier;
  earlier.uses.push_back({1, "L1", "SHELF A", "", DateTime{2026, 1, 15}, 3, 1, false});
  const auto result = Select(
      10,
      [&](QWidget& dialog) {
        EXPECT_TRUE(IsChecked(1));
        EXPECT_EQ(Value("QtyConsumed"), "7.000");
        list->SetCurrentRow(2);
        EXPECT_EQ(Control<QLineEdit>(dialog, "AdjustInv").text(), "7.000");
        list->SetCurrentRow(1);
        EXPECT_EQ(Control<QLineEdit>(dialog, "AdjustInv").text(), "0.000");
        prompt.Expect(kPad25 + "Adjust Amount", Answer::Ok, "Max adjust amount is: -3.000");
        list->setFocus();
        PressOn(Qt::Key_Return);
        EXPECT_EQ(FocusName(), "AdjustInv");
        TypeOn("-4");
        PressOn(Qt::Key_Return);
        EXPECT_EQ(FocusName(), "AdjustInv");
        prompt.Expect(kPad25 + "Bad Number", Answer::Ok, "- is not a number\nEnter a number");
        Fill(dialog, "AdjustInv", "-");
        Click(dialog, "cmdUpdate");
        Fill(dialog, "AdjustInv", "-1");
        PressOn(Qt::Key_F5);
        EXPECT_EQ(Used(1), "2.000");
        EXPECT_EQ(Value("QtyConsumed"), "8.000");
        list->SetCurrentRow(1);
        Click(dialog, "chkDelInv");
        EXPECT_EQ(list->Model().Source()->Text(1, 6), "Yes");
        list->SetCurrentRow(0);
        EXPECT_FALSE(Control(dialog, "chkDelInv").isEnabled());
        Picture(dialog, "inventory-lot-selector", {880, 560});
        prompt.Expect("Adjust Inventory Confirmation", Answer::No,
                      "The batch must be saved and cleared before making Inventory changes\nWould you like to change "
                      "Inventory right now?\n\nYes - Change Inv.      No - Use Selections ");
        Click(dialog, "cmdAddLot");
        prompt.Expect("Adjust Inventory Confirmation", Answer::Yes);
        Click(dialog, "cmdAddLot");
      },
      earlier);
  ASSERT_TRUE(result);
  EXPECT_TRUE(result->Get<bool>("AdjustInventory"));
  const auto selection = result->Get<LotSelection>("Selection");
  ASSERT_EQ(selection.uses.size(), 1U);
  EXPECT_EQ(selection.uses[0].LotQty, 2.0F);
  EXPECT_TRUE(selection.uses[0].Remove);
}

TEST_F(LotSelectorTest, DeselectingAndLeavingAskAndNothingIsNeededIsTold) {
  const auto result = Select(10, [&](QWidget& dialog) {
    // A click on the box checks, too.
    const QRect box = list->View().visualRect(list->Model().index(1, 0));
    QTest::mouseClick(list->View().viewport(), Qt::LeftButton, Qt::NoModifier, box.center());
    Settle();
    EXPECT_EQ(Used(1), "6.000");
    prompt.Expect("Lot Selections", Answer::No, "Deselect all Lot Selections?");
    Click(dialog, "DSelAll");
    prompt.Expect("Lot Selections", Answer::Yes);
    Click(dialog, "DSelAll");
    EXPECT_EQ(Value("QtyConsumed"), "10.000");
    prompt.Expect("Cancel Without Saving Changes?", Answer::No, "Cancel without saving changes?");
    Click(dialog, "cmdCancel");
    prompt.Expect("Cancel Without Saving Changes?", Answer::Yes);
    Press(dialog, Qt::Key_Escape);
  });
  EXPECT_FALSE(result);
  prompt.Expect(std::string(40, ' ') + "Lot Selection Disabled", Answer::Ok,
                "A negative Batch Addition has been applied to this color.\n\nIt has created a Zero Quantity for the "
                "Ingredient.");
  QWidget behind;
  ShowActive(behind);
  EXPECT_FALSE(windows.RunDialog("BatchLotInvSelector",
                                 {{"IngName", "RED"}, {"Kind", LineKind::Basic}, {"IngQty", 0.0F}, {"Unit", 1}}));
}

// One key where a lot has enough, one more for each further lot; one for all lines with the oldest first.
TEST_F(LotSelectorTest, EnterTakesWhatIsNeededAndF2TheOldest) {
  Lot(ColorKind::Basic, "RED", 4, 5, {{"LotDate", DateTime{2025, 6, 1}}});
  Lot(ColorKind::Basic, "RED", 5, 5, {{"LotDate", nullptr}});
  const struct {
    float need;
    std::vector<Qt::Key> keys;
    std::vector<std::pair<int, float>> taken;
  } cases[] = {
      {5, {Qt::Key_Return}, {{1, 5}}},
      {10, {Qt::Key_Return, Qt::Key_Return}, {{1, 6}, {2, 4}}},
      {10, {Qt::Key_F2}, {{4, 5}, {1, 5}}},
      {25, {Qt::Key_F2}, {{4, 5}, {1, 6}, {2, 7}, {5, 5}, {0, 2}}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.need);
    const auto result = Select(c.need, [&](QWidget&) {
      EXPECT_EQ(list->CurrentRow(), 1) << "the first lot with stock";
      for (const Qt::Key key : c.keys) PressOn(key);
    });
    ASSERT_TRUE(result);
    std::vector<std::pair<int, float>> taken;
    for (const LotUse& use : result->Get<LotSelection>("Selection").uses) taken.emplace_back(use.LotRefID, use.LotQty);
    EXPECT_EQ(taken, c.taken);
    EXPECT_EQ(result->Has("OldestFirst"), c.keys.front() == Qt::Key_F2);
  }
}

}  // namespace
}  // namespace vellumark::test
