#include <gtest/gtest.h>

#include <QLabel>
#include <QRadioButton>
#include <QTabWidget>

#include "core/base/files.h"
#include "core/base/text.h"
#include "core/datafile/databases.h"
#include "core/exchange/format_examples.h"
#include "core/exchange/formula_export.h"
#include "core/exchange/formula_file.h"
#include "desktop/exchange/register.h"
#include "desktop/tools/register.h"
#include "support/desktop.h"
#include "support/ink_room.h"
#include "support/places.h"

namespace vellumark::test {
namespace {

/// Formulas of two days in one Database, one in another; files are chosen by the test.
struct ExportRoom : testing::Test, InkRoom {
  ExportRoom() {
    desktop::RegisterToolsWindows(windows);
    desktop::RegisterExchangeWindows(windows, [this](const desktop::FileChoice& choice, QWidget*) {
      asked = choice;
      return QString::fromStdString(chosen.string());
    });
    for (const char* name : {"BLUE", "RED", "WHITE"}) Basic(name);
    Mix("NAVY", {{"BLUE", 75.0F}, {"RED", 25.0F}}, {{"Color_Code", "N1"}, {"Date_Entered", "2026-03-01 00:00:00"}});
    Mix("PINK", {{"WHITE", 90.0F}, {"RED", 10.0F}}, {{"Color_Code", "P1"}, {"Date_Entered", "2026-03-10 00:00:00"}});
    CreateEmptyDatabase(session.File(), "OTHER");
    session.databaseList = {"INK", "OTHER"};
  }
  desktop::Window& Open() {
    form = windows.OpenForm("DBExport_Formulas");
    ShowActive(*form);
    return *form;
  }
  std::string Selected() { return Control<QLabel>(*form, "lblSelected").text().toStdString(); }
  void Page(int page) {
    Control<QTabWidget>(*form, "tabSteps").setCurrentIndex(page);
    Settle();
  }
  void ChooseFormat(int format) {
    Control<QRadioButton>(*form, QString("optFormat%1").arg(format).toUtf8().constData()).click();
    Settle();
  }

  desktop::WindowList windows{session};
  desktop::FileChoice asked;
  std::filesystem::path chosen = folder / "out.txt";
  desktop::Window* form = nullptr;
};

TEST_F(ExportRoom, FormulasAreChosenByDayAndWrittenInTheFormatThatWasChosen) {
  Open();
  EXPECT_EQ(Selected(), "Colors Selected - 0   of 2");
  Picture(*form, "export-formulas-1");
  prompt.Expect("No Formulas Selected", Answer::Ok, "No Master Formulas selected for export.");
  Page(2);
  Click(*form, "cmdSave");
  EXPECT_EQ(Control<QTabWidget>(*form, "tabSteps").currentIndex(), 0);
  EXPECT_FALSE(std::filesystem::exists(chosen));

  Click(*form, "cmdSelectAll");
  EXPECT_EQ(Selected(), "Colors Selected - 2   of 2");
  Control<QRadioButton>(*form, "optEntered").click();
  Control<desktop::DateField>(*form, "dtFrom").SetDate(ParseDateTime("2026-03-05"));
  Settle();
  EXPECT_EQ(Selected(), "Colors Selected - 1   of 1");
  Page(1);
  ChooseFormat(2);
  Picture(*form, "export-formulas-2");
  Page(2);
  prompt.Expect("Export Complete", Answer::Ok, "Formulas have been exported to the file:\n\n" + chosen.string());
  Click(*form, "cmdSave");
  EXPECT_EQ(asked.extension, ".txt");
  EXPECT_EQ(
      ReadFileBytes(chosen),
      "BillNo\tBillDesc1\tComponentItemCode\tQuantityPerBill\r\nPINK\tP1\tWHITE\t90.000\r\nPINK\tP1\tRED\t10.000\r\n");

  // The next one is another file; one that is there is not written over without a word.
  prompt.Expect("Overwrite File", Answer::No);
  Click(*form, "cmdSave");
  // A formula that comes in meanwhile is in the list, and is not chosen.
  Control<QRadioButton>(*form, "optAllDates").click();
  Mix("AQUA", {{"BLUE", 100.0F}});
  session.changes.Tell({{Change::Kind::Mix, "INK", "AQUA", Change::What::Added, ""}});
  windows.DeliverChanges();
  EXPECT_EQ(Selected(), "Colors Selected - 1   of 3");
  chosen = folder / "out.mfe";
  Page(1);
  ChooseFormat(0);
  Page(2);
  Click(*form, "cmdBrowse");
  EXPECT_EQ(Control<QLabel>(*form, "lblFile").text().toStdString(), chosen.string());
  Picture(*form, "export-formulas-3");
  prompt.Expect("Export Complete");
  Click(*form, "cmdSave");
  EXPECT_EQ(ReadFileBytes(chosen), "INK\r\nPINK\tWHITE\t90.000\tRED\t10.000\r\n");

  Control<desktop::ComboField>(*form, "cmbDBList_Formulas").SetText("OTHER");
  Q_EMIT Control<desktop::ComboField>(*form, "cmbDBList_Formulas").activated(1);
  Settle();
  EXPECT_EQ(Selected(), "Colors Selected - 0   of 0");
}

TEST_F(ExportRoom, WhoMayNotExportDoesNotGetIn) {
  session.CurrentUser = "ANN";
  session.IsAdminUser = false;
  session.Perm_Export = 0;
  prompt.Expect("Permission Denied");
  EXPECT_EQ(windows.OpenForm("DBExport_Formulas"), nullptr);
}

TEST_F(ExportRoom, EachFormatIsShownOnAFileThatCanBeReadIn) {
  Open();
  Page(1);
  ChooseFormat(4);
  Click(*form, "cmdFormatInfo");
  ASSERT_EQ(windows.OpenForms().size(), 2U);
  desktop::Window* examples = windows.OpenForms().back();
  ASSERT_EQ(examples->Name(), "ExportImportFileExamples");
  ShowActive(*examples);
  auto& grid = Control<desktop::Grid>(*examples, "fgExample");
  EXPECT_EQ(grid.Model().Source()->Text(0, 1), "Description");
  EXPECT_EQ(grid.Model().Source()->Text(1, 2), "B-03");
  EXPECT_EQ(grid.Model().Source()->Text(2, 0), "DENIM BLUE 45");
  Picture(*examples, "formula-examples");
  auto& formats = Control<desktop::ComboField>(*examples, "cmbFormat");
  for (int format = 0; format < kWrittenFormats; ++format) {
    formats.setCurrentIndex(format);
    Q_EMIT formats.activated(format);
    chosen = folder / ("example" + std::to_string(format) + ".any");
    Click(*examples, "cmdSaveExample");
    const auto table = ReadFormulaFile(chosen, {});
    ASSERT_TRUE(table) << table.error().text;
    EXPECT_TRUE(table->badLines.empty());
    EXPECT_EQ(table->formulas.size(), 3U);
  }
}

TEST_F(ExportRoom, AShopsColumnsAreToldInAWindowAndRemembered) {
  const auto path = folder / "shop.csv";
  ReplaceFile(path, "Farbe;Bestandteil;Anteil\nHIMMEL;BLUE;12,5\nHIMMEL;WHITE;87,5\n");
  EXPECT_FALSE(ReadFormulaFile(path, FileOptions(session)));
  WithModal(
      [&] {
        windows.RunDialog("ImportColumnsForm", {{"File", path.string()}});
      },
      [&](QWidget& dialog) {
        auto& grid = Control<desktop::Grid>(dialog, "fgColumns");
        EXPECT_EQ(grid.Model().Source()->Text(0, 2), "HIMMEL; HIMMEL");
        const char* const told[] = {"Color Name", "Ingredient", "Parts"};
        for (int row = 0; row < 3; ++row) {
          grid.SetCurrentRow(row);
          Settle();
          auto& field = Control<desktop::ComboField>(dialog, "cmbField");
          EXPECT_EQ(field.Text(), "NoField");
          field.SetText(told[row]);
          Q_EMIT field.activated(field.currentIndex());
          EXPECT_EQ(grid.Model().Source()->Text(row, 1), told[row]);
        }
        Picture(dialog, "import-columns");
        Click(dialog, "cmdSave");
      });
  const auto table = ReadFormulaFile(path, FileOptions(session));
  ASSERT_TRUE(table) << table.error().text;
  EXPECT_EQ(table->formulas.at(0).recipe, (Recipe{{"BLUE", 12.5}, {"WHITE", 87.5}}));
}

// The examples are the sample ink room's own.
TEST(FormatExamples, AreFormulasOfTheSampleInkRoom) {
  const std::filesystem::path room = SourceFolder() / "data/ink_room";
  const auto all = ReadFormulaFile(room / "ink_room.mfe", {});
  ASSERT_TRUE(all);
  const std::string swatches = ReadFileBytes(room / "swatches.tsv");
  const std::string basics = ReadFileBytes(room / "basics.tsv");
  for (const SourceColor& example : ExampleFormulas().formulas) {
    const auto original = std::ranges::find(all->formulas, example.name, &SourceColor::name);
    ASSERT_NE(original, all->formulas.end()) << example.name;
    EXPECT_EQ(example.recipe, original->recipe);
    EXPECT_NE(swatches.find("\n" + example.name + "\t" + *example.code + "\t"), std::string::npos) << example.name;
  }
  for (const SourceColor& basic : ExampleFormulas().basics)
    EXPECT_NE(basics.find("\n" + basic.name + "\t" + *basic.code + "\t"), std::string::npos) << basic.name;
}

}  // namespace
}  // namespace vellumark::test
