// Stock entered by the keys of an operator.

#include <gtest/gtest.h>

#include <QCheckBox>
#include <QTabWidget>

#include "core/base/number.h"
#include "core/colors/basic_work.h"
#include "core/colors/basics.h"
#include "core/colors/formulas.h"
#include "core/colors/rename.h"
#include "core/inventory/adjust.h"
#include "core/inventory/posting.h"
#include "core/session/options.h"
#include "desktop/inventory/inventory_desk.h"

namespace vellumark::test {
namespace {

const std::string kPad25(25, ' ');

struct AdjustInventoryTest : testing::Test, InventoryDesk {};

TEST_F(AdjustInventoryTest, ASmallStockCountByKeyboardAgreesEverywhere) {
  ByContainer();
  const int count = 20;
  const auto name = [](const char* what, int i) { return what + std::string(i < 10 ? "0" : "") + std::to_string(i); };
  for (int i = 0; i < count; ++i) {
    Color(ColorKind::Basic, name("INK ", i), 0);
    Color(ColorKind::Mix, name("MIX ", i), 0);
  }
  Open();
  EXPECT_EQ(FocusName(), "cmbColorName");
  for (int i = 0; i < count; ++i) {
    for (const char* what : {"ink ", "mix "}) {
      Enter(name(what, i));
      ASSERT_EQ(FocusName(), "AdjustInv");
      TypeOn(std::to_string(i) + ".125");
      PressOn(Qt::Key_F5);  // unlotted stock
      ASSERT_EQ(FocusName(), "AdjustInv");
      // A delivery of three containers, each of 5.
      Keys({"5", "L" + std::to_string(i), "shelf " + std::to_string(i % 3), i % 2 == 0 ? "B10" : "7", "3", "2.5", ""});
      ASSERT_EQ(FocusName(), "AdjustInv");
      PressOn(Qt::Key_S, Qt::ControlModifier);
      ASSERT_EQ(FocusName(), "cmbColorName");
    }
  }
  // Corrected: the middle container was not full, the first is not there at all.
  Enter("INK 04");
  ASSERT_EQ(List().ShownRows().size(), 4U);
  EXPECT_EQ(Row(0), "Unlotted Inv.|||4.125||4.00|No");
  EXPECT_EQ(Row(2).substr(0, 23), "L4|shelf 1|B10_2|5.000|");
  List().setFocus();
  List().SetCurrentRow(2);
  EXPECT_EQ(Text("cmbLotNum"), "L4");
  EXPECT_EQ(Text("ContID"), "B10_2");
  PressOn(Qt::Key_Return);
  EXPECT_EQ(FocusName(), "AdjustInv");
  TypeOn("-1.25");
  PressOn(Qt::Key_F5);
  List().SetCurrentRow(1);
  Fill(*form, "AdjustInv", "-5");
  PressOn(Qt::Key_F5);
  EXPECT_EQ(Text("lblInvLotted"), "8.750");
  EXPECT_EQ(Text("lblInvTotal"), "12.875");
  PressOn(Qt::Key_S, Qt::ControlModifier);

  float total = 0;
  int lots = 0;
  for (const ColorStock& stock : ListStock(session)) {
    total += stock.total;
    lots += static_cast<int>(stock.lots.size());
    Enter(stock.Color_Name);
    EXPECT_EQ(Text("lblInvTotal"), Fixed(stock.total, 3)) << stock.Color_Name;
    for (const LotRow& lot : stock.lots) EXPECT_EQ(lot.LotPrice, 2.5F);
  }
  EXPECT_EQ(lots, 2 * count * 3 - 1);
  // Unlotted twice 1.125 to 19.125 (0.125 is below the cutoff), forty times three fives, less what was corrected.
  EXPECT_EQ(Fixed(total, 3), "978.500");
  EXPECT_EQ(LotQty(ColorKind::Basic, "INK 04", 2).Single(), 3.75F);
  EXPECT_TRUE(LotQty(ColorKind::Basic, "INK 04", 1).IsNull());
}

TEST_F(AdjustInventoryTest, WhatIsTypedWrongIsRefusedWhereItStands) {
  ByContainer();
  Color(ColorKind::Basic, "RED", 3);
  Color(ColorKind::Basic, "FULL", 99998);
  Color(ColorKind::Mix, "PINK", 3);
  Open();
  const std::string range = "You must enter an amount between -99999 and 99999";
  const struct {
    const char* what;
    const char* color;
    std::vector<std::pair<const char*, const char*>> typed;
    std::string title;
    std::string text;
    const char* focus;
  } cases[] = {
      {"no number", "RED", {{"AdjustInv", "-"}}, "Invalid Quantity - Adjust Inv.", range, "AdjustInv"},
      {"out of range", "RED", {{"AdjustInv", "99999.001"}}, "Invalid Quantity - Adjust Inv.", range, "AdjustInv"},
      {"a formula below zero",
       "PINK",
       {{"AdjustInv", "-5"}},
       "Adjust Value",
       "New Inventory is less than zero.\nNegative Inventory not allowed.",
       "AdjustInv"},
      {"too much of a color",
       "FULL",
       {{"AdjustInv", "5"}},
       "Adjust Value",
       "New Inventory is too large.\n99999 is the largest Qty allowed.",
       "AdjustInv"},
      {"too many containers",
       "RED",
       {{"AdjustInv", "25000"}, {"cmbLotNum", "L1"}, {"cmbContCount", "5"}},
       "Container Count",
       "The number of containers selected will cause inventory to exceed: 99999\n\nEnter less containers or lower "
       "Adjust Qty",
       "cmbContCount"},
      {"a price below zero",
       "RED",
       {{"AdjustInv", "1"}, {"cmbLotNum", "L1"}, {"cmbPrice", "-1"}},
       "Invalid Amount - Price",
       "You must enter currency between\n0 and 99999",
       "cmbPrice"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    Enter(c.color);
    const std::vector<std::string> before = Rows();
    for (const auto& [field, text] : c.typed) {
      Control(*form, field).setFocus(Qt::TabFocusReason);
      PressOn(Qt::Key_A, Qt::ControlModifier);
      TypeOn(text);
    }
    prompt.Expect(c.title, Answer::Ok, c.text);
    PressOn(Qt::Key_F5);
    EXPECT_EQ(FocusName(), c.focus);
    EXPECT_EQ(Rows(), before);
    prompt.Expect("Cancel Without Saving Changes?", Answer::Yes, "Cancel without saving changes?");
    Click(*form, "cmdCancel");
  }

  const struct {
    const char* field;
    const char* title;
    const char* text;
  } figures[] = {
      {"txtReorder", "Invalid Quantity - Reorder", "You must enter an amount between\n0 and 99999"},
      {"txtPurchaseCost", "Invalid Amount - Purchase Cost", "You must enter currency between\n0 and 99999"},
      {"txtVOC", "Invalid Quantity - VOC", "You must enter an amount between\n0 and 99999"},
      {"txtHAP", "Invalid Quantity - HAP", "You must enter an amount between\n0 and 99999"},
  };
  for (const auto& c : figures) {
    SCOPED_TRACE(c.field);
    Enter("RED");
    Control(*form, c.field).setFocus(Qt::TabFocusReason);
    PressOn(Qt::Key_A, Qt::ControlModifier);
    TypeOn("-1");
    prompt.Expect(c.title, Answer::Ok, c.text);
    PressOn(Qt::Key_S, Qt::ControlModifier);
    EXPECT_EQ(FocusName(), c.field);
    prompt.Expect("Cancel Without Saving Changes?", Answer::Yes);
    Click(*form, "cmdCancel");
  }
  prompt.Expect("Inventory - Color not found", Answer::Ok,
                "This color was not found in the INK database.\nUse the Basic Color or Master Formula Window\nto add "
                "this color to the database.");
  Enter("NOTHING");
  EXPECT_EQ(FocusName(), "cmbColorName");
  EXPECT_EQ(Text("cmbColorName"), "");
}

TEST_F(AdjustInventoryTest, TheCutoffAndNegativeStockFollowTheSettings) {
  Color(ColorKind::Basic, "RED", 3);
  Color(ColorKind::Mix, "PINK", 3);
  Open();
  Enter("RED");
  Keys({"-2.9"});
  PressOn(Qt::Key_F5);
  EXPECT_EQ(Row(0).substr(0, 19), "Unlotted Inv.|||0.0");  // at or below 0.5 counts as nothing
  prompt.Expect("Cancel Without Saving Changes?", Answer::Yes);
  Click(*form, "cmdCancel");
  NegativeAllowed();
  Enter("RED");
  TypeOn("-5");
  PressOn(Qt::Key_F5);
  EXPECT_EQ(Text("lblInvUnlotted"), "-2.000");
  PressOn(Qt::Key_S, Qt::ControlModifier);
  EXPECT_EQ(Inventory(ColorKind::Basic, "RED").Single(), -2.0F);
}

TEST_F(AdjustInventoryTest, AQuantityLeftBehindIsAskedAbout) {
  Color(ColorKind::Basic, "RED", 3);
  Open();
  Enter("RED");
  TypeOn("4");
  prompt.Expect("Inventory Calculation", Answer::Yes,
                "Unfinished inventory calculation.\nWould you like to complete the work?");
  PressOn(Qt::Key_S, Qt::ControlModifier);
  EXPECT_EQ(FocusName(), "AdjustInv");
  prompt.Expect("Inventory Calculation", Answer::No);
  PressOn(Qt::Key_S, Qt::ControlModifier);
  EXPECT_EQ(Inventory(ColorKind::Basic, "RED").Single(), 3.0F);
}

TEST_F(AdjustInventoryTest, ANameThatBothKindsBearIsAskedAbout) {
  Color(ColorKind::Basic, "RED", 3);
  Color(ColorKind::Mix, "RED", 8);
  Open();
  const std::string text =
      "The INK database contains a Formula and a Basic called:\nRED.\n\nYes - Adjust the Formula\nNo - Adjust the "
      "Basic.";
  prompt.Expect(kPad25 + " Adjust Inventory", Answer::Yes, text);
  Enter("RED");
  EXPECT_EQ(Text("lblInvTotal"), "8.000");
  EXPECT_EQ(Text("lblKind"), "Master Formula");
  Fill(*form, "txtInvNote", "checked");
  Click(*form, "chkRecycle");
  PressOn(Qt::Key_S, Qt::ControlModifier);
  EXPECT_EQ(ReadMix(session, "RED")->Inv_Note, "checked");
  prompt.Expect(kPad25 + " Adjust Inventory", Answer::No, text);
  Enter("RED");
  EXPECT_EQ(Text("lblInvTotal"), "3.000");
  EXPECT_EQ(ReadBasic(session, "RED")->Inv_Note, "");
}

TEST_F(AdjustInventoryTest, LargeCountsAreConfirmedAndPricesChosen) {
  ByContainer();
  Color(ColorKind::Mix, "PINK", 0);
  Open();
  Enter("PINK");
  EXPECT_EQ(Text("cmbPrice"), "3.00");
  auto& price = Control<QComboBox>(*form, "cmbPrice");
  EXPECT_EQ(price.itemText(1), "2) Purchase Cost");
  price.setFocus(Qt::TabFocusReason);
  PressOn(Qt::Key_Down);
  PressOn(Qt::Key_Down);
  Fill(*form, "AdjustInv", "2");
  Fill(*form, "cmbLotNum", "BIG");
  Fill(*form, "cmbContCount", "101");
  prompt.Expect("      Large Unit Count Confirmation", Answer::No, "Use 101 for the Unit Count?");
  PressOn(Qt::Key_F5);
  EXPECT_EQ(FocusName(), "cmbContCount");
  EXPECT_EQ(Text("cmbContCount"), "");
  TypeOn("101");
  prompt.Expect("      Large Unit Count Confirmation", Answer::Yes);
  PressOn(Qt::Key_F5);
  EXPECT_EQ(List().ShownRows().size(), 102U);
  EXPECT_EQ(Text("lblInvLotted"), "202.000");
}

TEST_F(AdjustInventoryTest, DatesOfLotsComeFromTheCalendarUnlessABatchGaveThem) {
  Color(ColorKind::Mix, "PINK", 0);
  Lot(ColorKind::Mix, "PINK", 1, 5);
  Lot(ColorKind::Mix, "PINK", 2, 5);
  AddRow(schema::Batch, {{"BatchNo", 7}, {"Color_Name", "PINK"}, {"LotRefID", 2}, {"LotNumber", "L2"}});
  Open();
  Enter("PINK");
  List().SetCurrentRow(2);
  prompt.Expect("Date Change", Answer::Ok,
                "This inventory item was dated by a Batch creation.\n\nUpdate / Change the Batch to alter this date.");
  Click(*form, "lblDate");
  List().SetCurrentRow(1);
  const std::string before = Text("lblDate");
  WithModal([&] { Click(*form, "lblDate"); },
            [&](QWidget& dialog) {
              EXPECT_EQ(FocusName(), "Cal_View");
              Picture(dialog, "inventory-calendar", {});
              PressOn(Qt::Key_Right);
              PressOn(Qt::Key_Return);
            });
  ShowActive(*form);
  EXPECT_NE(Text("lblDate"), before);
  Fill(*form, "AdjustInv", "1");
  PressOn(Qt::Key_F5);
  PressOn(Qt::Key_S, Qt::ControlModifier);
  EXPECT_EQ(GetLotDate(session, ColorKind::Mix, "PINK", 1), "2026-01-16");
  EXPECT_EQ(GetLotDate(session, ColorKind::Mix, "PINK", 2), "2026-01-15");
}

TEST_F(AdjustInventoryTest, AnotherWindowsSaveIsShownAndNothingTypedIsLost) {
  Color(ColorKind::Basic, "RED", 3);
  Lot(ColorKind::Basic, "RED", 1, 5);
  const auto elsewhere = [&](float quantity) {
    InventoryWork work = LoadInventory(session, ColorKind::Basic, "RED");
    AdjustFields fields = ClearedFields(session, work);
    fields.quantity = quantity;
    ASSERT_TRUE(ApplyAdjust(session, work, fields));
    ASSERT_TRUE(SaveInventory(session, work));
    windows.DeliverChanges();
  };
  Open();
  Enter("RED");
  elsewhere(10);
  EXPECT_EQ(Text("lblInvTotal"), "18.000");
  // What stands in the fields stays, and so does the selected lot.
  List().SetCurrentRow(1);
  Fill(*form, "AdjustInv", "7");
  elsewhere(1);
  EXPECT_EQ(Text("AdjustInv"), "7.000");
  EXPECT_EQ(List().CurrentRow(), 1);
  EXPECT_EQ(Text("lblInvTotal"), "19.000");
  // A list with a change of its own is kept until it is saved.
  PressOn(Qt::Key_F5);
  elsewhere(1);
  EXPECT_EQ(Text("lblInvTotal"), "26.000");
  EXPECT_TRUE(form->InEdit());
  PressOn(Qt::Key_S, Qt::ControlModifier);
  EXPECT_EQ(LotQty(ColorKind::Basic, "RED", 1).Single(), 12.0F);

  Enter("RED");
  Fill(*form, "AdjustInv", "7");
  prompt.Expect("Basic Color Window - Delete Basic Color?", Answer::Yes);
  ASSERT_TRUE(DeleteBasic(session, "RED").value());
  windows.DeliverChanges();
  EXPECT_EQ(Text("cmbColorName"), "");
  EXPECT_FALSE(form->InEdit());
}

TEST_F(AdjustInventoryTest, TheListIsSortedUnderItsFirstRowAndFiltered) {
  Color(ColorKind::Basic, "RED", 3);
  Lot(ColorKind::Basic, "RED", 1, 9);
  Lot(ColorKind::Basic, "RED", 2, 5, {{"LotLoc", "NORTH"}});
  Lot(ColorKind::Basic, "RED", 3, 7);
  Open();
  Enter("RED");
  const auto lots = [&] {
    std::string text;
    for (const std::string& row : Rows()) text += row.substr(0, row.find('|')) + " ";
    return text;
  };
  EXPECT_EQ(lots(), "Unlotted Inv. L1 L2 L3 ");
  List().ClickCaption(4, false);
  EXPECT_EQ(lots(), "Unlotted Inv. L2 L3 L1 ");
  List().ClickCaption(4, false);
  EXPECT_EQ(lots(), "Unlotted Inv. L1 L3 L2 ");
  Type(Control(*form, "InvColorList_Filter"), "north");
  EXPECT_EQ(lots(), "Unlotted Inv. L2 ");
}

TEST_F(AdjustInventoryTest, FiftyThousandLotsStayUsable) {
  Color(ColorKind::Basic, "RED", 3);
  Color(ColorKind::Basic, "BLUE", 3);
  FillLots(ColorKind::Basic, "RED", 50000);
  Open();
  Enter("BLUE");
  const CpuTimer load;
  Click(*form, "cmdCancel");
  Enter("RED");
  EXPECT_EQ(List().ShownRows().size(), 50001U);
  EXPECT_LT(load.Ms(), 2500 * kSlower);
  const CpuTimer work;
  TypeOn("12");
  List().ClickCaption(4, false);
  List().SetCurrentRow(40000);
  Fill(*form, "AdjustInv", "2");
  PressOn(Qt::Key_F5);
  EXPECT_EQ(Text("lblInvLotted"), "50002.000");
  EXPECT_LT(work.Ms(), 2500 * kSlower);
}

TEST_F(AdjustInventoryTest, TheSettingsNeedTheRightAndRelabelTheWindow) {
  Color(ColorKind::Basic, "RED", 3);
  Open();
  auto& tabs = Control<QTabWidget>(*form, "Inventory_TabStrip");
  Enter("RED");
  TypeOn("1");
  PressOn(Qt::Key_F5);
  prompt.Expect(
      "Update Inventory Settings", Answer::Ok,
      "A Manual inventory transaction is in process.\nSave or Clear data before changing inventory settings.");
  tabs.setCurrentIndex(2);
  EXPECT_EQ(tabs.currentIndex(), 0);
  PressOn(Qt::Key_S, Qt::ControlModifier);
  session.CurrentUser = "ANNA";
  session.Perm_Options = 0;
  prompt.Expect("Update Inventory Settings", Answer::Ok,
                "Current User does not have permission to make changes..\nUpdate permissions or have another user to "
                "adjust these settings.");
  tabs.setCurrentIndex(2);
  EXPECT_EQ(tabs.currentIndex(), 0);
  session.Perm_Options = 1;
  tabs.setCurrentIndex(2);
  EXPECT_EQ(tabs.currentIndex(), 2);
  Picture(*form, "inventory-settings");
  Fill(*form, "txtCutoff", "-1");
  prompt.Expect("Invalid Inventory Cutoff", Answer::Ok, "You must enter an amount greater than or equal to zero.");
  Click(*form, "cmdSave");
  EXPECT_EQ(FocusName(), "txtCutoff");
  Fill(*form, "txtCutoff", "0.25");
  auto& unit = Control<QComboBox>(*form, "cmbUMI");
  Press(unit, Qt::Key_Down);
  Click(*form, "optUnit");
  prompt.Expect("Inventory Unit");
  Click(*form, "cmdSave");
  windows.DeliverChanges();
  EXPECT_EQ(session.UMI, 2);
  EXPECT_FALSE(form->InEdit());
  tabs.setCurrentIndex(0);
  EXPECT_EQ(Text("lblAdjustInv"), "Unit Weight (kg.)");
  EXPECT_TRUE(Control(*form, "ContID").isVisible());
  Click(*form, "cmbColorName");
  session.InvLotTracking = 0;
  session.changes.Tell({{Change::Kind::Settings, "", "", Change::What::All, ""}});
  windows.DeliverChanges();
  Enter("RED");
  EXPECT_FALSE(List().isVisible());
  EXPECT_FALSE(Control(*form, "cmbLotNum").isVisible());
  Keys({"5"});  // the last field there is
  EXPECT_EQ(Text("lblInvTotal"), "9.000");
  Picture(*form, "inventory-unlotted");
}

TEST_F(AdjustInventoryTest, ClosingAsksAndLowStockIsMarked) {
  Color(ColorKind::Basic, "RED", 3, {{"Reorder", 3.001F}});
  Open();
  Enter("RED");
  prompt.Expect("Inventory", Answer::Ok, "Inventory is below Reorder amount.");
  Click(*form, "ImgInvLow");
  Fill(*form, "AdjustInv", "1");
  prompt.Expect("Inventory - Save Information?", Answer::Cancel, "Save changes before closing?");
  EXPECT_FALSE(form->Leave());
  PressOn(Qt::Key_F5);
  prompt.Expect("Inventory - Save Information?", Answer::Yes, "Save changes before closing?");
  EXPECT_TRUE(form->Leave());
  EXPECT_EQ(Inventory(ColorKind::Basic, "RED").Single(), 4.0F);
}

TEST_F(AdjustInventoryTest, TheReorderPointOfTheColorShownIsOneKeyAwayFromTheSettings) {
  Basic("RED");
  Mix("RED", {{"RED", 100}});
  Open({{"FindRecord", std::string("RED")}, {"Kind", ColorKind::Mix}});
  Control<QTabWidget>(*form, "Inventory_TabStrip").setCurrentIndex(2);
  Click(*form, "cmdAdjustReorder");
  form = windows.Form("AdjustReorderForm");
  ASSERT_NE(form, nullptr);
  EXPECT_EQ(Text("cmbColorName"), "RED");
  EXPECT_EQ(Text("lblKind"), "Master Formula");
}

TEST_F(AdjustInventoryTest, PricesAreHiddenFromWhoMayNotSeeThem) {
  Color(ColorKind::Basic, "RED", 3);
  session.CurrentUser = "ANNA";
  session.Perm_Costs = 0;
  Open();
  Enter("RED");
  EXPECT_FALSE(Control(*form, "cmbPrice").isVisible());
  EXPECT_EQ(Text("lblPriceBlocked_Inv"), "User Permissions - Price Blocked");
  EXPECT_FALSE(List().IsShown(6));
  Keys({"2", "L9", "", ""});
  PressOn(Qt::Key_S, Qt::ControlModifier);
  EXPECT_EQ(LotsOf(session, ColorKind::Basic, "RED").at(0).LotPrice, 4.0F);
}

TEST_F(AdjustInventoryTest, TheFirstInventoryWindowRemindsOfLots) {
  Setting(setting::LottedInvReminder.key, "1");
  WithModal(
      [&] {
        form = windows.OpenForm("AdjustInventoryForm");
        form->show();
        Settle();
      },
      [&](QWidget& dialog) {
        EXPECT_EQ(dialog.objectName(), "InvLotInstructions");
        Picture(dialog, "inventory-lot-instructions", {});
        Click(dialog, "chkNever");
        Click(dialog, "cmdOK");
      });
  EXPECT_EQ(session.support->settings.GetSupportValue(setting::LottedInvReminder.key), "0");
  ShowActive(*form);
  EXPECT_TRUE(form->Leave());
  Settle();
  Open();  // a second question would find no answer
}

TEST_F(AdjustInventoryTest, CheckedRowsAreResetAtOnce) {
  Color(ColorKind::Mix, "PINK", 3);
  for (int ref = 1; ref <= 3; ++ref) Lot(ColorKind::Mix, "PINK", ref, 5);
  AddRow(schema::Batch, {{"BatchNo", 7}, {"Color_Name", "PINK"}, {"LotRefID", 2}, {"LotNumber", "L2"}});
  Open();
  Enter("PINK");
  EXPECT_FALSE(List().IsShown(0));
  Control<QTabWidget>(*form, "Frame_Tabs").setCurrentIndex(1);
  EXPECT_TRUE(List().IsShown(0));
  prompt.Expect("Reset Task", Answer::Ok, "Check items to perform a reset task.");
  Click(*form, "cmdResetInv");
  Click(*form, "SelAll");
  prompt.Expect("Reset Dates", Answer::Yes, "Reset all Lotted Inv Dates ?");
  Click(*form, "cmdResetDate");
  EXPECT_EQ(GetLotDate(session, ColorKind::Mix, "PINK", 1), "2026-03-10");
  EXPECT_EQ(GetLotDate(session, ColorKind::Mix, "PINK", 2), "2026-01-15") << "a Batch dated it";
  Fill(*form, "cmbResetPrice", "-1");
  prompt.Expect("Invalid Amount - Price", Answer::Ok, "You must enter currency between\n0 and 99999");
  Click(*form, "cmdResetPrice");
  EXPECT_EQ(FocusName(), "cmbResetPrice");
  Fill(*form, "cmbResetPrice", "2.5");
  prompt.Expect("Reset Prices", Answer::No, "Reset all Lotted Prices ?");
  Click(*form, "cmdResetPrice");
  prompt.Expect("Reset Prices", Answer::Yes);
  Click(*form, "cmdResetPrice");
  EXPECT_EQ(LotsOf(session, ColorKind::Mix, "PINK").at(2).LotPrice, 2.5F);
  Picture(*form, "inventory-reset-rows");
  Click(*form, "DSelAll");
  List().setFocus();
  List().SetCurrentRow(0);
  PressOn(Qt::Key_Space);
  PressOn(Qt::Key_Down);
  PressOn(Qt::Key_Space);
  prompt.Expect("Reset Inventory", Answer::Yes, "Reset Selected Items Inventory to 0 ?");
  Click(*form, "cmdResetInv");
  EXPECT_EQ(Inventory(ColorKind::Mix, "PINK").Single(), 0.0F);
  EXPECT_TRUE(LotQty(ColorKind::Mix, "PINK", 1).IsNull());
  windows.DeliverChanges();
  EXPECT_EQ(Text("lblInvTotal"), "10.000");
  EXPECT_FALSE(form->InEdit());
}

TEST_F(AdjustInventoryTest, ACheckStaysWithItsLotAndGoesWithWhatTheFilterHides) {
  Color(ColorKind::Mix, "PINK", 3);
  for (int ref = 1; ref <= 4; ++ref) Lot(ColorKind::Mix, "PINK", ref, 5, {{"LotLoc", ref == 2 ? "NORTH" : "SOUTH"}});
  Open();
  Enter("PINK");
  const auto checked = [&] {
    std::string lots;
    const desktop::GridSource& source = *List().Model().Source();
    for (const int row : List().ShownRows())
      if (source.Mark(row, 0) == std::string("box-checked")) lots += source.Text(row, 1) + " ";
    return lots;
  };
  auto& filter = Control<QLineEdit>(*form, "InvColorList_Filter");
  auto& tabs = Control<QTabWidget>(*form, "Frame_Tabs");
  tabs.setCurrentIndex(1);
  Type(filter, "north");
  Click(*form, "SelAll");
  filter.clear();
  EXPECT_EQ(checked(), "Unlotted Inv. L2 ");
  prompt.Expect("Reset Inventory", Answer::Yes);
  Click(*form, "cmdResetInv");
  EXPECT_EQ(LotQtyTotal(session, ColorKind::Mix, "PINK"), 15);

  // The lot before it is used up, and one comes anew.
  List().setFocus();
  List().SetCurrentRow(2);
  PressOn(Qt::Key_Space);
  EXPECT_EQ(checked(), "L3 ");
  tabs.setCurrentIndex(0);
  List().SetCurrentRow(1);
  Fill(*form, "AdjustInv", "-5");
  PressOn(Qt::Key_F5);
  EXPECT_EQ(checked(), "L3 ");
  PressOn(Qt::Key_S, Qt::ControlModifier);
  Enter("PINK");
  EXPECT_EQ(checked(), "") << "another time, another choice";
  tabs.setCurrentIndex(1);
  Click(*form, "SelAll");
  Type(filter, "l4");
  filter.clear();
  EXPECT_EQ(checked(), "Unlotted Inv. L4 ");
  PostStock(session, {PostingSource::BatchTakes, ColorKind::Mix, "PINK", {}, 5, {.LotRefID = 3}});
  windows.DeliverChanges();
  EXPECT_EQ(checked(), "Unlotted Inv. L4 ") << "what a Batch took all of has left the list";
}

TEST_F(AdjustInventoryTest, TheHistoryTellsWhyThereIsWhatThereIs) {
  Color(ColorKind::Basic, "RED", 3);
  Color(ColorKind::Basic, "BLUE", 1);
  session.CurrentUser = "ANNA";
  Open();
  Enter("RED");
  Fill(*form, "txtReason", "Count of March");
  Fill(*form, "AdjustInv", "2");
  PressOn(Qt::Key_F5);
  PressOn(Qt::Key_S, Qt::ControlModifier);
  Enter("BLUE");
  TypeOn("6");
  PressOn(Qt::Key_F5);
  PressOn(Qt::Key_S, Qt::ControlModifier);
  Enter("RED");
  PressOn(Qt::Key_F7);
  desktop::Window* history = windows.Form("StockHistoryForm");
  ASSERT_NE(history, nullptr);
  ShowActive(*history);
  auto& lines = Control<desktop::Grid>(*history, "fgHistory");
  const auto shown = [&](int row) {
    std::string text;
    for (const int column : {1, 3, 5, 6, 7, 9})
      text += lines.Model().Source()->Text(lines.ShownRows().at(static_cast<std::size_t>(row)), column) + "|";
    return text;
  };
  ASSERT_EQ(lines.ShownRows().size(), 2U);
  EXPECT_EQ(shown(0), "ANNA|RED|Unlotted Inv.|+2.000|5.000|Count of March|");
  Fill(*history, "cmbColorName", "");
  Click(*history, "cmdFind");
  EXPECT_EQ(lines.ShownRows().size(), 4U);
  EXPECT_EQ(shown(0), "ANNA|BLUE|Unlotted Inv.|+6.000|7.000||") << "the newest first";
  Picture(*history, "inventory-history");
  Type(Control(*history, "fgHistory_Filter"), "march");
  EXPECT_EQ(lines.ShownRows().size(), 1U);
  Fill(*history, "txtLotNumber", "L1");
  Click(*history, "cmdFind");
  EXPECT_EQ(lines.ShownRows().size(), 0U);
}

TEST_F(AdjustInventoryTest, ALongHistoryIsReadAsFarAsItIsLookedAt) {
  constexpr int kLines = 20000;
  Color(ColorKind::Basic, "RED", 0);
  Color(ColorKind::Basic, "BLUE", 0);
  session.File()
      .Prepare(
          "INSERT INTO MSysStockHistory (Moment, Source, Kind, Database, Color_Name, LotRefID, LotNumber, Change, "
          "Result, Document, Reason) WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < ?1) "
          "SELECT '2026-03-01 08:00:00', 7, 1, 'INK', iif(i % 2, 'RED', 'BLUE'), i % 10 = 0, iif(i % 10, '', 'A'), "
          "iif(i % 4 < 2, 1, -1), i % 4 < 2, '', iif(i % 5000 = 7, 'the Odd one ' || i, '') FROM n")
      .Bind(1, kLines)
      .Run();
  desktop::Window* history = windows.OpenForm("StockHistoryForm");
  ShowActive(*history);
  auto& lines = Control<desktop::Grid>(*history, "fgHistory");
  const auto count = [&] { return Control<QLabel>(*history, "lblCount").text(); };
  const auto id = [&](int row) {
    return lines.Model().Source()->Key(lines.ShownRows().at(static_cast<std::size_t>(row)));
  };
  const auto settled = [&] { return QTest::qWaitFor([&] { return !lines.Model().canFetchMore(); }, 20000); };
  EXPECT_LT(lines.ShownRows().size(), 2000U);
  EXPECT_TRUE(count().startsWith("The latest "));
  EXPECT_EQ(id(0), kLines);
  const std::size_t first = lines.ShownRows().size();
  lines.View().scrollToBottom();
  EXPECT_TRUE(QTest::qWaitFor([&] { return lines.ShownRows().size() > first; }, 5000));
  EXPECT_EQ(id(static_cast<int>(first)), kLines - static_cast<int>(first));

  // The filter looks through all of it, on the way.
  Type(Control(*history, "fgHistory_Filter"), "ODD one");
  EXPECT_TRUE(settled());
  ASSERT_EQ(lines.ShownRows().size(), 4U);
  EXPECT_EQ(id(3), 7);
  EXPECT_EQ(count(), "4 lines");
  lines.SetCurrentRow(lines.ShownRows()[2]);
  const auto current = id(2);
  PostStock(session, {PostingSource::ScanReturn, ColorKind::Basic, "RED", {}, 4, {}, false, {}});
  windows.DeliverChanges();
  EXPECT_TRUE(settled());
  EXPECT_EQ(lines.Model().Source()->Key(lines.CurrentRow()), current);
  Control<QLineEdit>(*history, "fgHistory_Filter").clear();

  // Another order than its own needs all lines.
  lines.ClickCaption(6, false);
  EXPECT_EQ(lines.ShownRows().size(), static_cast<std::size_t>(kLines) + 1);
  lines.ClickCaption(6, false);
  EXPECT_EQ(id(0), kLines + 1) << "the largest first";
  lines.SetSort({0, true});
  Fill(*history, "cmbColorName", "BLUE");
  Fill(*history, "txtLotNumber", "a");
  Click(*history, "cmdFind");
  lines.SetSort({6, false});
  EXPECT_EQ(lines.ShownRows().size(), static_cast<std::size_t>(kLines) / 10);
  EXPECT_EQ(count(), QLocale().toString(kLines / 10) + " lines");
  Breaks("StockHistory");
}

TEST_F(AdjustInventoryTest, WhatMovedMeanwhileStaysMoved) {
  Color(ColorKind::Basic, "RED", 100);
  Open();
  Enter("RED");
  TypeOn("10");
  PressOn(Qt::Key_F5);
  PostStock(session, {PostingSource::BatchTakes, ColorKind::Basic, "RED", {}, 30, {}});
  PressOn(Qt::Key_S, Qt::ControlModifier);
  EXPECT_EQ(Inventory(ColorKind::Basic, "RED"), Value(80.0F));

  Enter("RED");
  TypeOn("-60");
  PressOn(Qt::Key_F5);
  PostStock(session, {PostingSource::BatchTakes, ColorKind::Basic, "RED", {}, 50, {}});
  prompt.Expect("Adjust Value");
  PressOn(Qt::Key_S, Qt::ControlModifier);
  EXPECT_EQ(Inventory(ColorKind::Basic, "RED"), Value(30.0F)) << "nothing was saved";
  EXPECT_EQ(Text("cmbColorName"), "RED");
}

TEST_F(AdjustInventoryTest, TheHistoryOfOneOfTwoColorsOfANameStaysWithIt) {
  Color(ColorKind::Basic, "RED", 0);
  Color(ColorKind::Mix, "RED", 0);
  PostStock(session, {PostingSource::ScanReturn, ColorKind::Basic, "RED", {}, 4, {}});
  desktop::Window* history = windows.OpenForm("StockHistoryForm", {{"Color_Name", "RED"}, {"Kind", ColorKind::Basic}});
  ShowActive(*history);
  auto& name = Control<QLineEdit>(*history, "cmbColorName");
  auto& lines = Control<desktop::Grid>(*history, "fgHistory");
  ASSERT_EQ(lines.ShownRows().size(), 1U);
  ASSERT_TRUE(RenameColor(session, "RED", "WINE"));
  windows.DeliverChanges();
  EXPECT_EQ(name.text(), "RED");
  EXPECT_EQ(lines.ShownRows().size(), 1U);
  ASSERT_TRUE(RenameBasic(session, "RED", "RUBY"));
  windows.DeliverChanges();
  EXPECT_EQ(name.text(), "RUBY");
  EXPECT_EQ(lines.ShownRows().size(), 2U);
}

TEST_F(AdjustInventoryTest, Pictures) {
  ByContainer();
  Color(ColorKind::Mix, "PANTONE 185 C", 12.5F,
        {{"Color_Code", "185"}, {"Red", 228}, {"Green", 0}, {"Blue", 43}, {"Reorder", 400.0F}, {"Notes", "Press 3"}});
  const char* const places[] = {"SHELF A", "SHELF A", "SHELF B", "COLD STORE"};
  for (int i = 1; i <= 12; ++i)
    Lot(ColorKind::Mix, "PANTONE 185 C", i, 4.25F * static_cast<float>(i),
        {{"LotNumber", "2026-0" + std::to_string(1 + i / 4)},
         {"LotLoc", places[i % 4]},
         {"LotContID", "B" + std::to_string(i)},
         {"LotConsignment", i == 5}});
  Open();
  Enter("185");
  List().SetCurrentRow(3);
  Picture(*form, "inventory-manual");
}

}  // namespace
}  // namespace vellumark::test
