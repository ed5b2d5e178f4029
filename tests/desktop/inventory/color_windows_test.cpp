// The stock of a colour in the colour's own window.

#include <gtest/gtest.h>

#include <QTabBar>
#include <QTabWidget>

#include "core/colors/basics.h"
#include "core/colors/formulas.h"
#include "core/inventory/adjust.h"
#include "desktop/inventory/inventory_desk.h"

namespace vellumark::test {
namespace {

struct ColorWindowsTest : testing::Test, InventoryDesk {
  void OpenStock(const char* window, const char* tabs, const std::string& name) {
    form = windows.OpenForm(window, {{"FindRecord", name}});
    ShowActive(*form);
    auto& pages = Control<QTabWidget>(*form, tabs);
    for (int i = 0; i < pages.count(); ++i)
      if (pages.widget(i)->objectName() == "TabInventory") pages.setCurrentIndex(i);
  }
};

TEST_F(ColorWindowsTest, WhatOneWindowSavesTheOthersShow) {
  Color(ColorKind::Basic, "RED", 3);
  Lot(ColorKind::Basic, "RED", 1, 5);
  Open();
  Enter("RED");
  desktop::Window* inventory = form;
  OpenStock("BasicColorsForm", "TabBasic", "RED");
  desktop::Window* colors = form;
  Fill(*colors, "AdjustInv", "4");
  PressOn(Qt::Key_F5);
  EXPECT_EQ(Text("lblInvTotal"), "12.000");
  EXPECT_TRUE(colors->InEdit());
  Picture(*colors, "inventory-basic-colors");
  PressOn(Qt::Key_S, Qt::ControlModifier);
  windows.DeliverChanges();
  form = inventory;
  EXPECT_EQ(Text("lblInvTotal"), "12.000");

  // Both work on it now: what is saved here is not shown there before that list is saved or given up.
  OpenStock("BasicColorsForm", "TabBasic", "RED");
  Fill(*colors, "AdjustInv", "-1");
  PressOn(Qt::Key_F5);
  ShowActive(*inventory);
  form = inventory;
  Fill(*form, "AdjustInv", "10");
  PressOn(Qt::Key_F5);
  Fill(*form, "txtInvNote", "counted");
  PressOn(Qt::Key_S, Qt::ControlModifier);
  windows.DeliverChanges();
  form = colors;
  EXPECT_EQ(Text("lblInvTotal"), "11.000");
  prompt.Expect("Cancel Without Saving Changes?", Answer::Yes);
  ShowActive(*colors);
  Click(*colors, "cmdCancel");
  OpenStock("BasicColorsForm", "TabBasic", "RED");
  EXPECT_EQ(Text("lblInvTotal"), "22.000");
  EXPECT_EQ(ReadBasic(session, "RED")->Inv_Note, "counted");
}

TEST_F(ColorWindowsTest, AColorIsSavedWithItsStockOrNotAtAll) {
  Color(ColorKind::Basic, "RED", 3);
  OpenStock("BasicColorsForm", "TabBasic", "RED");
  Fill(*form, "AdjustInv", "5");
  prompt.Expect("Inventory Calculation", Answer::Yes,
                "Unfinished inventory calculation.\nWould you like to complete the work?");
  PressOn(Qt::Key_S, Qt::ControlModifier);
  EXPECT_EQ(FocusName(), "AdjustInv");
  Fill(*form, "cmbLotNum", "L7");
  PressOn(Qt::Key_F5);
  Control<QTabWidget>(*form, "TabBasic").setCurrentIndex(0);
  Control(*form, "txtReorder").setFocus(Qt::TabFocusReason);
  PressOn(Qt::Key_A, Qt::ControlModifier);
  TypeOn("-1");
  prompt.Expect(std::string(30, ' ') + "Invalid Reorder");
  PressOn(Qt::Key_S, Qt::ControlModifier);
  EXPECT_TRUE(LotsOf(session, ColorKind::Basic, "RED").empty());
  TypeOn("2");
  PressOn(Qt::Key_S, Qt::ControlModifier);
  ASSERT_EQ(LotsOf(session, ColorKind::Basic, "RED").size(), 1U);
  EXPECT_EQ(LotsOf(session, ColorKind::Basic, "RED")[0].LotNumber, "L7");
  EXPECT_EQ(ReadBasic(session, "RED")->Reorder, 2.0F);
}

TEST_F(ColorWindowsTest, ANewColorBeginsWithItsStock) {
  form = windows.OpenForm("BasicColorsForm");
  ShowActive(*form);
  prompt.Expect("Basics / Additives - New Item", Answer::Yes);
  Enter("GREEN");
  Fill(*form, "txtPurchaseCost", "7.25");
  Control<QTabWidget>(*form, "TabBasic").setCurrentIndex(1);
  Fill(*form, "AdjustInv", "6");
  PressOn(Qt::Key_F5);
  Fill(*form, "AdjustInv", "4");
  Fill(*form, "cmbLotNum", "FIRST");
  PressOn(Qt::Key_F5);
  PressOn(Qt::Key_S, Qt::ControlModifier);
  EXPECT_EQ(Inventory(ColorKind::Basic, "GREEN").Single(), 6.0F);
  EXPECT_EQ(LotQty(ColorKind::Basic, "GREEN", 1).Single(), 4.0F);
  EXPECT_EQ(LotsOf(session, ColorKind::Basic, "GREEN")[0].LotPrice, 7.25F) << "what the color costs";
}

TEST_F(ColorWindowsTest, AFormulaKeepsItsStockInItsWindowToo) {
  Basic("RED");
  Mix("PINK", {{"RED", 100}}, {{"Inventory", 3.0F}, {"BasicCost", 2.0F}, {"PurchaseCost", 4.0F}});
  Lot(ColorKind::Mix, "PINK", 1, 5);
  OpenStock("MixColorsForm", "TabMix", "PINK");
  EXPECT_EQ(Text("lblInvTotal"), "8.000");
  Fill(*form, "AdjustInv", "2");
  PressOn(Qt::Key_F5);
  Picture(*form, "inventory-mix-colors");
  PressOn(Qt::Key_S, Qt::ControlModifier);
  EXPECT_EQ(Inventory(ColorKind::Mix, "PINK").Single(), 5.0F);
  EXPECT_EQ(Scalar("SELECT Color_Set FROM INK_Mix").Text(), "<RED>");
  EXPECT_FALSE(form->InEdit());
}

TEST_F(ColorWindowsTest, InTheListOfLotsThePageKeysTurnItsPages) {
  Basic("BLUE");
  Basic("RED");
  Mix("PINK", {{"RED", 100}});
  for (int i = 1; i <= 60; ++i) {
    Lot(ColorKind::Basic, "BLUE", i, 1);
    Lot(ColorKind::Mix, "PINK", i, 1);
  }
  for (const auto& [window, tabs, color] :
       {std::tuple{"BasicColorsForm", "TabBasic", "BLUE"}, std::tuple{"MixColorsForm", "TabMix", "PINK"}}) {
    SCOPED_TRACE(window);
    OpenStock(window, tabs, color);
    form->resize(1280, 700);  // a page is more than a line
    Settle();
    List().View().setFocus();
    List().SetCurrentRow(0);
    PressOn(Qt::Key_PageDown);
    EXPECT_EQ(Text("cmbColorName"), color);
    EXPECT_GT(List().CurrentRow(), 1);
    PressOn(Qt::Key_PageUp);
    EXPECT_EQ(List().CurrentRow(), 0);
    // The page was built last; Tab reaches it before the buttons of the window.
    Control<QTabWidget>(*form, tabs).tabBar()->setFocus(Qt::TabFocusReason);
    std::string walked;
    for (int i = 0; i < 30 && FocusName() != "cmdSave"; ++i) {
      PressOn(Qt::Key_Tab);
      walked += FocusName() + " ";
    }
    EXPECT_TRUE(walked.find("AdjustInv ") < walked.find("txtReason ") && walked.ends_with("txtReason cmdSave "))
        << walked;
    windows.CloseForm(window);
  }
}

TEST_F(ColorWindowsTest, ANewUnitIsShownAtOnce) {
  Basic("RED");
  Mix("PINK", {{"RED", 100}});
  OpenStock("MixColorsForm", "TabMix", "PINK");
  const auto hints = [&] {
    QStringList texts;
    for (const QLabel* label : form->findChildren<QLabel*>()) texts << label->text().remove('&');
    return texts;
  };
  EXPECT_EQ(hints().count("per lb."), 3);
  InventorySettings settings = ReadInventorySettings(session);
  settings.UMI = 2;
  prompt.Expect("Inventory Unit");
  ASSERT_TRUE(SaveInventorySettings(session, settings));
  Settle();
  EXPECT_EQ(hints().count("per kg."), 3);
  EXPECT_EQ(hints().count("per lb."), 0);
}

TEST_F(ColorWindowsTest, AllOfItFitsIntoTheMainWindowOfASmallScreen) {
  ByContainer();
  Basic("RED");
  Mix("PINK", {{"RED", 100}});
  const struct {
    const char* window;
    const char* tabs;
    const char* color;
  } cases[] = {{"AdjustInventoryForm", "Inventory_TabStrip", "PINK"},
               {"BasicColorsForm", "TabBasic", "RED"},
               {"MixColorsForm", "TabMix", "PINK"}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.window);
    OpenStock(c.window, c.tabs, c.color);
    // What menu, toolbar and tabs leave of 1280 by 720.
    Picture(*form, std::string("inventory-small-") + c.window, {1280, 584});
    form->resize(1280, 584);
    Settle();
    EXPECT_EQ(form->size(), QSize(1280, 584)) << "it needs more";
  }
}

}  // namespace
}  // namespace vellumark::test
