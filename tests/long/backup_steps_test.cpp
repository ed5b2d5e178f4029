// Backup, pruning, restore and restore of settings killed at every one of their file operations, and each of these failing
// in turn: a set is whole or not there, the Data File is what it was or what the set holds, and the next try works.

#include <gtest/gtest.h>

#include <map>

#include "core/backup/backup_set.h"
#include "core/base/files.h"
#include "core/settings/support_files.h"
#include "support/snapshot.h"
#include "support/struck_room.h"

namespace vellumark {
namespace {

namespace fs = std::filesystem;

class BackupSteps : public test::StruckRoom {
 protected:
  BackupSteps() {
    room.MakeFile();
    room.Json({"color", "add", "RED", "Notes=" + std::string(600, 'n')});
    fs::create_directories(photos);
    ReplaceFile(photos / "red.jpg", std::string(5000, 'r'));
    room.Json({"--now", "2026-03-09 17:00:00", "backup", "make", "--to", stick.string()});
    set = ListSets(stick).front().folder;
    room.Json({"color", "add", "BLUE"});
    ReplaceFile(photos / "red.jpg", "another red");
    KeepState();
  }
  void ExpectWholeSets(std::size_t least, std::size_t most) const {
    const auto sets = ListSets(stick);
    ASSERT_GE(sets.size(), least);
    ASSERT_LE(sets.size(), most);
    for (const BackupSet& one : sets)
      ASSERT_EQ(room.Run({"backup", "verify", one.folder.string()}).status, 0) << one.folder;
  }
  fs::path file = room.folder / "Ink.vkd";
  fs::path photos = room.folder / "DesignPhotos";
  fs::path stick = room.folder / "Stick";
  fs::path set;
};

TEST_F(BackupSteps, Make) {
  const Words make{"--now", "2026-03-10 09:00:00", "backup", "make", "--to", stick.string()};
  const auto colors = room.Json({"color", "list"});
  const int points = Strike(make, 1, [&] {
    ExpectWholeSets(1, 2);
    ASSERT_EQ(room.Json({"color", "list"}), colors);
    ASSERT_EQ(room.Run(make).status, 0);
    ExpectWholeSets(2, 3);
    for (const auto& entry : fs::directory_iterator(stick))
      ASSERT_FALSE(entry.path().filename().string().starts_with(".VK_")) << entry.path();
  });
  EXPECT_GT(points, 100);
}

TEST_F(BackupSteps, Restore) {
  const Words restore{"--yes", "--now", "2026-03-10 09:00:00", "backup", "restore", set.string()};
  const auto before = room.Json({"color", "list"});
  ASSERT_EQ(room.Run(restore).status, 0);
  const auto after = room.Json({"color", "list"});
  ASSERT_NE(before, after);
  const int points = Strike(restore, 1, [&] {
    // The start heals what a killed program left.
    const auto now = room.Json({"color", "list"});
    ASSERT_TRUE(now == before || now == after);
    ASSERT_EQ(room.Run({"file", "check", file.string(), "--deep"}).status, 0);
    ExpectWholeSets(1, 1);
    ASSERT_EQ(room.Run(restore).status, 0);
    ASSERT_EQ(room.Json({"color", "list"}), after);
    ASSERT_EQ(ReadFileBytes(photos / "red.jpg"), std::string(5000, 'r'));
  });
  EXPECT_GT(points, 100);
}

// Of a file with a duplicate, a photo of nobody and, the second time, a page that is damaged.
TEST_F(BackupSteps, Repair) {
  {
    const auto opened = Database::Open(file, OpenMode::Exclusive);
    opened->Execute("INSERT INTO INK_Basic (Color_Name, Notes) VALUES ('red', 'second'), ('PAGE', 'marked page')");
  }
  const Words repair{"--yes", "--now", "2026-03-10 09:00:00", "file", "repair", file.string()};
  const auto content = [&] { return test::Snapshot(*Database::Open(file, OpenMode::Exclusive)); };
  for (const bool damaged : {false, true}) {
    if (damaged) {
      room.folder.Breaks("Structure");
      std::string bytes = ReadFileBytes(file);
      const std::size_t page = bytes.find("CREATE TABLE") / 4096 * 4096;
      std::fill_n(bytes.begin() + static_cast<std::ptrdiff_t>(page), 100, '\x01');
      ReplaceFile(file, bytes);
    }
    KeepState();
    const std::string bytes = ReadFileBytes(file);
    ASSERT_EQ(room.Run(repair).status, 0);
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
      for (const auto& entry : fs::directory_iterator(room.folder.Path()))
        photo = photo || (entry.path().filename().string().starts_with("Before Repair") && fs::exists(entry.path() / "DesignPhotos" / "red.jpg"));
      ASSERT_TRUE(photo);
      ASSERT_EQ(room.Run(repair).status, 0);
      ASSERT_EQ(content(), after);
    });
    EXPECT_GT(points, 100);
    if (!damaged) ReplaceFile(file, bytes);
  }
}

TEST_F(BackupSteps, RestoreSettings) {
  room.Json({"settings", "set", "DecimalPlaces", "4"});
  KeepState();
  const Words restore{"--yes", "--now", "2026-03-10 09:00:00", "backup", "restore-settings", set.string()};
  const auto files = [&] {
    std::map<std::string, std::string> contents;
    for (const auto& entry : fs::directory_iterator(room.folder / "VKDat"))
      if (entry.path().extension() == ".dat") contents[entry.path().filename()] = ReadFileBytes(entry.path());
    return contents;
  };
  const auto before = files();
  ASSERT_EQ(room.Run(restore).status, 0);
  const auto after = files();
  ASSERT_EQ(after.size(), 5U);
  ASSERT_NE(before, after);
  const int points = Strike(restore, 1, [&] {
    room.Json({"settings", "list"});  // the start goes on with what was settled
    ASSERT_TRUE(files() == before || files() == after);
    ASSERT_EQ(room.Run(restore).status, 0);
    ASSERT_EQ(files(), after);
    for (const auto& entry : fs::directory_iterator(room.folder / "VKDat"))
      ASSERT_FALSE(entry.path().filename().string().starts_with(".restored") ||
                   entry.path().filename().string().starts_with(".settings"))
          << entry.path();
  });
  EXPECT_GT(points, 100);
}

// The closing of a day with thirty sets: no strike takes one away before the new one stands.
TEST_F(BackupSteps, Prune) {
  const fs::path automatic = room.folder / kAutoBackupFolder;
  for (int day = 1; day <= 30; ++day) {
    const fs::path old = automatic / SetName({2025, 1, day, 8, 0, 0});
    fs::create_directories(old);
    ReplaceFile(old / "Ink.vkd", "as it was");
  }
  KeepState();
  const auto close = [&]() -> int {
    test::ScriptedPrompt prompt;
    NoProgress progress;
    FixedClock clock{DateTime{2026, 3, 10, 17, 0, 0}};
    Session session{prompt, progress, clock};
    session.support = std::make_unique<SupportFiles>(room.folder / "VKDat");
    session.DataFileName = file.string();
    test::MarkStep();
    return MakeBackupSet(session, file, automatic, kAutomaticSets).notRemoved.empty() ? 0 : 1;
  };
  const int points = StrikeWork(
      [&]() -> int {
        try {
          return close();
        } catch (const Failure&) {
          return 2;
        }
      },
      1, [&] {
        const auto sets = ListSets(automatic);
        const bool made = sets.back().made.year == 2026;
        ASSERT_TRUE(sets.size() == 30U || (sets.size() == 31U && made)) << sets.size();
        ASSERT_EQ(sets.front().made.day, sets.size() == 30U && made ? 2 : 1);
        for (const BackupSet& one : sets)
          ASSERT_TRUE(one.made.year == 2026 || ReadFileBytes(one.dataFile) == "as it was") << one.folder;
        ASSERT_TRUE(!made || room.Run({"backup", "verify", sets.back().folder.string()}).status == 0);
      },
      {test::kKilled, ENOSPC, kFullFromThereOn, EIO});
  EXPECT_GT(points, 100);
}

}  // namespace
}  // namespace vellumark
