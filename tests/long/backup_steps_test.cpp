// Backup, pruning, restore, repair and restore of settings killed at every one of their file operations, and each of these
// failing in turn: a set is whole or not there, the Data File is what it was or what the set holds, and the next try works.

#include <gtest/gtest.h>

#include <map>

#include "core/backup/backup_set.h"
#include "core/base/files.h"
#include "core/session/settings.h"
#include "core/shell/backups.h"
#include "core/shell/repairs.h"
#include "core/shell/settings_restore.h"
#include "support/old_room.h"
#include "support/struck_room.h"

namespace vellumark {
namespace {

namespace fs = std::filesystem;
using test::CoreDesk;

class BackupSteps : public test::StruckRoom {
 protected:
  BackupSteps() {
    test::AddTenYears(*Database::Open(file, OpenMode::Exclusive), 2025, 2);
    fs::create_directories(photos);
    ReplaceFile(photos / "red.jpg", std::string(5000, 'r'));
    EXPECT_EQ(Do([&](CoreDesk& desk) {
                desk.clock.Set({2026, 3, 9, 17, 0, 0});
                set = BackUpToFolder(desk.session, stick)->folder;
                return true;
              }),
              0);
    AddColor("BLUE");
    ReplaceFile(photos / "red.jpg", "another red");
    Content();
    KeepState();
  }
  void ExpectWholeSets(std::size_t least, std::size_t most) const {
    const auto sets = ListSets(stick);
    ASSERT_GE(sets.size(), least);
    ASSERT_LE(sets.size(), most);
    for (const BackupSet& one : sets) ExpectWhole(one);
  }
  void ExpectWhole(const BackupSet& one) const {
    CoreDesk desk(folder.Path());
    const SetCheck check = VerifySet(desk.session, one);
    ASSERT_TRUE(one.proof && check.faults.empty()) << one.folder << ": " << (check.faults.empty() ? "" : check.faults.front());
  }
  void ExpectNothingBegun(const fs::path& in, std::string_view beginning) const {
    for (const auto& entry : fs::directory_iterator(in))
      ASSERT_FALSE(entry.path().filename().string().starts_with(beginning)) << entry.path();
  }
  // What the Data File held before it was restored.
  std::string Kept() const {
    for (const auto& entry : fs::directory_iterator(folder.Path()))
      if (entry.path().filename().string().starts_with(kBeforeRestore))
        return test::Snapshot(*Database::Open(entry.path() / "Ink.vkd", OpenMode::ReadOnly));
    return {};
  }
  fs::path photos = folder / "DesignPhotos";
  fs::path stick = folder / "Stick";
  fs::path set;
};

TEST_F(BackupSteps, Make) {
  const Act make = [&](CoreDesk& desk) { return BackUpToFolder(desk.session, stick).has_value(); };
  const std::string before = Content();
  ASSERT_EQ(Do(make), 0);
  const std::string after = Content();
  const int points = Strike(make, 1, [&] {
    ExpectWholeSets(1, 2);
    const std::string now = Content();
    ASSERT_TRUE(now == before || now == after);
    ASSERT_EQ(Do(make), 0);
    ASSERT_EQ(Content(), after);
    ExpectWholeSets(2, 3);
    ExpectNothingBegun(stick, ".");
  });
  EXPECT_GT(points, 100);
}

TEST_F(BackupSteps, Restore) {
  worksClosed = true;
  const Act restore = [&](CoreDesk& desk) {
    return RestoreDataFile(desk.session, set / "Ink.vkd", RestoreFrom::Location, desk.windows).has_value();
  };
  const std::string before = Content();
  ASSERT_EQ(Do(restore), 0);
  const std::string after = Content();
  ASSERT_NE(before, after);
  const int points = Strike(restore, 1, [&] {
    const std::string now = Content();
    ASSERT_TRUE(now == before || now == after);
    ASSERT_TRUE(now == before || Kept() == before);
    ExpectWholeSets(1, 1);
    ASSERT_EQ(Do(restore), 0);
    ASSERT_EQ(Content(), after);
    ASSERT_EQ(ReadFileBytes(photos / "red.jpg"), std::string(5000, 'r'));
  });
  EXPECT_GT(points, 100);
}

// Of a file with a duplicate, a photo of nobody and, the second time, a page that is damaged.
TEST_F(BackupSteps, Repair) {
  worksClosed = true;
  {
    const auto opened = Database::Open(file, OpenMode::Exclusive);
    opened->Execute("INSERT INTO INK_Basic (Color_Name, Notes) VALUES ('red', 'second'), ('PAGE', 'marked page')");
  }
  const Act repair = [&](CoreDesk& desk) {
    return RepairDataFile(desk.session, desk.windows, [] { return true; }).has_value();
  };
  const auto content = [&] { return test::Snapshot(*Database::Open(file, OpenMode::Exclusive)); };
  for (const bool damaged : {false, true}) {
    if (damaged) {
      folder.Breaks("Structure");
      std::string bytes = ReadFileBytes(file);
      const std::size_t page = bytes.find("CREATE TABLE") / 4096 * 4096;
      std::fill_n(bytes.begin() + static_cast<std::ptrdiff_t>(page), 100, '\x01');
      ReplaceFile(file, bytes);
    }
    KeepState();
    const std::string bytes = ReadFileBytes(file);
    ASSERT_EQ(Do(repair), 0);
    const std::string after = content();
    ASSERT_FALSE(fs::exists(photos / "red.jpg"));
    const int points = Strike(repair, 1, [&] {
      const bool before = ReadFileBytes(file) == bytes;
      // A file that was opened may have been healed or completed, and holds the same.
      ASSERT_TRUE(before || damaged || content() == after || content().find("DupColor") == std::string::npos);
      if (damaged && !before) {
        ASSERT_EQ(content(), after);
      }
      // The photo is where it was or in the copy.
      bool photo = fs::exists(photos / "red.jpg");
      for (const auto& entry : fs::directory_iterator(folder.Path()))
        photo = photo || (entry.path().filename().string().starts_with("Before Repair") && fs::exists(entry.path() / "DesignPhotos" / "red.jpg"));
      ASSERT_TRUE(photo);
      ASSERT_EQ(Do(repair), 0);
      ASSERT_EQ(content(), after);
    });
    EXPECT_GT(points, 100);
    if (!damaged) ReplaceFile(file, bytes);
  }
}

TEST_F(BackupSteps, RestoreSettings) {
  EXPECT_EQ(Do([](CoreDesk& desk) { return StoreSettings(desk.session, {setting::DecimalPlaces.To(4)}), true; }), 0);
  KeepState();
  const Act restore = [&](CoreDesk& desk) {
    return RestoreSupportFiles(desk.session, set / kSupportFolderOfSet).has_value();
  };
  const auto files = [&] {
    std::map<std::string, std::string> contents;
    for (const auto& entry : fs::directory_iterator(folder / "VKDat"))
      if (entry.path().extension() == ".dat") contents[entry.path().filename()] = ReadFileBytes(entry.path());
    return contents;
  };
  const auto before = files();
  ASSERT_EQ(Do(restore), 0);
  const auto after = files();
  ASSERT_EQ(after.size(), 5U);
  ASSERT_NE(before, after);
  const int points = Strike(restore, 1, [&] {
    { const CoreDesk started(folder.Path()); }  // the start goes on with what was settled
    ASSERT_TRUE(files() == before || files() == after);
    ASSERT_EQ(Do(restore), 0);
    ASSERT_EQ(files(), after);
    ExpectNothingBegun(folder / "VKDat", ".restored");
    ExpectNothingBegun(folder / "VKDat", ".settings");
  });
  EXPECT_GT(points, 100);
}

// The closing of a day with thirty sets: no strike takes one away before the new one stands.
TEST_F(BackupSteps, Prune) {
  const fs::path automatic = folder / kAutoBackupFolder;
  for (int day = 1; day <= 30; ++day) {
    const fs::path old = automatic / SetName({2025, 1, day, 8, 0, 0});
    fs::create_directories(old);
    ReplaceFile(old / "Ink.vkd", "as it was");
  }
  folder.Breaks("Structure");
  KeepState();
  const Act close = [&](CoreDesk& desk) {
    CloseDataFile(desk.session, desk.windows);
    return MakeBackupSet(desk.session, file, automatic, kAutomaticSets).notRemoved.empty();
  };
  const int points = Strike(
      close, 1,
      [&] {
        const auto sets = ListSets(automatic);
        const bool made = sets.back().made.year == 2026;
        ASSERT_TRUE(sets.size() == 30U || (sets.size() == 31U && made)) << sets.size();
        ASSERT_EQ(sets.front().made.day, sets.size() == 30U && made ? 2 : 1);
        for (const BackupSet& one : sets)
          ASSERT_TRUE(one.made.year == 2026 || ReadFileBytes(one.dataFile) == "as it was") << one.folder;
        if (made) ExpectWhole(sets.back());
      },
      {test::kKilled, ENOSPC, kFullFromThereOn, EIO});
  EXPECT_GT(points, 100);
}

}  // namespace
}  // namespace vellumark
