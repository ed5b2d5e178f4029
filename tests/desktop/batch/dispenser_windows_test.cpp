// Dispensers, chosen from the Batch Window, added and removed.

#include <gtest/gtest.h>

#include <QCheckBox>
#include <QComboBox>
#include <QListWidget>
#include <QTabWidget>
#include <filesystem>

#include "bench_room.h"
#include "core/base/files.h"
#include "core/batch/dispensers.h"

namespace vellumark::test {
namespace {

namespace fs = std::filesystem;

struct DispenserRoom : BenchRoom {
  DispenserRoom() {
    HaveTarget();
    fs::create_directories(folder / "hot" / "east");
    Open();
    Make("TARGET", "10", Qt::Key_F3);
  }
  void Choose(QWidget& dialog, const char* name, const QString& text) {
    auto& combo = Control<QComboBox>(dialog, name);
    combo.setFocus(Qt::TabFocusReason);
    Press(combo, Qt::Key_Home);
    while (combo.currentText() != text && combo.currentIndex() < combo.count() - 1) Press(combo, Qt::Key_Down);
    EXPECT_EQ(combo.currentText(), text);
  }
  void Add(QWidget& dialog, const std::string& name, const QString& format, const fs::path& place) {
    Control<QTabWidget>(dialog, "TabDispenser").setCurrentIndex(1);
    Fill(dialog, "DispenserName", name);
    Choose(dialog, "cmbDispManufacturer", format);
    Fill(dialog, "Pathway", place.string());
    Click(dialog, "cmdSave");
  }
  int Tab(QWidget& dialog) { return Control<QTabWidget>(dialog, "TabDispenser").currentIndex(); }
  std::string Typed(QWidget& dialog, const char* name) { return Control<QLineEdit>(dialog, name).text().toStdString(); }
  std::string Folder(QWidget& dialog) { return Control<QLabel>(dialog, "lblDispenserPathway").text().toStdString(); }
};

TEST_F(DispenserRoom, TheFirstIsAddedByKeyboardAndTheBatchIsSent) {
  prompt.Expect("Add a Dispenser", Answer::Ok, "No Dispenser, add a dispenser.");
  InDialog([&] { PressOn(Qt::Key_F7); },
           [&](QWidget& dialog) {
             EXPECT_EQ(Tab(dialog), 1);
             EXPECT_EQ(FocusName(), "DispenserName");
             prompt.Expect("No Dispenser Name", Answer::Ok, "Enter a Dispenser name.");
             Click(dialog, "cmdSave");
             // Into a folder by the list of those in it.
             Fill(dialog, "Pathway", (folder / "hot").string());
             auto& folders = Control<QListWidget>(dialog, "lstFolders");
             folders.setFocus();
             Press(folders, Qt::Key_Down);
             Press(folders, Qt::Key_Return);
             EXPECT_EQ(Typed(dialog, "Pathway"), (folder / "hot" / "east").string());
             Picture(dialog, "dispenser-add", dialog.size());
             Click(dialog, "cmdRefresh");
             EXPECT_GT(Control<QComboBox>(dialog, "cmbDrive").count(), 0);
             EXPECT_EQ(Typed(dialog, "Pathway"), (folder / "hot" / "east").string());
             prompt.Expect("New Dispenser", Answer::Ok, "Dispenser Saved.");
             Fill(dialog, "DispenserName", "east");
             Choose(dialog, "cmbDispManufacturer", "JSON  (.json)");
             Click(dialog, "cmdSave");
             EXPECT_EQ(Tab(dialog), 0);
             EXPECT_EQ(Folder(dialog), (folder / "hot" / "east").string());
             // A check is kept at once, whatever becomes of the window.
             Click(dialog, "chkDispAdditives");
             EXPECT_TRUE(ReadDispenser(session, "EAST")->Additives);
             EXPECT_FALSE(ReadDispenser(session, "EAST")->Recycles);
             Click(dialog, "chkDispRecycles");
             EXPECT_TRUE(ReadDispenser(session, "EAST")->Recycles);
             Picture(dialog, "dispenser", dialog.size());
             Press(dialog, Qt::Key_Escape);
           });
  EXPECT_TRUE(fs::is_empty(folder / "hot" / "east"));
  const fs::path file = folder / "hot" / "east" / "1-03_10_2026.json";
  prompt.Expect("File Sent", Answer::Ok, "Batch file sent to:\n\n" + file.string());
  InDialog([&] { PressOn(Qt::Key_F7); },
           [&](QWidget& dialog) {
             EXPECT_EQ(FocusName(), "cmbDispSel");
             EXPECT_TRUE(Control<QCheckBox>(dialog, "chkDispAdditives").isChecked());
             for (int step = 0; step < 3; ++step) PressOn(Qt::Key_Return);  // past the checks, and send
           });
  EXPECT_NE(ReadFileBytes(file).find("\"Quantity\" : \"10.000\""), std::string::npos);
  // Another Batch gets the number when this one is given up, and its file is not replaced unasked.
  const std::string first = ReadFileBytes(file);
  prompt.Expect(std::string(40, ' ') + "Cancel?", Answer::Yes);
  Click(*form, "cmdCancel");
  Make("LEFTOVER", "3", Qt::Key_F3);
  prompt.Expect("Batch File", Answer::No);
  InDialog([&] { PressOn(Qt::Key_F7); }, [&](QWidget& dialog) { Click(dialog, "cmdSend"); });
  EXPECT_EQ(ReadFileBytes(file), first);
}

TEST_F(DispenserRoom, NamesAreTheirOwnFoldersMustBeThereAndCheckedOnesGo) {
  prompt.Expect("Add a Dispenser");
  InDialog([&] { PressOn(Qt::Key_F7); },
           [&](QWidget& dialog) {
             prompt.Expect("New Dispenser");
             Add(dialog, "a", "NFL  (.dat)", folder / "hot");
             prompt.Expect("Duplicate Name", Answer::Ok, "Dispenser name already exists.");
             Add(dialog, "a", "FGI  (.txt)", folder / "hot");
             EXPECT_EQ(Typed(dialog, "DispenserName"), "");
             prompt.Expect("Dispenser Folder Missing");
             Add(dialog, "b", "FGI  (.txt)", folder / "none");
             EXPECT_EQ(FocusName(), "Pathway");
             prompt.Expect("New Dispenser");
             Add(dialog, "b", "XNI  (.csv)", folder / "hot" / "east");
             fs::remove(folder / "hot" / "east");
             Choose(dialog, "cmbDispSel", "A");
             prompt.Expect("Dispenser Folder Missing", Answer::Ok, "This Dispenser folder no longer exists.");
             Press(Control(dialog, "cmbDispSel"), Qt::Key_Down);
             EXPECT_EQ(Control<QComboBox>(dialog, "cmbDispSel").currentText(), "B");
             prompt.Expect("Dispenser Folder Missing");
             Click(dialog, "cmdSend");
             ASSERT_TRUE(dialog.isVisible());
             Control<QTabWidget>(dialog, "TabDispenser").setCurrentIndex(2);
             EXPECT_FALSE(Control(dialog, "cmdDelete").isEnabled());
             auto& grid = Control<desktop::Grid>(dialog, "lstDispenser");
             grid.SetCurrentRow(1);
             grid.View().setFocus();
             Press(grid.View(), Qt::Key_Space);
             Picture(dialog, "dispenser-remove", dialog.size());
             prompt.Expect("Remove Dispenser", Answer::Ok, "Dispenser(s) Removed");
             Click(dialog, "cmdDelete");
             EXPECT_EQ(ReadDispensers(session).size(), 1U);
             Press(dialog, Qt::Key_Escape);
           });
  // A quantity that was changed is worked out first.
  Type(Control(*form, "txtQuantity"), "1");
  prompt.Expect("Recalculate Batch");
  PressOn(Qt::Key_F7);
}

}  // namespace
}  // namespace vellumark::test
