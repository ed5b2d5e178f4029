#include "core/shell/backups.h"

#include <gtest/gtest.h>

#include "core/base/files.h"
#include "core/datafile/databases.h"
#include "core/session/settings.h"
#include "core/shell/data_files.h"
#include "core/shell/settings_restore.h"
#include "support/data_files.h"
#include "support/old_files.h"
#include "support/plain_stick.h"

namespace vellumark {
namespace {

namespace fs = std::filesystem;
using test::WriteFile;

class Backups : public testing::Test {
 protected:
  Backups() {
    room.MakeFile(file);
    room.session.DataFileName = file.string();
    OpenDataFile(room.session, room.windows);
    Add("RED");
    WriteFile(photos / "red.jpg", "red");
  }

  void Add(const std::string& name) {
    const test::Arranging arranging;
    Transaction transaction(room.session.File());
    room.session.File().Prepare("INSERT INTO INK_Basic (Color_Name, LotRefID) VALUES (?, 7)").Bind(1, name).Run();
    transaction.Commit();
  }
  std::string Colors() {
    std::string names;
    Statement rows = room.session.File().Prepare("SELECT Color_Name FROM INK_Basic ORDER BY Color_Name");
    while (rows.Step()) names += rows.Text(0) + " ";
    return names;
  }
  BackupSet Make() {
    room.prompt.Expect("Backup Complete", Answer::Ok, "Backup Completed Successfully!");
    auto set = BackUpToFolder(room.session, stick);
    EXPECT_TRUE(set) << set.error().text;
    return *set;
  }
  Result<RestoredDataFile> Restore(const fs::path& source) {
    return RestoreDataFile(room.session, source, RestoreFrom::Location, room.windows);
  }
  void ExpectRestored() {
    room.prompt.Expect("Restore Data File", Answer::Yes).Expect("Restore Complete");
  }

  test::DataFileRoom room;
  fs::path file = room.folder / "Ink.vkd";
  fs::path photos = room.folder / "DesignPhotos";
  fs::path stick = room.folder / "Stick";
};

TEST_F(Backups, ABackupLeavesTheFileOpenAndTellsTheDay) {
  const BackupSet set = Make();
  EXPECT_TRUE(set.proof->content.Sound());
  EXPECT_EQ(Colors(), "RED ");
  const BackupDates dates = ReadBackupDates(room.session.File());
  EXPECT_EQ(dates.LastBackupDate, (DateTime{2026, 3, 10}));
  EXPECT_EQ(dates.DayBeforeNextBackupDate, (DateTime{2026, 3, 11}));
  EXPECT_EQ(GetSetting(room.session, setting::BackupRestoreFileLocation), stick.string());

  // That the file has faults is told in the place of the success.
  room.folder.Breaks("UniqueNames");
  Add("red");
  room.prompt.Expect("Backup");
  EXPECT_FALSE(BackUpToFolder(room.session, stick)->Proven());
  EXPECT_NE(room.prompt.last.text.find("INK_Basic, row 2 (red)"), std::string::npos) << room.prompt.last.text;
  room.session.File().Execute("DELETE FROM INK_Basic WHERE RowKey = 2");

  // A failure moves no date and leaves the file open.
  room.clock.Set({2026, 3, 20, 9, 0, 0});
  WriteFile(room.folder / "Full", "a file");
  EXPECT_THROW((void)BackUpToFolder(room.session, room.folder / "Full"), Failure);
  EXPECT_EQ(ReadBackupDates(room.session.File()).LastBackupDate, (DateTime{2026, 3, 10}));
  EXPECT_EQ(Colors(), "RED ");
}

TEST_F(Backups, RestoreGivesBackThatDayAndKeepsThePresent) {
  const BackupSet set = Make();
  room.clock.Set({2026, 3, 12, 10, 30, 0});
  Add("BLUE");
  room.session.File().Execute("UPDATE FileInfo SET BatchNumber = 42, ItemNumber = 9");
  room.session.File().Execute("INSERT INTO INK_Batch (BatchNo, Color_Name, JobNumber) VALUES (41, 'ROSE', 'J7')");
  room.session.File().Execute("INSERT INTO INK_Mix (Color_Name, Color_Set) VALUES ('ROSE', '')");
  room.session.File().Execute("INSERT INTO JobRecords (JobNumber, Database, BatchNo) VALUES ('J7', 'INK', 41)");
  room.session.File().Execute("UPDATE INK_Basic SET LotRefID = 12 WHERE Color_Name = 'RED'");
  room.session.File().Execute("INSERT INTO INK_Additives (SetName, SetList) VALUES ('SLOW', '')");
  room.session.File().Execute("INSERT INTO Designs (DesignID) VALUES ('TAG')");
  CreateEmptyDatabase(room.session.File(), "WEB");
  room.session.File().Execute("INSERT INTO WEB_Basic (Color_Name) VALUES ('CYAN')");
  WriteFile(photos / "red.jpg", "red, later");
  WriteFile(photos / "blue.jpg", "blue");
  WriteFile(photos / "shared.jpg", "of another Data File of the folder");
  room.MakeFile(room.folder / "Other.vkd");
  Database::Open(room.folder / "Other.vkd", OpenMode::Exclusive)
      ->Execute("INSERT INTO Designs (DesignID, PhotoSet) VALUES ('D', '<shared.jpg>')");

  room.prompt.Expect("Restore Data File", Answer::No);
  EXPECT_TRUE(Restore(set.dataFile).error().declined);
  EXPECT_NE(room.prompt.last.text.find("INK: 2 basics"), std::string::npos) << room.prompt.last.text;
  EXPECT_NE(room.prompt.last.text.find("INK: 1 basic,"), std::string::npos) << room.prompt.last.text;
  EXPECT_NE(room.prompt.last.text.find(file.string() + ", last changed 20"), std::string::npos) << room.prompt.last.text;
  EXPECT_EQ(Colors(), "BLUE RED ");

  ExpectRestored();
  const auto restored = Restore(set.dataFile);
  ASSERT_TRUE(restored) << restored.error().text;
  EXPECT_EQ(Colors(), "RED ");
  EXPECT_EQ(room.session.DataFileName, file.string());
  EXPECT_EQ(ReadFileBytes(photos / "red.jpg"), "red");
  EXPECT_FALSE(fs::exists(photos / "blue.jpg")) << "a photo that no Data File names";
  EXPECT_TRUE(fs::exists(photos / "shared.jpg"));
  EXPECT_FALSE(ReadBackupDates(room.session.File()).DayBeforeNextBackupDate) << "as the set had it";
  // Numbers on paper are not handed out twice.
  EXPECT_EQ(room.session.BatchNumber, 42);
  EXPECT_EQ(room.session.ItemNumber, 9);
  EXPECT_EQ(room.session.File().Scalar("SELECT LotRefID FROM INK_Basic").Whole(), 12);
  // What was lost by going back is told by name.
  ASSERT_EQ(restored->since.size(), 3U);
  EXPECT_EQ(restored->since.front().batches, (std::vector<std::string>{"000041"}));
  EXPECT_EQ(restored->since.front().formulas, (std::vector<std::string>{"ROSE"}));
  EXPECT_EQ(restored->since.front().jobs, (std::vector<std::string>{"J7"}));
  EXPECT_NE(room.prompt.last.text.find("\nINK: Batches 000041; formulas ROSE; basics BLUE; Additive Sets SLOW; Jobs J7\n"
                                       "WEB, the whole Database: 1 basic, 0 formulas, 0 Batches\nDesigns TAG\n"),
            std::string::npos)
      << room.prompt.last.text;
  // Every day that one can go back to: the stick, and what the restore replaced.
  const BackupDays known = DaysToGoBackTo(room.session);
  ASSERT_EQ(known.days.size(), 2U);
  EXPECT_EQ(known.days[0].set.folder, restored->kept);
  EXPECT_EQ(known.days[0].set.made, (DateTime{2026, 3, 12, 10, 30, 0}));
  EXPECT_EQ(known.days[1].place, stick.string());
  EXPECT_EQ(known.days[1].set.folder, set.folder);
  // The present is kept whole, and can be restored in its turn.
  EXPECT_EQ(restored->kept, room.folder / "Before Restore 03_12_2026__10_30_00");
  EXPECT_EQ(ReadFileBytes(restored->kept / "DesignPhotos" / "blue.jpg"), "blue");
  EXPECT_EQ(ReadFileBytes(restored->kept / "DesignPhotos" / "red.jpg"), "red, later");
  ExpectRestored();
  ASSERT_TRUE(Restore(restored->kept / "Ink.vkd"));
  EXPECT_EQ(Colors(), "BLUE RED ");
}

// What fails among the photos leaves every one, and the file, as it was.
TEST_F(Backups, AFailureInTheMiddleOfARestoreTakesItBack) {
  for (const char* name : {"red.jpg", "white.jpg"}) WriteFile(photos / name, "of the set");
  const BackupSet set = Make();
  Add("BLUE");
  WriteFile(photos / "red.jpg", "red, later");
  fs::remove(photos / "white.jpg");
  fs::create_directory(photos / "white.jpg");
  room.prompt.Expect("Restore Data File", Answer::Yes);
  EXPECT_THROW((void)Restore(set.dataFile), Failure);
  EXPECT_EQ(Colors(), "BLUE RED ");
  EXPECT_EQ(ReadFileBytes(photos / "red.jpg"), "red, later");
  for (const auto& entry : fs::directory_iterator(room.folder.Path())) {
    const std::string name = entry.path().filename().string();
    EXPECT_FALSE(name.starts_with('.') || name.starts_with("Before Restore")) << name;
  }
}

// Of an older version, or of an earlier program: it is brought up to date on a copy, or nothing happens.
TEST_F(Backups, AnOlderSetIsBroughtUpToDateOnACopy) {
  test::OldRoom old = test::MakeOldRoom(20);
  old.users = false;
  const fs::path report = room.folder / "Ink Update Report.txt";
  for (const bool jet : {false, true}) {
    SCOPED_TRACE(jet);
    const fs::path source = room.folder / (jet ? "Jet/Old.vkd" : "Own/Old.vkd");
    fs::create_directories(source.parent_path());
    jet ? test::WriteOldJetFile(source, test::OldTables(old, 28, 0)) : test::WriteOldFile(source, test::OldTables(old, 28, 0));
    fs::path dataFile = source;
    if (!jet) dataFile = MakeBackupSet(room.session, source, stick).dataFile;
    const std::string bytes = ReadFileBytes(dataFile);
    // Whether its stock counts the lots too only people know, and who does not answer changes nothing.
    const std::string before = Colors();
    room.prompt.Expect("Lotted Inventory", Answer::Cancel);
    EXPECT_TRUE(Restore(dataFile).error().declined);
    EXPECT_EQ(Colors(), before);
    EXPECT_EQ(fs::exists(report), jet);

    room.prompt.Expect("Lotted Inventory", Answer::No);
    ExpectRestored();
    const auto restored = Restore(dataFile);
    ASSERT_TRUE(restored) << restored.error().text;
    ASSERT_TRUE(restored->updated);
    EXPECT_EQ(restored->updated->fromVersion, 28);
    EXPECT_TRUE(restored->updated->Balanced()) << UpgradeText(*restored->updated);
    EXPECT_NE(room.prompt.last.text.find("had the file version 28 and was brought up to version 40"), std::string::npos)
        << room.prompt.last.text;
    EXPECT_NE(ReadFileBytes(report).find(dataFile.string()), std::string::npos) << ReadFileBytes(report);
    EXPECT_EQ(ReadFileBytes(report).find(".vkb"), std::string::npos) << "it names no copy that is not there";
    EXPECT_EQ(ReadFileInfo(room.session.File()).fileVersion, kFileVersion);
    const std::string& database = old.databases.front().name;
    EXPECT_EQ(CountRows(room.session.File(), database).formulas, std::ssize(old.databases.front().formulas));
    EXPECT_TRUE(ReadFileBytes(dataFile) == bytes);
    if (!jet) {
      EXPECT_TRUE(VerifySet(room.session, *ReadSet(dataFile.parent_path())).faults.empty());
    }
    for (const auto& entry : fs::directory_iterator(room.folder.Path()))
      EXPECT_NE(entry.path().filename().string().front(), '.') << entry.path();
    ExpectRestored();
    ASSERT_TRUE(Restore(restored->kept / "Ink.vkd"));
  }
  // One that cannot be read whole replaces nothing.
  std::string cut = ReadFileBytes(room.folder / "Own/Old.vkd");
  const fs::path damaged = room.folder / "Cut/Old.vkd";
  WriteFile(damaged, cut.replace(cut.size() / 8192 * 4096, 12288, 12288, '\xFF'));
  room.folder.Breaks("Structure");
  EXPECT_NE(Restore(damaged).error().text.find(damaged.string()), std::string::npos);
  EXPECT_EQ(Colors(), "RED ");
}

TEST_F(Backups, TheSourceIsLookedAtFirst) {
  room.folder.Breaks("Structure");
  room.MakeFile(room.folder / "Copy130.vkd", 130);
  room.folder.Breaks("FileInfo");
  const auto unusable = Restore(room.folder / "Copy130.vkd");
  EXPECT_FALSE(unusable.error().declined) << "nothing was asked";
  EXPECT_NE(unusable.error().text.find("has a file version of: 130"), std::string::npos) << unusable.error().text;
  const BackupSet set = Make();
  EXPECT_EQ(Restore(file).error().text,
            "Current data file and choosen file are the same!\nPlease select another file.");
  EXPECT_EQ(Restore(room.folder / "Gone.vkd").error().title, "Restore Error");
  WriteFile(room.folder / "Text.vkd", std::string(9000, 'x'));
  EXPECT_NE(Restore(room.folder / "Text.vkd").error().text.find("cannot be read"), std::string::npos);

  std::string bytes = ReadFileBytes(set.dataFile);
  bytes[bytes.find("RED")] = 'B';
  WriteFile(set.dataFile, bytes);
  room.prompt.Expect("Restore Error", Answer::No);
  EXPECT_TRUE(Restore(set.dataFile).error().declined);
  EXPECT_NE(room.prompt.last.text.find("INK_Basic: values are not those of when the set was made"), std::string::npos);
  EXPECT_EQ(Colors(), "RED ");
}

TEST_F(Backups, ADamagedOrLostFileAndItsJournalGiveWay) {
  room.folder.Breaks("Structure");
  const BackupSet set = Make();
  CloseDataFile(room.session, room.windows);
  WriteFile(file, "damaged");
  WriteFile(file.string() + "-journal", "left by a killed program");
  ExpectRestored();
  const auto restored = Restore(set.dataFile);
  ASSERT_TRUE(restored);
  EXPECT_EQ(Colors(), "RED ");
  EXPECT_EQ(ReadFileBytes(restored->kept / "Ink.vkd"), "damaged");
  EXPECT_FALSE(fs::exists(file.string() + "-journal"));

  CloseDataFile(room.session, room.windows);
  fs::remove(file);
  ExpectRestored();
  ASSERT_TRUE(Restore(set.dataFile));
  EXPECT_EQ(room.session.DataFileName, file.string());
  EXPECT_EQ(Colors(), "RED ");

  // With the drive that it was on.
  for (const char* name : {"Vellumark Data.vkd", "Vellumark Data(1).vkd"}) {
    CloseDataFile(room.session, room.windows);
    room.session.DataFileName = room.folder / "Gone" / "Ink.vkd";
    ExpectRestored();
    ASSERT_TRUE(Restore(set.dataFile));
    EXPECT_EQ(room.session.DataFileName, (room.folder / "Program" / name).string());
    EXPECT_EQ(Colors(), "RED ");
    EXPECT_FALSE(fs::exists(room.folder / "Gone"));
  }
}

TEST_F(Backups, AFileThatAnotherProcessWorksInIsNotReplaced) {
  const BackupSet set = Make();
  CloseDataFile(room.session, room.windows);
  const std::string bytes = ReadFileBytes(file);
  const auto cause = [](const std::function<void()>& act) -> std::string {
    try {
      act();
    } catch (const Failure& failure) {
      return failure.cause;
    }
    return "nothing failed";
  };
  {
    const test::HeldFile held(file);
    EXPECT_EQ(cause([&] { (void)Restore(set.dataFile); }), "is in use by another process") << "and nothing was asked";
    EXPECT_EQ(cause([&] { PutDataFileBack(room.session, set.dataFile, set.folder / "DesignPhotos", file); }),
              "is in use by another process");
  }
  EXPECT_TRUE(ReadFileBytes(file) == bytes);
  for (const auto& entry : fs::directory_iterator(room.folder.Path())) {
    const std::string name = entry.path().filename().string();
    EXPECT_FALSE(name.starts_with('.') || name.starts_with("Before Restore")) << name;
  }
  // Nor does anybody come in while a backup is copied.
  struct Watching final : Progress {
    void Begin(std::string_view) override {}
    void Percent(double) override {
      try {
        Database::Open(watched, OpenMode::Exclusive);
      } catch (const Failure&) {
        ++keptOut;
        return;
      }
      ADD_FAILURE() << "opened while it is copied";
    }
    fs::path watched;
    int keptOut = 0;
  } watching;
  watching.watched = file;
  Session copying(room.prompt, watching, room.clock);
  copying.support = std::make_unique<SupportFiles>(room.folder / "VKDat");
  MakeBackupSet(copying, file, stick);
  EXPECT_GT(watching.keptOut, 2);
}

TEST_F(Backups, AStickWithoutOwnersAndModesTakesThemAndGivesThemBack) {
  const BackupSet before = Make();
  Add("BLUE");
  WriteFile(photos / "red.jpg", "red, later");
  CloseDataFile(room.session, room.windows);
  EXPECT_EQ(test::OnPlainStick([&] {
              if (!VerifySet(room.session, MakeBackupSet(room.session, file, stick)).faults.empty()) return 1;
              const RestoredFiles restored =
                  PutDataFileBack(room.session, before.dataFile, before.folder / "DesignPhotos", file);
              return ReadFileBytes(restored.kept / "DesignPhotos" / "red.jpg") == "red, later" ? 0 : 2;
            }),
            0);
  EXPECT_EQ(ListSets(stick).size(), 2U);
  OpenDataFile(room.session, room.windows);
  EXPECT_EQ(Colors(), "RED ");
  EXPECT_EQ(ReadFileBytes(photos / "red.jpg"), "red");
}

// Once it has its place it is opened, and the rest is told.
TEST_F(Backups, WhatFailsBehindTheLastStepOfARestoreIsTold) {
  const BackupSet set = Make();
  fs::create_directories(room.folder / "Alone");
  fs::copy_file(set.dataFile, room.folder / "Alone" / "Ink.vkd");
  Add("BLUE");
  const test::WithoutRoot plain(room.folder.Path());
  fs::permissions(room.folder / "VKDat", fs::perms::owner_read | fs::perms::owner_exec);
  room.prompt.Expect("Restore Data File", Answer::Yes).Expect("Data File").Expect("Restore Complete");
  const auto restored = Restore(room.folder / "Alone" / "Ink.vkd");
  fs::permissions(room.folder / "VKDat", fs::perms::owner_all);
  ASSERT_TRUE(restored);
  EXPECT_EQ(Colors(), "RED ");
  ASSERT_EQ(restored->notes.size(), 2U);
  EXPECT_TRUE(restored->notes[0].starts_with(room.session.support->settings.Path().string())) << restored->notes[0];
  EXPECT_EQ(restored->notes[1], "No photos came with the backup. Those that are here stay as they are.");
  EXPECT_TRUE(fs::exists(photos / "red.jpg"));
  for (const std::string& note : restored->notes) EXPECT_NE(room.prompt.last.text.find(note), std::string::npos);
}

TEST_F(Backups, AnArchiveCopyBecomesAPlainFileAndOnlyPlainOnesAreBackedUp) {
  const fs::path copy = room.folder / "Copy.vkd";
  room.MakeFile(copy, kArchiveFileVersion);
  ExpectRestored();
  ASSERT_TRUE(Restore(copy));
  EXPECT_FALSE(room.session.ArchiveView);
  EXPECT_EQ(ReadFileInfo(room.session.File()).fileVersion, kFileVersion);

  CloseDataFile(room.session, room.windows);
  room.session.DataFileName = copy.string();
  OpenDataFile(room.session, room.windows);
  EXPECT_FALSE(BackUpToFolder(room.session, stick));
  room.session.Perm_BackupRestore = 0;
  room.session.CurrentUser = "ANN";
  EXPECT_FALSE(Restore(file));
}

TEST_F(Backups, WhenTheReminderIsDue) {
  Session& session = room.session;
  struct Case {
    bool on;
    bool archive;
    std::optional<DateTime> dayBefore;
    bool due;
  };
  const DateTime today{2026, 3, 10};
  const Case cases[] = {{false, false, {}, false},
                        {true, false, {}, true},
                        {true, true, {}, false},
                        {true, false, DateTime{2026, 3, 9}, true},
                        {true, false, today, false},
                        {true, false, DateTime{2026, 3, 11}, false},
                        {false, false, DateTime{2025, 3, 9}, false}};
  for (const Case& one : cases) {
    SCOPED_TRACE(std::to_string(&one - cases));
    StoreSettings(session, {setting::RemindBackup.To(!one.on)});
    StoreBackupDates(session.File(), {{}, one.dayBefore, 7});
    session.ArchiveView = one.archive;
    EXPECT_EQ(DueBackupReminder(session).has_value(), one.due);
    session.ArchiveView = false;
  }
  StoreSettings(session, {setting::RemindBackup.To(false)});
  StoreBackupDates(session.File(), {});
  CloseDataFile(session, room.windows);
  EXPECT_FALSE(DueBackupReminder(session)) << "no file is open";
  OpenDataFile(session, room.windows);
}

TEST_F(Backups, WhatAnAnswerToTheReminderStores) {
  Session& session = room.session;
  StoreSettings(session, {setting::RemindBackup.To(false)});
  EXPECT_FALSE(DueBackupReminder(session)->LastBackupDate);
  StoreReminderAnswer(session, {false, false, 3});
  for (const auto& [day, due] : {std::pair{10, false}, {13, false}, {14, true}}) {
    room.clock.Set({2026, 3, day, 18, 0, 0});
    EXPECT_EQ(DueBackupReminder(session).has_value(), due) << day;
  }
  // An answer is no backup.
  EXPECT_FALSE(DueBackupReminder(session)->LastBackupDate);
  EXPECT_EQ(DueBackupReminder(session)->DaysToRemindBackup, 3);
  // Nor is one that is to be made: the backup itself stores its day, with the interval that was chosen.
  StoreReminderAnswer(session, {false, true, 9});
  EXPECT_TRUE(DueBackupReminder(session));
  Make();
  EXPECT_EQ(ReadBackupDates(session.File()).LastBackupDate, (DateTime{2026, 3, 14}));
  EXPECT_EQ(ReadBackupDates(session.File()).DayBeforeNextBackupDate, (DateTime{2026, 3, 23}));
  StoreReminderAnswer(session, {true, false, 5});
  room.clock.Set({2026, 6, 1, 18, 0, 0});
  EXPECT_FALSE(DueBackupReminder(session));
  EXPECT_EQ(ReadBackupDates(session.File()).DaysToRemindBackup, 9) << "only stored while it is wanted";
}

TEST_F(Backups, SupportFilesComeBackAndTheDataFileStays) {
  Session& session = room.session;
  StoreSettings(session, {setting::DecimalPlaces.To(3), setting::DbFileName50.To(std::string("elsewhere.vkd"))});
  const BackupSet set = Make();
  StoreSettings(session, {setting::DecimalPlaces.To(4)});
  session.support->label.SetSupportValue("Default Label", "Printer", "NEW");
  room.prompt.Expect("Restore Complete");
  ASSERT_TRUE(RestoreSupportFiles(session, set.folder / "SUV_Files"));
  EXPECT_EQ(session.DecimalPlaces, 3);
  EXPECT_EQ(GetSetting(session, setting::DbFileName50), file.string());
  EXPECT_EQ(ReadFileBytes(session.support->label.Path()), ReadFileBytes(set.folder / "SUV_Files" / "vk50labeldf.dat"));
  EXPECT_EQ(Colors(), "RED ");

  // Stock is kept in the unit that the machine's settings tell.
  StoreSettings(session, {setting::UMI.To(2), setting::DecimalPlaces.To(4)});
  ReadSettings(session);
  room.prompt.Expect("Restore Unit", Answer::No).Expect("Restore Complete");
  ASSERT_TRUE(RestoreSupportFiles(session, set.folder / "SUV_Files"));
  EXPECT_EQ(session.UMI, 2);
  EXPECT_EQ(session.DecimalPlaces, 3);
  room.prompt.Expect("Restore Unit", Answer::No);
  EXPECT_TRUE(Restore(set.dataFile).error().declined);

  EXPECT_EQ(RestoreSupportFiles(session, room.folder / "Gone").error().title, "Select a Support File");
  CloseDataFile(session, room.windows);
  session.DataFileName = room.folder / "Gone.vkd";
  room.prompt.Expect("Restore Unit", Answer::No).Expect("Restore Complete");
  ASSERT_TRUE(RestoreSupportFiles(session, set.folder / "SUV_Files"));
  EXPECT_EQ(GetSetting(session, setting::DbFileName50), (room.folder / "Program" / "Vellumark Data.vkd").string());
}

// Those of an older version climb on a copy, the scale file with them.
TEST_F(Backups, OlderSupportFilesClimbOnACopy) {
  Session& session = room.session;
  SupportFiles old(room.folder / "Old");
  MakeFolder(old.folder);
  SupportRecords records(RecordShape::KeyValue);
  for (const auto& [key, value] : {std::pair{"BatchListColWidth74", "0"}, {"StartupVar_FileVersion", "20"}, {"LabelTemplate_Version", "5"},
                                   {"DecimalPlaces", "4"}, {"dbFileName50", "elsewhere.vkd"}})
    records.Append(key, value);
  old.settings.Write(records);
  SupportRecords scale(RecordShape::KeyValue);
  scale.Append(setting::Handshaking.key, "2");
  old.scale.Write(scale);
  const std::string bytes = ReadFileBytes(old.settings.Path());
  const std::string content = ReadFileBytes(file);
  room.prompt.Expect("Restore Complete");
  ASSERT_TRUE(RestoreSupportFiles(session, old.folder));
  const SupportRecords now = session.support->settings.Read();
  EXPECT_EQ(now.Get("StartupVar_FileVersion"), SupportFileVersion);
  EXPECT_EQ(session.DecimalPlaces, 4);
  EXPECT_EQ(GetSetting(session, setting::DbFileName50), file.string());
  EXPECT_EQ(session.support->scale.Read().Get(setting::Handshaking.key), "2");
  EXPECT_EQ(ReadFileBytes(old.settings.Path()), bytes);
  EXPECT_TRUE(ReadFileBytes(file) == content) << "nothing of the Data File";
}

}  // namespace
}  // namespace vellumark
