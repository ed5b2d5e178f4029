// The windows that the formula window opens: duplicate, adjust by percent, compare with the guide.

#include <gtest/gtest.h>

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>

#include "core/colors/basics.h"
#include "core/colors/guide_formulas.h"
#include "desktop/colors/register.h"
#include "desktop/kit/grid.h"
#include "support/combos.h"
#include "support/ink_room.h"

namespace vellumark::test {
namespace {

using desktop::Arguments;

const std::string kInvalidFormula = std::string(30, ' ') + "Invalid Formula";

struct FormulaDialogsTest : testing::Test, InkRoom {
  FormulaDialogsTest() {
    RegisterColorsWindows(windows);
    Basic("BLUE", {{"PurchaseCost", 10.0F}});
    Basic("YELLOW", {{"PurchaseCost", 20.0F}});
    Basic("RED", {{"PurchaseCost", 5.0F}});
    Basic("WAX", {{"Additive", true}});
    Basic("DRIER", {{"Additive", true}});
  }

  void AddSet(const std::string& name, const Recipe& rows) {
    AdditiveSet set;
    set.SetName = name;
    set.SetRows(rows);
    AddRow(schema::Additives, AdditiveSetCells(set));
  }

  /// Runs the window; what it gave back.
  std::optional<Arguments> Run(const std::string& name, const Arguments& arguments,
                               const std::function<void(QWidget&)>& inside) {
    std::optional<Arguments> given;
    WithModal([&] { given = windows.RunDialog(name, arguments); }, inside);
    return given;
  }
  FormulaWork Work(const std::string& name) { return LoadFormulaWork(session, *ReadMix(session, name)); }
  Recipe Stored(const std::string& name, const std::string& database = {}) {
    const auto mix = ReadMix(session, name, database);
    return mix ? mix->Ingredients() : Recipe{};
  }

  desktop::WindowList windows{session};
};

std::string Text(QWidget& dialog, const char* field) {
  return Control<QLineEdit>(dialog, field).text().toStdString();
}

using Cells = std::vector<std::vector<std::string>>;

Cells CellsOf(QWidget& dialog, const char* name) {
  auto& model = Control<desktop::Grid>(dialog, name).Model();
  Cells cells;
  for (int row = 0; row < model.rowCount(); ++row) {
    cells.emplace_back();
    for (int column = 0; column < model.columnCount(); ++column)
      cells.back().push_back(model.index(row, column).data().toString().toStdString());
  }
  return cells;
}

bool IsOn(QWidget& dialog, const char* name) {
  return Control(dialog, name).isEnabled();
}

// ---- Duplicate

struct DuplicateTest : FormulaDialogsTest {
  DuplicateTest() {
    CreateEmptyDatabase(session.File(), "OTHER");
    session.databaseList = {"INK", "OTHER"};
    Mix("GREEN", {{"BLUE", 60}, {"YELLOW", 35}, {"WAX", 5}}, {{"AddSetName", "SLOW"}});
    AddSet("SLOW", {{"WAX", 5}});
    AddSet("DRY", {{"DRIER", 4}, {"WAX", 1}});
  }
};

TEST_F(DuplicateTest, ByKeyboardIntoAnotherDatabase) {
  prompt.Expect("Master Formula - Duplicated", Answer::Ok,
                "The formula for GREEN was duplicated into the color  MINT\n\nIt is available for use in the OTHER "
                "Database.");
  const auto given = Run("DuplicateFormulaForm", {{"Work", Work("GREEN")}}, [&](QWidget& dialog) {
    EXPECT_EQ(FocusName(), "txtNewName");
    TypeOn("mi<nt");
    EXPECT_EQ(Text(dialog, "txtNewName"), "MINT");
    PressOn(Qt::Key_Return);
    EXPECT_EQ(FocusName(), "cmbDatabases");
    EXPECT_EQ(ItemsOf(dialog, "cmbDBAddSets"), (QStringList{"DRY", "SLOW"}));
    PressOn(Qt::Key_Down);
    EXPECT_FALSE(IsOn(dialog, "cmbDBAddSets")) << "OTHER has no Additive Set";
    Control(dialog, "cmdDuplicate").setFocus(Qt::TabFocusReason);
    PressOn(Qt::Key_Return);
  });
  ASSERT_TRUE(given);
  EXPECT_EQ(given->Text("NewName"), "MINT");
  EXPECT_EQ(given->Text("Database"), "OTHER");
  EXPECT_FALSE(given->Get<bool>("Overwritten"));
  // Without the set of its source, and with the ingredients that were not there.
  EXPECT_EQ(Stored("MINT", "OTHER"), (Recipe{{"BLUE", 63.158}, {"YELLOW", 36.842}}));
  EXPECT_EQ(ReadBasic(session, "BLUE", "OTHER")->PurchaseCost, 0);
}

TEST_F(DuplicateTest, RefusalsKeepTheWindowAndTheFocus) {
  struct Case {
    const char* name;
    Recipe recipe;
    std::string title;
    const char* text;
  };
  const Case cases[] = {
      {"", {{"BLUE", 1}}, "Color Name Needed", "Please enter a new color name."},
      {"PANTONE 185",
       {{"BLUE", 1}},
       "Invalid Master Formula Name",
       "You cannot use a name that begins with the word PANTONE.\n\nPlease choose another name."},
      {"MINT", {}, kInvalidFormula, "Can't save a formula with no ingredients."},
      {"MINT", {{"BLUE", 1}, {"BLUE", 2}}, kInvalidFormula, "Duplicate use of an ingredient in the formula."},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    FormulaWork work = Work("GREEN");
    work.AddSetName.clear();
    work.grid = {};
    for (std::size_t n = 0; n < c.recipe.size(); ++n)
      work.grid[n] = {c.recipe[n].name, std::to_string(c.recipe[n].amount)};
    EXPECT_FALSE(Run("DuplicateFormulaForm", {{"Work", work}}, [&](QWidget& dialog) {
      TypeOn(c.name);
      prompt.Expect(c.title, Answer::Ok, c.text);
      Click(dialog, "cmdDuplicate");
      if (c.title != kInvalidFormula) {
        EXPECT_EQ(FocusName(), "txtNewName");
      }
      Press(dialog, Qt::Key_Escape);
    }));
  }
}

TEST_F(DuplicateTest, OverwritingIsAskedAndTakesTheRecipeOnScreen) {
  Mix("MINT", {{"YELLOW", 100}}, {{"Color_Code", "M-1"}});
  FormulaWork work = Work("GREEN");
  work.grid[1].BQ = "20";  // typed and not yet saved
  const auto given = Run("DuplicateFormulaForm", {{"Work", work}}, [&](QWidget& dialog) {
    TypeOn("MINT");
    Choose(dialog, "cmbDBAddSets", "DRY");
    EXPECT_EQ(CellsOf(dialog, "fgAddSet"), (Cells{{"DRIER", "4.00"}, {"WAX", "1.00"}}));
    Picture(dialog, "colors-duplicate-formula", {});
    prompt.Expect("Overwite Exisiting Master Formula?", Answer::No,
                  "This Master Formula already exists in the INK database.\nWould you like to overwrite this Master "
                  "Formula's existing formula?");
    Click(dialog, "cmdDuplicate");
    EXPECT_EQ(FocusName(), "txtNewName");
    EXPECT_EQ(Stored("MINT"), (Recipe{{"YELLOW", 100}}));
    prompt.Expect("Overwite Exisiting Master Formula?", Answer::Yes);
    prompt.Expect("Master Formula - Modified", Answer::Ok, "The formula for MINT was modified.");
    Click(dialog, "cmdDuplicate");
  });
  ASSERT_TRUE(given);
  EXPECT_TRUE(given->Get<bool>("Overwritten"));
  EXPECT_EQ(Stored("MINT"), (Recipe{{"BLUE", 71.25}, {"YELLOW", 23.75}, {"DRIER", 4}, {"WAX", 1}}));
  EXPECT_EQ(ReadMix(session, "MINT")->Color_Code, "M-1");
  EXPECT_EQ(Stored("GREEN"), (Recipe{{"BLUE", 60}, {"YELLOW", 35}, {"WAX", 5}}));
}

TEST_F(DuplicateTest, AClearedSetAndOneThatDoesNotFitAreLeftOut) {
  FormulaWork work = Work("GREEN");
  for (std::size_t n = 0; n < 14; ++n) {
    work.grid[n] = {"C" + std::to_string(n), "1"};
    Basic(work.grid[n].BC);
  }
  prompt.Expect("Maxium Formula Ingredients Exceeded", Answer::Ok,
                "The Duplicated Formula cannot be saved with the selected Additive Set information.\nThe total number "
                "of ingredients exceeds 15.\n\nIt will be duplicated without the Additive Set information.");
  prompt.Expect("Master Formula - Duplicated");
  EXPECT_TRUE(Run("DuplicateFormulaForm", {{"Work", work}}, [&](QWidget& dialog) {
    TypeOn("WIDE");
    Choose(dialog, "cmbDBAddSets", "DRY");
    Click(dialog, "cmdDuplicate");
  }));
  EXPECT_EQ(ReadMix(session, "WIDE")->AddSetName, "");

  prompt.Expect("Master Formula - Duplicated");
  EXPECT_TRUE(Run("DuplicateFormulaForm", {{"Work", Work("GREEN")}}, [&](QWidget& dialog) {
    TypeOn("PLAIN");
    EXPECT_FALSE(IsOn(dialog, "cmdClear"));
    Choose(dialog, "cmbDBAddSets", "SLOW");
    Click(dialog, "cmdClear");
    EXPECT_EQ(CellsOf(dialog, "fgAddSet"), Cells{});
    Click(dialog, "cmdDuplicate");
  }));
  EXPECT_EQ(Stored("PLAIN").size(), 2U);
}

// ---- Adjust by percent

struct AdjustTest : FormulaDialogsTest {
  AdjustTest() {
    AddSet("SLOW", {{"WAX", 5}});
    Mix("GREEN", {{"BLUE", 57}, {"YELLOW", 38}, {"WAX", 5}}, {{"AddSetName", "SLOW"}, {"Recycle", true}});
  }
};

TEST_F(AdjustTest, IncreasesDecreasesAndAddsAtPartsOf100) {
  struct Case {
    const char* choice;
    const char* ingredient;
    const char* percent;
    QStringList offered;
    Recipe stored;
  };
  // 57 and 10 percent are 62.7, beside 38 in 95 parts: 59.151 and 35.849. The set keeps its share.
  const Case cases[] = {
      {"OptIncrease", "BLUE", "10", {"BLUE", "YELLOW"}, {{"BLUE", 59.151}, {"YELLOW", 35.849}, {"WAX", 5}}},
      {"OptDecrease", "YELLOW", "50", {"BLUE", "YELLOW"}, {{"BLUE", 71.25}, {"YELLOW", 23.75}, {"WAX", 5}}},
      {"OptAdd", "RED", "5", {"RED"}, {{"BLUE", 54.15}, {"YELLOW", 36.1}, {"RED", 4.75}, {"WAX", 5}}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.choice);
    const FormulaWork work = Work("GREEN");
    const auto given = Run("AdjustFormulaForm", {{"Work", work}}, [&](QWidget& dialog) {
      Click(dialog, c.choice);
      EXPECT_EQ(ItemsOf(dialog, "cmbBasics"), c.offered);
      Choose(dialog, "cmbBasics", c.ingredient);
      PressOn(Qt::Key_Return);
      EXPECT_EQ(FocusName(), "txtPercent");
      TypeOn(c.percent);
      if (std::string_view(c.choice) == "OptIncrease") Picture(dialog, "colors-adjust-formula", {});
      PressOn(Qt::Key_Return);
    });
    ASSERT_TRUE(given);
    EXPECT_EQ(Stored("GREEN"), c.stored);
    EXPECT_EQ(given->Get<FormulaWork>("Work").grid[0].BC, "BLUE");
    FormulaWork back = work;
    ASSERT_TRUE(SaveFormula(session, back));
  }
}

TEST_F(AdjustTest, APercentageOutOfRangeIsRefused) {
  EXPECT_FALSE(Run("AdjustFormulaForm", {{"Work", Work("GREEN")}}, [&](QWidget& dialog) {
    for (const char* percent : {"", "0", "100", "-5", "0.004", "."}) {
      SCOPED_TRACE(percent);
      Type(Control(dialog, "txtPercent"), percent);
      prompt.Expect("Invalid Percentage", Answer::Ok, "You must enter a valid percentage > 0 and < 100.");
      Click(dialog, "cmdOK");
      EXPECT_EQ(FocusName(), "txtPercent");
      Control<QLineEdit>(dialog, "txtPercent").clear();
    }
    // Left for another field it is checked at once, and shown with its decimals.
    Type(Control(dialog, "txtPercent"), "120");
    prompt.Expect("Invalid Percentage");
    Click(dialog, "cmbBasics");
    if (auto* list = QApplication::activePopupWidget()) list->close();
    Fill(dialog, "txtPercent", "7.555");
    EXPECT_EQ(Text(dialog, "txtPercent"), "7.56");
    Press(dialog, Qt::Key_Escape);
  }));
  EXPECT_EQ(Stored("GREEN")[0].amount, 57);
}

TEST_F(AdjustTest, ASixteenthIngredientIsRefused) {
  FormulaWork work = Work("GREEN");
  work.AddSetName.clear();
  for (std::size_t n = 0; n < work.grid.size(); ++n) {
    work.grid[n] = {"C" + std::to_string(n), "1"};
    Basic(work.grid[n].BC);
  }
  prompt.Expect("Maximum Ingredients Exceeded", Answer::Ok,
                "This formula already contains the maximum number of ingredients, 15.\n\nBLUE could not be added to "
                "the formula.");
  EXPECT_FALSE(Run("AdjustFormulaForm", {{"Work", work}}, [&](QWidget& dialog) {
    Click(dialog, "OptAdd");
    Fill(dialog, "txtPercent", "5");
    Click(dialog, "cmdOK");
    Press(dialog, Qt::Key_Escape);
  }));
}

struct StandInWindow : desktop::Window {
  explicit StandInWindow(desktop::WindowList& list) : Window(list, "DBFormulaModifierForm", "") {}
};

TEST_F(AdjustTest, LeadsToTheWindowForManyFormulas) {
  EXPECT_FALSE(Run("AdjustFormulaForm", {{"Work", Work("GREEN")}}, [&](QWidget& dialog) {
    EXPECT_FALSE(IsOn(dialog, "cmdDFM")) << "no such window yet";
    Press(dialog, Qt::Key_Escape);
  }));
  windows.Register<StandInWindow>("DBFormulaModifierForm");
  EXPECT_FALSE(Run("AdjustFormulaForm", {{"Work", Work("GREEN")}}, [&](QWidget& dialog) {
    EXPECT_EQ(Control(dialog, "cmdDFM").toolTip(),
              "A large range of formula modifications can be performed using this window.\nUse the Database Formula "
              "Modifier Window to adjust more than one\ningredient at the same time.");
    Click(dialog, "cmdDFM");
  }));
  EXPECT_TRUE(windows.IsFormOpen("DBFormulaModifierForm"));
  windows.CloseForm("DBFormulaModifierForm");
}

// ---- Compare

struct CompareTest : FormulaDialogsTest {
  CompareTest() {
    session.templateDB = Database::Create(folder / "pdbt.vkt");
    session.templateDB->CreateTable("Goe_MColors", schema::Mix);
    InsertRow(*session.templateDB, schema::Mix, "Goe_MColors",
              {{"Color_Name", "PANTONE 185"},
               {"BC0", "PANTONE RUBINE"},
               {"BQ0", 75.5F},
               {"BC1", "PANTONE SILVER"},
               {"BQ1", 24.5F}});
    session.TemplateFile = "pdbt.vkt";
    Basic("PANTONE RUBINE");
    Basic("PANTONE SILVER");
    AddSet("SLOW", {{"WAX", 5}});
    Mix("PANTONE 185", {{"PANTONE RUBINE", 71.725F}, {"PANTONE SILVER", 23.275F}, {"WAX", 5}},
        {{"AddSetName", "SLOW"}, {"Date_Entered", DateTime{2026, 1, 31}}});
  }
};

TEST_F(CompareTest, ShowsBothAndOnlyTheFormulaWindowMayRevert) {
  for (const bool mayRevert : {false, true}) {
    Arguments arguments{{"Color_Name", "PANTONE 185"}};
    if (mayRevert) arguments.Set("MayRevert", true);
    EXPECT_FALSE(Run("CompareFormulasForm", arguments, [&](QWidget& dialog) {
      EXPECT_EQ(dialog.windowTitle(), " Modified Formula");
      EXPECT_EQ(Control<QLabel>(dialog, "lblOriginal").text(), "Original PANTONE 185");
      EXPECT_EQ(Control<QLabel>(dialog, "lblModified").text(), "Modified PANTONE 185");
      EXPECT_EQ(CellsOf(dialog, "fgOriginal"),
                (Cells{{"PANTONE RUBINE", "75.500", ""}, {"PANTONE SILVER", "24.500", ""}}));
      EXPECT_EQ(CellsOf(dialog, "fgModified"), (Cells{{"PANTONE RUBINE", "71.725", "-3.775"},
                                                      {"PANTONE SILVER", "23.275", "-1.225"},
                                                      {"WAX", "5.000", "added"}}));
      EXPECT_EQ(IsOn(dialog, "cmdRevert"), mayRevert);
      if (mayRevert) Picture(dialog, "colors-compare-formulas", {});
      PressOn(Qt::Key_Return);
    }));
  }
}

TEST_F(CompareTest, RevertsOnlyWhenAgreed) {
  FormulaWork work = Work("PANTONE 185");
  const auto given =
      Run("CompareFormulasForm", {{"Color_Name", "PANTONE 185"}, {"MayRevert", true}}, [&](QWidget& dialog) {
        const char* question =
            "This formula will be changed back to published Pantone specifi"
            "cations.\n\nAre you sure you want to revert back to the original Pantone formula?";
        prompt.Expect("Revert Back To Original Formula?", Answer::No, question);
        Click(dialog, "cmdRevert");
        EXPECT_TRUE(dialog.isVisible());
        prompt.Expect("Revert Back To Original Formula?", Answer::Yes, question);
        Click(dialog, "cmdRevert");
      });
  ASSERT_TRUE(given);
  EXPECT_TRUE(given->Get<bool>("Revert"));
  EXPECT_EQ(Stored("PANTONE 185").size(), 3U) << "the window only asks";
  ASSERT_TRUE(PutBackToGuide(session, work));
  EXPECT_EQ(Stored("PANTONE 185"), (Recipe{{"PANTONE RUBINE", 75.5}, {"PANTONE SILVER", 24.5}}));
  EXPECT_EQ(work.AddSetName, "");
  EXPECT_EQ(ReadMix(session, "PANTONE 185")->LastModified, session.clock.Today());
  EXPECT_FALSE(IsFormulaModified(session, "PANTONE 185"));
}

TEST_F(CompareTest, WithoutAPublishedIngredientThereIsNoWayBack) {
  for (const char* rule : {"ColorSets", "FormulaTotals", "RollUps"}) Breaks(rule);
  session.File().Prepare("DELETE FROM INK_Basic WHERE Color_Name = 'PANTONE SILVER'").Run();
  session.File().Prepare("UPDATE INK_Mix SET BC1 = 'RED', BQ0 = 75.5").Run();
  EXPECT_FALSE(Run("CompareFormulasForm", {{"Color_Name", "PANTONE 185"}, {"MayRevert", true}}, [&](QWidget& dialog) {
    EXPECT_FALSE(IsOn(dialog, "cmdRevert"));
    EXPECT_EQ(CellsOf(dialog, "fgOriginal")[1], (std::vector<std::string>{"PANTONE SILVER", "24.500", "missing"}));
    EXPECT_EQ(CellsOf(dialog, "fgModified")[0], (std::vector<std::string>{"PANTONE RUBINE", "75.500", ""}));
    Press(dialog, Qt::Key_Escape);
  }));
  FormulaWork work = Work("PANTONE 185");
  EXPECT_FALSE(PutBackToGuide(session, work));
}

}  // namespace
}  // namespace vellumark::test
