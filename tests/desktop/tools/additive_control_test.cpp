// Additive Sets in bulk, by the keys and clicks of an operator.

#include "core/colors/additive_sets.h"
#include "tools_room.h"

namespace vellumark::test {
namespace {

struct AdditiveControlTest : ToolsRoom {
  void OpenTool(int page = 0) {
    Open("DBAdditiveControl");
    Control<QTabWidget>(*form, "TabAdditive").setCurrentIndex(page);
    Settle();
  }
  std::string Content(const std::string& name) {
    const auto set = ReadAdditiveSet(session, name);
    if (!set) return "gone";
    std::string text;
    for (const Ingredient& row : set->Rows()) text += row.name + " " + Fixed(row.amount, 2) + " ";
    return text;
  }
};

TEST_F(AdditiveControlTest, ANewSetByKeyboardAlone) {
  HaveInks();
  OpenTool();
  EXPECT_EQ(form->windowTitle().toStdString(), "Database Additive Control");
  EXPECT_EQ(FocusName(), "txtAddSetName");
  TypeOn("fast");
  PressOn(Qt::Key_Return);
  TypeOn("dri");
  PressOn(Qt::Key_Return);
  EXPECT_EQ(Text("SetIng0"), "DRIER");
  EXPECT_EQ(FocusName(), "SetPercent0");
  TypeOn("3.004");
  PressOn(Qt::Key_Return);
  EXPECT_EQ(Text("SetPercent0"), "3.00");
  prompt.Expect("Add Additive To Database?", Answer::Yes,
                "Not found in this database as an additive.\nWould you like to add it to the database?\n\nHint: Check "
                "the list of Additives in the Basic Colors window for\nspelling variations before adding it.");
  TypeOn("gloss");
  PressOn(Qt::Key_Return);
  TypeOn("10");
  PressOn(Qt::Key_Return);
  EXPECT_EQ(Label("lblSetTotal"), "13.00 %");
  PressOn(Qt::Key_S, Qt::ControlModifier);
  EXPECT_EQ(Content("FAST"), "DRIER 3.00 GLOSS 10.00 ");
  EXPECT_TRUE(ReadBasic(session, "GLOSS")->Additive);
  EXPECT_EQ(Shown("SN_CreateTab", 0), (std::vector<std::string>{"COLORS NOT USING SETS", "FAST", "SLOW"}));
  EXPECT_EQ(List("SN_CreateTab").CurrentRow(), 1);
}

TEST_F(AdditiveControlTest, EachCheckOfASetSpeaksAndTakesTheFocusToItsField) {
  HaveInks();
  OpenTool();
  const auto save = [&](const char* title, const char* text, const char* field) {
    SCOPED_TRACE(title);
    prompt.Expect(title, Answer::Ok, text);
    Click(*form, "cmdSave_CreateTab");
    EXPECT_EQ(FocusName(), field);
  };
  // Typed over, and left with a click on Save, which then checks.
  const auto type = [&](const char* field, const std::string& text) {
    Control(*form, field).setFocus();
    PressOn(Qt::Key_A, Qt::ControlModifier);
    text.empty() ? PressOn(Qt::Key_Delete) : TypeOn(text);
  };
  save("Additive Set Name", "Enter a valid Additive Set name.", "txtAddSetName");
  const char* taken = "Additive Set: SLOW already exists.\n\nEnter a different name.";
  type("txtAddSetName", "slow");
  save("Additive Set Name", taken, "txtAddSetName");
  prompt.Expect("Additive Set Name", Answer::Ok, taken);
  PressOn(Qt::Key_Tab);
  EXPECT_EQ(FocusName(), "txtAddSetName");
  type("txtAddSetName", "NEW");
  save("Additive Ingredients", "No ingredients found in the Additive Set.", "SetIng0");
  type("SetIng0", "NONE");
  save("Add Set Ing.", "Additive does not exist.\nExamine highlighted item and press Enter to process.", "SetIng0");
  type("SetIng0", "RED");
  save("Add Set Ing.",
       "Selected Ing not defined. as an Additive in Basics / Additives.\n\nGo to Basics / Additives and check the "
       "Additive box for this item.",
       "SetIng0");
  type("SetIng0", "WAX");
  type("SetPercent1", "2");
  save("Invalid Add Set Formula", "Can't save Add Set formula, no ingredient for this quantity.", "SetIng1");
  type("SetIng1", "WAX");
  save("Invalid Add Set Formula", "Duplicate use of an ingredient in the Add Set formula.", "SetIng1");
  type("SetIng1", "DRIER");
  save("Invalid Add Set Formula", "Can't save Add Set formula, no quantity for this ingredient.", "SetPercent0");
  const char* range =
      "Enter a valid percentage, 1 - 10 %\n\nFor larger values the Additive must be entered as\na Basic Color in the "
      "Master Formula.";
  for (const char* percent : {"0.001", "10.01", "0"}) {
    type("SetPercent0", percent);
    save("Maximum Percentage Exceeded", range, "SetPercent0");
    prompt.Expect("Maximum Percentage Exceeded", Answer::Ok, range);
    PressOn(Qt::Key_Tab);
    EXPECT_EQ(FocusName(), "SetPercent0");
  }
  // Leaving the ingredient by the keyboard.
  type("SetPercent0", "1");
  type("SetIng1", "WAX");
  prompt.Expect("Duplicate Ingredient Selected", Answer::Ok, "The Additive WAX is already in the Set");
  PressOn(Qt::Key_Tab);
  EXPECT_EQ(FocusName(), "SetIng1");
  type("SetIng1", "RED");
  prompt.Expect("Item Already Exists", Answer::Ok,
                "This Item already exists in Basics / Additives.\n\nIf it should be used as an Additive in this "
                "Database\ngo to Basics / Additives and check the Additive box.");
  PressOn(Qt::Key_Return);
  EXPECT_EQ(FocusName(), "SetIng1");
  type("SetIng1", "UNKNOWN");
  prompt.Expect("Add Additive To Database?", Answer::No);
  PressOn(Qt::Key_Return);
  EXPECT_EQ(FocusName(), "SetIng1");
  EXPECT_EQ(Text("SetIng1"), "");
  type("SetPercent1", "");
  type("SetPercent0", "0.01");
  Click(*form, "cmdSave_CreateTab");
  EXPECT_EQ(Content("NEW"), "WAX 0.01 ");
}

TEST_F(AdditiveControlTest, AnEditReachesEveryFormulaWithTheSet) {
  HaveInks();
  OpenTool();
  ClickCell("SN_CreateTab", "SLOW", 0, 0);
  EXPECT_EQ(Text("txtAddSetName"), "SLOW");
  EXPECT_TRUE(Control<QLineEdit>(*form, "txtAddSetName").isReadOnly());
  EXPECT_EQ(Shown("lstMixes_CreateTab", 0), std::vector<std::string>{"SLOW PINK"});
  ClickCell("SN_CreateTab", "COLORS NOT USING SETS", 0, 0);
  EXPECT_EQ(Shown("lstMixes_CreateTab", 0), (std::vector<std::string>{"NAVY", "PINK", "PURPLE"}));
  ClickCell("SN_CreateTab", "SLOW", 0, 0);
  Fill(*form, "SetPercent0", "10");
  // Another set is not shown over what was typed, nor is the window closed.
  prompt.Expect("Unfinished Add Set Creation", Answer::Yes, "Complete and Save the current Add Set?");
  ClickCell("SN_CreateTab", "COLORS NOT USING SETS", 0, 0);
  EXPECT_EQ(Text("SetPercent0"), "10.00");
  EXPECT_EQ(List("SN_CreateTab").CurrentRow(), 1);
  prompt.Expect("Unfinished Add Set Creation", Answer::Yes);
  EXPECT_FALSE(form->Leave());
  PressOn(Qt::Key_S, Qt::ControlModifier);
  EXPECT_EQ(Stored("SLOW PINK"), "RED 18.316, WHITE 68.684, DRIER 10.000, WAX 3.000 SLOW");
  EXPECT_TRUE(session.CostChanged);
  Picture(*form, "additive-control-create");
  EXPECT_TRUE(form->Leave());
  EXPECT_FALSE(session.CostChanged);
}

TEST_F(AdditiveControlTest, RenameMergeAndDelete) {
  HaveInks();
  Set("FAST", {{"DRIER", 1.0F}});
  OpenTool();
  ClickCell("SN_CreateTab", "SLOW", 0, 0);
  const auto rename = [&](const std::function<void(QWidget&)>& inside) {
    WithModal([&] { Click(*form, "cmdRename_CreateTab"); }, inside);
    ShowActive(*form);
  };
  rename([&](QWidget& dialog) {
    EXPECT_EQ(dialog.objectName().toStdString(), "NewAdditiveNameForm");
    prompt.Expect("Set Name Needed", Answer::Ok, "Please enter a new Additive Set Name.");
    Click(dialog, "cmdSave");
    EXPECT_EQ(FocusName(), "txtNewName");
    prompt.Expect("Recheck Set Name", Answer::Ok,
                  "The Set Name that was entered is the same as the one that is being renamed.\n\nPlease enter another "
                  "Set Name.");
    TypeOn("slow");
    PressOn(Qt::Key_Return);
    prompt.Expect("Additive Set Name Exists", Answer::No,
                  "This Set Name matches another on file.\n\nDo you want to merge the two Sets?");
    TypeOn("fast");
    PressOn(Qt::Key_Return);
    EXPECT_EQ(FocusName(), "txtNewName");
    Picture(dialog, "new-additive-name", {});
    Fill(dialog, "txtNewName", "steady");
    Click(dialog, "cmdSave");
  });
  EXPECT_EQ(Text("txtAddSetName"), "STEADY");
  EXPECT_EQ(Stored("SLOW PINK"), "RED 20.000, WHITE 75.000, DRIER 2.000, WAX 3.000 STEADY");
  rename([&](QWidget& dialog) {
    prompt.Expect("Additive Set Name Exists", Answer::Yes);
    Type(Control(dialog, "txtNewName"), "FAST");
    PressOn(Qt::Key_Return);
  });
  EXPECT_EQ(Text("txtAddSetName"), "FAST");
  EXPECT_EQ(Text("SetPercent0"), "1.00");
  EXPECT_EQ(Content("STEADY"), "gone");
  const std::string question = "Delete Additive Set?\n\nIt will be removed from all formulas on the list.";
  prompt.Expect(std::string(40, ' ') + "Confirm Delete", Answer::No, question);
  Click(*form, "cmdDel_CreateTab");
  prompt.Expect(std::string(40, ' ') + "Confirm Delete", Answer::Yes, question);
  Click(*form, "cmdDel_CreateTab");
  EXPECT_EQ(Content("FAST"), "gone");
  EXPECT_EQ(Text("txtAddSetName"), "");
  EXPECT_FALSE(IsOn("cmdDel_CreateTab"));
  // With the merge the formula got the lines of FAST, and all of them go.
  EXPECT_EQ(Stored("SLOW PINK"), "RED 21.053, WHITE 78.947");
}

TEST_F(AdditiveControlTest, AReadOnlyFileRefusesEveryWrite) {
  HaveInks();
  session.ArchiveView = true;
  const std::string title = RequireWritable(session).error().title;
  OpenTool();
  ClickCell("SN_CreateTab", "SLOW", 0, 0);
  for (const char* button : {"cmdSave_CreateTab", "cmdRename_CreateTab", "cmdDel_CreateTab"}) {
    prompt.Expect(title);
    Click(*form, button);
  }
  EXPECT_EQ(Content("SLOW"), "DRIER 2.00 WAX 3.00 ");
  session.ArchiveView = false;
}

TEST_F(AdditiveControlTest, TheMethodsPreviewAndApply) {
  HaveInks();
  Mix("WAXED", {{"RED", 90}, {"WAX", 10}});
  Set("FAST", {{"DRIER", 4.0F}});
  OpenTool(1);
  EXPECT_EQ(FocusName(), "lstAllMixes_ApplyTab_Filter");
  Choose("SN_ApplyTab", "SLOW");
  prompt.Expect("Select Master Formulas", Answer::Ok, "No Colors Selected - Step 2.");
  Click(*form, "cmdPrev_ApplyTab");
  Click(*form, "chkSelectAllColors");
  EXPECT_EQ(Label("lblSelected"), "5 Colors selected");
  Click(*form, "cmdPrev_ApplyTab");
  EXPECT_EQ(Shown("LVMod"), (std::vector<std::string>{"NAVY", "PINK", "PURPLE"}));
  EXPECT_EQ(Shown("LVMod", 2), std::vector<std::string>(3, "Contains No Additive Set"));
  EXPECT_EQ(Shown("LVN_Mod", 2),
            (std::vector<std::string>{"Already Uses This Additive Set", "Has Ingredient Found In Additive Set"}));
  EXPECT_EQ(Shown("LVN_Mod", 3), (std::vector<std::string>{"SLOW", ""}));
  EXPECT_EQ(Shown("LVN_Mod", 4), std::vector<std::string>(2, "Un_Modable"));

  Click(*form, "optMod_Remove");
  EXPECT_TRUE(Shown("LVMod").empty());
  Click(*form, "cmdPrev_ApplyTab");
  EXPECT_EQ(Shown("LVMod", 2), std::vector<std::string>{"Matches Additive Set"});
  Click(*form, "optMod_Filter");
  Fill(*form, "cmbBColor_ApplyTab", "RED");
  prompt.Expect("Invalid Percentage", Answer::Ok, "Enter a valid Percent");
  Click(*form, "cmdPrev_ApplyTab");
  EXPECT_EQ(FocusName(), "cmbPer_ApplyTab");
  TypeOn("20");
  PressOn(Qt::Key_F5);
  EXPECT_EQ(Shown("LVMod"), (std::vector<std::string>{"NAVY", "PURPLE"}));
  Choose("cmbOper_ApplyTab", "<=");
  PressOn(Qt::Key_F5);
  EXPECT_EQ(Shown("LVMod"), (std::vector<std::string>{"NAVY", "PINK"}));
  EXPECT_EQ(Shown("LVN_Mod", 2), (std::vector<std::string>{"> 20", "Already Uses This Additive Set", "> 20"}));
  Fill(*form, "cmbBColor_ApplyTab", "GREEN");
  PressOn(Qt::Key_F5);
  EXPECT_EQ(Shown("LVN_Mod", 2).front(), "NO GREEN");

  // The whole of a colour's way: set, then another, then none.
  Click(*form, "optMod_Add");
  Choose("SN_ApplyTab", "FAST");
  PressOn(Qt::Key_F5);
  EXPECT_EQ(Shown("LVMod", 2).at(3), "Uses Additive Set SLOW");
  Picture(*form, "additive-control-apply");
  Picture(*form, "additive-control-apply-small", {1240, 560});
  prompt.Expect(std::string(30, ' ') + "Additive Set Modification", Answer::Cancel,
                "5 color(s) are about to be modified.");
  PressOn(Qt::Key_S, Qt::ControlModifier);
  EXPECT_EQ(Shown("LVMod").size(), 5U);
  prompt.Expect(std::string(30, ' ') + "Additive Set Modification");
  prompt.Expect("Additive Set Application", Answer::Ok, "The Application Method has been applied.");
  PressOn(Qt::Key_S, Qt::ControlModifier);
  EXPECT_EQ(Stored("PURPLE"), "BLUE 38.400, RED 57.600, DRIER 4.000 FAST");
  EXPECT_EQ(Stored("SLOW PINK"), "RED 20.211, WHITE 75.789, DRIER 4.000 FAST");
  EXPECT_TRUE(Shown("LVMod").empty());
  EXPECT_FALSE(IsOn("cmdSave_ApplyTab"));
}

TEST_F(AdditiveControlTest, ASetOfFiveAtTenPercentLeavesFiftyToShare) {
  HaveInks();
  for (const char* name : {"A", "B", "C"}) Basic(name, {{"Additive", true}});
  OpenTool();
  TypeOn("HALF");
  int row = 0;
  for (const char* name : {"A", "B", "C", "DRIER", "WAX"}) {
    Fill(*form, schema::Numbered("SetIng", row).c_str(), name);
    Fill(*form, schema::Numbered("SetPercent", row++).c_str(), "10");
  }
  EXPECT_EQ(Label("lblSetTotal"), "50.00 %");
  PressOn(Qt::Key_S, Qt::ControlModifier);
  windows.DeliverChanges();
  Control<QTabWidget>(*form, "TabAdditive").setCurrentIndex(1);
  Settle();
  Choose("SN_ApplyTab", "HALF");
  Check("lstAllMixes_ApplyTab", "NAVY");
  PressOn(Qt::Key_F5);
  prompt.Expect(std::string(30, ' ') + "Additive Set Modification", Answer::Ok, "1 color(s) are about to be modified.");
  prompt.Expect("Additive Set Application");
  PressOn(Qt::Key_S, Qt::ControlModifier);
  EXPECT_EQ(Stored("NAVY"),
            "BLUE 30.000, GREEN 10.000, RED 10.000, A 10.000, B 10.000, C 10.000, DRIER 10.000, WAX 10.000 HALF");
}

}  // namespace
}  // namespace vellumark::test
