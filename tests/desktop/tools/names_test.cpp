// Many colours renamed and many formulas deleted, by the keys and clicks of an operator.

#include "tools_room.h"

namespace vellumark::test {
namespace {

using DBRenameColorsTest = ToolsRoom;
using DBDelColorsTest = ToolsRoom;

TEST_F(DBRenameColorsTest, EachCheckSpeaks) {
  prompt.Expect("Database - Rename Colors", Answer::Ok, "There are no colors to rename.");
  Open("DBRenameColors");
  EXPECT_EQ(form->windowTitle().toStdString(), " Database - Rename Colors");
  HaveInks();
  EXPECT_TRUE(form->Leave());
  Settle();
  Open("DBRenameColors");
  prompt.Expect("Select Color", Answer::Ok, "No colors selected for renaming.");
  PressOn(Qt::Key_F5);
  Check("lstColors", "PINK");
  const struct {
    const char* option;
    const char* field;
    const char* typed;
    const char* title;
    const char* text;
  } bad[] = {
      {"optNameChange_Prefix", "txtPrefix", "MY PANTONE ", "Bad Prefix", "PANTONE cannot be used for a prefix"},
      {"optNameChange_Prefix", "txtPrefix", "", "Enter Rename Data",
       "No data has been entered for renameing procedure."},
      {"optNameChange_Suffix", "txtSuffix", "", "Enter Rename Data",
       "No data has been entered for renameing procedure."},
      {"optNameChange_Find", "txtFind", "", "Enter Rename Data", "No data has been entered for renameing procedure."}};
  for (const auto& c : bad) {
    SCOPED_TRACE(c.field);
    Click(*form, c.option);
    Fill(*form, c.field, c.typed);
    prompt.Expect(c.title, Answer::Ok, c.text);
    PressOn(Qt::Key_F5);
    EXPECT_EQ(FocusName(), c.field);
  }
}

TEST_F(DBRenameColorsTest, PreviewedAndRenamedEverywhere) {
  HaveInks();
  Mix("PINK 2", {{"RED", 100}});
  AddRow(schema::Batch, {{"BatchNo", 1}, {"Color_Name", "PINK"}, {"IngName0", "SLOW PINK"}, {"IngType0", 2}});
  Open("DBRenameColors");
  Click(*form, "chkSelectAllColors");
  Click(*form, "optNameChange_Find");
  Fill(*form, "txtFind", "pink");
  Fill(*form, "txtReplace", "rose");
  PressOn(Qt::Key_F5);
  EXPECT_EQ(Shown("LVMod"), (std::vector<std::string>{"PINK", "PINK 2", "SLOW PINK"}));
  EXPECT_EQ(Shown("LVMod", 2), (std::vector<std::string>{"ROSE", "ROSE 2", "SLOW ROSE"}));
  EXPECT_EQ(Shown("LVN_Mod", 2),
            (std::vector<std::string>{"Find string not found in name", "Find string not found in name"}));
  Picture(*form, "rename-colors");
  Check("LVMod", "PINK 2");
  PressOn(Qt::Key_Right, Qt::AltModifier);
  prompt.Expect("Database Color Rename", Answer::Ok,
                "You are about to rename 2 colors in the INK Database.\n\nClick OK to continue.");
  PressOn(Qt::Key_S, Qt::ControlModifier);
  EXPECT_EQ(Shown("lstColors"), (std::vector<std::string>{"NAVY", "PINK 2", "PURPLE", "ROSE", "SLOW ROSE"}));
  EXPECT_EQ(Scalar("SELECT Color_Name FROM INK_Batch").Text(), "ROSE");
  EXPECT_EQ(Scalar("SELECT IngName0 FROM INK_Batch").Text(), "SLOW ROSE");
  EXPECT_EQ(Text("txtFind"), "");

  // Two that would share a name stay both; a name at full length takes no suffix.
  Click(*form, "optType_Basic");
  Check("lstColors", "RED");
  Click(*form, "optNameChange_Suffix");
  Fill(*form, "txtSuffix", " AND TWENTY-SEVEN LETTERS MORE");
  PressOn(Qt::Key_F5);
  EXPECT_EQ(Shown("LVN_Mod", 2), std::vector<std::string>{"New name exceeds 30 characters"});
  EXPECT_FALSE(IsOn("cmdSave"));
  Fill(*form, "txtSuffix", "-X");
  EXPECT_TRUE(Shown("LVN_Mod").empty());
  PressOn(Qt::Key_F5);
  prompt.Expect("Database Color Rename");
  PressOn(Qt::Key_S, Qt::ControlModifier);
  EXPECT_EQ(Stored("NAVY"), "BLUE 60.000, GREEN 20.000, RED-X 20.000");
}

TEST_F(DBDelColorsTest, ShowsTheFormulaAndDeletesWhatIsChosen) {
  HaveInks();
  AddRow(schema::MixLotInv, {{"LotRefID", 1}, {"LotCName", "NAVY"}, {"LotQty", 2.5F}});
  AddRow(schema::MixLab, {{"Color_Name", "NAVY"}});
  session.File().Execute("UPDATE INK_Mix SET LastProduced = '2026-02-03 00:00:00' WHERE Color_Name = 'NAVY'");
  Open("DBDelColors");
  EXPECT_EQ(form->windowTitle().toStdString(), " Delete Master Formulas");
  EXPECT_EQ(Label("lblHint"), "Click on a Color Name to view Master Formula details");
  EXPECT_FALSE(IsOn("cmdDelete"));
  ClickCell("lstMixes", "NAVY", 1);
  EXPECT_EQ(Label("lblColor"), "NAVY");
  EXPECT_EQ(Label("lblInventory"), "2.500");
  EXPECT_NE(Label("lblLastProduced").find("26"), std::string::npos);
  EXPECT_EQ(Shown("fgFormula", 0), (std::vector<std::string>{"BLUE", "GREEN", "RED"}));
  EXPECT_FALSE(IsOn("cmdDelete"));  // looked at, not chosen
  Check("lstMixes", "NAVY");
  Check("lstMixes", "PINK");
  Picture(*form, "del-colors");

  AddRow(schema::Designs,
         {{"DesignID", "D1"}, {"IngName0", "PINK"}, {"IngType0", 2}, {"IngDB0", "INK"}, {"IngSet", "<PINK>"}});
  prompt.Expect("Additive Set Color", Answer::Ok,
                "PINK: Color is used in a Job Design.\n\nRename color or modify Job Design before deleting.");
  PressOn(Qt::Key_D, Qt::ControlModifier);
  Check("lstMixes", "PINK");
  const std::string question =
      "OK to delete Master Formulas from database: INK\n\nSelected colors will be removed permanently.";
  prompt.Expect("Confirm Delete", Answer::Cancel, question);
  PressOn(Qt::Key_D, Qt::ControlModifier);
  EXPECT_EQ(Stored("NAVY"), "BLUE 60.000, GREEN 20.000, RED 20.000");
  prompt.Expect("Confirm Delete", Answer::Ok, question);
  prompt.Expect("Master Formula Deletion", Answer::Ok, "The Selected Master Formulas have been deleted.");
  PressOn(Qt::Key_D, Qt::ControlModifier);
  EXPECT_EQ(Shown("lstMixes"), (std::vector<std::string>{"PINK", "PURPLE", "SLOW PINK"}));
  EXPECT_EQ(Scalar("SELECT COUNT(*) FROM INK_Mix_LotInv").Whole(), 0);
  EXPECT_EQ(Scalar("SELECT COUNT(*) FROM INK_Mix_LAB").Whole(), 0);
  EXPECT_EQ(Label("lblSelected"), "0 Colors selected");
}

TEST_F(DBDelColorsTest, WorksInTheDatabaseThatIsChosen) {
  HaveInks();
  CreateEmptyDatabase(session.File(), "UV");
  session.databaseList = {"INK", "UV"};
  session.File().Execute("INSERT INTO UV_Mix (Color_Name, BC0, BQ0) VALUES ('PINK', 'RED', 100)");
  Open("DBDelColors");
  Choose("cmbDBList_Formulas", "UV");
  EXPECT_EQ(Shown("lstMixes"), std::vector<std::string>{"PINK"});
  Check("lstMixes", "PINK");
  prompt.Expect("Confirm Delete", Answer::Ok,
                "OK to delete Master Formulas from database: UV\n\nSelected colors will be removed permanently.");
  prompt.Expect("Master Formula Deletion");
  PressOn(Qt::Key_D, Qt::ControlModifier);
  EXPECT_EQ(Scalar("SELECT COUNT(*) FROM UV_Mix").Whole(), 0);
  EXPECT_TRUE(MixColorExists(session, "PINK"));
}

}  // namespace
}  // namespace vellumark::test
