// Reports and searches as an operator uses them, on a room with Batches, lots and a second Database.

#include <gtest/gtest.h>

#include <QCheckBox>
#include <QClipboard>
#include <QListWidget>
#include <QRadioButton>

#include "core/base/files.h"
#include "core/colors/basics.h"
#include "core/colors/formulas.h"
#include "core/inventory/reorder.h"
#include "core/session/settings.h"
#include "report_windows.h"
#include "support/jet_room.h"

namespace vellumark::test {
namespace {

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
              // A database holds the rows, whatever is included.
              prompt().Expect("File Export");
              Fill(form, "txtFolder", folder);
              Click(form, "OptDatabase");
              for (const char* name : {"chkHeadings", "chkData", "chkTotals"})
                EXPECT_FALSE(Control<QCheckBox>(form, name).isEnabled()) << name;
              Picture(form, "report-export-database");
              Click(form, "cmdSave");
            });
  EXPECT_EQ(test::Exported(folder + "/march.mdb", "Vellumark Data"),
            "TARGET\x1F"
            "000001\x1F"
            "20\x1E");
  WithModal([&] { Click(*production, "cmdExport"); },
            [&](QWidget& form) {
              EXPECT_TRUE(Control<QRadioButton>(form, "OptDatabase").isChecked());
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

// The columns of a file in the order that is delivered with the program: its "Formula" is the recipe.
TEST_F(ReportWindowsTest, AFileInTheUsersOrderHoldsTheRecipe) {
  desktop::Window& colors = Open("ColorListForm");
  Click(colors, "cmdFind");
  prompt().Expect("File Export");
  const std::string folder = room.folder.Path().string();
  WithModal([&] { Click(colors, "cmdExport"); },
            [&](QWidget& form) {
              Fill(form, "txtFolder", folder);
              Fill(form, "txtFileName", "colors");
              Click(form, "OptUser");
              Click(form, "cmdSave");
            });
  const std::string text = ReadFileBytes(folder + "/colors.txt");
  const std::string captions = text.substr(0, text.find("\r\n"));
  EXPECT_EQ(captions.find("Color Name\t"), 0U) << captions;
  EXPECT_NE(captions.find("\tIngredient 1\tParts 1\tIngredient 2\t"), std::string::npos) << captions;
}

// Databases of which none is ticked are not all of them.
TEST_F(ReportWindowsTest, AReportIsOfTheDatabasesThatAreTicked) {
  desktop::Window* stock = &Open("InventoryReportsForm");
  const auto tick = [&](bool ink, bool uv) {
    auto& databases = Control<desktop::CheckListField>(*stock, "lstDatabases");
    for (int i = 0; i < databases.count(); ++i) databases.SetChecked(i, databases.item(i)->text() == "UV" ? uv : ink);
    Settle();
  };
  tick(false, true);
  Click(*stock, "cmdFind");
  EXPECT_EQ(Column(*stock, "Color Name"), (Texts{"TARGET", "UVRED"}));
  tick(false, false);
  EXPECT_FALSE(Control(*stock, "cmdFind").isEnabled());
  EXPECT_FALSE(Control(*stock, "cmdSaveReport").isEnabled()) << "it would be kept as one of all";
  prompt().Expect("Databases", Answer::Ok, "Select a Database.");
  Click(*stock, "chkShowMixes");
  EXPECT_EQ(Column(*stock, "Color Name"), (Texts{"TARGET", "UVRED"}));
  tick(false, true);
  WithModal([&] { Click(*stock, "cmdSaveReport"); },
            [](QWidget& form) {
              Fill(form, "txtName", "Of UV");
              Click(form, "cmdSave");
            });
  stock->Leave();
  Settle();
  stock = &Open("InventoryReportsForm", {{"Saved", std::string("Of UV")}});
  EXPECT_EQ(Column(*stock, "Color Name"), Texts{"UVRED"});
  EXPECT_EQ(Control<desktop::CheckListField>(*stock, "lstDatabases").Checked(), QStringList{"UV"});
}

TEST_F(ReportWindowsTest, ASearchComparesWhatIsTypedAndOpensWhatItFinds) {
  // A field of the shop's own bears the caption of another one.
  StoreSettings(running.session, {setting::BatchCustomTextLabelCaption[0].To("Short Note")});
  running.session.File().Execute("UPDATE INK_Batch SET UD_Text0 = 'rush' WHERE BatchNo = 3");
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
  Fill(*find, "BatchField14", "rush");
  Click(*find, "cmdFind");
  EXPECT_EQ(Column(*find, "Batch ID #"), (Texts{"000003"}));
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
