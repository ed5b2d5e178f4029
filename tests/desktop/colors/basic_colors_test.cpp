// Basic Colors and Additives, by the keys and clicks of an operator.

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QTabWidget>
#include <tuple>

#include "colors_desk.h"
#include "core/colors/basics.h"
#include "core/colors/lab.h"
#include "core/colors/rename.h"
#include "core/colors/swatch.h"
#include "desktop/kit/grid.h"

namespace vellumark::test {
namespace {

const std::string kPad20(20, ' ');

struct BasicColorsTest : testing::Test, ColorsDesk {
  desktop::Window& Open() { return ColorsDesk::Open("BasicColorsForm"); }
  /// A window of another room, empty.
  void Have(const char* name) {
    windows.Register(
        name, [name](desktop::WindowList& list) -> desktop::Window* { return new desktop::Window(list, name, name); });
  }
};

TEST_F(BasicColorsTest, ANewColorByKeyboardAlone) {
  Open();
  EXPECT_EQ(FocusName(), kName);
  prompt.Expect("Basics / Additives - New Item", Answer::Yes);
  TypeOn("<cn>reflex blue");
  PressOn(Qt::Key_Return);
  EXPECT_EQ(Text(kName), "REFLEX BLUE");
  EXPECT_EQ(FocusName(), "txtColorCode");
  EXPECT_EQ(Text("txtPurchaseCost"), "0.00");
  EXPECT_TRUE(form->InEdit());
  const char* const order[] = {"chkAdd", "txtReorder", "txtPurchaseCost", "txtVOC", "txtHAP"};
  TypeOn("RB-1");
  for (const char* field : order) {
    PressOn(Qt::Key_Return);
    EXPECT_EQ(FocusName(), field);
    if (std::string_view(field) == "txtReorder") TypeOn("12.5");
    if (std::string_view(field) == "txtPurchaseCost") TypeOn("7.255");
    if (std::string_view(field) == "txtVOC") TypeOn("0.04");
  }
  EXPECT_EQ(Text("txtReorder"), "12.500");
  EXPECT_EQ(Text("txtPurchaseCost"), "7.26");
  PressOn(Qt::Key_S, Qt::ControlModifier);
  ExpectEmpty();
  const auto color = ReadBasic(session, "REFLEX BLUE");
  ASSERT_TRUE(color);
  EXPECT_EQ(color->Color_Code, "RB-1");
  EXPECT_EQ(color->Reorder, 12.5F);
  EXPECT_EQ(color->PurchaseCost, 7.26F);
  EXPECT_EQ(color->Date_Entered, session.clock.Today());
}

TEST_F(BasicColorsTest, LeavingTheName) {
  Basic("RED");
  Mix("GREEN", {{"RED", 100}});
  Have("ReportsForm");
  Have("FindBasic");
  Open();
  // Nothing typed: the focus stays, whatever is clicked but the commands that need no name.
  Click(*form, "txtReorder");
  EXPECT_EQ(FocusName(), kName);
  // Reports and a search want no name either; only the search gives up what was typed.
  for (const auto& [button, window, left] :
       {std::tuple{"cmdPrintMultiple", "ReportsForm", "CRIMSON"}, {"cmdFind", "FindBasic", ""}}) {
    Fill(*form, kName, "");
    Type(Control(*form, kName), "CRIMSON");
    Click(*form, button);
    EXPECT_EQ(Text(kName), left);
    ASSERT_TRUE(windows.IsFormOpen(window)) << window;
    EXPECT_TRUE(windows.Form(window)->Leave());
    Settle();
    ShowActive(*form);
  }
  Enter("red");
  EXPECT_EQ(FocusName(), "txtColorCode");
  EXPECT_TRUE(IsOn("cmdDelete"));
  EXPECT_FALSE(form->InEdit());

  prompt.Expect("Basics / Additives - New Item", Answer::No,
                "A Master Formula GREEN already exists in the INK database.\n\nWould you like to also add a Basic "
                "Color GREEN to the database?");
  Fill(*form, kName, "GREEN");
  ExpectEmpty();
  prompt.Expect("Hint", Answer::Ok,
                "No need to type the word 'PANTONE' for a Pantone Color.\nJust type the color number and press the "
                "Enter key.\nVellumark automatically adds the 'PANTONE' prefix.");
  prompt.Expect("Basics / Additives - Invalid Name", Answer::Ok, "Color name cannot begin with the word PANTONE.");
  Enter("pantone 999");
  ExpectEmpty();
  session.CurrentUser = "ANNA";
  session.Perm_MasterFormula = 0;
  prompt.Expect("Color Not Found", Answer::Ok,
                "BLUE is not found in this database, and you do not\nhave permission to add a new Basic Color or "
                "Additive to the database.");
  Enter("BLUE");
  ExpectEmpty();
}

TEST_F(BasicColorsTest, EachFigureIsCheckedOnLeavingAndBeforeASave) {
  Basic("RED", {{"Reorder", 1.0F}});
  Open();
  const struct {
    const char* field;
    const char* typed;
    const char* title;
    const char* text;
  } bad[] = {{"txtReorder", "99999.001", "Invalid Reorder", "You must enter an amount between\n0 and 99999"},
             {"txtPurchaseCost", "-1", "Invalid Purchase Cost", "You must enter currency between\n0 and 99999"},
             {"txtVOC", "", "Invalid VOC", "You must enter an amount between\n0 and 99999"},
             {"txtHAP", "100000", "Invalid HAP", "You must enter an amount between\n0 and 99999"},
             {"txt_L", "-99999.01", "Lab Values", "You must enter an amount between\n-99999 and 99999"},
             {"txt_Density", "99999.01", "Lab Values", "You must enter an amount between\n-99999 and 99999"}};
  for (const auto& c : bad) {
    SCOPED_TRACE(c.field);
    Enter("RED");
    form->FocusField(c.field);
    prompt.Expect(kPad30 + c.title, Answer::Ok, c.text);
    Fill(*form, c.field, c.typed);
    EXPECT_EQ(FocusName(), c.field);
    EXPECT_EQ(Control<QLineEdit>(*form, c.field).selectedText(), c.typed);
    if (std::string_view(c.title) == "Lab Values") {
      prompt.Expect("Unfinished l-a-b Entry", Answer::Yes,
                    "Unfinished l-a-b entry.\nWould you like complete the work?");
      PressOn(Qt::Key_S, Qt::ControlModifier);
      EXPECT_EQ(FocusName(), "txt_L");
    } else {
      prompt.Expect(kPad30 + c.title, Answer::Ok, c.text);
      PressOn(Qt::Key_S, Qt::ControlModifier);
      EXPECT_EQ(FocusName(), c.field);
    }
    prompt.Expect("Cancel Without Saving Changes?", Answer::Yes, "Cancel without saving changes?");
    Click(*form, "cmdCancel");
    ExpectEmpty();
  }
  EXPECT_EQ(ReadBasic(session, "RED")->Reorder, 1.0F);
}

TEST_F(BasicColorsTest, FiguresOfOthersNeedTheRight) {
  Basic("RED", {{"PurchaseCost", 4.0F}});
  session.CurrentUser = "ANNA";
  session.Perm_Costs = 1;
  session.Perm_VOCHAP = 0;
  Open();
  Enter("RED");
  prompt.Expect("Permission Denied", Answer::Ok, "ANNA, you do not have permission to change costs.");
  Type(Control(*form, "txtPurchaseCost"), "7");
  EXPECT_EQ(Text("txtPurchaseCost"), "4.00");
  prompt.Expect("Permission Denied", Answer::Ok, "ANNA, you do not have permission to change VOC Values.");
  Type(Control(*form, "txtVOC"), "7");
  prompt.Expect("Permission Denied", Answer::Ok, "ANNA, you do not have permission to change HAP Values.");
  Type(Control(*form, "txtHAP"), "7");
  EXPECT_FALSE(form->InEdit());
  EXPECT_TRUE(form->Leave());
  Settle();

  session.Perm_Costs = 0;
  Open();
  EXPECT_FALSE(Control(*form, "txtPurchaseCost").isVisible());
  EXPECT_EQ(Label("lblPriceBlocked"), "User Permissions - Price Blocked");
}

TEST_F(BasicColorsTest, MeasurementsAreListedEditedAndSavedWithTheColor) {
  Basic("RED");
  WriteLabReadings(session, ColorKind::Basic, "RED", {{48, 62, 40, 0, 1.4F, "D50", "COATED", ""}});
  Open();
  Enter("RED");
  Control<QTabWidget>(*form, "TabBasic").setCurrentIndex(2);
  EXPECT_GE(Control<QComboBox>(*form, "cmb_LS").findText("D50"), 0);
  for (const auto& [field, typed] : {std::pair{"txt_L", "47.126"}, {"txt_a", "61"}, {"txt_b", "-0.5"}, {"txt_D", "1"}})
    Fill(*form, field, typed);
  prompt.Expect(kPad30 + "Lab Values");
  Click(*form, "cmdAddLab");
  EXPECT_EQ(FocusName(), "txt_Density");
  Fill(*form, "txt_Density", "1.38");
  Click(*form, "cmdAddLab");
  auto& list = Control<desktop::Grid>(*form, "fgLab");
  EXPECT_EQ(list.ShownRows().size(), 2U);
  list.SetCurrentRow(0);
  Click(*form, "cmdDeleteLab");
  EXPECT_TRUE(form->InEdit());
  Click(*form, "cmdSave");
  ExpectEmpty();
  EXPECT_EQ(ReadLabReadings(session, ColorKind::Basic, "RED"),
            (std::vector<LabReading>{{47.13F, 61, -0.5F, 1, 1.38F, "", "", ""}}));
}

TEST_F(BasicColorsTest, TheSwatchIsSetByHandUnlessAGuideGivesIt) {
  Basic("RED", {{"Color_Guide", ""}});
  Basic("GUIDED", {{"Color_Guide", "FGuide"}, {"Red", 9}});
  Basic("GUIDED BLACK", {{"Color_Guide", "FGuide"}});
  Open();
  // Zeros are black in a guide and nothing at all outside one.
  const auto ink = [&] { return Control(*form, "imgSwatch").accessibleDescription().toStdString(); };
  Enter("GUIDED BLACK");
  EXPECT_EQ(ink(), "#000000");
  Enter("RED");
  EXPECT_EQ(ink(), "");
  Fill(*form, "txtRed", "200");
  Fill(*form, "txtGreen", "256");
  prompt.Expect("Invalid Swatch");
  Click(*form, "cmdSave");
  EXPECT_EQ(FocusName(), "txtGreen");
  EXPECT_EQ(ReadBasic(session, "RED")->book.Red, 0);  // all of it or nothing
  TypeOn("25");
  EXPECT_EQ(ink(), "#c81900");
  Click(*form, "cmdSave");
  EXPECT_EQ(ReadBasic(session, "RED")->book.Red, 200);
  EXPECT_EQ(ReadBasic(session, "RED")->book.Green, 25);
  // Black is an ink, blank fields are none.
  for (const auto& [typed, shown] : {std::pair{"0", "#000000"}, std::pair{"", ""}}) {
    for (const char* part : {"txtRed", "txtGreen", "txtBlue"}) Fill(*form, part, typed);
    EXPECT_EQ(ink(), shown);
    Click(*form, "cmdSave");
    Enter("RED");
    EXPECT_EQ(ink().empty(), std::string_view(shown).empty()) << ink();
  }
  Enter("GUIDED");
  EXPECT_TRUE(Control<QLineEdit>(*form, "txtRed").isReadOnly());
}

TEST_F(BasicColorsTest, RenameAndMerge) {
  Basic("RED", {{"PurchaseCost", 4.0F}});
  Basic("BLUE");
  Mix("PURPLE", {{"RED", 60}, {"BLUE", 40}});
  Open();
  Enter("RED");
  Fill(*form, "txtColorCode", "TYPED");
  const auto rename = [&](const std::function<void(QWidget&)>& inside) {
    WithModal([&] { Click(*form, "cmdRename"); }, inside);
    ShowActive(*form);  // without a main window nobody brings it back
  };
  rename([&](QWidget& dialog) {
    prompt.Expect(kPad20 + "Color Name Needed", Answer::Ok, "Please enter a name.");
    Click(dialog, "cmdSave");
    EXPECT_EQ(FocusName(), "txtNewName");
    TypeOn("red");
    prompt.Expect(kPad20 + "Choose Another Name", Answer::Ok,
                  "Cannot rename a color with the same name.\n\nPlease enter a different name.");
    PressOn(Qt::Key_Return);
    EXPECT_EQ(FocusName(), "txtNewName");
    TypeOn("PANTONE 999");
    prompt.Expect(kPad20 + "Invalid Basic Color Name", Answer::Ok,
                  "A color can not be renamed with the word PANTONE unless\nit is used as a ingredient in a Pantone "
                  "Color Guide.\n\nPlease choose another name.");
    PressOn(Qt::Key_Return);
    TypeOn("crimson!");
    PressOn(Qt::Key_Return);
  });
  EXPECT_EQ(Text(kName), "CRIMSON");
  EXPECT_EQ(FocusName(), kName);
  EXPECT_EQ(Text("txtColorCode"), "TYPED");  // a rename takes along what was typed
  EXPECT_TRUE(BasicColorExists(session, "CRIMSON"));
  Click(*form, "cmdSave");
  EXPECT_EQ(ReadBasic(session, "CRIMSON")->Color_Code, "TYPED");

  Enter("CRIMSON");
  rename([&](QWidget& dialog) {
    prompt.Expect(kPad20 + "Basic Color Name Exists", Answer::No,
                  "This Basic Color already exists.\nDo you want to merge the colors?");
    Type(Control(dialog, "txtNewName"), "BLUE");
    PressOn(Qt::Key_Return);
    EXPECT_EQ(FocusName(), "txtNewName");
    prompt.Expect(kPad20 + "Basic Color Name Exists", Answer::Yes);
    Click(dialog, "cmdSave");
  });
  EXPECT_EQ(Text(kName), "BLUE");
  EXPECT_EQ(FocusName(), kName);
  EXPECT_EQ(Text("txtPurchaseCost"), "0.00");
  EXPECT_FALSE(BasicColorExists(session, "CRIMSON"));
  EXPECT_EQ(Scalar("SELECT BQ0 FROM INK_Mix").Single(), 100.0F);
}

TEST_F(BasicColorsTest, WhatIsUsedIsNotDeleted) {
  Basic("RED");
  Basic("GLOSS", {{"Additive", true}});
  Basic("PLAIN");
  Basic("WASH");
  Mix("PINK", {{"RED", 100}});
  AddRow(schema::Additives,
         {{"SetName", "SET"}, {"Add_Name0", "GLOSS"}, {"Add_Percent0", 5.0F}, {"SetList", "<GLOSS>"}});
  Open();
  Enter("RED");
  WithModal([&] { PressOn(Qt::Key_D, Qt::ControlModifier); },
            [&](QWidget& dialog) {
              EXPECT_EQ(dialog.windowTitle(), "Basic / Additive  cannot be deleted.");
              EXPECT_EQ(Control<QLabel>(dialog, "lblMsg").text(), "Master Formulas require this ingredient.");
              EXPECT_EQ(Control<desktop::Grid>(dialog, "fgFormulas").ShownRows().size(), 1U);
              Press(dialog, Qt::Key_Escape);
            });
  EXPECT_EQ(Text(kName), "RED");
  ShowActive(*form);

  Fill(*form, kName, "GLOSS");
  prompt.Expect("Ingredient used in Additive Set.", Answer::Ok,
                "This ingredient is used in an Additive Set(s).\n\nIt cannot be unchecked until it has been removed "
                "from all Additive Sets.");
  Click(*form, "chkAdd");
  EXPECT_TRUE(Control<QCheckBox>(*form, "chkAdd").isChecked());
  prompt.Expect("Additive Set Color", Answer::Ok,
                "Basic / Additive is used in an Additive Set.\n\nModify Additive Set before deleting.");
  Click(*form, "cmdDelete");
  EXPECT_TRUE(BasicColorExists(session, "GLOSS"));

  // A Design of this Database holds it; one of another Database, or as a formula, holds something else.
  AddRow(schema::Designs, {{"DesignID", "D1"}, {"IngName0", "WASH"}, {"IngDB0", "INK"}, {"IngSet", "<WASH>"}});
  AddRow(schema::Designs, {{"DesignID", "D2"}, {"IngName0", "PLAIN"}, {"IngDB0", "UV"}, {"IngSet", "<PLAIN>"}});
  AddRow(schema::Designs,
         {{"DesignID", "D3"}, {"IngName0", "PLAIN"}, {"IngType0", 2}, {"IngDB0", "INK"}, {"IngSet", "<PLAIN>"}});
  Fill(*form, kName, "WASH");
  prompt.Expect("Additive Set Color", Answer::Ok,
                "Basic / Additive is used in a Job Design.\n\nModify Job Design before deleting.");
  Click(*form, "cmdDelete");

  Fill(*form, kName, "PLAIN");
  prompt.Expect("Basic Color Window - Delete Basic Color?", Answer::No);
  Click(*form, "cmdDelete");
  EXPECT_EQ(Text(kName), "PLAIN");
  prompt.Expect("Basic Color Window - Delete Basic Color?", Answer::Yes);
  Click(*form, "cmdDelete");
  ExpectEmpty();
  EXPECT_FALSE(BasicColorExists(session, "PLAIN"));
}

TEST_F(BasicColorsTest, PreviousAndNextSaveOnTheWay) {
  for (const char* name : {"BLUE", "RED", "YELLOW"}) Basic(name);
  Open();
  PressOn(Qt::Key_PageDown);
  EXPECT_EQ(Text(kName), "BLUE");
  Fill(*form, "txtColorCode", "B1");
  PressOn(Qt::Key_PageDown);
  EXPECT_EQ(Text(kName), "RED");
  EXPECT_EQ(ReadBasic(session, "BLUE")->Color_Code, "B1");
  PressOn(Qt::Key_PageDown);
  PressOn(Qt::Key_PageDown);
  ExpectEmpty();
  PressOn(Qt::Key_PageUp);
  EXPECT_EQ(Text(kName), "YELLOW");
}

TEST_F(BasicColorsTest, ClosingAsksAndRunsThePassesThatArePending) {
  Basic("RED", {{"PurchaseCost", 4.0F}});
  Mix("PINK", {{"RED", 100}});
  Open();
  Enter("RED");
  Fill(*form, "txtPurchaseCost", "5");
  prompt.Expect("Basic / Additive - Save Information?", Answer::Cancel, "Save changes before closing?");
  EXPECT_FALSE(form->Leave());
  EXPECT_EQ(Scalar("SELECT BasicCost FROM INK_Mix").Single(), 4.0F);
  prompt.Expect("Basic / Additive - Save Information?", Answer::Yes);
  EXPECT_TRUE(form->Leave());
  EXPECT_EQ(Scalar("SELECT BasicCost FROM INK_Mix").Single(), 5.0F);
  EXPECT_FALSE(session.CostChanged);
}

TEST_F(BasicColorsTest, AnotherChangeIsShownAndNothingTypedIsLost) {
  Basic("RED", {{"Color_Guide", ""}});
  Open();
  Enter("RED");
  ASSERT_TRUE(SetSwatch(session, ColorKind::Basic, "RED", {77, {}, {}}));
  windows.DeliverChanges();
  EXPECT_EQ(Text("txtRed"), "77");

  Fill(*form, "txtColorCode", "TYPED");
  ASSERT_TRUE(RenameBasic(session, "RED", "CRIMSON"));
  ASSERT_TRUE(SetSwatch(session, ColorKind::Basic, "CRIMSON", {78, {}, {}}));
  windows.DeliverChanges();
  EXPECT_EQ(Text(kName), "CRIMSON");
  EXPECT_EQ(Text("txtColorCode"), "TYPED");
  EXPECT_EQ(Text("txtRed"), "78");
  EXPECT_TRUE(form->InEdit());
  Click(*form, "cmdSave");
  EXPECT_EQ(ReadBasic(session, "CRIMSON")->Color_Code, "TYPED");
  EXPECT_FALSE(BasicColorExists(session, "RED"));
}

TEST_F(BasicColorsTest, StandsBackForABatchInEdit) {
  windows.Register("BatchForm", [](desktop::WindowList& list) -> desktop::Window* {
    auto* window = new desktop::Window(list, "BatchForm", "Batch");
    desktop::Form form(*window);
    form.Row("Name", form.Text("txtBatch"));
    return window;
  });
  desktop::Window* batch = windows.OpenForm("BatchForm");
  ShowActive(*batch);
  TypeOn("A RECIPE");
  ASSERT_TRUE(windows.IsInEdit("BatchForm"));
  prompt.Expect(
      "Batch Window - Formula in State of Edit.", Answer::Ok,
      "The Batch Window is open and has a recipe on screen.\nAny attempt to change data on this window can "
      "impact the Batch Window.\nSave && Clear the information on the Batch Window before using this Window.");
  Open();
  Settle();
  EXPECT_EQ(FocusName(), "txtBatch");
}

TEST_F(BasicColorsTest, WithTheSampleInkRoom) {
  HaveSampleInkRoom(*this, 0);
  Have("FindBasic");
  Open();
  Picture(*form, "basic-colors-empty");
  Enter("FLUO ORANGE");
  EXPECT_TRUE(Control(*form, "ImgInvLow").isVisible());
  prompt.Expect("Basic Color Window - Inventory Low", Answer::Ok, "It is time to reorder this color.");
  Click(*form, "ImgInvLow");
  Picture(*form, "basic-colors");
  Click(*form, "cmdCancel");
  Enter("4C CYAN");
  EXPECT_FALSE(Control(*form, "ImgInvLow").isVisible());
  WithModal([&] { PressOn(Qt::Key_F7); },
            [&](QWidget& dialog) {
              EXPECT_EQ(dialog.objectName(), "WhereUsedForm");
              Picture(dialog, "where-used", {});
              Press(dialog, Qt::Key_Escape);
            });
  WithModal([&] { Click(*form, "cmdDelete"); },
            [&](QWidget& dialog) {
              Picture(dialog, "basic-color-used-in-mix", {});
              Press(dialog, Qt::Key_Escape);
            });
  WithModal([&] { Click(*form, "cmdRename"); },
            [&](QWidget& dialog) {
              Picture(dialog, "new-basic-name", {});
              Press(dialog, Qt::Key_Escape);
            });
  Control<QTabWidget>(*form, "TabBasic").setCurrentIndex(2);
  for (const auto& [field, typed] :
       {std::pair{"txt_L", "55.1"}, {"txt_a", "-37"}, {"txt_b", "-50"}, {"txt_D", "0.8"}, {"txt_Density", "1.42"}})
    Fill(*form, field, typed);
  Click(*form, "cmdAddLab");
  Picture(*form, "basic-colors-measurements");
}

TEST_F(BasicColorsTest, TheMenuListsTheWindowsThereAreAndOpensThem) {
  desktop::Window* menu = windows.OpenForm("ColorsMenu");
  ShowActive(*menu);
  EXPECT_TRUE(menu->IsFloating());
  EXPECT_EQ(FocusName(), "cmdBasics");
  Picture(*menu, "colors-menu", {});
  PressOn(Qt::Key_Return);
  Settle();
  EXPECT_FALSE(windows.IsFormOpen("ColorsMenu"));
  EXPECT_TRUE(windows.IsFormOpen("BasicColorsForm"));

  menu = windows.OpenForm("ColorsMenu");
  ShowActive(*menu);
  PressOn(Qt::Key_Down);
  EXPECT_EQ(FocusName(), "cmdMix");
  PressOn(Qt::Key_Return);
  Settle();
  EXPECT_TRUE(windows.IsFormOpen("MixColorsForm"));

  // As in any menu the letter alone is enough, and another one does nothing.
  windows.CloseChildWindows({});
  ShowActive(*windows.OpenForm("ColorsMenu"));
  PressOn(Qt::Key_X);
  EXPECT_TRUE(windows.IsFormOpen("ColorsMenu"));
  PressOn(Qt::Key_M);
  Settle();
  EXPECT_FALSE(windows.IsFormOpen("ColorsMenu"));
  EXPECT_TRUE(windows.IsFormOpen("MixColorsForm"));
}

}  // namespace
}  // namespace vellumark::test
