#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTabWidget>
#include <QTimer>
#include <QTreeWidget>
#include <algorithm>

#include "core/backup/backup_days.h"
#include "core/backup/backup_set.h"
#include "core/backup/deep_check.h"
#include "core/base/files.h"
#include "core/datafile/databases.h"
#include "core/session/settings.h"
#include "core/shell/backups.h"
#include "core/shell/data_files.h"
#include "desktop/backup/register.h"
#include "desktop/datafile/register.h"
#include "desktop/kit/grid.h"
#include "support/data_files.h"
#include "support/desktop.h"
#include "support/hand_edit.h"
#include "support/old_files.h"

namespace vellumark::test {
namespace {

namespace fs = std::filesystem;
using desktop::FileChoice;
using desktop::Q;
using desktop::U8;

struct BackupWindows : testing::Test, DataFileRoom {
  BackupWindows() {
    desktop::RegisterBackupWindows(list, windows, [this](const FileChoice& choice, QWidget*) {
      asked = choice;
      return Q(answer.string());
    });
    MakeFile(file);
    if (!OpenOtherDataFile(session, file, windows)) throw std::runtime_error("not open");
    AddColor("RED");
  }
  void AddColor(const std::string& name) {
    session.File().Prepare("INSERT INTO INK_Basic (Color_Name) VALUES (?)").Bind(1, name).Run();
  }
  std::int64_t Colors() { return CountRows(session.File(), "INK").basics; }
  void Run(const char* name, const std::function<void(QWidget&)>& inside) {
    WithModal([&] { list.RunDialog(name); }, inside);
  }

  desktop::WindowList list{session};
  fs::path answer;
  FileChoice asked;
  fs::path file = folder / "Ink.vkd";
  fs::path stick = folder / "Stick";
};

TEST_F(BackupWindows, ABackupGoesToTheChosenFolderAndComesBackFromThere) {
  answer = stick;
  prompt.Expect("Backup Complete");
  Run("BackupFileLocationForm", [&](QWidget& form) {
    Picture(form, "backup-BackupFileLocationForm", {});
    PressOn(Qt::Key_Return);
  });
  EXPECT_TRUE(asked.onlyFolder);
  ASSERT_EQ(ListSets(stick).size(), 1U);
  AddColor("BLUE");

  answer = ListSets(stick).front().dataFile;
  prompt.Expect("Restore Data File", Answer::Yes).Expect("Restore Complete");
  Run("RestoreFileLocationForm", [&](QWidget& form) {
    EXPECT_EQ(U8(Control<QLabel>(form, "lblWarning").text()),
              "WARNING: All information in the current file will be lost!");
    Picture(form, "backup-RestoreFileLocationForm", {});
    PressOn(Qt::Key_Return);
  });
  EXPECT_EQ(asked.folder, Q(stick.string()));
  EXPECT_EQ(Colors(), 1);

  // A folder that cannot be written to: told with its name, and the window stays for another one.
  answer = file;
  prompt.Expect("Backup");
  Run("BackupFileLocationForm", [&](QWidget& form) {
    PressOn(Qt::Key_Return);
    EXPECT_NE(prompt.last.text.find(file.string()), std::string::npos) << prompt.last.text;
    EXPECT_TRUE(form.isVisible());
    PressOn(Qt::Key_Escape);
  });
  EXPECT_EQ(Colors(), 1);
}

TEST_F(BackupWindows, TheAutomaticBackupsAreListedVerifiedAndRestored) {
  for (const int day : {10, 11}) {
    clock.Set({2026, 3, day, 17, 0, 0});
    CloseDataFile(session, windows);
    ASSERT_TRUE(ShutdownBackup(session, "AutoBackup"));
    OpenDataFile(session, windows);
    AddColor("B" + std::to_string(day));
  }
  EXPECT_EQ(Colors(), 3);
  prompt.Expect("Backup").Expect("Restore Data File", Answer::Yes).Expect("Restore Complete");
  Run("RestoreAutomaticForm", [&](QWidget& form) {
    Picture(form, "backup-RestoreAutomaticForm", {});
    auto& sets = Control<QTreeWidget>(form, "lstSets");
    ASSERT_EQ(sets.topLevelItemCount(), 2);
    EXPECT_EQ(sets.topLevelItem(0)->text(4), "proven");
    PressOn(Qt::Key_Down);  // the one of the day before
    Click(form, "cmdVerify");
    EXPECT_NE(prompt.last.text.find("is sound"), std::string::npos) << prompt.last.text;
    Click(form, "cmdContinue");
  });
  EXPECT_EQ(Colors(), 1);
}

// A set of years ago, from the stick and from the list of days: it comes back up to date, and stays as it was proven.
TEST_F(BackupWindows, AnOlderSetIsBroughtUpToDateAndStaysAsItIs) {
  OldRoom old = MakeOldRoom(20);
  old.users = false;
  const fs::path before = folder / "Years" / "Old.vkd";
  fs::create_directories(before.parent_path());
  WriteOldFile(before, OldTables(old, 28, 0));
  clock.Set({2019, 3, 10, 17, 0, 0});
  for (const fs::path& place : {stick, folder / "Auto Backup"}) ASSERT_TRUE(MakeBackupSet(session, before, place).proof);
  for (const char* name : {"RestoreFileLocationForm", "RestoreAutomaticForm"}) {
    SCOPED_TRACE(name);
    const bool listed = name == std::string_view("RestoreAutomaticForm");
    clock.Set({2026, 3, 10, listed ? 11 : 9, 0, 0});
    const BackupSet set = ListSets(listed ? folder / "Auto Backup" : stick).front();
    const std::string bytes = ReadFileBytes(set.dataFile);
    answer = set.dataFile;
    prompt.Expect("Lotted Inventory", Answer::No).Expect("Restore Data File", Answer::Yes).Expect("Restore Complete");
    Run(name, [&](QWidget& form) {
      if (listed) {
        auto& sets = Control<QTreeWidget>(form, "lstSets");
        const auto items = sets.findItems("Old.vkd", Qt::MatchExactly, 1);
        ASSERT_GE(items.size(), 1);
        EXPECT_EQ(items.front()->text(4), "proven");
        EXPECT_EQ(items.front()->text(3), "20");
        Picture(form, "backup-RestoreAutomaticForm-older", {});
        sets.setCurrentItem(items.back());
      }
      Click(form, "cmdContinue");
    });
    EXPECT_NE(prompt.last.text.find("The backup had the file version 28 and was brought up to version 40 on a copy; it is as it was."),
              std::string::npos)
        << prompt.last.text;
    EXPECT_EQ(session.DataFileName, file.string());
    EXPECT_EQ(ReadFileInfo(session.File()).fileVersion, kFileVersion);
    const OldDatabase& database = old.databases.front();
    EXPECT_EQ(CountRows(session.File(), database.name).formulas, std::ssize(database.formulas));
    EXPECT_TRUE(fs::exists(folder / "Ink Update Report.txt"));
    EXPECT_TRUE(ReadFileBytes(set.dataFile) == bytes);
    EXPECT_TRUE(VerifySet(session, *ReadSet(set.folder)).faults.empty());
    // The day before is there again for the next one.
    const BackupDays days = DaysToGoBackTo(session);
    const auto kept = std::ranges::find(days.days, std::string("Before a restore"), &BackupDay::place);
    ASSERT_NE(kept, days.days.end());
    clock.Set({2026, 3, 10, listed ? 12 : 10, 0, 0});
    prompt.Expect("Restore Data File", Answer::Yes).Expect("Restore Complete");
    ASSERT_TRUE(RestoreDataFile(session, kept->set.dataFile, RestoreFrom::Automatic, windows));
    EXPECT_EQ(Colors(), 1);
    fs::remove(folder / "Ink Update Report.txt");
  }
}

TEST_F(BackupWindows, OneFormulaIsTakenBackOutOfADay) {
  session.File().Execute(
      "INSERT INTO INK_Mix (Color_Name, Color_Set, BC0, BQ0, Date_Entered) VALUES ('PURE', '<RED>', 'RED', 100, "
      "'2026-03-01 00:00:00')");
  CloseDataFile(session, windows);
  ASSERT_TRUE(ShutdownBackup(session, "AutoBackup"));
  OpenDataFile(session, windows);
  const auto formulas = [&] { return CountRows(session.File(), "INK").formulas; };
  session.File().Execute("DELETE FROM INK_Mix");
  prompt.Expect("Take Back", Answer::Yes);
  Run("RestoreAutomaticForm", [&](QWidget& days) {
    WithModal([&] { Click(days, "cmdLook"); },
              [&](QWidget& form) {
                auto& grid = Control<desktop::Grid>(form, "fg");
                ASSERT_EQ(grid.Model().rowCount(), 1);
                Picture(form, "backup-LookIntoSetForm", {});
                Click(form, "cmdTake");
                EXPECT_EQ(grid.Model().rowCount(), 0);
                EXPECT_TRUE(Control<QLabel>(form, "lblNothing").isVisible());
                EXPECT_FALSE(Control<QPushButton>(form, "cmdTake").isEnabled());
                Click(form, "cmdClose");
              });
    Click(days, "cmdCancel");
  });
  EXPECT_EQ(formulas(), 1);
}

// What stands in settings and file after each way through the reminder.
TEST_F(BackupWindows, EveryWayThroughTheReminder) {
  fs::create_directories(stick);
  struct Way {
    const char* name;
    std::function<void(QWidget&)> inside;
    fs::path location;  // stored before
    bool backedUp;
    int waits;  // days until the next; 0: at the next closing
    bool off;
  };
  const auto chooses = [](const char* choice, bool dontShow) {
    return [choice, dontShow](QWidget& form) {
      Control<QComboBox>(form, "cmbDays").setCurrentIndex(4);
      Click(form, choice);
      if (dontShow) Click(form, "chkDontShow");
      EXPECT_EQ(Control(form, "cmbDays").isEnabled(), !dontShow);
      Click(form, "cmdOK");
    };
  };
  const auto backsUp = [&](const char* button) {
    return [chooses, button](QWidget& form) {
      WithModal([&] { chooses("OptYes", false)(form); },
                [&](QWidget& to) {
                  EXPECT_EQ(U8(to.windowTitle()), "Backup Datafile To..");
                  Click(to, button);
                  if (to.isVisible()) PressOn(Qt::Key_Escape);
                });
    };
  };
  const Way ways[] = {
      {"No", chooses("OptNo", false), stick, false, 5, false},
      {"Don't show", chooses("OptNo", true), stick, false, 1, true},
      {"closed without an answer", [](QWidget&) { PressOn(Qt::Key_Escape); }, stick, false, 1, false},
      {"Yes", backsUp("cmdContinue"), stick, true, 5, false},
      {"Yes, then cancelled", backsUp("cmdCancel"), stick, false, 0, false},
      {"Yes, and it fails", backsUp("cmdContinue"), "/proc", false, 0, false},
  };
  for (const Way& way : ways) {
    SCOPED_TRACE(way.name);
    StoreSettings(session, {setting::RemindBackup.To(false), setting::BackupFileLocation.To(way.location.string())});
    StoreBackupDates(session.File(), {});
    const std::size_t sets = ListSets(stick).size();
    if (way.backedUp) prompt.Expect("Backup Complete");
    if (way.location != stick) prompt.Expect("Backup");  // what failed
    Run("BackupReminderForm", way.inside);
    EXPECT_EQ(ListSets(stick).size() - sets, way.backedUp ? 1U : 0U);
    const BackupDates dates = ReadBackupDates(session.File());
    EXPECT_EQ(dates.LastBackupDate.has_value(), way.backedUp);
    EXPECT_EQ(GetSetting(session, setting::RemindBackup), way.off);
    const auto next = way.waits == 0 ? std::optional<DateTime>() : DateTime{2026, 3, 10 + way.waits};
    EXPECT_EQ(dates.DayBeforeNextBackupDate, next);
    EXPECT_EQ(DueBackupReminder(session).has_value(), way.waits == 0);
  }
}

TEST_F(BackupWindows, TheReminderTellsTheLastBackup) {
  StoreSettings(session, {setting::RemindBackup.To(false)});
  Run("BackupReminderForm", [&](QWidget& form) {
    EXPECT_EQ(U8(Control<QLabel>(form, "lblLastBackup").text()), "A backup has never been performed for this file.");
    EXPECT_EQ(Control<QComboBox>(form, "cmbDays").count(), 30);
    Picture(form, "backup-BackupReminderForm", {});
    PressOn(Qt::Key_Escape);
  });
  StoreBackupDates(session.File(), {DateTime{2026, 2, 1}, DateTime{2026, 2, 15}, 14});
  Run("BackupReminderForm", [&](QWidget& form) {
    EXPECT_EQ(Control<QLabel>(form, "lblLastBackup").text(),
              "The last backup was on " + form.locale().toString(QDate(2026, 2, 1), QLocale::ShortFormat));
    EXPECT_EQ(Control<QComboBox>(form, "cmbDays").currentText(), "14");
    PressOn(Qt::Key_Escape);
  });
}

TEST_F(BackupWindows, AStickThatIsNotThereIsAskedFor) {
  StoreSettings(session, {setting::BackupFileLocation.To(stick.string())});
  prompt.Expect("Backup location not found").Expect("Backup location not found").Expect("Backup Complete");
  Run("BackupRemovableForm", [&](QWidget& form) {
    EXPECT_TRUE(prompt.last.text.ends_with(
        "3) Insert new external storage device, press Drive Refresh, create a new backup location."))
        << prompt.last.text;
    auto& shown = Control<QLineEdit>(form, "txtFolder");
    EXPECT_NE(shown.text(), Q(stick.string()));
    Picture(form, "backup-BackupRemovableForm", {});
    fs::create_directories(stick);  // it is put in
    EXPECT_EQ(U8(Control<QPushButton>(form, "cmdRefresh").text().remove('&')), "Drive Refresh");
    Click(form, "cmdRefresh");
    EXPECT_EQ(shown.text(), Q(stick.string()));
    fs::remove(stick);  // and out again: its folder is not made on the disk
    Click(form, "cmdContinue");
    EXPECT_FALSE(fs::exists(stick));
    answer = folder / "Other";
    fs::create_directories(answer);
    Click(form, "cmdBrowse");
    Click(form, "cmdContinue");
  });
  EXPECT_EQ(ListSets(answer).size(), 1U);
  EXPECT_EQ(GetSetting(session, setting::BackupFileLocation), answer.string());
  EXPECT_EQ(ReadBackupDates(session.File()).LastBackupDate, (DateTime{2026, 3, 10}));
  // One that never was chosen is nothing that could be missing.
  StoreSettings(session, {setting::BackupFileLocation.To("")});
  Run("BackupRemovableForm", [](QWidget&) { PressOn(Qt::Key_Escape); });
}

// The window that comes when no file can be opened: its restores bring one back.
TEST_F(BackupWindows, AFileThatIsLostIsRestoredFromTheWindowWithoutAFile) {
  desktop::RegisterDatafileWindows(list, windows);
  CloseDataFile(session, windows);
  ASSERT_TRUE(ShutdownBackup(session, "AutoBackup"));
  const fs::path set = ListSets(folder / "Auto Backup").front().dataFile;
  for (const char* button : {"cmdAutoBackup", "cmdRestore"}) {
    SCOPED_TRACE(button);
    if (session.DataFileDB) CloseDataFile(session, windows);
    fs::remove(file);
    answer.clear();
    const auto press = [&](const char* inRestore, QWidget& form) {
      Control<QTabWidget>(form, "TabDataFile").setCurrentIndex(3);
      WithModal([&] { Click(form, button); }, [&](QWidget& restore) { Click(restore, inRestore); });
    };
    prompt.Expect("Restore Data File", Answer::Yes).Expect("Restore Complete");
    Run("NewDataFileForm", [&](QWidget& form) {
      press("cmdCancel", form);
      EXPECT_TRUE(form.isVisible()) << "it comes back while no file is open";
      answer = set;
      press("cmdContinue", form);
      EXPECT_FALSE(form.isVisible());
    });
    EXPECT_EQ(session.DataFileName, file.string());
    EXPECT_EQ(Colors(), 1);
  }
}

TEST_F(BackupWindows, ARepairShowsWhatItDid) {
  session.File().Execute("INSERT INTO INK_Basic (Color_Name, PurchaseCost) VALUES ('red', 3)");
  folder.Breaks("UniqueNames");  // what is kept is as it was
  prompt.Expect("Repair Data File", Answer::Cancel);
  EXPECT_FALSE(list.RunDialog("RepairForm"));
  prompt.Expect("Repair Data File", Answer::Ok).Expect("Repair Data File");
  Run("RepairForm", [&](QWidget& form) {
    EXPECT_NE(Control<QLabel>(form, "lblKept").text().indexOf("Before Repair 03_10_2026__09_00_00"), -1);
    auto& grid = Control<desktop::Grid>(form, "fgRepair");
    std::string shown;
    for (int row = 0; row < grid.Model().rowCount(); ++row) shown += U8(grid.Model().index(row, 4).data().toString()) + "\n";
    EXPECT_NE(shown.find("RED stood twice: row 2 is called DupColor 03-10-26 DC1 now"), std::string::npos) << shown;
    Picture(form, "backup-RepairForm", {});
    PressOn(Qt::Key_Escape);
  });
  EXPECT_EQ(Colors(), 2);
  EXPECT_TRUE(session.RecordsetsOpen);
}

TEST_F(BackupWindows, ACheckShowsWhatIsWrongAndTakesWhatWasChangedOnPurpose) {
  prompt.Expect("Check Data File", Answer::Ok, file.string() + " is sound.\nEvery row and every rule was checked.");
  EXPECT_FALSE(list.RunDialog("CheckForm"));

  CloseDataFile(session, windows);
  EditByHand(file, "UPDATE INK_Basic SET PurchaseCost = 4.1; INSERT INTO INK_Basic (Color_Name) VALUES ('BY HAND')");
  ASSERT_TRUE(OpenOtherDataFile(session, file, windows));
  const auto shown = [](QWidget& form) {
    auto& grid = Control<desktop::Grid>(form, "fgFaults");
    std::string text;
    for (int row = 0; row < grid.Model().rowCount(); ++row) {
      for (int column = 0; column < 4; ++column) text += U8(grid.Model().index(row, column).data().toString()) + "|";
      text += "\n";
    }
    return text;
  };
  const std::string all =
      "The field INK_Basic.PurchaseCost holds \"4.1\", which is not how it is kept.|INK_Basic|1|RED|\n"
      "The row is not as this program wrote it.|INK_Basic|1|RED|\n"
      "The row was added, and not by this program.|INK_Basic|2|BY HAND|\n";
  session.CurrentUser = "ANN";
  session.Perm_Advanced = session.Perm_BackupRestore = 0;
  Run("CheckForm", [&](QWidget& form) {
    EXPECT_EQ(shown(form), all);
    EXPECT_FALSE(Control<QPushButton>(form, "cmdAccept").isEnabled());
    EXPECT_TRUE(Control<QPushButton>(form, "cmdRepair").isEnabled()) << "whoever works in the file may have it mended";
    PressOn(Qt::Key_Escape);
  });
  session.CurrentUser.clear();
  Run("CheckForm", [&](QWidget& form) {
    Picture(form, "backup-CheckForm");
    prompt.Expect("Check Data File", Answer::Cancel);
    Click(form, "cmdAccept");
    EXPECT_EQ(shown(form), all) << "nothing was accepted";
    prompt.Expect("Check Data File", Answer::Ok)
        .Expect("Check Data File", Answer::Ok, file.string() + " is sound.\nEvery row and every rule was checked.");
    Click(form, "cmdAccept");
    EXPECT_FALSE(form.isVisible());
  });
  EXPECT_EQ(session.File().Scalar("SELECT PurchaseCost FROM INK_Basic WHERE Color_Name = 'RED'").Number(), 4.1F);

  // What nobody would write on purpose is repaired from here.
  session.File().Execute("INSERT INTO INK_Basic (Color_Name) VALUES ('red')");
  folder.Breaks("UniqueNames");  // what is kept is as it was
  prompt.Expect("Repair Data File", Answer::Ok).Expect("Repair Data File");
  QTimer reports;
  bool shownReport = false;
  QObject::connect(&reports, &QTimer::timeout, [&] {
    QWidget* modal = QApplication::activeModalWidget();
    if (modal == nullptr || modal->objectName() != "RepairForm") return;
    shownReport = true;
    modal->close();
  });
  reports.start(20);
  Run("CheckForm", [](QWidget& form) {
    EXPECT_FALSE(Control<QPushButton>(form, "cmdAccept").isEnabled());
    Click(form, "cmdRepair");
  });
  EXPECT_TRUE(shownReport);
  EXPECT_TRUE(CheckDataFileRules(session, CheckDepth::Deep, CheckState::InUse).Sound());
}

}  // namespace
}  // namespace vellumark::test
