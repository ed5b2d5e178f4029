// The formula modifier, by the keys and clicks of an operator.

#include "tools_room.h"

namespace vellumark::test {
namespace {

constexpr const char* kTitle = "Database Formula Modifier";

struct FormulaModifierTest : ToolsRoom {
  void OpenTool() { Open("DBFormulaModifierForm"); }
  /// A line by its fields, in the order of the keyboard.
  void Line(int number, const std::string& method, const std::string& ingredient, const std::string& percent) {
    const std::string n = std::to_string(number);
    auto& chosen = Control<QCheckBox>(*form, ("chkSel" + n).c_str());
    if (!chosen.isChecked()) Click(chosen);
    Choose(("cmbIncDec" + n).c_str(), method);
    Fill(*form, ("cmbBasics" + n).c_str(), ingredient);
    QWidget& field = Control(*form, ("txtPercent" + n).c_str());
    field.setFocus();
    PressOn(Qt::Key_A, Qt::ControlModifier);
    TypeOn(percent);
  }
  void Preview() { Click(*form, "cmdPreview"); }
};

TEST_F(FormulaModifierTest, WithoutFormulasItDoesNotOpen) {
  prompt.Expect(kTitle, Answer::Ok, "There are no Master Formulas to modify.");
  windows.OpenForm("DBFormulaModifierForm");
  Settle();
  EXPECT_FALSE(windows.IsFormOpen("DBFormulaModifierForm"));
}

TEST_F(FormulaModifierTest, EachCheckSpeaksAndTakesTheFocusToItsField) {
  HaveInks();
  OpenTool();
  EXPECT_EQ(form->windowTitle().toStdString(), " Database Formula Modifier");
  EXPECT_FALSE(IsOn("cmdSave"));
  EXPECT_FALSE(IsOn("cmdBackup"));
  EXPECT_FALSE(IsOn("txtPercent0"));
  const struct {
    const char* method;
    const char* percent;
    const char* title;
    const char* text;
  } onLeaving[] = {{"Increase Basic Color", "-", "Invalid Percentage", "Enter a valid Percent"},
                   {"Decrease Basic Color", "100.01", "Invalid Percentage", "Enter a valid Percent"},
                   {"Remove Basic Color", "50", "Mod Method Rule", "Removing a color requires a 100.00 value"},
                   {"Add Basic Color", "50.01", "Mod Method Rule", "Cannot exceed 50.00 when Adding a Basic"}};
  Check("lstMixes", "PINK");
  for (const auto& c : onLeaving) {
    SCOPED_TRACE(c.percent);
    Line(0, c.method, "RED", c.percent);
    prompt.Expect(c.title, Answer::Ok, c.text);
    PressOn(Qt::Key_Tab);
    EXPECT_EQ(FocusName(), "txtPercent0");
    EXPECT_EQ(Control<QLineEdit>(*form, "txtPercent0").selectedText(), c.percent);
    // A button checks by itself.
    prompt.Expect(c.title, Answer::Ok, c.text);
    Preview();
    EXPECT_EQ(FocusName(), "txtPercent0");
  }
  Line(0, "Add Basic Color", "RED", "50");
  PressOn(Qt::Key_Tab);
  EXPECT_EQ(Text("txtPercent0"), "50.00");
  Check("lstMixes", "PINK");
  prompt.Expect("Select Master Formulas", Answer::Ok, "No Master Formulas selected for Modification Preview.");
  Preview();
  Check("lstMixes", "PINK");
  Line(1, "Remove Basic Color", "red", "100");
  prompt.Expect("Revise Mod Info", Answer::Ok, "Can't use same ingredient in more than one mod selection.");
  Preview();
  EXPECT_EQ(FocusName(), "cmbBasics1");
  Line(1, "Increase Basic Color", "WHITE", "0.004");
  prompt.Expect("Verify Number Values", Answer::Ok, "Zero value being used in one or more of the modifications.");
  Preview();
  EXPECT_EQ(FocusName(), "txtPercent1");
  Click(*form, "chkSel0");
  Click(*form, "chkSel1");
  prompt.Expect("Select a Modification", Answer::Ok, "No modifications selected.");
  Preview();
  EXPECT_EQ(FocusName(), "chkSel0");
  EXPECT_TRUE(Shown("LVMod").empty());
}

TEST_F(FormulaModifierTest, ThreeEqualAmountsBesideASetOfFiveEndAt105) {
  HaveInks();
  Mix("THREE", {{"RED", 20}, {"BLUE", 30}, {"WHITE", 30}, {"DRIER", 2}, {"WAX", 3}}, {{"AddSetName", "SLOW"}});
  OpenTool();
  EXPECT_EQ(FocusName(), "lstMixes_Filter");
  TypeOn("three");
  PressOn(Qt::Key_Return);
  PressOn(Qt::Key_Space);
  EXPECT_EQ(Label("lblSelected"), "1 Colors selected");
  Line(0, "Increase Basic Color", "RED", "50");
  PressOn(Qt::Key_F5);
  const std::string recipe = "RED 36.666, BLUE 31.667, WHITE 31.667, DRIER 2.000, WAX 3.000";
  EXPECT_EQ(Shown("LVMod"), std::vector<std::string>{"THREE"});
  EXPECT_EQ(Shown("LVMod", 5), std::vector<std::string>{recipe});
  EXPECT_EQ(Shown("LVMod", 6), std::vector<std::string>{"105.000"});
  EXPECT_EQ(FocusName(), "LVMod_View");
  EXPECT_NE(Label("lblPreviewDetail").find(recipe), std::string::npos);
  EXPECT_EQ(Stored("THREE"), "RED 20.000, BLUE 30.000, WHITE 30.000, DRIER 2.000, WAX 3.000 SLOW");
  prompt.Expect(kTitle, Answer::Cancel,
                "You are about to change 1 Master Formula(s) in the INK Database.\n\nClick OK to continue.");
  PressOn(Qt::Key_S, Qt::ControlModifier);
  EXPECT_EQ(Shown("LVMod").size(), 1U);
  prompt.Expect(kTitle);
  prompt.Expect("Master Formulas Modified", Answer::Ok, "The selected Master Formulas have been modified.");
  PressOn(Qt::Key_S, Qt::ControlModifier);
  EXPECT_EQ(Stored("THREE"), recipe + " SLOW");
  EXPECT_EQ(ReadMix(session, "THREE")->LastModified, session.clock.Now());
  EXPECT_TRUE(Shown("LVMod").empty());
  EXPECT_FALSE(IsOn("cmdSave"));
  EXPECT_FALSE(Control<QCheckBox>(*form, "chkSel0").isChecked());
  EXPECT_EQ(Text("cmbBasics0"), "");
  EXPECT_EQ(Label("lblSelected"), "0 Colors selected");
}

TEST_F(FormulaModifierTest, RowsMoveBetweenTheListsByKeyboardIfTheyMay) {
  HaveInks();
  OpenTool();
  Click(*form, "chkSelectAllColors");
  Line(0, "Add Basic Color", "WHITE", "10");
  Line(1, "Increase Basic Color", "RED", "50");
  PressOn(Qt::Key_F5);
  EXPECT_EQ(Shown("LVMod"), (std::vector<std::string>{"NAVY", "PURPLE"}));
  EXPECT_EQ(Shown("LVN_Mod"), (std::vector<std::string>{"PINK", "SLOW PINK"}));
  EXPECT_EQ(Shown("LVN_Mod", 2), (std::vector<std::string>{"Contains WHITE", "Contains WHITE"}));
  // The row with the frame goes when none is checked.
  EXPECT_EQ(FocusName(), "LVMod_View");
  PressOn(Qt::Key_Right, Qt::AltModifier);
  EXPECT_EQ(Shown("LVMod"), std::vector<std::string>{"PURPLE"});
  EXPECT_EQ(FocusName(), "LVMod_View");
  Check("LVN_Mod", "NAVY");
  Check("LVN_Mod", "PINK");
  PressOn(Qt::Key_Left, Qt::AltModifier);
  EXPECT_EQ(Shown("LVMod"), (std::vector<std::string>{"NAVY", "PINK", "PURPLE"}));
  prompt.Expect(kTitle);
  prompt.Expect("Master Formulas Modified");
  PressOn(Qt::Key_S, Qt::ControlModifier);
  // Held already, WHITE was increased by 10 percent: 99 beside 15 of RED.
  EXPECT_EQ(Stored("PINK"), "RED 13.158, WHITE 86.842");
  EXPECT_EQ(Stored("SLOW PINK"), "RED 20.000, WHITE 75.000, DRIER 2.000, WAX 3.000 SLOW");

  // What fails has no box and stays where it is.
  Check("lstMixes", "PINK");
  Line(0, "Decrease Basic Color", "GREEN", "10");
  PressOn(Qt::Key_F5);
  EXPECT_EQ(Shown("LVN_Mod", 4), std::vector<std::string>{"Un Modable"});
  EXPECT_EQ(List("LVN_Mod").Model().Source()->Mark(0, 0), nullptr);
  Check("LVN_Mod", "PINK");
  PressOn(Qt::Key_Left, Qt::AltModifier);
  EXPECT_TRUE(Shown("LVMod").empty());
  // A change of the lines takes the preview back.
  Line(0, "Increase Basic Color", "RED", "10");
  EXPECT_TRUE(Shown("LVN_Mod").empty());
  EXPECT_TRUE(form->Leave());
  EXPECT_FALSE(session.CostChanged);
}

TEST_F(FormulaModifierTest, Pictures) {
  HaveInks();
  OpenTool();
  Picture(*form, "formula-modifier-empty");
  Click(*form, "chkSelectAllColors");
  Line(0, "Add Basic Color", "WHITE", "10");
  Line(1, "Increase Basic Color", "RED", "12.5");
  PressOn(Qt::Key_F5);
  Picture(*form, "formula-modifier");
  // As it stands between the bars of a main window on a small screen.
  Picture(*form, "formula-modifier-small", {1240, 560});
}

}  // namespace
}  // namespace vellumark::test
