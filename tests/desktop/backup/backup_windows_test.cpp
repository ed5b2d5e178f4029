#include <QLabel>
#include <QTreeWidget>

#include "core/backup/backup_set.h"
#include "core/base/files.h"
#include "core/datafile/databases.h"
#include "core/session/settings.h"
#include "core/shell/backups.h"
#include "core/shell/data_files.h"
#include "desktop/backup/register.h"
#include "support/data_files.h"
#include "support/desktop.h"

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

TEST_F(BackupWindows, TheReminderBacksUpOrWaits) {
  StoreSettings(session, {setting::RemindBackup.To(false), setting::BackupFileLocation.To((folder / "Gone").string())});
  Run("BackupReminderForm", [&](QWidget& form) {
    EXPECT_EQ(U8(Control<QLabel>(form, "lblLastBackup").text()), "A backup has never been performed for this file.");
    Picture(form, "backup-BackupReminderForm", {});
    Click(form, "OptNo");
    Click(form, "cmdOK");
  });
  EXPECT_FALSE(DueBackupReminder(session));
  EXPECT_FALSE(ReadBackupDates(session.File()).LastBackupDate);

  answer = stick;
  fs::create_directories(stick);
  prompt.Expect("Backup Complete");
  Run("BackupRemovableForm", [&](QWidget& form) {
    EXPECT_NE(U8(Control<QLabel>(form, "lblNotFound").text()).find("Backup location not found"), std::string::npos);
    Picture(form, "backup-BackupRemovableForm", {});
    Click(form, "cmdBrowse");
    Click(form, "cmdContinue");
  });
  EXPECT_EQ(ListSets(stick).size(), 1U);
  EXPECT_EQ(GetSetting(session, setting::BackupFileLocation), stick.string());
  EXPECT_EQ(ReadBackupDates(session.File()).LastBackupDate, (DateTime{2026, 3, 10}));
}

}  // namespace
}  // namespace vellumark::test
