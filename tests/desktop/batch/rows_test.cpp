// A recipe worked out, recycled and adjusted on the screen.

#include <gtest/gtest.h>

#include <QComboBox>
#include <QHeaderView>
#include <QPlainTextEdit>
#include <QScrollArea>
#include <QTabWidget>

#include "bench_room.h"
#include "desktop/batch/recycle_graphic.h"
#include "support/places.h"

namespace vellumark::test {
namespace {

struct BatchRowsTest : BenchRoom {};

TEST_F(BatchRowsTest, ARecipeByKeyboardAlone) {
  OpenTarget();
  EXPECT_EQ(FocusName(), "cmbColorName");
  EXPECT_FALSE(form->InEdit());
  EXPECT_FALSE(IsOn("cmdSave"));
  EXPECT_EQ(Text("txtBatchNo"), "000001");
  TypeOn("tar");  // completed
  PressOn(Qt::Key_Return);
  EXPECT_EQ(FocusName(), "txtQuantity");
  EXPECT_EQ(Label("lblColorTitle"), "TARGET");
  TypeOn("10");
  PressOn(Qt::Key_F3);
  EXPECT_EQ(Rows(), (Texts{"Basic RED 6.000 lb.", "Basic BLUE 4.000 lb."}));
  EXPECT_EQ(Control<CellButton>(*form, "lblTotal").text(), "10.000");
  EXPECT_EQ(Text("txtQuantity"), "10.000");
  EXPECT_EQ(Label("PercentRecycled"), "0.00% recycled");
  EXPECT_TRUE(form->InEdit());
  EXPECT_TRUE(IsOn("cmdSave"));
  EXPECT_FALSE(IsOn("cmdDelete"));
  EXPECT_EQ(FocusName(), "JobNumber");
  EXPECT_EQ(Cell("lblName", 0).toolTip().section('\n', 0, 0), "Click to Adjust Inventory");
  EXPECT_EQ(Cell("lblAmount", 0).toolTip(), "");  // over-pour is off

  PressOn(Qt::Key_F2);
  EXPECT_EQ(Rows(), (Texts{"Mix LEFTOVER 4.000 lb.", "Basic RED 4.000 lb.", "Basic BLUE 2.000 lb."}));
  EXPECT_EQ(Label("PercentRecycled"), "40.00% recycled");
  EXPECT_EQ(Cell("lblAmount", 0).toolTip(), "4.000 (Max Amount = 8.000lb.)");
  EXPECT_TRUE(Cell("lblMoreUsable", 0).isVisible());
  EXPECT_FALSE(Cell("lblMoreUsable", 1).isVisible());
  EXPECT_FALSE(Cell("lblLot", 0).isVisible());
}

TEST_F(BatchRowsTest, EnterAndTabBehindTheQuantityTriggerTheChosenAction) {
  HaveTarget();
  for (const auto& [setting, rows] : {std::pair{"0", 3}, {"1", 2}}) {
    Setting("BatchActionButton", setting);
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Tab}) {
      SCOPED_TRACE(setting);
      Open();
      Make("TARGET", "10", key);
      EXPECT_EQ(Rows().size(), static_cast<std::size_t>(rows));
      // Once more goes on to the button: what stands would be worked out for nothing.
      form->FocusField("txtQuantity");
      PressOn(key);
      EXPECT_EQ(FocusName(), rows == 3 ? "cmdRecycle" : "cmdMix");
      prompt.Expect("Batch Window - Save Information?", Answer::No, "Save this information?");
      ASSERT_TRUE(form->Leave());
      Settle();
    }
  }
}

TEST_F(BatchRowsTest, NamesThatAreNoFormula) {
  OpenTarget();
  prompt.Expect("Cannot make a batch from a Basic Color", Answer::Ok,
                "RED is a Basic Color in your database.\nYou can only make batches from Mix Colors.\nIf you are using "
                "RED in a job,\nyou can add it to a job record using the Job Window.");
  TypeOn("RED");
  PressOn(Qt::Key_Return);
  EXPECT_EQ(FocusName(), "cmbColorName");
  prompt.Expect("Color Not Found", Answer::Ok, "NOBODY is not found in this database.");
  Fill(*form, "cmbColorName", "NOBODY");
  EXPECT_EQ(FocusName(), "cmbColorName");
  EXPECT_EQ(Control<QLineEdit>(*form, "cmbColorName").selectedText(), "NOBODY");
  // Without a name nothing begins, and nothing is said.
  Press(Control(*form, "cmbColorName"), Qt::Key_Delete);
  PressOn(Qt::Key_F2);
  EXPECT_EQ(FocusName(), "cmbColorName");
  EXPECT_TRUE(Rows().empty());
}

TEST_F(BatchRowsTest, QuantitiesOutOfRange) {
  OpenTarget();
  for (const char* typed : {"0", "-1", "99999.5", ""}) {
    SCOPED_TRACE(typed);
    prompt.Expect("Batch Window - Invalid Amount", Answer::Ok, "You must enter an amount between 0.000 and 99999.000");
    Make("TARGET", typed, Qt::Key_F3);
    EXPECT_EQ(FocusName(), "txtQuantity");
    EXPECT_TRUE(Rows().empty());
    EXPECT_FALSE(form->InEdit());
    Press(Control(*form, "txtQuantity"), Qt::Key_A, Qt::ControlModifier);
    Press(Control(*form, "txtQuantity"), Qt::Key_Delete);
  }
}

TEST_F(BatchRowsTest, ARowTooSmallToWeighIsMarked) {
  HaveTarget();
  Mix("TINT", {{"RED", 99.99F}, {"DRIER", 0.01F}});
  Open();
  Make("TINT", "1", Qt::Key_F3);
  EXPECT_EQ(Rows(), (Texts{"Basic RED 1.000 lb.", "Basic DRIER 0.000 lb."}));
  EXPECT_TRUE(IsShown("lblZeroMsg"));
  EXPECT_EQ(Label("lblZeroMsg"),
            "NOTE - To obtain measurable amounts for all ingredients increase the batch quantity or change the unit of "
            "measure.");
}

TEST_F(BatchRowsTest, AnotherUnitBeginsAnew) {
  OpenTarget();
  Make("TARGET", "10", Qt::Key_F2);
  auto& unit = Control<QComboBox>(*form, "cmbUMF");
  unit.setFocus(Qt::TabFocusReason);
  Press(unit, Qt::Key_G);  // g.
  EXPECT_TRUE(Rows().empty());
  EXPECT_EQ(FocusName(), "txtQuantity");
  PressOn(Qt::Key_F2);
  EXPECT_EQ(Rows(), (Texts{"Mix LEFTOVER 8.000 g.", "Basic RED 2.000 g."}));
}

TEST_F(BatchRowsTest, TheRecycleListSortsFiltersAndGivesItsColors) {
  HaveTarget();
  Mix("ALMOST", {{"RED", 90}, {"BLUE", 10}}, {{"Recycle", false}, {"Inventory", 2.0F}});
  Open();
  Make("TARGET", "10", Qt::Key_F3);
  EXPECT_EQ(Listed(), (Texts{"TARGET 100.00% 0.000", "LEFTOVER 80.00% 4.000", "ALMOST 66.67% 2.000"}));
  QHeaderView& header = *RecycleList().View().horizontalHeader();
  const auto click = [&](int column) {
    QTest::mouseClick(header.viewport(), Qt::LeftButton, Qt::NoModifier,
                      QPoint(header.sectionViewportPosition(column) + 20, header.height() / 2));
    Settle();
  };
  click(0);
  EXPECT_EQ(Captions().front(), "Color Name  A-Z");
  EXPECT_EQ(Listed().front(), "ALMOST 66.67% 2.000");
  click(0);
  EXPECT_EQ(Captions().front(), "Color Name  Z-A");
  EXPECT_EQ(Listed().front(), "TARGET 100.00% 0.000");
  click(2);
  EXPECT_EQ(Captions()[2].substr(0, 1), ">");
  EXPECT_EQ(Listed().front(), "LEFTOVER 80.00% 4.000");
  Click(*form, "chkInvOnly");
  EXPECT_EQ(Listed(), (Texts{"LEFTOVER 80.00% 4.000"}));

  ClickListed(0);
  EXPECT_EQ(Rows(), (Texts{"Mix LEFTOVER 4.000 lb.", "Basic RED 4.000 lb.", "Basic BLUE 2.000 lb."}));
  Click(*form, "chkInvOnly");
  ASSERT_EQ(Listed().size(), 2U);
  // Enter takes the colour under the cursor: of ALMOST all 2 lb., with 1.8 of what was left of RED.
  RecycleList().View().setFocus(Qt::TabFocusReason);
  RecycleList().SetCurrentRow(0);
  PressOn(Qt::Key_Return);
  EXPECT_EQ(Rows(),
            (Texts{"Mix LEFTOVER 4.000 lb.", "Mix ALMOST 2.000 lb.", "Basic RED 2.200 lb.", "Basic BLUE 1.800 lb."}));

  form->FocusField("txtQuantity");
  TypeOn("12");
  prompt.Expect("Recalculate Batch", Answer::Ok,
                "You've changed the Quantity of this batch. Click the Recycle(F2) or Mix(F3) button to recalculate the "
                "batch before selecting a color from the Recycle List.");
  ClickListed(0);
  EXPECT_EQ(FocusName(), "txtQuantity");
}

TEST_F(BatchRowsTest, ADoubleClickTakesOneColor) {
  HaveTarget();
  Mix("OTHER", {{"RED", 40}, {"BLUE", 60}}, {{"Recycle", true}, {"Inventory", 1.0F}});
  Open();
  Make("TARGET", "10", Qt::Key_F3);
  Click(*form, "chkInvOnly");
  ASSERT_EQ(Listed().size(), 2U);
  QTableView& view = RecycleList().View();
  const QPoint at = view.visualRect(view.model()->index(0, 0)).center();
  QTest::mouseClick(view.viewport(), Qt::LeftButton, Qt::NoModifier, at);
  QTest::mouseDClick(view.viewport(), Qt::LeftButton, Qt::NoModifier, at);
  Settle();
  EXPECT_EQ(Listed().size(), 1U);
}

TEST_F(BatchRowsTest, ARecycledRowIsAdjustedByItsAmount) {
  OpenTarget();
  Make("TARGET", "10", Qt::Key_F2);
  const auto adjust = [&](const std::function<void(QWidget&)>& inside) {
    InDialog([&] { Click(Cell("lblAmount", 0)); }, inside);
  };
  adjust([&](QWidget& dialog) {
    EXPECT_EQ(dialog.windowTitle(), " Adjust LEFTOVER");
    EXPECT_EQ(FocusName(), "txtAmount");
    EXPECT_EQ(Control<QLineEdit>(dialog, "txtAmount").selectedText(), "4.000");
    EXPECT_TRUE(Control(dialog, "chkRemoveFromInventory").isVisible());
    prompt.Expect("Invalid Amount", Answer::Ok, "-3 is not a valid amount. Please enter a valid amount.");
    TypeOn("-3");
    PressOn(Qt::Key_F3);
    EXPECT_EQ(FocusName(), "txtAmount");
    Picture(dialog, "adjust-mix", {});
    Click(dialog, "cmdMax");
    EXPECT_EQ(Control<QLineEdit>(dialog, "txtAmount").text(), "8.000");
    TypeOn("2.5");
    PressOn(Qt::Key_F3);
  });
  EXPECT_EQ(Rows(), (Texts{"Mix LEFTOVER 2.500 lb.", "Basic RED 4.750 lb.", "Basic BLUE 2.750 lb."}));
  EXPECT_EQ(FocusName(), "lblAmount0");

  // By keyboard: Enter opens it, Enter takes what the setting says.
  InDialog([&] { PressOn(Qt::Key_Return); },
           [&](QWidget& dialog) {
             TypeOn("0");
             Click(dialog, "chkRemoveFromInventory");
             PressOn(Qt::Key_F3);
           });
  EXPECT_EQ(Rows(), (Texts{"Basic RED 6.000 lb.", "Basic BLUE 4.000 lb."}));
  EXPECT_EQ(MixStock("LEFTOVER"), 0);
}

TEST_F(BatchRowsTest, AdjustingAboveAnEarlierAdjustmentAsks) {
  HaveTarget();
  Mix("OTHER", {{"RED", 40}, {"BLUE", 60}}, {{"Recycle", true}, {"Inventory", 1.0F}});
  Open();
  Make("TARGET", "10", Qt::Key_F2);
  ASSERT_EQ(Rows()[1].substr(0, 9), "Mix OTHER");
  InDialog([&] { Click(Cell("lblAmount", 1)); },
           [&](QWidget&) {
             TypeOn("0.5");
             PressOn(Qt::Key_F3);
           });
  const Texts before = Rows();
  prompt.Expect("Batch Window - Adjust This Color?", Answer::No,
                "Adjusting this color now will change the colors and / or amounts\nwhich appear below this color. Do "
                "you want to continue?");
  Click(Cell("lblAmount", 0));
  EXPECT_EQ(Rows(), before);
  prompt.Expect("Batch Window - Remove Mix Colors From Batch?", Answer::Yes,
                "This action will remove all Recycled Colors from the Batch\n\nRemove the Recycled Colors from the "
                "Batch?");
  PressOn(Qt::Key_F3);
  EXPECT_EQ(Rows(), (Texts{"Basic RED 6.000 lb.", "Basic BLUE 4.000 lb."}));
}

TEST_F(BatchRowsTest, TheGraphicTurnsWhenColorsAreRecycledWhereItIsWanted) {
  OpenTarget();
  const auto& graphic = Control<desktop::RecycleGraphic>(*form, "RecycleGraphic");
  Make("TARGET", "10", Qt::Key_F3);
  EXPECT_FALSE(graphic.isVisible());
  PressOn(Qt::Key_F2);
  EXPECT_TRUE(graphic.isVisible());
  EXPECT_EQ(graphic.IsTurning(), graphic.style()->styleHint(QStyle::SH_Widget_Animation_Duration) > 0);
  EXPECT_TRUE(WaitFor([&] { return !graphic.IsTurning(); }));
  EXPECT_TRUE(graphic.isVisible());
  prompt.Expect("Batch Window - Save Information?", Answer::No, "Save this information?");
  ASSERT_TRUE(form->Leave());
  Setting("ShowBatchGraphic", "0");
  Open();
  Make("TARGET", "10", Qt::Key_F2);
  EXPECT_EQ(Rows().front(), "Mix LEFTOVER 4.000 lb.");
  EXPECT_FALSE(Control(*form, "RecycleGraphic").isVisible());
}

TEST_F(BatchRowsTest, AnotherQuantityAsksWhatBecomesOfTheRecycledInk) {
  OpenTarget();
  Make("TARGET", "10", Qt::Key_F2);
  const auto again = [&](const std::string& quantity) {
    form->FocusField("txtQuantity");
    TypeOn(quantity);
    EXPECT_EQ(Label("lblState"), "Quantity changed: Recycle (F2) or Mix (F3)");
    PressOn(Qt::Key_F2);
  };
  prompt.Expect("Batch Window - Allow Recycled Ink Amounts to Decrease?", Answer::No,
                "Decreasing the Batch Quantity will cause the\nRecycled Ink Amounts used in this Batch to "
                "decrease.\n\nAllow Recycled Ink Amounts to Decrease?");
  again("4");
  EXPECT_EQ(Text("txtQuantity"), "10.000");
  EXPECT_EQ(Rows().front(), "Mix LEFTOVER 4.000 lb.");
  prompt.Expect("Batch Window - Allow Recycled Ink Amounts to Decrease?", Answer::Yes);
  again("4");
  EXPECT_EQ(Rows().front(), "Mix LEFTOVER 3.200 lb.");
  prompt.Expect("Batch Window - Allow Recycled Ink Amounts to Increase?", Answer::Yes,
                "Increasing the Batch Quantity will cause the\nRecycled Ink Amounts used in this Batch to "
                "increase.\n\nAllow Recycled Ink Amounts to increase?");
  again("10");
  EXPECT_EQ(Rows().front(), "Mix LEFTOVER 4.000 lb.");
}

TEST_F(BatchRowsTest, AnOverpouredBasicRowMakesTheBatchGrow) {
  HaveTarget();
  Setting("Overpour", "1");
  Open();
  Make("TARGET", "10", Qt::Key_F3);
  EXPECT_EQ(Cell("lblAmount", 0).toolTip(), "Click to Adjust this Amount");
  InDialog([&] { Click(Cell("lblAmount", 0)); },
           [&](QWidget& dialog) {
             Picture(dialog, "adjust-basic", {});
             prompt.Expect("Adjust Basic Color", Answer::Ok,
                           "You can only enter an amount larger than the current amount.\nTo use a smaller amount, "
                           "make a smaller batch.");
             TypeOn("5");
             PressOn(Qt::Key_Return);
             prompt.Expect("Adjust Basic Color", Answer::Ok, "Please Enter a valid amount.");
             Press(Control(dialog, "txtAmount"), Qt::Key_Delete);
             PressOn(Qt::Key_Return);
             prompt.Expect("Excess Basic Color Weight", Answer::Yes, "Reformulate Batch due to over pour?");
             prompt.Expect("Change in Amounts" + std::string(50, ' '), Answer::No);
             TypeOn("6.6");
             PressOn(Qt::Key_Return);
           });
  EXPECT_EQ(Rows(), (Texts{"Basic RED 6.600 lb.", "Basic BLUE 4.400 lb."}));
  EXPECT_EQ(Text("txtQuantity"), "11.000");
}

TEST_F(BatchRowsTest, AdditionsByKeyboard) {
  OpenTarget();
  Make("TARGET", "10", Qt::Key_F3);
  const auto add = [&](const std::function<void(QWidget&)>& inside) {
    InDialog([&] { Click(*form, "ImgAdditions"); }, inside);
  };
  add([&](QWidget& dialog) {
    for (const char* typed : {"RED", "-6", "BLUE", "-4"}) {
      TypeOn(typed);
      PressOn(Qt::Key_Return);
    }
    prompt.Expect("Negative Additions - Batch Size");
    Click(dialog, "cmdSave");
    Click(dialog, "cmdCancel");
  });
  EXPECT_EQ(Rows().size(), 2U);
  add([&](QWidget& dialog) {
    EXPECT_EQ(dialog.windowTitle(), " Batch Addition");
    prompt.Expect("Batch Additions - Invalid Amount", Answer::Ok,
                  "Enter an amount between\n-99999.000  and  99999.000");
    TypeOn("DRIER");
    PressOn(Qt::Key_Return);
    TypeOn("0.5");
    PressOn(Qt::Key_Return);
    TypeOn("BLUE");
    PressOn(Qt::Key_Return);
    PressOn(Qt::Key_Return);  // no amount
    PressOn(Qt::Key_Return);  // an empty name ends the list
    EXPECT_EQ(FocusName(), "txtAmount1");
    prompt.Expect("Batch Addition Adjustment", Answer::Ok,
                  "The negative amount entered is more\nthan what can be remove from the batch.");
    TypeOn("-4.5");
    Click(dialog, "cmdSave");
    EXPECT_EQ(FocusName(), "txtAmount1");
    Picture(dialog, "additions", {});
    prompt.Expect("Duplicate Item", Answer::Ok,
                  "Basic / Additive is already selected.\nRemove reference and choose another item.");
    TypeOn("1");
    PressOn(Qt::Key_Return);
    TypeOn("DRIER");
    PressOn(Qt::Key_Return);
    TypeOn("1");
    Click(dialog, "cmdSave");
    EXPECT_EQ(FocusName(), "cmbColorName2");
    prompt.Expect("Add Basic / Additive To Database?", Answer::Yes,
                  "WAX is not found in this database.\nWould you like to add this item to this database?\nHint: Check "
                  "the spelling in case another reference exists.");
    TypeOn("WAX");
    PressOn(Qt::Key_Return);
    Click(dialog, "cmdSave");
  });
  EXPECT_EQ(Rows(), (Texts{"Basic RED 6.000 lb.", "Basic BLUE 4.000 lb.", "Addition DRIER 0.500 lb.",
                           "Addition BLUE 1.000 lb.", "Addition WAX 1.000 lb."}));
  EXPECT_EQ(Control<CellButton>(*form, "lblTotal").text(), "12.500");
  EXPECT_EQ(FocusName(), "lblAmount4");

  InDialog([&] { PressOn(Qt::Key_Return); },
           [&](QWidget& dialog) {
             prompt.Expect("Adjust Addition", Answer::Ok, "Please enter a valid amount.");
             Press(Control(dialog, "txtAmount"), Qt::Key_Delete);
             PressOn(Qt::Key_Return);
             prompt.Expect("Batch Addition Adjustment");
             TypeOn("-1");
             PressOn(Qt::Key_Return);
             TypeOn("0");
             PressOn(Qt::Key_Return);
           });
  EXPECT_EQ(Rows().size(), 4U);
  form->FocusField("txtQuantity");
  TypeOn("12");
  prompt.Expect("Recalculate Batch", Answer::Ok,
                "You've changed the Quantity of this batch.\nClick the Recycle(F2) or Mix(F3) button to "
                "recalculate\nthe batch before adding batch additions to the batch.");
  Click(*form, "ImgAdditions");
  prompt.Expect("Recalculate Batch", Answer::Ok,
                "You've changed the Quantity of this batch.\nClick the Recycle(F2) or Mix(F3) button to "
                "recalculate\nthe batch before adjusting a color's amount.");
  Click(Cell("lblAmount", 2));
}

TEST_F(BatchRowsTest, WhatIsKnownOfFormulaAndColorsIsShown) {
  HaveTarget();
  Mix("PANTONE 485 C", {{"RED", 100}},
      {{"Notes", "Stir well"}, {"Color_Guide", "Solid Coated"}, {"Page", "12"}, {"Row", 3}});
  session.File().Execute("UPDATE INK_Basic SET Reorder = 120, Color_Code = 'R-1' WHERE Color_Name = 'RED'");
  Open();
  auto& tabs = Control<QTabWidget>(*form, "TabBatch");
  EXPECT_EQ(tabs.tabText(2), "Notes");
  Make("485 C", "10", Qt::Key_F3);
  EXPECT_EQ(Text("cmbColorName"), "PANTONE 485 C");
  EXPECT_NE(tabs.tabText(2), "Notes");
  EXPECT_EQ(Control<QPlainTextEdit>(*form, "txtFormulaNotes").toPlainText(), "Stir well");
  EXPECT_EQ(Label("lblGuide"), "Solid Coated, page 12, row 3");
  EXPECT_TRUE(Cell("ImgInvLow", 0).isVisible());
  const QString hint = Cell("lblName", 0).toolTip();
  EXPECT_TRUE(hint.contains("R-1") && hint.contains("100.000 lb.")) << hint.toStdString();
  Setting("ShowQuickInfoOption", "0");
  PressOn(Qt::Key_F3);
  EXPECT_EQ(Cell("lblName", 0).toolTip(), "Click to Adjust Inventory");
}

TEST_F(BatchRowsTest, ArrowsWalkThroughTheRows) {
  OpenTarget();
  Make("TARGET", "10", Qt::Key_F2);
  Cell("lblAmount", 0).setFocus(Qt::TabFocusReason);
  PressOn(Qt::Key_Down);
  EXPECT_EQ(FocusName(), "lblAmount1");
  PressOn(Qt::Key_Up);
  PressOn(Qt::Key_Left);
  EXPECT_EQ(FocusName(), "lblMoreUsable0");
  PressOn(Qt::Key_Left);
  EXPECT_EQ(FocusName(), "lblName0");
  PressOn(Qt::Key_Down);
  EXPECT_EQ(FocusName(), "lblName1");
  PressOn(Qt::Key_Up);
  PressOn(Qt::Key_Up);
  EXPECT_EQ(FocusName(), "lblName0");
  // One stop of the Tab key.
  PressOn(Qt::Key_Tab);
  EXPECT_EQ(FocusName(), "ImgAdditions");
}

TEST_F(BatchRowsTest, HowItLooks) {
  HaveSampleInkRoom(*this, 4.5F);
  Open();
  Picture(*form, "batch-empty", {1280, 590});
  const std::string name =
      Scalar("SELECT Color_Name FROM INK_Mix ORDER BY length(Color_Set) DESC LIMIT 1 OFFSET 3").Text();
  Make(name, "25", Qt::Key_F3);
  Picture(*form, "batch-mixed", {1280, 590});
  InDialog([&] { Click(*form, "ImgAdditions"); },
           [&](QWidget&) {
             for (const char* typed : {"EMERALD BASE", "-0.4", "4C BLACK", "0.0004"}) {
               TypeOn(typed);
               PressOn(Qt::Key_Return);
             }
             prompt.Expect("Batch Additions - Invalid Amount");
             PressOn(Qt::Key_Return);
             TypeOn("1.25");
             PressOn(Qt::Key_Return);
             PressOn(Qt::Key_Return);
           });
  Picture(*form, "batch-additions", {1280, 590});
  form->FocusField("txtQuantity");
  TypeOn("0.01");
  PressOn(Qt::Key_F3);
  EXPECT_TRUE(IsShown("lblZeroMsg"));
  Picture(*form, "batch-zero", {1280, 590});
  form->FocusField("txtQuantity");
  TypeOn("25");
  PressOn(Qt::Key_F2);
  Picture(*form, "batch-recycled", {1280, 590});
  Control<QTabWidget>(*form, "TabBatch").setCurrentIndex(1);
  Picture(*form, "batch-costs", {1280, 590});
  Control<QTabWidget>(*form, "TabBatch").setCurrentIndex(2);
  Picture(*form, "batch-notes", {1280, 590});
}

TEST_F(BatchRowsTest, TwentyLinesScrollAndTheButtonsStayInSight) {
  std::vector<std::pair<std::string, float>> parts;
  for (int i = 0; i < 15; ++i) {
    const std::string name = "INK NUMBER " + std::to_string(i);
    Basic(name, {{"Red", i * 16}, {"Green", 120}, {"Blue", 255 - i * 16}, {"Reorder", i % 2 == 0 ? 5.0F : 0.0F}});
    parts.emplace_back(name, i < 14 ? 6.5F : 9.0F);
  }
  Mix("EVERYTHING IN ONE BUCKET 12345", parts);
  Setting("InvLotTracking", "1");
  Setting("BatchLotNumReminder", "0");
  for (const double scale : {1.0, 2.0}) {
    desktop::Look::SetFontScale(scale);
    Open();
    form->resize(1280, 590);
    Settle();
    Make("EVERYTHING IN ONE BUCKET 12345", "100", Qt::Key_F3);
    EXPECT_LE(form->minimumSizeHint().width(), 1280);
    EXPECT_LE(form->minimumSizeHint().height(), 590);
    for (const char* button : {"cmdRecycle", "cmdMix", "cmdSave", "cmdSaveAndHold", "cmdCancel", "cmdDelete"}) {
      QWidget& control = Control(*form, button);
      EXPECT_TRUE(form->rect().contains(QRect(control.mapTo(form, QPoint()), control.size()))) << button;
    }
    CellButton& last = Cell("lblAmount", 14);
    last.setFocus(Qt::TabFocusReason);
    Settle();
    QWidget& view = *Control<QScrollArea>(*form, "BatchRowsArea").viewport();
    EXPECT_TRUE(view.rect().contains(QRect(last.mapTo(&view, QPoint()), last.size())));
    if (scale == 1) {
      Picture(*form, "batch-full", {1280, 590});
    } else {
      EXPECT_TRUE(form->grab().save(QString::fromStdString((ScreensFolder() / "batch-full-font200.png").string())));
    }
    prompt.Expect("Batch Window - Save Information?", Answer::No, "Save this information?");
    ASSERT_TRUE(form->Leave());
    Settle();
  }
  desktop::Look::SetFontScale(1);
}

}  // namespace
}  // namespace vellumark::test
