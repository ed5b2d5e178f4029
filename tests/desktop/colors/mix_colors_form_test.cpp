// Master Formulas, by the keys and clicks of an operator.

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QCheckBox>
#include <QComboBox>
#include <QPlainTextEdit>
#include <QTabWidget>

#include "colors_desk.h"
#include "core/base/number.h"
#include "core/colors/additive_sets.h"
#include "core/colors/formula_work.h"
#include "core/colors/formulas.h"
#include "core/colors/lab.h"
#include "core/colors/rename.h"
#include "core/colors/template_file.h"
#include "core/session/settings.h"
#include "support/template_room.h"

namespace vellumark::test {
namespace {

using Parts = std::vector<std::pair<std::string, std::string>>;

struct MixColorsTest : testing::Test, ColorsDesk {
  desktop::Window& Open() { return ColorsDesk::Open("MixColorsForm"); }

  void HaveBasics() {
    Basic("RED", {{"PurchaseCost", 10.0F}, {"VOC", 0.3F}, {"Notes", "Stir."}});
    Basic("BLUE", {{"PurchaseCost", 4.0F}, {"HAP", 0.03F}});
    Basic("WHITE", {{"PurchaseCost", 1.0F}});
    Basic("GLOSS", {{"Additive", true}, {"PurchaseCost", 2.0F}});
    Basic("DRIER", {{"Additive", true}});
  }
  void Set(const std::string& name, const Parts& rows) {
    AdditiveSetWork work{name, {}};
    for (std::size_t i = 0; i < rows.size(); ++i) work.rows[i] = {rows[i].first, rows[i].second};
    ASSERT_TRUE(CreateAdditiveSet(session, work));
  }
  /// Opens the window on a new formula and goes to its first line.
  void Begin(const std::string& name) {
    Open();
    prompt.Expect(kPad30 + "Master Formula - New Master Formula", Answer::Yes);
    Enter(name);
    ASSERT_EQ(FocusName(), "BC0");
  }
  /// Types lines from where the focus stands, with Enter behind each field.
  void TypeLines(const Parts& lines) {
    for (const auto& [ingredient, amount] : lines) {
      TypeOn(ingredient);
      PressOn(Qt::Key_Return);
      TypeOn(amount);
      PressOn(Qt::Key_Return);
    }
  }
  Parts OnScreen() {
    Parts lines;
    for (int n = 0; n < schema::kIngredientSlots; ++n) {
      const std::string ingredient = Text(schema::Numbered("BC", n).c_str());
      const std::string amount = Text(schema::Numbered("BQ", n).c_str());
      if (!ingredient.empty() || !amount.empty()) lines.emplace_back(ingredient, amount);
    }
    return lines;
  }
  Parts OnFile(const std::string& name) {
    Parts lines;
    if (const auto mix = ReadMix(session, name))
      for (const Ingredient& line : mix->Ingredients()) lines.emplace_back(line.name, Fixed(line.amount, 3));
    return lines;
  }
  void EditFormula() { Click(*form, "AllowEditing"); }
  bool MayType() { return !Control<QLineEdit>(*form, "BQ0").isReadOnly(); }
  void GiveUp() {
    prompt.Expect("Cancel Without Saving Changes?", Answer::Yes, "Cancel without saving changes?");
    Click(*form, "cmdCancel");
    ExpectEmpty();
  }
  void ToPage(const char* page) {
    auto& tabs = Control<QTabWidget>(*form, "TabMix");
    tabs.setCurrentWidget(&Control(tabs, page));
    Settle();
  }
  void ChooseSet(const std::string& name) {
    auto& list = Control<QComboBox>(*form, "lstAdditiveSets");
    list.setFocus(Qt::TabFocusReason);
    const int index = list.findText(QString::fromStdString(name));
    ASSERT_GE(index, 0) << name;
    // As the operator does it: by its first letter, each typed by itself.
    QApplication::setKeyboardInputInterval(0);
    if (list.currentIndex() != index) QTest::keyClick(&list, name.front());
    Settle();
  }
};

TEST_F(MixColorsTest, FiveInksAndASetByKeyboardAlone) {
  HaveBasics();
  Basic("GREEN", {{"PurchaseCost", 3.0F}});
  Basic("BLACK", {{"PurchaseCost", 5.0F}});
  Set("SLOW", {{"DRIER", "3"}, {"GLOSS", "2"}});
  Open();
  prompt.Expect(kPad30 + "Master Formula - New Master Formula", Answer::Yes,
                "This Master Formula is not found in the INK database\n\nWould you like to create a new Master "
                "Formula?");
  TypeOn("<cn>deep sea");
  PressOn(Qt::Key_Return);
  EXPECT_EQ(Text(kName), "DEEP SEA");
  EXPECT_EQ(FocusName(), "BC0");
  // The names fill in while they are typed.
  TypeLines({{"blu", "40"}, {"gre", "20"}, {"bla", "1.0004"}, {"whi", "30"}});
  TypeOn("red");
  PressOn(Qt::Key_Return);
  TypeOn("4");
  EXPECT_EQ(Label("lblTotalParts"), "95.000");
  EXPECT_EQ(Text("BQ2"), "1.000");
  EXPECT_EQ(Label("lblBasicCost"), "3.11");  // (40*4 + 20*3 + 1*5 + 30*1 + 4*10) / 95
  EXPECT_EQ(Label("lblVOCBasics"), "0.013");
  EXPECT_EQ(Label("lblHAPBasics"), "0.013");
  ChooseSet("SLOW");
  EXPECT_EQ(Label("lblAddIng1"), "GLOSS");
  EXPECT_EQ(Label("lblAddTotal"), "5.00 %");
  EXPECT_EQ(Label("lblBasicCost"), "2.99");  // the lines share 95, and 2 percent of 2.00
  EXPECT_TRUE(form->InEdit());
  PressOn(Qt::Key_S, Qt::ControlModifier);

  const Parts inks{{"BLUE", "40.000"}, {"GREEN", "20.000"}, {"BLACK", "1.000"}, {"WHITE", "30.000"}, {"RED", "4.000"}};
  EXPECT_EQ(OnScreen(), inks);
  EXPECT_FALSE(form->InEdit());
  EXPECT_EQ(FocusName(), kName);
  Parts stored = inks;
  stored.insert(stored.end(), {{"DRIER", "3.000"}, {"GLOSS", "2.000"}});
  EXPECT_EQ(OnFile("DEEP SEA"), stored);
  const auto mix = ReadMix(session, "DEEP SEA");
  ASSERT_TRUE(mix);
  EXPECT_EQ(mix->AddSetName, "SLOW");
  EXPECT_EQ(mix->Color_Set, "<BLUE><GREEN><BLACK><WHITE><RED><DRIER><GLOSS>");
  EXPECT_EQ(mix->BasicCost, 2.99F);
  EXPECT_EQ(Label("lblBasicCost"), "2.99");
  EXPECT_EQ(mix->Date_Entered, session.clock.Today());
  EXPECT_EQ(mix->LastModified, session.clock.Today());
  EXPECT_TRUE(mix->Recycle);
}

TEST_F(MixColorsTest, LeavingTheName) {
  HaveBasics();
  Mix("SKY", {{"BLUE", 100}}, {{"Color_Code", "S-7"}, {"Notes", "Thin."}});
  Open();
  Enter("s-7");  // by its code
  EXPECT_EQ(Text(kName), "SKY");
  EXPECT_EQ(FocusName(), "AllowEditing");
  EXPECT_TRUE(Control(*form, "lblHasNotes").isVisible());
  EXPECT_FALSE(MayType());
  EXPECT_FALSE(form->InEdit());
  prompt.Expect(kPad30 + "Master Formula - New Master Formula", Answer::No,
                "A Basic Color RED already exists in the INK database.\n\nWould you like to also add a Master Formula "
                "RED to the database?");
  Fill(*form, kName, "RED");
  ExpectEmpty();
  prompt.Expect("Hint");
  prompt.Expect(kPad30 + "Master Formula - Invalid Color Name", Answer::Ok,
                "You cannot add a new color to the database that begins with the word PANTONE. Please choose another "
                "name.");
  Enter("pantone 999");
  ExpectEmpty();
  session.CurrentUser = "ANNA";
  session.Perm_MasterFormula = 0;
  prompt.Expect(kPad30 + "Color Not Found", Answer::Ok,
                "TEAL is not found in this database, and you do not\nhave permission to add a new Master Formula to "
                "the database.");
  Enter("TEAL");
  ExpectEmpty();
  Enter("SKY");
  EXPECT_FALSE(IsOn("AllowEditing"));
}

TEST_F(MixColorsTest, EveryCheckOfARecipeInItsOrder) {
  HaveBasics();
  Set("SLOW", {{"DRIER", "3"}});
  const std::string invalid = kPad30 + "Invalid Formula";
  const struct {
    const char* what;
    Parts lines;
    const char* set;
    std::string title;
    const char* text;
    const char* focus;
  } cases[] = {
      {"nothing", {}, "", invalid, "Can't save a formula with no ingredients.", "BC0"},
      {"an unknown ink before a bad amount",
       {{"RED", "1000"}, {"MAUVE", "1"}},
       "",
       invalid,
       "Unrecognized Basic / Additive in the formula.\n\nMake sure item is properly added to the database.",
       "BC1"},
      {"a large amount before a missing one",
       {{"RED", ""}, {"BLUE", "999.001"}},
       "",
       "Invalid Formula Amount",
       "You must enter an amount between\n\n0.001 and 999.000",
       "BQ1"},
      {"a small amount",
       {{"RED", "0.0004"}},
       "",
       "Invalid Formula Amount",
       "You must enter an amount between\n\n0.001 and 999.000",
       "BQ0"},
      {"no amount before no name",
       {{"RED", "1"}, {"", "5"}, {"BLUE", ""}},
       "",
       invalid,
       "No quantity for this ingredient.",
       "BQ2"},
      {"no name", {{"RED", "1"}, {"", "5"}}, "", invalid, "No ingredient for this quantity.", "BC1"},
      {"twice", {{"RED", "1"}, {"RED", "2"}}, "", invalid, "Duplicate use of an ingredient in the formula.", "BC1"},
      {"nothing but the set",
       {{"DRIER", "5"}},
       "SLOW",
       invalid,
       "Can't save a formula with just an Additive Set.",
       "BC0"},
  };
  Begin("TEAL");
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    if (*c.set != 0) {
      Fill(*form, "BC0", "RED");
      ChooseSet(c.set);
    }
    // Typed into the fields, and the save pressed from the last one: what a field would ask when it is left comes to
    // the save instead.
    for (std::size_t i = 0; i < c.lines.size(); ++i) {
      const std::string name = schema::Numbered("BC", static_cast<int>(i));
      const std::string amount = schema::Numbered("BQ", static_cast<int>(i));
      const auto put = [&](const std::string& field, const std::string& text) {
        QWidget& control = Control(*form, field.c_str());
        control.setFocus(Qt::TabFocusReason);
        Press(control, Qt::Key_A, Qt::ControlModifier);
        Press(control, Qt::Key_Delete);
        if (!text.empty()) Type(control, text);
        Control(*form, "cmdSave").setFocus();
        Settle();
      };
      // A line whose name is taken away keeps its amount.
      if (c.lines[i].first.empty()) put(name, "RED");
      put(name, c.lines[i].first.empty() ? "WHITE" : c.lines[i].first);
      put(amount, c.lines[i].second);
      if (c.lines[i].first.empty()) put(name, "");
    }
    prompt.Expect(c.title, Answer::Ok, c.text);
    PressOn(Qt::Key_S, Qt::ControlModifier);
    EXPECT_EQ(FocusName(), c.focus);
    EXPECT_EQ(Control<QLineEdit>(*form, c.focus).selectedText().toStdString(), Text(c.focus));
    EXPECT_FALSE(MixColorExists(session, "TEAL"));
    GiveUp();
    prompt.Expect(kPad30 + "Master Formula - New Master Formula", Answer::Yes);
    Enter("TEAL");
  }
}

TEST_F(MixColorsTest, IngredientsAndAmountsAreCheckedOnLeaving) {
  HaveBasics();
  Begin("TEAL");
  TypeLines({{"red", "2"}});
  EXPECT_EQ(FocusName(), "BC1");
  EXPECT_FALSE(IsOn("BQ1"));
  prompt.Expect(kPad30 + "Invalid Formula", Answer::Ok, "Duplicate use of an ingredient in the formula.");
  TypeOn("RED");
  PressOn(Qt::Key_Return);
  EXPECT_EQ(FocusName(), "BC1");
  EXPECT_EQ(Text("BC1"), "");

  prompt.Expect("Basics / Additives - Invalid Name", Answer::Ok, "Color name cannot begin with the word PANTONE.");
  TypeOn("pantone 12");
  PressOn(Qt::Key_Return);
  EXPECT_EQ(Text("BC1"), "");
  EXPECT_FALSE(BasicColorExists(session, "PANTONE 12"));

  prompt.Expect("Add Basic Color To Database?", Answer::No,
                "The Basic Color MAUVE is not found in this database.\n\nHint: Check your list of Basic Colors for "
                "spelling variations\nbefore adding a new Basic Color to this database.\n\nWould you like to add the "
                "Basic Color MAUVE to this database?");
  TypeOn("mauve");
  PressOn(Qt::Key_Return);
  EXPECT_EQ(Text("BC1"), "");
  prompt.Expect("Add Basic Color To Database?", Answer::Yes);
  prompt.Expect("Confirm Basic Color description", Answer::No,
                "Is MAUVE a Color or an Additive?\n\nYes - It is a Color, No - It is an Additive");
  Control(*form, "BC1").setFocus();
  TypeOn("mauve");
  PressOn(Qt::Key_Return);
  EXPECT_EQ(Text("BC1"), "MAUVE");
  EXPECT_EQ(FocusName(), "BQ1");
  EXPECT_TRUE(ReadBasic(session, "MAUVE")->Additive);

  for (const char* amount : {"0", "-1", "0.0004", "999.0006"}) {
    SCOPED_TRACE(amount);
    prompt.Expect("Invalid Formula Amount", Answer::Ok, "You must enter an amount between\n\n0.001 and 999.000");
    TypeOn(amount);
    PressOn(Qt::Key_Return);
    EXPECT_EQ(FocusName(), "BQ1");
    EXPECT_EQ(Control<QLineEdit>(*form, "BQ1").selectedText().toStdString(), amount);
  }
  TypeOn("0.0006");
  PressOn(Qt::Key_Return);
  EXPECT_EQ(Text("BQ1"), "0.001");
  EXPECT_EQ(Label("lblTotalParts"), "2.001");
}

TEST_F(MixColorsTest, AmountsAreNormalisedAndGapsClosed) {
  HaveBasics();
  Begin("PINK");
  TypeLines({{"RED", "1"}, {"BLUE", "1"}, {"WHITE", "1"}});
  PressOn(Qt::Key_S, Qt::ControlModifier);
  EXPECT_EQ(OnScreen(), (Parts{{"RED", "33.334"}, {"BLUE", "33.333"}, {"WHITE", "33.333"}}));
  // It is open for editing as it was.
  Fill(*form, "BQ1", "");
  Fill(*form, "BC1", "");
  clock.Set({2026, 4, 1, 8, 0, 0});
  PressOn(Qt::Key_S, Qt::ControlModifier);
  EXPECT_EQ(OnScreen(), (Parts{{"RED", "50.001"}, {"WHITE", "49.999"}}));
  EXPECT_EQ(OnFile("PINK"), OnScreen());
  EXPECT_EQ(ReadMix(session, "PINK")->Color_Set, "<RED><WHITE>");
  EXPECT_EQ(ReadMix(session, "PINK")->LastModified, (DateTime{2026, 4, 1}));
}

TEST_F(MixColorsTest, TheRecipeOpensThroughItsBoxOnly) {
  HaveBasics();
  Mix("PINK", {{"RED", 40}, {"WHITE", 60}});
  Open();
  Enter("PINK");
  Type(Control(*form, "BQ0"), "7");
  EXPECT_EQ(Text("BQ0"), "40.000");
  ToPage("TabDetails");
  Fill(*form, "txtColorCode", "P-1");
  PressOn(Qt::Key_S, Qt::ControlModifier);
  EXPECT_EQ(ReadMix(session, "PINK")->Color_Code, "P-1");
  EXPECT_FALSE(ReadMix(session, "PINK")->LastModified);

  ToPage("TabFormula");
  EditFormula();
  EXPECT_TRUE(MayType());
  Fill(*form, "BQ0", "");
  prompt.Expect(kPad30 + "Invalid Formula", Answer::Ok, "No quantity for this ingredient.");
  EditFormula();
  EXPECT_TRUE(Control<QCheckBox>(*form, "AllowEditing").isChecked());
  EXPECT_EQ(FocusName(), "BQ0");
  TypeOn("90");
  // Closed again, nothing of it would be written.
  prompt.Expect("Cancel Without Saving Changes?", Answer::No, "Cancel without saving changes?");
  EditFormula();
  EXPECT_TRUE(MayType());
  EXPECT_EQ(Text("BQ0"), "90.000");
  prompt.Expect("Cancel Without Saving Changes?", Answer::Yes);
  EditFormula();
  EXPECT_FALSE(MayType());
  EXPECT_EQ(OnScreen(), (Parts{{"RED", "40.000"}, {"WHITE", "60.000"}}));
  EXPECT_FALSE(form->InEdit());
}

TEST_F(MixColorsTest, AnAdditiveSetIsMadeInItsPanel) {
  HaveBasics();
  Basic("WAX", {{"Additive", true}});
  Mix("PINK", {{"RED", 40}, {"WHITE", 60}});
  Set("SLOW", {{"DRIER", "3"}});
  Open();
  Enter("PINK");
  EditFormula();
  Click(*form, "cmdNewAddSet");
  EXPECT_EQ(FocusName(), "txtAddSetName");
  const auto refused = [&](const char* field, const char* typed, const char* title, const char* text) {
    SCOPED_TRACE(typed);
    prompt.Expect(title, Answer::Ok, text);
    Fill(*form, field, typed);
    EXPECT_EQ(FocusName(), field);
  };
  refused("txtAddSetName", "slow", "Additive Set Name",
          "Additive Set: SLOW already exists.\n\nEnter a different name.");
  Fill(*form, "txtAddSetName", "fast");
  refused("SetIng0", "RED", "Item Already Exists",
          "This Item already exists in Basics / Additives.\n\nIf it should be used as an Additive in this Database\ngo "
          "to Basics / Additives and check the Additive box.");
  Fill(*form, "SetIng0", "GLOSS");
  refused("SetIng1", "GLOSS", "Duplicate Ingredient Selected", "The Additive GLOSS is already in the Set");
  refused("SetIng1", "PANTONE 12", "Basics / Additives - Invalid Name",
          "Color name cannot begin with the word PANTONE.");
  prompt.Expect("Add Additive To Database?", Answer::Yes,
                "Not found in this database as an additive.\nWould you like to add it to the database?\n\nHint: Check "
                "the list of Additives in the Basic Colors window for\nspelling variations before adding it.");
  Fill(*form, "SetIng1", "PASTE");
  EXPECT_TRUE(ReadBasic(session, "PASTE")->Additive);
  for (const char* percent : {"0.001", "10.01"})
    refused("SetPercent0", percent, "Maximum Percentage Exceeded",
            "Enter a valid percentage, 1 - 10 %\n\nFor larger values the Additive must be entered as\na Basic Color in "
            "the Master Formula.");
  Fill(*form, "SetPercent0", "10");
  EXPECT_EQ(Text("SetPercent0"), "10.00");
  prompt.Expect("Invalid Add Set Formula", Answer::Ok, "Can't save Add Set formula, no quantity for this ingredient.");
  Click(*form, "cmdNewAddSave");
  EXPECT_EQ(FocusName(), "SetPercent1");

  // Left unfinished, the save of the formula asks.
  prompt.Expect("Unfinished Add Set Creation", Answer::Yes, "Complete and Save the current Add Set?");
  PressOn(Qt::Key_S, Qt::ControlModifier);
  EXPECT_EQ(FocusName(), "txtAddSetName");
  Fill(*form, "SetPercent1", "0.5");
  Click(*form, "cmdNewAddSave");
  EXPECT_EQ(FocusName(), "lstAdditiveSets");
  EXPECT_EQ(Control<QComboBox>(*form, "lstAdditiveSets").currentText(), "FAST");
  PressOn(Qt::Key_S, Qt::ControlModifier);
  EXPECT_EQ(OnFile("PINK"), (Parts{{"RED", "35.800"}, {"WHITE", "53.700"}, {"GLOSS", "10.000"}, {"PASTE", "0.500"}}));

  // Another set takes its place, and none at all gives its share back.
  ChooseSet("SLOW");
  PressOn(Qt::Key_S, Qt::ControlModifier);
  EXPECT_EQ(OnFile("PINK"), (Parts{{"RED", "38.800"}, {"WHITE", "58.200"}, {"DRIER", "3.000"}}));
  ChooseSet("No Additive Set");
  PressOn(Qt::Key_S, Qt::ControlModifier);
  EXPECT_EQ(OnFile("PINK"), (Parts{{"RED", "40.000"}, {"WHITE", "60.000"}}));

  Click(*form, "cmdViewAddSet");
  PressOn(Qt::Key_Down);
  EXPECT_EQ(Label("lblViewIng0"), "GLOSS");
  EXPECT_EQ(Label("lblViewTotal"), "10.50 %");
  Click(*form, "cmdClearViewAddSetDetail");
  EXPECT_EQ(Label("lblViewIng0"), "");
  EXPECT_FALSE(form->InEdit());
}

TEST_F(MixColorsTest, ASetThatDoesNotFitIsNotChosen) {
  HaveBasics();
  Set("SLOW", {{"DRIER", "3"}});
  Set("FOUR", {{"DRIER", "1"}, {"GLOSS", "1"}});
  Parts lines{{"RED", "1"}, {"BLUE", "1"}, {"WHITE", "1"}};
  for (int n = 0; n < 10; ++n) {
    Basic("INK " + std::to_string(n));
    lines.emplace_back("INK " + std::to_string(n), "1");
  }
  Begin("FULL");
  TypeLines(lines);
  prompt.Expect("Exceeded Formula Maxium Ingredients", Answer::Ok,
                "The selected Additive Set cannot be entered into the formula.\n\nThe current ingredients and the "
                "choosen Additive Set exceed 15 items.");
  ChooseSet("FOUR");
  EXPECT_EQ(Control<QComboBox>(*form, "lstAdditiveSets").currentIndex(), 0);
  ChooseSet("SLOW");
  EXPECT_EQ(Label("lblAddIng0"), "DRIER");
  ChooseSet("No Additive Set");
  Fill(*form, "BC0", "DRIER");
  prompt.Expect("Duplicate Ingredients", Answer::Ok,
                "The selected Additive Set cannot be entered into the formula.\n\nThe formula already contains an "
                "ingredient found in the Additive Set.");
  ChooseSet("SLOW");
  EXPECT_EQ(Control<QComboBox>(*form, "lstAdditiveSets").currentIndex(), 0);
}

TEST_F(MixColorsTest, FiguresMeasurementsAndSwatchAreSavedWithTheFormula) {
  HaveBasics();
  Mix("PINK", {{"RED", 40}, {"WHITE", 60}}, {{"Color_Guide", ""}});
  Open();
  Enter("PINK");
  ToPage("TabDetails");
  const struct {
    const char* field;
    const char* typed;
    const char* title;
    const char* text;
  } bad[] = {{"txtReorder", "-1", "Invalid Reorder", "You must enter an amount between\n0 and 99999"},
             {"txtPurchaseCost", "100000", "Invalid Purchase Cost", "You must enter currency between\n0 and 99999"},
             {"txtVOC", "", "Invalid VOC", "You must enter an amount between\n0 and 99999"},
             {"txtHAP", "99999.001", "Invalid HAP", "You must enter an amount between\n0 and 99999"}};
  for (const auto& c : bad) {
    SCOPED_TRACE(c.field);
    const std::string before = Text(c.field);
    prompt.Expect(kPad30 + c.title, Answer::Ok, c.text);
    Fill(*form, c.field, c.typed);
    EXPECT_EQ(FocusName(), c.field);
    prompt.Expect(kPad30 + c.title, Answer::Ok, c.text);
    PressOn(Qt::Key_S, Qt::ControlModifier);
    EXPECT_EQ(FocusName(), c.field);
    Fill(*form, c.field, before);
  }
  Fill(*form, "txtPurchaseCost", "7.126");
  Fill(*form, "txtReorder", "5");
  Fill(*form, "txtRed", "200");
  Click(*form, "chkRecycle");
  ToPage("TabLab");
  for (const auto& [field, typed] :
       {std::pair{"txt_L", "50"}, {"txt_a", "20"}, {"txt_b", "-3"}, {"txt_D", "1"}, {"txt_Density", "1.2"}})
    Fill(*form, field, typed);
  prompt.Expect("Unfinished l-a-b Entry", Answer::Yes, "Unfinished l-a-b entry.\nWould you like complete the work?");
  PressOn(Qt::Key_S, Qt::ControlModifier);
  EXPECT_EQ(FocusName(), "txt_L");
  Click(*form, "cmdAddLab");
  ToPage("TabNotes");
  Type(Control(*form, "txtNotes"), "Shake.");
  Click(*form, "cmdSave");
  const auto mix = ReadMix(session, "PINK");
  EXPECT_EQ(mix->PurchaseCost, 7.13F);
  EXPECT_EQ(mix->Reorder, 5.0F);
  EXPECT_EQ(mix->book.Red, 200);
  EXPECT_EQ(mix->Notes, "Shake.");
  EXPECT_EQ(ReadLabReadings(session, ColorKind::Mix, "PINK").size(), 1U);
  EXPECT_TRUE(Control(*form, "ImgInvLow").isVisible());
}

TEST_F(MixColorsTest, NotesOfIngredientsAndBatches) {
  HaveBasics();
  AddRow(
      schema::Batch,
      {{"BatchNo", 17}, {"Color_Name", "PINK"}, {"Date_Entered", DateTime{2026, 1, 2}}, {"Notes", "Came out pale."}});
  Mix("PINK", {{"RED", 40}, {"WHITE", 60}});
  Open();
  Enter("PINK");
  ToPage("TabIngNotes");
  const auto text = [&](const char* name) { return Control<QPlainTextEdit>(*form, name).toPlainText().toStdString(); };
  EXPECT_EQ(text("txtIngNotes"), "RED\n" + std::string(60, '-') + "\nStir.");
  ToPage("TabBatchNotes");
  EXPECT_NE(text("txtBatchNotes").find("000017"), std::string::npos);
  EXPECT_NE(text("txtBatchNotes").find("Came out pale."), std::string::npos);
}

TEST_F(MixColorsTest, RenameWalkAndDelete) {
  HaveBasics();
  for (const char* name : {"AQUA", "PINK", "SKY"}) Mix(name, {{"RED", 100}});
  Open();
  PressOn(Qt::Key_PageDown);
  EXPECT_EQ(Text(kName), "AQUA");
  ToPage("TabDetails");
  Fill(*form, "txtColorCode", "A-1");
  PressOn(Qt::Key_PageDown);
  EXPECT_EQ(Text(kName), "PINK");
  EXPECT_EQ(ReadMix(session, "AQUA")->Color_Code, "A-1");
  Fill(*form, "txtColorCode", "TYPED");
  WithModal([&] { PressOn(Qt::Key_F6); },
            [&](QWidget&) {
              const struct {
                const char* typed;
                const char* title;
                const char* text;
              } refused[] = {
                  {"", "Color Name Needed", "Please enter a new color name."},
                  {"pink", "Choose Another Name",
                   "Cannot rename a color with the same name.\n\nPlease enter a different name."},
                  {"sky", "Master Formula Exists",
                   "This Master Formula already exists in the database.\n\nPlease select different name."},
                  {"PANTONE 999", "Invalid Formula Name",
                   "This name cannot begin with the word PANTONE.\nRenaming a color with the word PANTONE "
                   "requires\nspelling the color as it is found in the book.\n\nPlease choose another name."}};
              for (const auto& c : refused) {
                SCOPED_TRACE(c.typed);
                prompt.Expect(c.title, Answer::Ok, c.text);
                if (*c.typed != 0) TypeOn(c.typed);
                PressOn(Qt::Key_Return);
                EXPECT_EQ(FocusName(), "txtNewName");
              }
              TypeOn("rose");
              PressOn(Qt::Key_Return);
            });
  ShowActive(*form);
  EXPECT_EQ(Text(kName), "ROSE");
  EXPECT_EQ(Text("txtColorCode"), "TYPED");
  Click(*form, "cmdSave");
  EXPECT_EQ(ReadMix(session, "ROSE")->Color_Code, "TYPED");

  prompt.Expect("Master Formula - Delete Master Formula?", Answer::No,
                "Deleting this Master Formula will permanently remove it from the INK database.\n\nDo you want to "
                "delete this Master Formula?");
  PressOn(Qt::Key_D, Qt::ControlModifier);
  EXPECT_EQ(Text(kName), "ROSE");
  prompt.Expect("Master Formula - Delete Master Formula?", Answer::Yes);
  Click(*form, "cmdDelete");
  ExpectEmpty();
  EXPECT_FALSE(MixColorExists(session, "ROSE"));
}

TEST_F(MixColorsTest, OpensWithTheFiguresAsTheyAreStored) {
  Breaks("RollUps");  // the ingredients have left them behind
  HaveBasics();
  Mix("PINK", {{"RED", 40}, {"WHITE", 60}}, {{"BasicCost", 9.99F}, {"BasicVOC", 7.0F}, {"BasicHAP", 8.0F}});
  Open();
  Enter("PINK");
  EXPECT_EQ(Label("lblBasicCost") + " " + Label("lblVOCBasics") + " " + Label("lblHAPBasics"), "9.99 7.000 8.000");
  EditFormula();
  Fill(*form, "BQ0", "60");
  EXPECT_EQ(Label("lblBasicCost") + " " + Label("lblVOCBasics") + " " + Label("lblHAPBasics"), "5.50 0.150 0.000");
  GiveUp();
  EXPECT_EQ(Label("lblBasicCostPer"), "Cost per lb.");
  StoreSettings(session, {setting::UMI.To(2)});
  windows.DeliverChanges();
  EXPECT_EQ(Label("lblBasicCostPer"), "Cost per kg.");
}

TEST_F(MixColorsTest, TwoWindowsOnOneInkLoseNothing) {
  HaveBasics();
  Mix("PINK", {{"RED", 40}, {"WHITE", 60}}, {{"Color_Guide", ""}});
  Open();
  Enter("PINK");
  EditFormula();
  Fill(*form, "BQ0", "60");
  EXPECT_EQ(Label("lblBasicCost"), "5.50");
  desktop::Window* mixForm = form;

  // The ink gets another price and another name in its own window.
  ColorsDesk::Open("BasicColorsForm");
  Enter("RED");
  Fill(*form, "txtPurchaseCost", "20");
  PressOn(Qt::Key_S, Qt::ControlModifier);
  ASSERT_TRUE(RenameBasic(session, "RED", "CRIMSON"));
  windows.DeliverChanges();
  form = mixForm;
  EXPECT_EQ(OnScreen(), (Parts{{"CRIMSON", "60.000"}, {"WHITE", "60.000"}}));
  EXPECT_EQ(Label("lblBasicCost"), "10.50");
  EXPECT_TRUE(form->InEdit());

  // The passes that the price makes due run when the operator comes back.
  EXPECT_TRUE(session.CostChanged);
  ShowActive(*form);
  Control(*form, "BQ0").setFocus();
  EXPECT_TRUE(WaitFor([&] { return !session.CostChanged; }));
  EXPECT_EQ(ReadMix(session, "PINK")->BasicCost, 8.6F);
  EXPECT_EQ(OnScreen(), (Parts{{"CRIMSON", "60.000"}, {"WHITE", "60.000"}}));

  // Saved elsewhere while it is being edited, and then while it is not.
  ASSERT_TRUE(RenameColor(session, "PINK", "ROSE"));
  windows.DeliverChanges();
  EXPECT_EQ(Text(kName), "ROSE");
  EXPECT_EQ(Text("BQ0"), "60.000");
  PressOn(Qt::Key_S, Qt::ControlModifier);
  EXPECT_EQ(OnFile("ROSE"), (Parts{{"CRIMSON", "50.000"}, {"WHITE", "50.000"}}));
  FormulaWork work = LoadFormulaWork(session, *ReadMix(session, "ROSE"));
  work.AllowEditing = true;
  work.grid[0].BQ = "150";
  ASSERT_TRUE(SaveMix(session, work));
  windows.DeliverChanges();
  EXPECT_EQ(OnScreen(), (Parts{{"CRIMSON", "75.000"}, {"WHITE", "25.000"}}));
  EXPECT_FALSE(form->InEdit());
}

TEST_F(MixColorsTest, ClosingAsks) {
  HaveBasics();
  Begin("TEAL");
  TypeLines({{"RED", "1"}});
  prompt.Expect("Master Formula - Save Information?", Answer::Cancel, "Save changes before closing?");
  EXPECT_FALSE(form->Leave());
  prompt.Expect("Master Formula - Save Information?", Answer::Yes);
  EXPECT_TRUE(form->Leave());
  EXPECT_EQ(OnFile("TEAL"), (Parts{{"RED", "100.000"}}));
}

TEST_F(MixColorsTest, AdjustedByPercentAndDuplicated) {
  HaveBasics();
  Mix("PINK", {{"RED", 40}, {"WHITE", 60}});
  Open();
  Enter("PINK");
  WithModal([&] { PressOn(Qt::Key_F9); },
            [&](QWidget& dialog) {
              Type(Control(dialog, "txtPercent"), "50");
              Click(dialog, "cmdOK");
            });
  ShowActive(*form);
  EXPECT_EQ(OnScreen(), (Parts{{"RED", "50.000"}, {"WHITE", "50.000"}}));
  EXPECT_FALSE(form->InEdit());
  prompt.Expect("Master Formula - Duplicated");
  WithModal([&] { PressOn(Qt::Key_F8); },
            [&](QWidget& dialog) {
              Type(Control(dialog, "txtNewName"), "ROSE");
              Click(dialog, "cmdDuplicate");
            });
  EXPECT_EQ(OnFile("ROSE"), (Parts{{"RED", "50.000"}, {"WHITE", "50.000"}}));
}

TEST_F(MixColorsTest, AGuideFormulaIsFoundByItsNumberAndPutBack) {
  session.ProgramFolder = folder / "Program";
  std::filesystem::create_directories(session.ProgramFolder);
  TemplateTexts texts;
  ASSERT_TRUE(BuildTemplate(texts.folder.Path(), session.ProgramFolder / "pdbt.vkt"));
  session.TemplateFile = "pdbt.vkt";
  session.templateDB = Database::Open(session.ProgramFolder / "pdbt.vkt", OpenMode::ReadOnly);
  Basic("PANTONE EMBER");
  Basic("PANTONE CLEAR");
  Open();
  prompt.Expect(kPad30 + "Master Formula - New Master Formula", Answer::Yes);
  Enter("90001");
  EXPECT_EQ(Text(kName), "PANTONE 90001");
  TypeLines({{"ember", "12.5"}, {"PANTONE CLEAR", "87.5"}});
  EXPECT_EQ(Text("BC0"), "PANTONE EMBER");
  PressOn(Qt::Key_S, Qt::ControlModifier);
  EXPECT_FALSE(IsOn("cmdModified"));
  Fill(*form, "BQ0", "20");
  PressOn(Qt::Key_S, Qt::ControlModifier);
  EXPECT_TRUE(IsOn("cmdModified"));
  EXPECT_NE(OnFile("PANTONE 90001"), (Parts{{"PANTONE EMBER", "12.500"}, {"PANTONE CLEAR", "87.500"}}));
  prompt.Expect("Revert Back To Original Formula?", Answer::Yes);
  WithModal([&] { Click(*form, "cmdModified"); }, [&](QWidget& dialog) { Click(dialog, "cmdRevert"); });
  ShowActive(*form);
  EXPECT_EQ(OnScreen(), (Parts{{"PANTONE EMBER", "12.500"}, {"PANTONE CLEAR", "87.500"}}));
  EXPECT_EQ(OnFile("PANTONE 90001"), OnScreen());
  EXPECT_FALSE(IsOn("cmdModified"));
  EXPECT_FALSE(Control<QCheckBox>(*form, "AllowEditing").isChecked());
  EXPECT_TRUE(Control<QLineEdit>(*form, "txtRed").isReadOnly() ==
              !ReadMix(session, "PANTONE 90001")->book.Color_Guide.empty());
}

TEST_F(MixColorsTest, WithTheSampleInkRoom) {
  HaveSampleInkRoom(*this, 0);
  Set("CARTON", {{"RUB RESIST PASTE", "3"}});
  Open();
  Picture(*form, "mix-colors-empty");
  Enter("HARBOUR BLUE 45");
  EditFormula();
  ChooseSet("CARTON");
  Picture(*form, "mix-colors");
  Click(*form, "cmdNewAddSet");
  Picture(*form, "mix-colors-new-set");
  Click(*form, "cmdNewAddCancel");
  ToPage("TabDetails");
  Picture(*form, "mix-colors-details");
  ToPage("TabIngNotes");
  Picture(*form, "mix-colors-ingredient-notes");
}

}  // namespace
}  // namespace vellumark::test
