// Formulas that come in, by the keys and clicks of an operator.

#include <QListWidget>
#include <QPlainTextEdit>
#include <QTabWidget>

#include "core/base/files.h"
#include "core/datafile/lifecycle.h"
#include "desktop/exchange/register.h"
#include "desktop/kit/application.h"
#include "desktop/tools/tools_room.h"
#include "support/import_faults.h"
#include "support/snapshot.h"

namespace vellumark::test {
namespace {

struct ImportRoom : ToolsRoom {
  ImportRoom() {
    desktop::RegisterExchangeWindows(windows, [this](const desktop::FileChoice& choice, QWidget*) {
      asked = choice.title.toStdString();
      return desktop::Q(chosen.string());
    });
    HaveInks();
  }

  std::filesystem::path Write(const std::string& name, const std::string& bytes) {
    ReplaceFile(folder / name, bytes);
    return folder / name;
  }
  void Browse(const std::filesystem::path& file) {
    chosen = file;
    Click(*form, "cmdBrowse");
  }
  std::string Note(const char* name) { return Control<QPlainTextEdit>(*form, name).toPlainText().toStdString(); }
  int Step() { return Control<QTabWidget>(*form, "tabSteps").currentIndex(); }

  std::filesystem::path chosen;
  std::string asked;
};

constexpr QSize kDoubled{960, 416};  // what is left of full HD at 200 percent
constexpr const char* kFile =
    "SHOP\r\nNAVY\tBLUE\t60\tGREEN\t20\tRED\t20\r\nPINK\tRED\t12.5\tWHITE\t87.5\r\nSILVER\tBLACK\t10\tWHITE\t90\r\n";

TEST_F(ImportRoom, AFileIsComparedChosenFromImportedReportedAndTakenBack) {
  Open("DBImport_Formulas");
  EXPECT_EQ(form->windowTitle().toStdString(), "Import Data From ...");
  EXPECT_EQ(Label("lblFile"), "Click the Browse button to select a file to import data from.");
  EXPECT_FALSE(IsOn("cmdImport"));
  EXPECT_FALSE(IsOn("cmdUndo"));
  prompt.Expect("Import Formulas", Answer::Ok, "Click the Browse button to select a file to import data from.");
  PressOn(Qt::Key_F5);
  Picture(*form, "import-source");
  Picture(*form, "import-source-small", kDoubled);
  Browse(Write("in.mfe", kFile));
  EXPECT_EQ(asked, "Import Data From ...");
  PressOn(Qt::Key_F5);
  EXPECT_EQ(Step(), 1);
  EXPECT_EQ(Shown("fgCompare"), (std::vector<std::string>{"NAVY", "PINK", "SILVER"}));
  EXPECT_EQ(Shown("fgCompare", 2), (std::vector<std::string>{"Same", "Different", "New"}));
  EXPECT_EQ(Shown("fgCompare", 3), (std::vector<std::string>{"Yes", "Yes", "No"}));
  EXPECT_EQ(Shown("fgCompare", 4)[1], "RED +2.500, WHITE -2.500");
  EXPECT_NE(Note("txtWhatElse").find("New Basic Colors (1): BLACK"), std::string::npos);
  EXPECT_EQ(Label("lblCounts"), "1 new, 1 different, 1 the same, 0 refused. Chosen: 1");
  Picture(*form, "import-compare");
  Picture(*form, "import-compare-small", kDoubled);

  // What differs is looked at beside its namesake, and chosen there.
  ClickCell("fgCompare", "PINK", 1);
  WithModal([&] { Click(*form, "cmdView"); },
            [&](QWidget& dialog) {
              EXPECT_EQ(dialog.objectName().toStdString(), "ImportCompareFormulasForm");
              EXPECT_EQ(dialog.windowTitle().toStdString(), "Formula Comparison");
              auto& grid = Control<desktop::Grid>(dialog, "fgCompare");
              EXPECT_EQ(grid.Model().Source()->Text(0, 1) + " " + grid.Model().Source()->Text(0, 2), "10.000 12.500");
              EXPECT_FALSE(Control<QCheckBox>(dialog, "chkTake").isChecked());
              Picture(dialog, "import-compare-formula", dialog.size());
              Click(dialog, "chkTake");
              Click(dialog, "cmdOK");
            });
  EXPECT_EQ(Label("lblCounts"), "1 new, 1 different, 1 the same, 0 refused. Chosen: 2");
  prompt.Expect("Import Formulas", Answer::Ok, "Import Data has completed successfully.");
  Click(*form, "cmdImport");
  EXPECT_EQ(Step(), 2);
  EXPECT_EQ(Stored("PINK"), "RED 12.500, WHITE 87.500");
  EXPECT_EQ(Stored("SILVER"), "BLACK 10.000, WHITE 90.000");
  Picture(*form, "import-result");
  chosen = folder / "report.txt";
  Click(*form, "cmdSaveReport");
  EXPECT_NE(ReadFileBytes(chosen).find("Formulas changed (1)\r\n  PINK"), std::string::npos) << ReadFileBytes(chosen);

  prompt.Expect("Undo Import", Answer::No);
  Click(*form, "cmdUndo");
  EXPECT_EQ(Stored("SILVER"), "BLACK 10.000, WHITE 90.000");
  prompt.Expect("Undo Import", Answer::Yes);
  Click(*form, "cmdUndo");
  EXPECT_EQ(Stored("PINK"), "RED 10.000, WHITE 90.000");
  EXPECT_EQ(Stored("SILVER"), "gone");
  EXPECT_FALSE(IsOn("cmdUndo"));
}

TEST_F(ImportRoom, WhatCannotBeImportedStopsItUntilItIsLeftOut) {
  Open("DBImport_Formulas");
  Browse(Write("bad.mfe", "SHOP\r\nSILVER\tBLACK\t10\r\nODD\tBLACK\r\n"));
  PressOn(Qt::Key_F5);
  EXPECT_NE(Note("txtWhatElse").find("Couldn't interpret textfile data at line 3: an ingredient has no amount"),
            std::string::npos);
  EXPECT_FALSE(IsOn("cmdImport"));
  Click(*form, "chkSkipBad");
  ASSERT_TRUE(IsOn("cmdImport"));
  prompt.Expect("Import Formulas");
  Click(*form, "cmdImport");
  EXPECT_EQ(Stored("SILVER"), "BLACK 100.000");
}

struct ImportFaultRoom : ImportRoom, testing::WithParamInterface<int> {
  ImportFaultRoom() {
    Application().OnFailure([this](const std::string&, const std::string& text) { failed += text; });
    session.ProgramFolder = folder / "Program";
    std::filesystem::create_directories(session.ProgramFolder);
    MakeFaultyTemplate(session.ProgramFolder / "pdbt.vkt");
    InkRoom shop;
    shop.Basic("BLACK");
    for (const char* name : {"SILVER", "GOLD"}) shop.Mix(name, {{"BLACK", 100}});
    shop.session.DataFileDB.reset();
    std::filesystem::copy_file(shop.session.DataFileName, folder / "shop.vkd");
    before = Rows();
    session.File().Execute(fault.harm);
  }
  ~ImportFaultRoom() override {
    Application().OnFailure(
        [](const std::string& title, const std::string& text) { ADD_FAILURE() << title << ": " << text; });
  }
  /// What stands in the file, but for the harm that was done to it.
  std::string Rows() {
    session.File().Execute(
        "DROP TRIGGER IF EXISTS fault; UPDATE INK_Basic SET PurchaseCost = 0, VOC = 0, HAP = 0; DROP TABLE IF EXISTS "
        "NEW_Mix");
    return Snapshot(session.File());
  }
  static desktop::Application& Application() { return dynamic_cast<desktop::Application&>(*qApp); }

  const ImportFault& fault = ImportFaults().at(static_cast<std::size_t>(GetParam()));
  std::string before;
  std::string failed;
};

TEST_P(ImportFaultRoom, IsToldInTheWordsForItsStepAndNothingComesIn) {
  Open("DBImport_Formulas");
  if (fault.file.empty()) {
    Click(*form, "optSource_Pantone");
    Control<QListWidget>(*form, "lstPantoneData").item(0)->setCheckState(Qt::Checked);
  } else {
    Browse(MakeSource(fault, folder.Path(), session.ProgramFolder / "Converted"));
  }
  if (fault.newDatabase) {
    Click(*form, "optDest_New");
    Fill(*form, "txtDBName", "new");
  }
  const bool refused = fault.how == ImportFault::How::Refused;
  if (refused) prompt.Expect("Import Formulas");
  if (failed.empty()) PressOn(Qt::Key_F5);
  if (fault.how == ImportFault::How::Failed && failed.empty()) Click(*form, "cmdImport");
  const std::string told = refused ? prompt.last.text : fault.how == ImportFault::How::Failed ? failed : Note("txtWhatElse");
  EXPECT_NE(told.find(fault.says.substr(0, fault.says.find_last_not_of(' ') + 1)), std::string::npos) << told;
  EXPECT_FALSE(fault.how != ImportFault::How::Failed && IsOn("cmdImport"));
  EXPECT_EQ(Rows(), before);
}

INSTANTIATE_TEST_SUITE_P(Faults, ImportFaultRoom, testing::Range(0, static_cast<int>(ImportFaults().size())));

TEST_F(ImportRoom, AComparisonDoesNotOutliveAChange) {
  Open("DBImport_Formulas");
  Browse(Write("in.mfe", kFile));
  PressOn(Qt::Key_F5);
  Mix("SILVER", {{"WHITE", 100}});
  {
    Transaction transaction(session.File());
    transaction.Note({Change::Kind::Mix, "INK", "SILVER", Change::What::Added, ""});
    transaction.Commit();
  }
  Settle();
  EXPECT_FALSE(IsOn("cmdImport"));
  EXPECT_EQ(Label("lblCounts"), "The Database has changed since it was compared. Compare it once more.");
}

TEST_F(ImportRoom, AnotherDataFileComesIntoANewDatabase) {
  InkRoom shop;
  shop.Basic("BLACK", {{"PurchaseCost", 10.0F}});
  shop.Mix("SILVER", {{"BLACK", 100}});
  shop.session.DataFileDB.reset();
  Open("DBImport_Formulas");
  Browse(shop.session.DataFileName);
  EXPECT_EQ(Control<QComboBox>(*form, "cmbDBList").currentText().toStdString(), "INK");
  Choose("cmbUnit", "kg.");
  Click(*form, "optDest_New");
  Fill(*form, "txtDBName", "ink");
  prompt.Expect("Import Formulas", Answer::No,
                "Your Data File already contains a Database named INK.\n\nDo you wish to merge the imported data into "
                "the INK Database?");
  PressOn(Qt::Key_F5);
  EXPECT_EQ(Step(), 0);
  Fill(*form, "txtDBName", "shop two");
  PressOn(Qt::Key_F5);
  prompt.Expect("Import Formulas", Answer::Ok, "Import Data has completed successfully.");
  Click(*form, "cmdImport");
  EXPECT_EQ(session.databaseList, (std::vector<std::string>{"INK", "SHOP TWO"}));
  EXPECT_EQ(ReadBasic(session, "BLACK", "SHOP TWO")->PurchaseCost, 4.54F);

  // From there into the first one, as a Database of this file.
  Control<QTabWidget>(*form, "tabSteps").setCurrentIndex(0);
  Click(*form, "optSource_Database");
  Click(*form, "optDest_Existing");
  PressOn(Qt::Key_F5);
  prompt.Expect("Database to Database Formula Import Complete", Answer::Ok,
                "Formulas from the selected database have been imported into the current database.");
  Click(*form, "cmdImport");
  EXPECT_EQ(Stored("SILVER"), "BLACK 100.000");
}

}  // namespace
}  // namespace vellumark::test
