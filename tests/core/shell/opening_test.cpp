#include "core/shell/opening.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <set>

#include "core/base/files.h"
#include "core/colors/basic_work.h"
#include "core/colors/basics.h"
#include "core/colors/copy_database.h"
#include "core/colors/resets.h"
#include "core/datafile/databases.h"
#include "core/datafile/lifecycle.h"
#include "core/datafile/pending_rollups.h"
#include "core/datafile/schema.h"
#include "core/datafile/writer.h"
#include "core/session/options.h"
#include "core/session/users.h"
#include "core/settings/settings.h"
#include "core/settings/support_files.h"
#include "core/shell/data_files.h"
#include "core/shell/database_menu.h"
#include "core/shell/startup.h"
#include "core/shell/support_renewal.h"
#include "support/data_files.h"
#include "support/sound.h"
#include "support/template_room.h"

namespace vellumark {
namespace {

namespace fs = std::filesystem;

// Writes down what the order asks for; answers as set.
class RecordingWindows final : public StartupWindows {
 public:
  std::vector<std::string> calls;
  bool another = false;
  std::optional<fs::path> updated;
  std::string startupMessage;
  std::string caption;

  bool AnotherInstanceRuns(const Session&) override { return Note("previous instance"), another; }
  void ShowMainWindow(const std::string& text) override { Note("main window"), caption = text; }
  void ShowNewSetup(Session& session) override {
    Note("setup");
    EXPECT_TRUE(SaveNewSetup(session, 1, 0, ""));
  }
  void TakePrinter(Session& session) override { Note("printer, UMI " + std::to_string(session.UMI)); }
  void PrepareCloud(Session&) override { Note("cloud folders"); }
  void LoadScalePort(Session& session) override {
    Note("scale, settings version " + session.support->settings.GetSupportValue(setting::StartupVar_FileVersion.key));
  }
  void ShowSplash() override { Note("splash"); }
  void ShowCloudLine(Session&) override { Note("cloud line"); }
  void CloseAllChildWindows() override { Note("close children"); }
  void RemindBackup(Session&) override { Note("remind backup"); }
  void ShutdownBackup(Session& session, const std::string& label) override {
    Note("backup " + label + (session.DataFileOpen ? " while open" : ""));
  }
  void PowerOffScale(Session&) override { Note("scale off"); }
  void ShowNewDataFile(const std::string& message) override { Note("new data file"), startupMessage = message; }
  std::optional<fs::path> ShowUpdateDataFile(const fs::path&, int version) override {
    Note("update from " + std::to_string(version));
    return updated;
  }
  void Login(Session&) override { Note("login"); }
  void SetCaption(const std::string& text) override { caption = text; }
  void SuggestArchive(Session&) override { Note("archive"); }

 private:
  void Note(std::string call) { calls.push_back(std::move(call)); }
};

struct Start : test::EmptyRoom {
  Start() {
    options.folders.data = folder / "VKDat";
    options.folders.program = folder / "Program";
  }
  RecordingWindows windows;
  StartOptions options;
};

TEST(StartOrder, AFirstStartSetsUpAndAsksForADataFile) {
  Start start;
  ASSERT_TRUE(StartUp(start.session, start.options, start.windows));
  EXPECT_EQ(start.windows.calls,
            (std::vector<std::string>{"previous instance", "main window", "setup", "printer, UMI 2", "cloud folders",
                                      "new data file", "scale, settings version 47", "splash", "cloud line"}));
  EXPECT_EQ(start.windows.startupMessage, "");
  EXPECT_TRUE(fs::exists(start.options.folders.data / "vk50labeldf.dat"));
}

TEST(StartOrder, AFileNamedInQuotesIsOpenedAndKeptAsTheDefault) {
  Start start;
  // A name that the settings' code page does not know, with what ends a value there.
  const fs::path path = start.folder / "My λ \"Ink\" 漆.vkd";
  start.MakeFile(path);
  start.options.dataFileArgument = "\"" + path.string() + "\"";
  ASSERT_TRUE(StartUp(start.session, start.options, start.windows));
  EXPECT_TRUE(start.session.RecordsetsOpen);
  EXPECT_EQ(start.session.CurrentDatabase, "INK");
  EXPECT_EQ(start.windows.caption, "Version 5.0.0   -   " + path.string());
  EXPECT_EQ(start.session.support->settings.GetSupportValue(setting::DbFileName50.key), path.string());
  EndSession(start.session, start.windows);
  EXPECT_EQ(start.windows.calls.back(), "backup AutoBackup");
  EXPECT_EQ(start.windows.caption, "Version 5.0.0");

  // A label file that is missing or was emptied comes back without the setup window, and so does the scale file.
  fs::remove(start.options.folders.data / "vk50labeldf.dat");
  ReplaceFile(start.options.folders.data / "vk50_GH_labeldf.dat", "");
  ReplaceFile(start.options.folders.data / "vk50scaledf.dat", "");
  start.options.dataFileArgument.clear();
  start.windows.calls.clear();
  ASSERT_TRUE(StartUp(start.session, start.options, start.windows));
  EXPECT_EQ(start.session.DataFileName, path.string());
  EXPECT_EQ(start.windows.calls[2], "printer, UMI 2");
  for (const char* file : {"vk50labeldf.dat", "vk50_GH_labeldf.dat", "vk50scaledf.dat"})
    EXPECT_GT(fs::file_size(start.options.folders.data / file), 0U) << file;
  EndSession(start.session, start.windows);

  // Settings that were emptied, or are something else, are those of a first start, and that is told.
  const fs::path settings = start.options.folders.data / "vk50suvdf.dat";
  const std::pair<std::string, std::string> spoiled[] = {
      {"", " is no settings file: it is empty.\n"},
      {"PNG\x1a,\"\xff\xfe", " is no settings file: it holds no setting. It is kept as vk50suvdf unusable.dat.\n"},
  };
  for (const auto& [bytes, told] : spoiled) {
    ReplaceFile(settings, bytes);
    start.windows.calls.clear();
    start.prompt.Expect("Settings", Answer::Ok,
                        settings.string() + told +
                            "A new one with all defaults stands in its place: stock is kept in lb., Batches in lb., Lotted "
                            "Inventory is in use.\nSet them anew, or restore the settings of a backup.");
    ASSERT_TRUE(StartUp(start.session, start.options, start.windows));
    EXPECT_EQ(start.windows.calls[2], "setup");
    EXPECT_EQ(start.session.support->settings.Read().Get(setting::StartupVar_FileVersion.key), "47");
    EXPECT_EQ(start.session.support->settings.GetSupportValue(setting::UMI.key), "2");
  }
  EXPECT_EQ(ReadFileBytes(settings.parent_path() / "vk50suvdf unusable.dat"), spoiled[1].first);
}

TEST(StartOrder, AFileThatCannotBeOpenedIsToldAndTheStartGoesOn) {
  Start start;
  const fs::path path = start.folder / "Held.vkd";
  start.MakeFile(path);
  const auto held = Database::Open(path, OpenMode::Exclusive);
  start.options.dataFileArgument = path.string();
  // The lock is one of processes; the same process sees it too.
  ASSERT_TRUE(StartUp(start.session, start.options, start.windows));
  EXPECT_EQ(start.windows.startupMessage, path.string() + "\nis in use by another process.");
  EXPECT_FALSE(start.session.DataFileOpen);
  EXPECT_EQ(start.windows.calls.back(), "cloud line");
}

TEST(StartOrder, ASecondInstanceEndsAtOnce) {
  Start start;
  start.windows.another = true;
  start.prompt.Expect("The Vellumark is already running");
  EXPECT_FALSE(StartUp(start.session, start.options, start.windows));
  EXPECT_EQ(start.windows.calls.size(), 1U);
}

TEST(StartOrder, OlderInstallationsAreLookedForInTheirOrder) {
  for (const Answer answer : {Answer::Ok, Answer::Cancel}) {
    Start start;
    fs::create_directories(start.options.folders.data);
    fs::create_directories(start.options.folders.program);
    const fs::path old = start.folder / "Old" / "Ink 4.vkd";
    fs::create_directories(old.parent_path() / "DesignPhotos");
    start.MakeFile(old, 39);
    start.MakeFile(start.options.folders.program / "Ink 4.vkd");
    ReplaceFile(old.parent_path() / "DesignPhotos" / "BOX_1.jpg", "a photo");
    ReplaceFile(start.options.folders.data / "vk5suvdf.dat", "\"dbFileName40\",\"" + old.string() + "\"\r\n");
    const std::string bytes = ReadFileBytes(old);
    start.prompt.Expect("Data File", answer,
                        "Your most recently used Vellumark 4.0.9 database was found.\n\n" + old.string() +
                            "\n\nThat database will now be copied for use with The Vellumark 5.0.");
    // What the update makes of the copy.
    const fs::path copy = start.options.folders.program / "Ink 4(1).vkd";
    start.windows.updated = start.folder / "updated.vkd";
    start.MakeFile(*start.windows.updated);
    ASSERT_TRUE(StartUp(start.session, start.options, start.windows));
    EXPECT_TRUE(ReadFileBytes(old) == bytes);
    const bool taken = answer == Answer::Ok;
    EXPECT_EQ(start.windows.calls[5], taken ? "update from 39" : "new data file");
    EXPECT_EQ(start.session.RecordsetsOpen, taken);
    ASSERT_EQ(fs::exists(copy), taken);
    if (!taken) continue;
    EXPECT_TRUE(ReadFileBytes(copy) == bytes);
    EXPECT_EQ(ReadFileBytes(start.options.folders.program / "DesignPhotos" / "BOX_1.jpg"), "a photo");
  }

  // A Data File in the program's folder is trusted before that.
  Start other;
  fs::create_directories(other.options.folders.program);
  other.MakeFile(other.options.folders.program / "Vellumark Data.vkd");
  ASSERT_TRUE(StartUp(other.session, other.options, other.windows));
  EXPECT_TRUE(other.session.RecordsetsOpen);
  EXPECT_EQ(fs::path(other.session.DataFileName).filename(), "Vellumark Data.vkd");
}

TEST(EndOrder, AFileWhoseDatabaseCannotBeOpenedStays) {
  Start start;
  start.folder.Breaks("Parts");
  const fs::path path = start.folder / "Ink.vkd";
  start.MakeFile(path);
  {
    const auto file = Database::Open(path, OpenMode::Exclusive);
    CreateEmptyDatabase(*file, "BETA");
    StoreCurrentDatabase(*file, "INK");
    file->Execute("DROP TABLE BETA_Info");
  }
  start.options.dataFileArgument = path.string();
  start.prompt.Expect("Data File");  // told at each opening
  ASSERT_TRUE(StartUp(start.session, start.options, start.windows));
  EXPECT_THROW(static_cast<void>(ChangeDatabase(start.session, "BETA")), Failure);
  EXPECT_EQ(start.session.CurrentDatabase, "INK");
  EXPECT_TRUE(start.session.RecordsetsOpen);
  EXPECT_FALSE(start.session.LoadingDatabase);
  EXPECT_EQ(CountRows(start.session.File(), start.session.CurrentDatabase).basics, 0) << "still there to be read";
  EndSession(start.session, start.windows);
  // The one that the file opens with is broken.
  {
    const auto file = Database::Open(path, OpenMode::Exclusive);
    StoreCurrentDatabase(*file, "BETA");
  }
  start.session.DataFileName = path.string();
  start.prompt.Expect("Data File");
  EXPECT_FALSE(OpenRecentDataFile(start.session, start.windows));
  EndSession(start.session, start.windows);
  EXPECT_EQ(ReadFileInfo(*Database::Open(path, OpenMode::Exclusive)).dbList.size(), 2U);
}

TEST(EndOrder, AFileWithoutADatabaseIsRemovedAndTheReminderComesOnlyWhenItIsOn) {
  Start start;
  PrepareSupportFiles(start.session, start.options.folders);
  start.session.LoadingDatabase = true;
  EXPECT_FALSE(MayEnd(start.session, start.windows));
  start.session.LoadingDatabase = false;
  start.session.RecordsetsOpen = true;
  EXPECT_TRUE(MayEnd(start.session, start.windows));
  EXPECT_TRUE(start.windows.calls.empty());
  start.session.support->settings.SetSupportValue(setting::RemindBackup.key, "0");
  EXPECT_TRUE(MayEnd(start.session, start.windows));
  EXPECT_EQ(start.windows.calls, (std::vector<std::string>{"close children", "remind backup"}));
  start.session.RecordsetsOpen = false;

  start.session.DataFileName = (start.folder / "Half.vkd").string();
  CreateFile(start.session.DataFileName);
  start.session.DataFileDB = Database::Open(start.session.DataFileName, OpenMode::Exclusive);
  start.session.DataFileOpen = true;
  start.session.ScalePowered = 1;
  EndSession(start.session, start.windows);
  EXPECT_FALSE(fs::exists(start.folder / "Half.vkd"));
  EXPECT_EQ(start.windows.calls.back(), "scale off");

  // One that cannot be removed does not keep the scale on.
  const fs::path locked = start.folder / "Locked";
  fs::create_directories(locked);
  start.session.DataFileName = (locked / "Half.vkd").string();
  CreateFile(start.session.DataFileName);
  start.session.DataFileDB = Database::Open(start.session.DataFileName, OpenMode::Exclusive);
  start.session.DataFileOpen = true;
  start.windows.calls.clear();
  const test::WithoutRoot plain(start.folder.Path());
  fs::permissions(locked, fs::perms::owner_read | fs::perms::owner_exec);
  EXPECT_THROW(EndSession(start.session, start.windows), Failure);
  fs::permissions(locked, fs::perms::owner_all);
  EXPECT_TRUE(fs::exists(locked / "Half.vkd"));
  EXPECT_EQ(start.windows.calls.back(), "scale off");
}

TEST(FileCheck, EachVersionGetsItsWay) {
  struct Case {
    int version;
    bool opens;
    const char* call;
  };
  for (const Case& c :
       {Case{40, true, ""}, Case{140, true, ""}, Case{0, false, "new data file"}, Case{1, false, "new data file"},
        Case{41, false, "new data file"}, Case{139, false, "new data file"}, Case{141, false, "new data file"},
        Case{2, false, "update from 2"}, Case{39, false, "update from 39"}}) {
    Start start;
    const fs::path path = start.folder / "F.vkd";
    start.MakeFile(path, c.version);
    const std::string before = ReadFileBytes(path);
    EXPECT_EQ(CheckDataFile(start.session, path.string(), start.windows).has_value(), c.opens) << c.version;
    if (*c.call != '\0') {
      EXPECT_EQ(start.windows.calls.at(0), c.call) << c.version;
    }
    EXPECT_EQ(ReadFileBytes(path), before) << c.version;
    if (c.version == 41) {
      EXPECT_EQ(start.windows.startupMessage,
                "Data File: " + path.string() +
                    "\nhas a file version of: 41\n\nVellumark 5.0.0 can only use data files up to version: 40\n\n"
                    "Consider the following options:\n1) Update this Vellumark Software\n2) Create a new data file\n"
                    "3) Open another data file\n4) Restore from another file");
    }
    if (c.version == 39) {
      EXPECT_EQ(start.session.StartupMessage, "Updating " + path.string() +
                                                  "\nfrom file version 39 to file version 40\n failed.\n\n"
                                                  "Try using another data file.");
    }
  }
}

TEST(FileCheck, AUsableFileAtHandGetsAMessageInstead) {
  Start start;
  const fs::path good = start.folder / "Good.vkd";
  const fs::path newer = start.folder / "Newer.vkd";
  start.MakeFile(good);
  start.MakeFile(newer, 41);
  start.session.DataFileName = good.string();
  start.prompt.Expect("Data File");
  EXPECT_FALSE(CheckDataFile(start.session, newer.string(), start.windows));
  EXPECT_TRUE(start.prompt.last.text.ends_with("4) Restore from another file" + std::string(50, ' ')));
  EXPECT_TRUE(start.windows.calls.empty());
  EXPECT_FALSE(CheckDataFile(start.session, (start.folder / "gone.vkd").string(), start.windows));
  EXPECT_EQ(start.windows.startupMessage, (start.folder / "gone.vkd").string() + " file does not exist.");
}

// A session that dies between a change and the pass that follows it leaves the file to the next opening, whichever of
// its Databases the change was in.
TEST(Opening, WhatASessionThatDiedLeftPendingIsDone) {
  Start start;
  Session& session = start.session;
  PrepareSupportFiles(session, start.options.folders);
  session.DataFileName = (start.folder / "Ink.vkd").string();
  start.MakeFile(session.DataFileName);
  {
    const auto file = Database::Open(session.DataFileName, OpenMode::Exclusive);
    CreateEmptyDatabase(*file, "BETA");
    StoreCurrentDatabase(*file, "INK");
    for (const std::string database : {"INK", "BETA"}) {
      file->Execute("INSERT INTO " + database +
                    "_Basic (Color_Name, PurchaseCost, VOC, HAP) VALUES ('RED', 8.125, 0, 0)");
      file->Prepare("INSERT INTO " + database +
                    "_Mix (Color_Name, BC0, BQ0, Color_Set, BasicCost, BasicVOC, BasicHAP) VALUES ('PINK', 'RED', 100, "
                    "'<RED>', ?, 0, 0)")
          .Bind(1, 8.13F)
          .Run();
    }
  }
  OpenDataFile(session, start.windows);
  ASSERT_TRUE(ChangeDatabase(session, "BETA"));
  BasicWork work = LoadBasicWork(session, *ReadBasic(session, "RED"));
  work.typed["PurchaseCost"] = "9";
  ASSERT_TRUE(SaveBasic(session, work));
  ASSERT_TRUE(RenameDatabase(session, "BETA", "GAMMA"));
  ASSERT_TRUE(CopyDatabase(session, "GAMMA", "COPY"));
  StoreCurrentDatabase(session.File(), "INK");
  const fs::path died = start.folder / "Died.vkd";
  fs::copy_file(session.DataFileName, died);
  const auto costs = [&](const std::string& database) {
    return session.File().Scalar("SELECT BasicCost FROM " + database + "_Mix").Single();
  };
  EXPECT_EQ(costs("GAMMA"), 8.13F);
  CloseDataFile(session, start.windows);

  session.DataFileName = died.string();
  OpenDataFile(session, start.windows);
  EXPECT_EQ(session.CurrentDatabase, "INK");
  EXPECT_EQ(costs("GAMMA"), 9.0F);
  EXPECT_EQ(costs("COPY"), 9.0F);
  EXPECT_TRUE(ReadPendingRollUps(session.File()).empty());
  // A new accuracy is that of every Database.
  ASSERT_TRUE(*ChangeDecimalPlaces(session, 3));
  EXPECT_EQ(costs("INK"), 8.125F);
  session.File().Execute("UPDATE GAMMA_Basic SET PurchaseCost = 9.0625");
  start.prompt.Expect("Warning", Answer::Yes);
  ASSERT_TRUE(*ChangeDecimalPlaces(session, 2));
  EXPECT_EQ(costs("GAMMA"), 9.06F);
  CloseDataFile(session, start.windows);

  // The accuracy is the machine's: its other files follow at their next opening, each way.
  const fs::path other = start.folder / "Other.vkd";
  fs::copy_file(died, other);
  OpenDataFile(session, start.windows);
  ASSERT_TRUE(*ChangeDecimalPlaces(session, 4));
  CloseDataFile(session, start.windows);
  session.DataFileName = other.string();
  OpenDataFile(session, start.windows);
  EXPECT_EQ(costs("INK"), 8.125F);
  EXPECT_EQ(costs("GAMMA"), 9.0625F);
  start.prompt.Expect("Warning", Answer::Yes);
  ASSERT_TRUE(*ChangeDecimalPlaces(session, 2));
  CloseDataFile(session, start.windows);
  session.DataFileName = died.string();
  OpenDataFile(session, start.windows);
  EXPECT_EQ(costs("GAMMA"), 9.06F);
  CloseDataFile(session, start.windows);
}

TEST(Opening, ANewFileGetsItsFirstDatabaseAndACopyIsReadOnly) {
  Start start;
  PrepareSupportFiles(start.session, start.options.folders);
  start.prompt.Expect("New Database");
  CreateDataFile(start.session, start.folder / "New.vkd", start.windows);
  OpenDataFile(start.session, start.windows);
  EXPECT_EQ(start.session.CurrentDatabase, "PANTONE");
  EXPECT_TRUE(start.session.RecordsetsOpen);
  EXPECT_EQ(CountRows(start.session.File(), start.session.CurrentDatabase).basics, 0);
  EXPECT_TRUE(fs::is_directory(start.options.folders.program / "Converted"));
  CreateEmptyDatabase(start.session.File(), "FLEXO");
  start.session.databaseList.push_back("FLEXO");
  ASSERT_TRUE(ChangeDatabase(start.session, "flexo"));
  EXPECT_FALSE(ChangeDatabase(start.session, "GONE"));
  CloseDataFile(start.session, start.windows);

  OpenDataFile(start.session, start.windows);
  EXPECT_EQ(start.session.CurrentDatabase, "FLEXO");
  CompactDataFile(start.session);
  EXPECT_EQ(start.session.CurrentDatabase, "FLEXO");
  EXPECT_TRUE(start.session.RecordsetsOpen);
  CloseDataFile(start.session, start.windows);
  CloseDataFile(start.session, start.windows);  // safe twice

  const fs::path copy = start.folder / "Archive 2025.vkd";
  fs::copy_file(start.folder / "New.vkd", copy);
  const std::string bytes = ReadFileBytes(copy);
  start.session.DataFileName = copy.string();
  OpenDataFile(start.session, start.windows);
  EXPECT_TRUE(start.session.ArchiveView);
  const auto refused = RequireWritable(start.session);
  ASSERT_FALSE(refused);
  EXPECT_EQ(refused.error().title, "Archive or Backup Data File");
  EXPECT_THROW(CreateEmptyDatabase(start.session.File(), "NO"), Failure);
  CloseDataFile(start.session, start.windows);
  EXPECT_EQ(ReadFileBytes(copy), bytes);
}

TEST(Opening, PendingPassesRunBeforeADatabaseOrTheFileIsLeft) {
  Start start;
  start.folder.Breaks("Parts");
  Session& session = start.session;
  PrepareSupportFiles(session, start.options.folders);
  start.prompt.Expect("New Database");
  CreateDataFile(session, start.folder / "New.vkd", start.windows);
  OpenDataFile(session, start.windows);
  CreateEmptyDatabase(session.File(), "FLEXO");
  session.databaseList.push_back("FLEXO");
  InsertRow(session.File(), schema::Basic, session.Table(schema::Basic), {{"Color_Name", "RED"}});
  InsertRow(session.File(), schema::Mix, session.Table(schema::Mix),
            {{"Color_Name", "PINK"}, {"BC0", "RED"}, {"BQ0", 100.0F}});
  const auto costs = [&](const char* cost) {
    session.File().Execute(std::string("UPDATE PANTONE_Basic SET PurchaseCost = ") + cost);
    session.CostChanged = true;
  };
  const auto stored = [&] { return session.File().Scalar("SELECT BasicCost FROM PANTONE_Mix").Single(); };
  costs("3");
  ASSERT_TRUE(ChangeDatabase(session, "FLEXO"));
  EXPECT_EQ(stored(), 3);
  EXPECT_FALSE(session.CostChanged);
  ASSERT_TRUE(ChangeDatabase(session, "PANTONE"));
  costs("5");
  CloseDataFile(session, start.windows);
  OpenDataFile(session, start.windows);
  EXPECT_EQ(stored(), 5);
  // Of a Database that is gone there is nothing to bring up to date.
  session.File().Execute("DROP TABLE PANTONE_Mix");
  session.CostChanged = true;
  CloseDataFile(session, start.windows);
  EXPECT_FALSE(session.CostChanged);
}

TEST(Opening, TheFirstDatabaseIsOfTheFirstGuidesWhereThereIsATemplate) {
  Start start;
  PrepareSupportFiles(start.session, start.options.folders);
  const fs::path program = start.options.folders.program;
  fs::create_directories(program);
  test::BuildSampleTemplate(program / "pdbt.vkt");
  CreateDataFile(start.session, start.folder / "New.vkd", start.windows);
  OpenDataFile(start.session, start.windows);
  EXPECT_EQ(start.session.CurrentDatabase, "PANTONE");
  EXPECT_EQ(start.session.databaseList, (std::vector<std::string>{"PANTONE"}));
  EXPECT_EQ(CountRows(start.session.File(), start.session.CurrentDatabase).formulas, 308);
  EXPECT_EQ(ReadFileInfo(start.session.File()).currentDB, "PANTONE");
  EXPECT_NE(start.session.Disclaimer, "");
  EXPECT_TRUE(start.session.templateDB);
  CloseDataFile(start.session, start.windows);
  // The formulas stay when the template goes, the book's texts and tests do not.
  fs::remove(program / "pdbt.vkt");
  OpenDataFile(start.session, start.windows);
  EXPECT_EQ(CountRows(start.session.File(), start.session.CurrentDatabase).formulas, 308);
  EXPECT_EQ(start.session.Disclaimer, "");
  EXPECT_FALSE(start.session.templateDB);
  CloseDataFile(start.session, start.windows);
}

TEST(Opening, WithoutAUsableTemplateTheFirstDatabaseIsEmptyAndTheOperatorIsTold) {
  struct Case {
    const char* does;
    const char* says;
  };
  for (const Case& c :
       {Case{"none", "There is no template of color guides.\nThe Database PANTONE is therefore empty."},
        Case{"no database", "pdbt.vkt cannot be used: is not a Data File."}, Case{"DROP TABLE Metallics_BColors", ""},
        Case{"ALTER TABLE Metallics_BColors DROP COLUMN Page", "pdbt.vkt cannot be used: no such column"},
        Case{"UPDATE Metallics_MColors SET Row = 300",
             "pdbt.vkt cannot be used: The field PANTONE_Mix.Row cannot hold"},
        Case{"DELETE FROM FGuide_MColors_GP1601A", ""},
        Case{"all but Goe", "holds none of the guides of a first Database."}}) {
    Start start;
    PrepareSupportFiles(start.session, start.options.folders);
    const fs::path path = start.options.folders.program / "pdbt.vkt";
    fs::create_directories(path.parent_path());
    const std::string does = c.does;
    if (does == "no database") {
      ReplaceFile(path, std::string(4096, 'x'));
    } else if (does != "none") {
      test::BuildSampleTemplate(path);
      const auto file = Database::Open(path, OpenMode::Exclusive);
      if (does == "all but Goe") {
        for (const char* table : {"FGuide_MColors_GP1601A", "Metallics_MColors", "PastelNeons_MColors"})
          file->Execute("DELETE FROM " + std::string(table));
      } else {
        file->Execute(does);
      }
    }
    const bool told = *c.says != '\0';
    if (told) start.prompt.Expect("New Database");
    CreateDataFile(start.session, start.folder / "New.vkd", start.windows);
    OpenDataFile(start.session, start.windows);
    EXPECT_EQ(start.session.databaseList, (std::vector<std::string>{"PANTONE"})) << does;
    EXPECT_EQ(start.session.CurrentDatabase, "PANTONE");
    EXPECT_EQ(CountRows(start.session.File(), start.session.CurrentDatabase).formulas == 0, told) << does;
    EXPECT_EQ(start.session.FullName, told ? "Custom Database" : "Sample guides (invented colors)");
    if (told) {
      EXPECT_NE(start.prompt.last.text.find(c.says), std::string::npos) << start.prompt.last.text;
      EXPECT_NE(start.prompt.last.text.find("vellumark-cli template build FOLDER --out pdbt.vkt"), std::string::npos);
    }
  }
}

TEST(Opening, ADamagedTemplateOpensTheDatabaseWithoutItsGuides) {
  Start start;
  PrepareSupportFiles(start.session, start.options.folders);
  const fs::path path = start.folder / "Guides.vkd";
  start.MakeFile(path);
  Database::Open(path, OpenMode::Exclusive)->Execute("UPDATE INK_Info SET TemplateFile = 'pdbt.vkt', Disclaimer = 'D'");
  fs::create_directories(start.options.folders.program);
  ReplaceFile(start.options.folders.program / "pdbt.vkt", "no template");
  start.session.DataFileName = path.string();
  start.prompt.Expect("Color Guides");
  OpenDataFile(start.session, start.windows);
  EXPECT_TRUE(start.session.RecordsetsOpen);
  EXPECT_EQ(start.session.TemplateFile, "");
  EXPECT_TRUE(fs::is_directory(start.options.folders.program / "Converted"));
}

// What came of an older file may be another one: that is opened, and is the one of the next start.
TEST(Opening, WhatAnOlderFileBecameIsOpenedInItsPlace) {
  Start start;
  const fs::path old = start.folder / "Old.vkd";
  const fs::path made = start.folder / "Old(1).vkd";
  start.MakeFile(old, 30);
  start.MakeFile(made);
  start.options.dataFileArgument = old.string();
  start.windows.updated = made;
  ASSERT_TRUE(StartUp(start.session, start.options, start.windows));
  EXPECT_EQ(start.session.DataFileName, made.string());
  EXPECT_TRUE(start.session.RecordsetsOpen);
  EXPECT_EQ(start.session.support->settings.GetSupportValue(setting::DbFileName50.key), made.string());
  EXPECT_EQ(std::ranges::count(start.windows.calls, "update from 30"), 1);
}

TEST(Opening, AFileOfAnOlderProgramGetsTheIndexesThatItLacks) {
  Start start;
  const fs::path path = start.folder / "Older.vkd";
  start.MakeFile(path);
  const auto indexes = [](Database& file) {
    std::set<std::string> names;
    for (const std::string& name : file.StoredIndexes())
      if (!name.starts_with("MSys")) names.insert(name);
    return names;
  };
  std::set<std::string> whole;
  {
    const auto file = Database::Open(path, OpenMode::Exclusive);
    whole = indexes(*file);
    for (const char* index : {"INK_Mix_AddSetName_Color_Name_Index", "INK_Basic_LotInv_LotCName_LotRefID_Index"})
      file->Execute("DROP INDEX " + Quoted(index));
  }
  PrepareSupportFiles(start.session, start.options.folders);
  start.session.DataFileName = path.string();
  OpenDataFile(start.session, start.windows);
  EXPECT_EQ(indexes(start.session.File()), whole);
  {
    // Which formulas have a set is answered from the index alone, in order.
    Statement plan = start.session.File().Prepare(
        "EXPLAIN QUERY PLAN SELECT Color_Name FROM INK_Mix WHERE AddSetName = ? ORDER BY Color_Name");
    ASSERT_TRUE(plan.Step());
    EXPECT_NE(plan.Text(3).find("COVERING INDEX INK_Mix_AddSetName_Color_Name_Index"), std::string::npos);
    EXPECT_FALSE(plan.Step());
  }
  CloseDataFile(start.session, start.windows);
}

TEST(Opening, AFailedOpenLeavesTheStateAsItWas) {
  Start start;
  PrepareSupportFiles(start.session, start.options.folders);
  start.session.DataFileName = (start.folder / "gone.vkd").string();
  EXPECT_THROW(OpenDataFile(start.session, start.windows), Failure);
  EXPECT_FALSE(start.session.DataFileOpen);
  EXPECT_FALSE(start.session.ArchiveView);
  EXPECT_EQ(start.windows.caption, "");
}

TEST(Opening, AFileWithUsersLogsInAndOneWithoutGivesEverythingBack) {
  Start start;
  start.MakeFile(start.folder / "Plain.vkd");
  start.MakeFile(start.folder / "Users.vkd");
  PrepareSupportFiles(start.session, start.options.folders);
  start.session.DataFileName = (start.folder / "Users.vkd").string();
  OpenDataFile(start.session, start.windows);
  start.prompt.Expect("").Expect("User Added");
  ASSERT_TRUE(CreateUsers(start.session, "BOSS", "X"));
  ASSERT_TRUE(AddUser(start.session, {"ANNA", "A", false, {}}));
  CloseDataFile(start.session, start.windows);
  EXPECT_EQ(std::ranges::count(start.windows.calls, "login"), 0);
  OpenDataFile(start.session, start.windows);
  EXPECT_EQ(std::ranges::count(start.windows.calls, "login"), 1);
  ASSERT_TRUE(LogIn(start.session, "ANNA", "A"));
  CloseDataFile(start.session, start.windows);

  start.session.DataFileName = (start.folder / "Plain.vkd").string();
  OpenDataFile(start.session, start.windows);
  EXPECT_EQ(std::ranges::count(start.windows.calls, "login"), 1);
  EXPECT_TRUE(start.session.IsAdminUser);
  EXPECT_EQ(start.session.Perm_Costs, 2);
  CloseDataFile(start.session, start.windows);
}

TEST(SupportRenewal, FreshFilesKeepTheDataFileAndRunSetupAndLadder) {
  Start start;
  const fs::path path = start.folder / "My Ink.vkd";
  start.MakeFile(path);
  start.options.dataFileArgument = path.string();
  ASSERT_TRUE(StartUp(start.session, start.options, start.windows));
  Session& session = start.session;
  session.support->settings.SetSupportValue(setting::DecimalPlaces.key, "4");
  session.support->label.AppendSupportValue("My Layout", "Paper", "1");
  start.windows.calls.clear();
  const std::string question =
      "Create new Vellumark support files ?\nCustomized program settings will have to be re-entered.\nLabel designs "
      "will have to be re-created.";

  start.prompt.Expect("Create Support Files", Answer::Cancel, question);
  EXPECT_FALSE(*CreateNewSupportFiles(session, start.windows));
  EXPECT_TRUE(start.windows.calls.empty());
  EXPECT_EQ(session.support->settings.GetSupportValue(setting::DecimalPlaces.key), "4");

  start.prompt.Expect("Create Support Files", Answer::Ok);
  EXPECT_TRUE(*CreateNewSupportFiles(session, start.windows));
  EXPECT_EQ(start.windows.calls, (std::vector<std::string>{"close children", "setup", "printer, UMI 2"}));
  EXPECT_EQ(session.support->settings.GetSupportValue(setting::DbFileName50.key), path.string());
  EXPECT_EQ(session.DecimalPlaces, 2);
  EXPECT_EQ(session.UMI, 2);
  EXPECT_EQ(session.support->settings.GetSupportValue(setting::StartupVar_FileVersion.key), "47");
  EXPECT_TRUE(session.support->scale.Exists());
  EXPECT_EQ(session.support->label.GetSupportValue("My Layout", "Paper"), "");

  session.CurrentUser = "ANNA";
  session.Perm_Advanced = 0;
  EXPECT_EQ(CreateNewSupportFiles(session, start.windows).error().title, "Permission Denied");
  session.CurrentUser.clear();
  CloseDataFile(session, start.windows);

  // A file that is gone gives way to the default one.
  fs::remove(path);
  start.prompt.Expect("Create Support Files", Answer::Ok);
  EXPECT_TRUE(*CreateNewSupportFiles(session, start.windows));
  EXPECT_EQ(session.support->settings.GetSupportValue(setting::DbFileName50.key),
            (start.options.folders.program / "Vellumark Data.vkd").string());
}

TEST(Folders, ChosenInTheirOrder) {
  std::map<std::string, std::string> variables{{"HOME", "/home/ann"}};
  bool shared = false;
  FolderSources sources;
  sources.environment = [&](const char* name) { return variables.contains(name) ? variables[name] : ""; };
  sources.isFolder = [&](const fs::path& path) { return shared && path == "/var/lib/vellumark"; };
  EXPECT_EQ(ResolveFolders(sources).data, "/home/ann/.local/share/vellumark/VKDat");
  EXPECT_EQ(ResolveFolders(sources).program, "/home/ann/.local/share/vellumark");
  variables["XDG_DATA_HOME"] = "/x";
  EXPECT_EQ(ResolveFolders(sources).data, "/x/vellumark/VKDat");
  shared = true;
  EXPECT_EQ(ResolveFolders(sources).data, "/var/lib/vellumark/VKDat");
  EXPECT_EQ(ResolveFolders(sources).program, "/var/lib/vellumark");
  EXPECT_EQ(ResolveFolders(sources).shipped, "");
  sources.executable = "/usr/bin/vellumark";
  EXPECT_EQ(ResolveFolders(sources).shipped, "/usr/share/vellumark");
  variables["VELLUMARK_DATA_FOLDER"] = "/d";
  variables["VELLUMARK_PROGRAM_FOLDER"] = "/p";
  EXPECT_EQ(ResolveFolders(sources).data, "/d");
  EXPECT_EQ(ResolveFolders(sources).program, "/p");
  EXPECT_EQ(ResolveFolders(sources).shipped, "");
  sources.dataFolderOption = "/o";
  EXPECT_EQ(ResolveFolders(sources).data, "/o");
}

}  // namespace
}  // namespace vellumark
