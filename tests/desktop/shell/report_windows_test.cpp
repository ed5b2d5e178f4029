// Reports and searches as an operator uses them, on a room with Batches, lots and a second Database.

#include <gtest/gtest.h>

#include <QCheckBox>
#include <QClipboard>
#include <QListWidget>

#include "core/base/files.h"
#include "core/colors/basics.h"
#include "core/colors/formulas.h"
#include "core/inventory/reorder.h"
#include "desktop/kit/grid.h"
#include "furnished_room.h"
#include "running.h"

namespace vellumark::test {
namespace {

using desktop::Grid;

struct ReportWindowsTest : testing::Test {
  ReportWindowsTest() {
    for (std::vector<std::string> verb : std::vector<std::vector<std::string>>{
             {"batch", "save", "--formula", "TINT", "--quantity", "10", "--mix", "--yes"},
             {"--db", "UV", "color", "add", "UVRED", "PurchaseCost=3"},
             {"--db", "UV", "formula", "add", "TARGET", "UVRED=100"},
             {"--db", "UV", "batch", "save", "--formula", "TARGET", "--quantity", "7", "--mix", "--yes"},
             {"--db", "INK", "db", "use", "INK"}}) {
      verb.insert(verb.begin(), {"--now", "2026-03-09 10:00:00"});
      const CliAnswer answer = room.Run(verb);
      if (answer.status != 0) throw std::runtime_error(answer.err);
    }
    const bool ready = running.Start({desktop::ChooseFile, [&](const auto&) { return room.folder.Path(); }});
    if (!ready) throw std::logic_error("the program did not start");
    running.program.Main().resize(1280, 720);
    ShowActive(running.program.Main());
  }
  ~ReportWindowsTest() override {
    running.program.Main().close();
    Settle();
  }

  desktop::Window& Open(const std::string& name, const desktop::Arguments& arguments = {}) {
    desktop::Window* window = running.windows.OpenForm(name, arguments);
    if (window == nullptr) throw std::logic_error(name + " did not open");
    Settle();
    return *window;
  }
  static Grid& GridOf(QWidget& window) { return Control<Grid>(window, "fg"); }
  // What stands in a column of the rows that are shown.
  static std::vector<std::string> Column(QWidget& window, const QString& caption) {
    Grid& grid = GridOf(window);
    std::vector<std::string> texts;
    for (int i = 0; i < static_cast<int>(grid.Columns().size()); ++i) {
      if (!grid.Columns()[static_cast<std::size_t>(i)].caption.startsWith(caption)) continue;
      for (const int row : grid.ShownRows()) texts.push_back(grid.Model().Source()->Text(row, i));
      return texts;
    }
    throw std::logic_error("no column " + caption.toStdString());
  }
  static int Place(QWidget& window, const QString& caption) {
    const auto& columns = GridOf(window).Columns();
    for (int i = 0; i < static_cast<int>(columns.size()); ++i)
      if (columns[static_cast<std::size_t>(i)].caption.startsWith(caption)) return i;
    throw std::logic_error("no column " + caption.toStdString());
  }
  // Puts the cursor into a cell as a click on its caption row does not: by the keys that come next.
  static void Stand(QWidget& window, const std::string& name, const QString& caption) {
    Grid& grid = GridOf(window);
    const auto names = Column(window, "Color Name");
    const auto found = std::ranges::find(names, name) - names.begin();
    grid.View().setFocus();
    grid.View().setCurrentIndex(grid.Model().index(static_cast<int>(found), Place(window, caption)));
  }
  static void TypeCell(const std::string& text) {
    PressOn(Qt::Key_F2);
    PressOn(Qt::Key_A, Qt::ControlModifier);
    TypeOn(text);
    PressOn(Qt::Key_Return);
    if (qobject_cast<QLineEdit*>(QApplication::focusWidget()) != nullptr) PressOn(Qt::Key_Escape);
    Settle();
  }
  static std::string Count(QWidget& window) { return Control<QLabel>(window, "lblRecordCount").text().toStdString(); }
  ScriptedPrompt& prompt() { return running.prompt; }

  FurnishedRoom room;
  RunningProgram<ScriptedPrompt> running{room.folder.Path()};
};

using Texts = std::vector<std::string>;

TEST_F(ReportWindowsTest, AReportIsChosenByKeyAndOpensWhatARowNames) {
  Click(running.program.Main(), "Report");
  desktop::Window* menu = running.windows.Form("ReportsForm");
  ASSERT_NE(menu, nullptr);
  auto& list = Control<QListWidget>(*menu, "lstBatchReports");
  list.setFocus();
  PressOn(Qt::Key_Down);
  PressOn(Qt::Key_Down);
  EXPECT_EQ(Control<QLabel>(*menu, "lblDescription").text(),
            "Lists all Master Formulas in the current Database which have been produced in Batch Records within a "
            "specified date range.");
  Picture(running.program.Main(), "reports-menu");
  PressOn(Qt::Key_Return);
  ASSERT_TRUE(running.windows.IsFormOpen("SummarizedProductionForm"));
  Open("ReportsForm");
  list.setCurrentRow(1);
  list.setFocus();
  PressOn(Qt::Key_Return);
  desktop::Window* production = running.windows.Form("ProductionForm");
  ASSERT_NE(production, nullptr);

  prompt().Expect("Color Not Found", Answer::Ok, "This Color could not be found");
  Fill(*production, "cmbColorName", "NOWHERE");
  Click(*production, "cmdFind");
  Fill(*production, "cmbColorName", "TARGET");
  Click(*production, "cmdFind");
  EXPECT_EQ(Count(*production), "2 Batches");
  EXPECT_EQ(Column(*production, "Quantity"), (Texts{"20.000", "30.000"}));

  // Sorted downwards by two clicks, columns off and on, filtered, copied and printed as it stands.
  Grid& grid = GridOf(*production);
  grid.ClickCaption(Place(*production, "Quantity"), false);
  grid.ClickCaption(Place(*production, "Quantity"), false);
  EXPECT_EQ(Column(*production, "Quantity"), (Texts{"30.000", "20.000"}));
  Click(*production, "chkDeselectAllColors");
  EXPECT_EQ(grid.ShownColumns(), std::vector<int>{0});
  auto& columns = Control<desktop::CheckListField>(*production, "lstColumns");
  columns.setFocus();
  columns.setCurrentRow(0);
  PressOn(Qt::Key_Space);
  columns.setCurrentRow(Place(*production, "Quantity") - 1);
  PressOn(Qt::Key_Space);
  EXPECT_EQ(grid.ShownColumns(), (std::vector<int>{0, 1, Place(*production, "Quantity")}));
  grid.View().setFocus();
  PressOn(Qt::Key_A, Qt::ControlModifier);
  PressOn(Qt::Key_C, Qt::ControlModifier);
  EXPECT_EQ(QApplication::clipboard()->text(), "TARGET\t000002\t30.000\nTARGET\t000001\t20.000\n");
  Type(Control(*production, "fg_Filter"), "000001");
  EXPECT_EQ(Column(*production, "Batch Number"), (Texts{"000001"}));
  // The file holds what is shown, and its options are there the next time.
  prompt().Expect("Bad File Name").Expect("File Export");
  const std::string folder = room.folder.Path().string();
  WithModal([&] { Click(*production, "cmdExport"); },
            [&](QWidget& form) {
              Picture(form, "report-export");
              Fill(form, "txtFolder", folder);
              Fill(form, "txtFileName", "");
              Click(form, "cmdSave");
              Fill(form, "txtFileName", "march");
              Click(form, "chkDefaultName");
              Click(form, "chkTotals");
              Click(form, "cmdSave");
            });
  EXPECT_EQ(ReadFileBytes(folder + "/march.txt"), "Color Name\tBatch Number\tQuantity\r\nTARGET\t000001\t20.000\r\n");
  WithModal([&] { Click(*production, "cmdExport"); },
            [&](QWidget& form) {
              EXPECT_EQ(Control<desktop::TextField>(form, "txtFileName").Text(), "march");
              EXPECT_FALSE(Control<QCheckBox>(form, "chkTotals").isChecked());
              PressOn(Qt::Key_Escape);
            });
  Control<QLineEdit>(*production, "fg_Filter").clear();

  // What was set up is there again.
  production->Leave();
  Settle();
  production = &Open("ProductionForm", {{"Color_Name", "TARGET"}});
  EXPECT_EQ(Column(*production, "Batch Number"), (Texts{"000002", "000001"}));
  EXPECT_EQ(GridOf(*production).ShownColumns().size(), 3U);
  Picture(running.program.Main(), "report-production");
  Grid& again = GridOf(*production);
  again.View().setFocus();
  again.View().setCurrentIndex(again.Model().index(1, 0));
  PressOn(Qt::Key_Return);
  ASSERT_TRUE(running.windows.IsFormOpen("BatchForm"));
  EXPECT_NE(Control<desktop::TextField>(*running.windows.Form("BatchForm"), "txtQuantity").Text().find("20"),
            std::string::npos);
}

TEST_F(ReportWindowsTest, CellsAreEditedByTheRulesOfTheColour) {
  desktop::Window& reorder = Open("ReorderForm");
  for (const char* only : {"chkReorderOnly", "chkPointsOnly"})
    if (Control<QCheckBox>(reorder, only).isChecked()) Click(reorder, only);
  Click(reorder, "chkSelectAllColors");
  Click(reorder, "cmdFind");
  Stand(reorder, "BLUE", "Reorder");
  TypeCell("150");
  EXPECT_EQ(ReadBasic(running.session, "BLUE")->Reorder, 150);
  EXPECT_TRUE(WaitFor([&] { return Column(reorder, "Reorder").at(0) == "150.000"; }));
  Stand(reorder, "BLUE", "Reorder");
  TypeCell("-4");
  TypeCell("many");
  EXPECT_EQ(ReadBasic(running.session, "BLUE")->Reorder, 150);
  Stand(reorder, "BLUE", "Inventory Note");
  TypeCell("on the shelf");
  EXPECT_EQ(ReadBasic(running.session, "BLUE")->Inv_Note, "on the shelf");
  Stand(reorder, "BLUE", "Color Name");
  prompt().Expect("Not Editable", Answer::Ok, "This field is not editable.");
  PressOn(Qt::Key_F2);
  Stand(reorder, "TINT", "Unit Cost");
  prompt().Expect("Not Editable", Answer::Ok,
                  "A Master Formula's Basic Cost is created form the cost of Basic Colors.");
  PressOn(Qt::Key_F2);

  // A change made elsewhere shows.
  ASSERT_TRUE(SaveReorderPoint(running.session, ColorKind::Basic, "WHITE", "900"));
  EXPECT_TRUE(WaitFor([&] {
    const auto names = Column(reorder, "Color Name");
    const auto at = static_cast<std::size_t>(std::ranges::find(names, "WHITE") - names.begin());
    return at < names.size() && Column(reorder, "Reorder").at(at) == "900.000";
  }));
  Picture(running.program.Main(), "report-reorder");

  desktop::Window& recycle = Open("RecycleListForm", {{"Color_Name", "TARGET"}});
  Click(recycle, "chkSelectAllColors");
  Stand(recycle, "VIOLET", "Recyclable");
  PressOn(Qt::Key_F2);
  EXPECT_FALSE(ReadMix(running.session, "VIOLET")->Recycle);

  // A recipe in edit holds what it was made of.
  desktop::Window& batch = Open("BatchForm", {{"Color_Name", "TARGET"}});
  Fill(batch, "txtQuantity", "5");
  PressOn(Qt::Key_F3);
  ASSERT_TRUE(running.windows.IsInEdit("BatchForm"));
  running.windows.CloseForm("ReorderForm");
  Settle();
  desktop::Window& menu = Open("ReportsForm");
  auto& list = Control<QListWidget>(menu, "lstColorReports");
  const auto items = list.findItems("Reorder", Qt::MatchContains);
  list.setFocus();
  list.setCurrentItem(items.back());
  prompt().Expect("Batch Window - Formula in State of Edit.");
  PressOn(Qt::Key_Return);
  EXPECT_FALSE(running.windows.IsFormOpen("ReorderForm"));
  EXPECT_EQ(running.windows.ActiveForm(), &batch);
  prompt().Expect(std::string(40, ' ') + "Cancel?", Answer::Yes);
  Click(batch, "cmdCancel");
}

TEST_F(ReportWindowsTest, ASearchComparesWhatIsTypedAndOpensWhatItFinds) {
  Click(running.program.Main(), "Find");
  ASSERT_TRUE(running.windows.IsFormOpen("FindMenu"));
  PressOn(Qt::Key_B);
  desktop::Window* find = running.windows.Form("FindBatch");
  ASSERT_NE(find, nullptr);
  EXPECT_EQ(FocusName(), "BatchField0");
  prompt().Expect("Invalid Numeric Value", Answer::Ok, "Invalid numeric value");
  Fill(*find, "BatchField4", "2x");
  Click(*find, "cmdFind");
  EXPECT_EQ(FocusName(), "BatchField4");
  Fill(*find, "BatchField4", "30");
  Fill(*find, "BatchField0", "tint");
  prompt().Expect("No Matching Records", Answer::Ok, "No matching records were found.");
  Click(*find, "cmdFind");
  Control<desktop::ComboField>(*find, "cmbBatchOperator").setCurrentIndex(1);
  Click(*find, "cmdFind");
  EXPECT_EQ(Column(*find, "Batch ID #"), (Texts{"000002", "000003"}));
  Click(*find, "cmdClear");
  auto& databases = Control<desktop::ComboField>(*find, "cmbBatchDatabases");
  databases.setCurrentIndex(databases.count() - 1);
  PressOn(Qt::Key_F5);
  EXPECT_EQ(Count(*find), "4 Records Found");
  Picture(running.program.Main(), "find-batch");

  // That of the other Database is shown to be read; the others open as they are.
  Grid& grid = GridOf(*find);
  grid.View().setFocus();
  grid.View().setCurrentIndex(grid.Model().index(3, 0));
  WithModal([] { PressOn(Qt::Key_Return); },
            [](QWidget& dialog) {
              EXPECT_EQ(dialog.objectName(), "ViewRecordForm");
              EXPECT_EQ(Control<QLabel>(dialog, "lblMsg").text(), "Batch 000004  -  UV  (read only)");
              Picture(dialog, "view-record", {});
              Click(dialog, "cmdClose");
            });
  grid.View().setCurrentIndex(grid.Model().index(0, 0));
  PressOn(Qt::Key_Return);
  EXPECT_TRUE(running.windows.IsFormOpen("BatchForm"));
}

}  // namespace
}  // namespace vellumark::test
