#include "core/shell/data_files.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <fstream>

#include "core/base/files.h"
#include "core/datafile/databases.h"
#include "core/datafile/lifecycle.h"
#include "core/settings/settings.h"
#include "core/settings/support_files.h"
#include "core/shell/data_file_search.h"
#include "support/data_files.h"
#include "support/scratch.h"

namespace vellumark {
namespace {

namespace fs = std::filesystem;
using test::DataFileRoom;
using test::HeldFile;
using test::WithoutRoot;

struct DataFilesTest : testing::Test, DataFileRoom {
  void OpenFirst() {
    MakeFile(first);
    session.DataFileName = first.string();
    session.support->settings.SetSupportValue(setting::DbFileName50.key, first.string());
    OpenDataFile(session, windows);
    windows.calls.clear();
  }
  void ExpectFirstIsOpen(const char* what) {
    EXPECT_TRUE(session.RecordsetsOpen) << what;
    EXPECT_EQ(session.DataFileName, first.string()) << what;
    EXPECT_EQ(session.DataFileDB->Path(), first) << what;
    EXPECT_EQ(session.CurrentDatabase, "INK") << what;
    EXPECT_EQ(session.support->settings.GetSupportValue(setting::DbFileName50.key), first.string()) << what;
  }
  fs::path first = folder / "First.vkd";
  fs::path second = folder / "Second.vkd";
};

TEST_F(DataFilesTest, OpeningAnotherFileClosesAndBacksUpTheOneBefore) {
  OpenFirst();
  MakeFile(second);
  EXPECT_TRUE(*OpenOtherDataFile(session, second, windows));
  EXPECT_EQ(windows.calls, (std::vector<std::string>{"backup AutoBackup of First.vkd"}));
  EXPECT_EQ(session.DataFileDB->Path(), second);
  EXPECT_EQ(session.support->settings.GetSupportValue(setting::DbFileName50.key), second.string());
  EXPECT_TRUE(fs::is_directory(folder / "DesignPhotos"));
  // The same file again, by another spelling of its path.
  EXPECT_TRUE(*OpenOtherDataFile(session, folder.Path() / "." / "Second.vkd", windows));
  EXPECT_TRUE(session.RecordsetsOpen);
}

TEST_F(DataFilesTest, AFailedOpenLeavesTheFileBeforeOpenAndTheDefault) {
  folder.Breaks("Structure");
  OpenFirst();
  const fs::path closed = folder / "Closed";
  fs::create_directories(closed);
  const struct {
    const char* what;
    fs::path path;
    std::function<void(const fs::path&)> spoil;
    const char* cause;
  } rows[] = {
      {"not a Data File", folder / "Text.vkd", [](const fs::path& p) { ReplaceFile(p, std::string(8192, 'x')); },
       "is not a Data File"},
      {"empty", folder / "Empty.vkd", [](const fs::path& p) { ReplaceFile(p, ""); }, "is empty, not a Data File"},
      {"a folder", folder / "Folder.vkd", [](const fs::path& p) { fs::create_directories(p); }, "is not a file"},
      {"no write permission in its folder", closed / "Shut.vkd",
       [&](const fs::path& p) {
         MakeFile(p);
         ::chmod(p.c_str(), 0666);
         ::chmod(closed.c_str(), 0555);
       },
       "cannot be written: there is no permission to write in its folder"},
      {"read-only", folder / "Locked.vkd",
       [&](const fs::path& p) {
         MakeFile(p);
         ::chmod(p.c_str(), 0444);
       },
       "cannot be written: it is read-only"},
      {"a Database without its tables", folder / "Torn.vkd",
       [&](const fs::path& p) {
         MakeFile(p);
         Database::Open(p, OpenMode::Exclusive)->Execute("DROP TABLE INK_Mix");
       },
       ""},
  };
  for (const auto& row : rows) {
    row.spoil(row.path);
    const WithoutRoot user(folder.Path());
    if (*row.cause == '\0')  // the check at the opening names what is amiss before it fails
      prompt.Expect("Data File", Answer::Ok,
                    row.path.string() + " is not sound:\n\nINK_Mix: The table is missing. [Parts]");
    try {
      (void)OpenOtherDataFile(session, row.path, windows);
      ADD_FAILURE() << row.what << ": was opened";
    } catch (const Failure& failure) {
      EXPECT_EQ(failure.subject, row.path.string()) << row.what;
      if (*row.cause != '\0') {
        EXPECT_EQ(failure.cause, row.cause) << row.what;
      }
    }
    ExpectFirstIsOpen(row.what);
  }
  MakeFile(second);
  {
    const HeldFile held(second);
    EXPECT_THROW(
        {
          try {
            (void)OpenOtherDataFile(session, second, windows);
          } catch (const Failure& failure) {
            EXPECT_EQ(failure.cause, "is in use by another process");
            throw;
          }
        },
        Failure);
  }
  ExpectFirstIsOpen("held by another process");

  // Turned away by the check: gone, and of a newer version.
  EXPECT_FALSE(*OpenOtherDataFile(session, folder / "Gone.vkd", windows));
  EXPECT_EQ(windows.calls.back(), "new data file: " + (folder / "Gone.vkd").string() + " file does not exist.");
  ExpectFirstIsOpen("gone");
  MakeFile(folder / "Newer.vkd", 41);
  prompt.Expect("Data File");
  EXPECT_FALSE(*OpenOtherDataFile(session, folder / "Newer.vkd", windows));
  ExpectFirstIsOpen("newer");
}

TEST_F(DataFilesTest, AFileOfTheProgramsOwnFoldersIsOpenedOnlyAfterAsking) {
  OpenFirst();
  const fs::path backup = folder / "Auto Backup" / "Copy.vkd";
  fs::create_directories(backup.parent_path());
  MakeFile(backup);
  const std::string question = "Continue opening this file?\nCertain Vellumark features may rely upon this file.";
  prompt.Expect("Open Data File", Answer::No, question);
  EXPECT_FALSE(*OpenOtherDataFile(session, backup, windows));
  ExpectFirstIsOpen("declined");
  prompt.Expect("Open Data File", Answer::Yes, question);
  EXPECT_TRUE(*OpenOtherDataFile(session, backup, windows));
  EXPECT_TRUE(session.ArchiveView);
  EXPECT_TRUE(IsOwnFolder(session, session.DataFolder / "Cloud Downloads"));
  EXPECT_TRUE(IsOwnFolder(session, session.ProgramFolder / "Converted"));
  EXPECT_FALSE(IsOwnFolder(session, session.ProgramFolder));
  EXPECT_FALSE(IsOwnFolder(session, fs::path(session.DataFolder.string() + " of mine")));
}

TEST_F(DataFilesTest, AStartWithAFileThatCannotBeOpenedSaysWhyAndKeepsIt) {
  MakeFile(first);
  session.DataFileName = first.string();
  session.support->settings.SetSupportValue(setting::DbFileName50.key, first.string());
  {
    const HeldFile held(first);
    EXPECT_FALSE(OpenRecentDataFile(session, windows));
    EXPECT_EQ(windows.calls.back(), "new data file: " + first.string() + "\nis in use by another process.");
  }
  EXPECT_EQ(session.support->settings.GetSupportValue(setting::DbFileName50.key), first.string());
  EXPECT_TRUE(OpenRecentDataFile(session, windows));
}

TEST_F(DataFilesTest, ANewFileTakesTheNextFreeNameAndNoPlaceOfTheProgram) {
  OpenFirst();
  const fs::path named = folder / "Ink Room";
  prompt.Expect("New Database");  // there is no template
  EXPECT_EQ(*NewDataFile(session, named, windows), folder / "Ink Room.vkd");
  EXPECT_EQ(windows.calls, (std::vector<std::string>{"backup AutoBackup of First.vkd"}));
  EXPECT_EQ(session.CurrentDatabase, "PANTONE");
  prompt.Expect("New Database");
  EXPECT_EQ(*NewDataFile(session, folder / "Ink Room.vkd", windows), folder / "Ink Room(1).vkd");
  prompt.Expect("New Database");
  EXPECT_EQ(*NewDataFile(session, folder / "Ink Room(1).vkd", windows), folder / "Ink Room(2).vkd");
  EXPECT_EQ(session.DataFileName, (folder / "Ink Room(2).vkd").string());

  const fs::path own = session.DataFolder / "Backups";
  const struct {
    fs::path path;
    std::string text;
  } refused[] = {{own / "Mine.vkd", own.string() +
                                        "\nSelected folder for the new Data file is dedicated to Vellumark use only.\n"
                                        "Choose another folder to create a new Data file in."},
                 {folder / "Ink Archive.vkd", (folder / "Ink Archive.vkd").string() +
                                                  "\nA Data File of this name or in this folder counts as an archive or "
                                                  "backup copy, which can be viewed, but cannot be modified.\nChoose "
                                                  "another name or folder."}};
  for (const auto& [path, text] : refused) {
    EXPECT_EQ(NewDataFile(session, path, windows).error(), (Refusal{"New Data File", text, "PATH"}));
    EXPECT_FALSE(fs::exists(path));
  }
}

TEST_F(DataFilesTest, AFileThatCannotBeMadeLeavesTheOpenOneAndNothingBehind) {
  OpenFirst();
  const fs::path closed = folder / "Closed";
  fs::create_directories(closed);
  ::chmod(closed.c_str(), 0555);
  const WithoutRoot user(folder.Path());
  EXPECT_THROW((void)NewDataFile(session, closed / "New.vkd", windows), Failure);
  EXPECT_TRUE(fs::is_empty(closed));
  ExpectFirstIsOpen("read-only folder");
}

TEST_F(DataFilesTest, TheDefaultFileIsMadeOrFound) {
  prompt.Expect("New Database");
  EXPECT_TRUE(*CreateDefaultDataFile(session, windows));
  const fs::path standard = session.ProgramFolder / "Vellumark Data.vkd";
  EXPECT_EQ(session.DataFileName, standard.string());
  OpenFirst();
  const std::string question = "'Yes' -  Use the found data file.\n'No' - Create a new data file.";
  prompt.Expect("Found existing Vellumark Data File", Answer::Yes, question);
  EXPECT_TRUE(*CreateDefaultDataFile(session, windows));
  EXPECT_EQ(session.DataFileName, standard.string());
  prompt.Expect("Found existing Vellumark Data File", Answer::No, question).Expect("New Database");
  EXPECT_TRUE(*CreateDefaultDataFile(session, windows));
  EXPECT_EQ(session.DataFileName, (session.ProgramFolder / "Vellumark Data(1).vkd").string());
}

TEST_F(DataFilesTest, RenameRefusesWhatItMust) {
  OpenFirst();
  MakeFile(second);
  const struct {
    const char* typed;
    const char* text;
  } rows[] = {
      {"   ", "Enter a file name         "},
      {" first ", "New file name is the same as the current name"},
      {"FIRST", "New file name is the same as the current name"},
      {"Second", "A file with name already exist, choose another name"},
      {"../Other", "A file name cannot hold the character /"},
  };
  for (const auto& row : rows)
    EXPECT_EQ(RenameDataFile(session, row.typed, windows).error(), (Refusal{"File Name", row.text, "txtFileName"}))
        << row.typed;
  ExpectFirstIsOpen("refused");

  for (const char* name : {"BACKUP of May.vkd", "Administration.vkd"}) {
    MakeFile(folder / name);
    ASSERT_TRUE(*OpenOtherDataFile(session, folder / name, windows));
    EXPECT_EQ(RenameDataFile(session, "Free", windows).error(),
              (Refusal{"Data File Rename", "Cannot Rename Data Files that contain\nkey words Admin or Backup", ""}));
  }
}

TEST_F(DataFilesTest, RenameMovesTheFileAndTheDefaultFollows) {
  OpenFirst();
  StepBatchNumber(session.File(), 1);
  ASSERT_TRUE(RenameDataFile(session, "  Ink Room ", windows));
  const fs::path renamed = folder / "Ink Room.vkd";
  EXPECT_FALSE(fs::exists(first));
  EXPECT_EQ(session.DataFileDB->Path(), renamed);
  EXPECT_EQ(ReadFileInfo(session.File()).batchNumber, 2);
  EXPECT_EQ(session.support->settings.GetSupportValue(setting::DbFileName50.key), renamed.string());

  // Too long a name for the disk: the file stays what it was.
  EXPECT_THROW((void)RenameDataFile(session, std::string(300, 'x'), windows), Failure);
  EXPECT_TRUE(session.RecordsetsOpen);
  EXPECT_EQ(session.DataFileDB->Path(), renamed);
}

TEST_F(DataFilesTest, AUserWithoutTheAdvancedMenuChangesNoFile) {
  OpenFirst();
  MakeFile(second);
  session.CurrentUser = "ANNA";
  session.Perm_Advanced = 0;
  EXPECT_EQ(OpenOtherDataFile(session, second, windows).error().title, "Permission Denied");
  EXPECT_EQ(NewDataFile(session, folder / "New.vkd", windows).error().title, "Permission Denied");
  EXPECT_EQ(CreateDefaultDataFile(session, windows).error().title, "Permission Denied");
  EXPECT_EQ(RenameDataFile(session, "New", windows).error().title, "Permission Denied");
  ExpectFirstIsOpen("no right");
}

// Counts its steps and stops after some.
class StoppingProgress final : public Progress {
 public:
  explicit StoppingProgress(int steps) : left_(steps) {}
  void Begin(std::string_view) override {}
  void Percent(double percent) override {
    EXPECT_GE(percent, last);
    EXPECT_LE(percent, 100.001);
    last = percent;
    --left_;
  }
  bool Cancelled() override { return left_ <= 0; }
  double last = 0;

 private:
  int left_;
};

TEST(DataFileSearch, FindsDataFilesOfOneDriveOnly) {
  test::ScratchFolder folder;
  for (const char* path : {"a/One.vkd", "a/b/c/TWO.VKD", "a/Archive 2025.vkd", "a/old ARCHIVE.vkd", "a/note.txt",
                           "d/Three.vkd.txt", "e/Four.vkd", "e/Four.vkb"}) {
    fs::create_directories((folder / path).parent_path());
    ReplaceFile(folder / path, "x");
  }
  fs::create_directories(folder / "f/Folder.vkd");
  fs::create_directory_symlink(folder / "a", folder / "e/link");
  StoppingProgress whole(1000);
  const FoundDataFiles found = SearchDataFiles(folder.Path(), whole);
  EXPECT_EQ(found.files,
            (std::vector<fs::path>{folder / "a/One.vkd", folder / "a/b/c/TWO.VKD", folder / "e/Four.vkd"}));
  EXPECT_FALSE(found.cancelled);
  EXPECT_EQ(found.unreadable, 0U);
  EXPECT_NEAR(whole.last, 100, 0.01);

  StoppingProgress stopped(2);
  EXPECT_TRUE(SearchDataFiles(folder.Path(), stopped).cancelled);

  ::chmod((folder / "a").c_str(), 0);
  const WithoutRoot user(folder.Path());
  NoProgress quiet;
  const FoundDataFiles rest = SearchDataFiles(folder.Path(), quiet);
  EXPECT_EQ(rest.files, (std::vector<fs::path>{folder / "e/Four.vkd"}));
  EXPECT_EQ(rest.unreadable, 1U);
}

TEST(DataFileSearch, ADriveEndsWhereAnotherBegins) {
  EXPECT_EQ(DriveRoot("/"), "/");
  EXPECT_EQ(DriveRoot("/proc/self"), "/proc");
  EXPECT_EQ(DriveRoot("/proc/gone/Data.vkd"), "/proc");
}

}  // namespace
}  // namespace vellumark
