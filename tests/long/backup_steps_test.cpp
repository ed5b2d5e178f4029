// Backup and restore killed at every one of their file operations, and each of these failing in turn: a set is whole or
// not there, the Data File is what it was or what the set holds, and the next try works.

#include <gtest/gtest.h>

#include <cerrno>

#include "core/backup/backup_set.h"
#include "core/base/files.h"
#include "support/cli_run.h"
#include "support/struck.h"

namespace vellumark {
namespace {

namespace fs = std::filesystem;
using Words = std::vector<std::string>;

class BackupSteps : public testing::Test {
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
    Keep(room.folder.Path(), pristine.Path());
  }
  static void Keep(const fs::path& from, const fs::path& to) {
    for (const auto& entry : fs::directory_iterator(to)) fs::remove_all(entry.path());
    fs::copy(from, to, fs::copy_options::recursive);
  }
  void ExpectWholeSets(std::size_t least, std::size_t most) const {
    const auto sets = ListSets(stick);
    ASSERT_GE(sets.size(), least);
    ASSERT_LE(sets.size(), most);
    for (const BackupSet& one : sets)
      ASSERT_EQ(room.Run({"backup", "verify", one.folder.string()}).status, 0) << one.folder;
  }
  /// Strikes the work at each of its steps; `look` sees what it left.
  void Strike(const Words& words, const std::function<void()>& look) {
    int points = 0;
    for (const int error : {test::kKilled, ENOSPC, EIO})
      for (int nth = 1;; ++nth) {
        Keep(pristine.Path(), room.folder.Path());
        const auto program = [&]() -> int { room.Become(words, "/dev/null", test::MarkStep); };
        if (!test::RunStruck(nth, error, program).struck) break;
        ++points;
        SCOPED_TRACE(std::to_string(nth) + " with " + std::to_string(error));
        look();
        if (HasFatalFailure()) return;
      }
    EXPECT_GT(points, 100);
    RecordProperty("points", points);
  }

  test::CliRoom room;
  test::ScratchFolder pristine;
  fs::path file = room.folder / "Ink.vkd";
  fs::path photos = room.folder / "DesignPhotos";
  fs::path stick = room.folder / "Stick";
  fs::path set;
};

TEST_F(BackupSteps, Make) {
  const Words make{"--now", "2026-03-10 09:00:00", "backup", "make", "--to", stick.string()};
  const auto colors = room.Json({"color", "list"});
  Strike(make, [&] {
    ExpectWholeSets(1, 2);
    ASSERT_EQ(room.Json({"color", "list"}), colors);
    ASSERT_EQ(room.Run(make).status, 0);
    ExpectWholeSets(2, 3);
    for (const auto& entry : fs::directory_iterator(stick))
      ASSERT_FALSE(entry.path().filename().string().starts_with(".VK_")) << entry.path();
  });
}

TEST_F(BackupSteps, Restore) {
  const Words restore{"--yes", "--now", "2026-03-10 09:00:00", "backup", "restore", set.string()};
  const auto before = room.Json({"color", "list"});
  ASSERT_EQ(room.Run(restore).status, 0);
  const auto after = room.Json({"color", "list"});
  ASSERT_NE(before, after);
  Strike(restore, [&] {
    // The start heals what a killed program left.
    const auto now = room.Json({"color", "list"});
    ASSERT_TRUE(now == before || now == after);
    ASSERT_EQ(room.Run({"file", "check", file.string(), "--deep"}).status, 0);
    ExpectWholeSets(1, 1);
    ASSERT_EQ(room.Run(restore).status, 0);
    ASSERT_EQ(room.Json({"color", "list"}), after);
    ASSERT_EQ(ReadFileBytes(photos / "red.jpg"), std::string(5000, 'r'));
  });
}

}  // namespace
}  // namespace vellumark
