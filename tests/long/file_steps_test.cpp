// Commands that replace whole files, killed at every one of their file operations, and each of these failing in turn:
// what stands under every name afterwards is what stood there before or what stands there after, and the next try
// works.

#include <gtest/gtest.h>

#include <cerrno>
#include <map>

#include "core/base/files.h"
#include "core/settings/support_file.h"
#include "support/cli_run.h"
#include "support/snapshot.h"
#include "support/struck.h"

namespace vellumark {
namespace {

namespace fs = std::filesystem;
using Words = std::vector<std::string>;
using Contents = std::map<std::string, std::string>;

class FileSteps : public testing::Test {
 protected:
  FileSteps() {
    room.MakeFile();
    fs::rename(room.folder / "Ink.vkd", real);
    fs::create_symlink(real, link);
    {
      const auto file = Database::Open(real, OpenMode::Exclusive);
      Transaction transaction(*file);
      for (int i = 0; i < 300; ++i)
        file->Execute("INSERT INTO INK_Basic (Color_Name, Notes) VALUES ('C" + std::to_string(i) + "', '" +
                      std::string(900, 'n') + "')");
      file->Execute("DELETE FROM INK_Basic WHERE RowKey % 10 <> 0");
      transaction.Commit();
    }
    room.Json({"settings", "set", "dbFileName50", link.string()});
    // Names that a careless program would take for its own.
    for (const char* name : {"New.vkd.new", "Shop.vkd.new", "New.vkd.tmp", "Shop.vkd_Temp.dat"})
      ReplaceFile(room.folder / name, "a user's");
    Keep(room.folder.Path(), pristine.Path());
  }

  static void Keep(const fs::path& from, const fs::path& to) {
    for (const auto& entry : fs::directory_iterator(to)) fs::remove_all(entry.path());
    fs::copy(from, to, fs::copy_options::recursive | fs::copy_options::copy_symlinks);
  }

  // By name; of Data Files the rows, of the settings the records, of the program's answers nothing.
  Contents Now() const {
    Contents contents;
    for (const auto& entry : fs::recursive_directory_iterator(room.folder.Path())) {
      const std::string name = entry.path().lexically_relative(room.folder.Path()).string();
      if (entry.is_directory() || name == "stdout" || name == "stderr" || name.ends_with(".vellumark") ||
          name.ends_with("-journal"))
        continue;
      if (entry.is_symlink()) {
        contents[name] = fs::read_symlink(entry.path()).string();
      } else if (entry.path().extension() == ".vkd") {
        const auto file = Database::Open(entry.path(), OpenMode::Exclusive);
        EXPECT_TRUE(file->Faults().empty()) << name;
        contents[name] = test::Snapshot(*file);
      } else {
        contents[name] = ReadFileBytes(entry.path());
      }
    }
    return contents;
  }

  std::function<int()> Program(const Words& words) {
    return [this, words]() -> int { room.Become(words, "/dev/null", test::MarkStep); };
  }

  // What equals one of these states is as sound as they are.
  void ExpectSound(const Contents& contents) const {
    for (const auto& [name, content] : contents) {
      if (!name.ends_with(".vkd")) continue;
      const test::CliAnswer answer = room.Run({"file", "check", (room.folder / name).string(), "--deep"});
      EXPECT_EQ(answer.status, 0) << answer.out;
    }
  }

  // Each name is looked at by itself: a new Data File and the setting that names it are two files.
  void StrikeEverywhere(const Words& words) {
    const Contents before = Now();
    ASSERT_EQ(room.Run(words).status, 0);
    const Contents after = Now();
    ASSERT_TRUE(before != after);
    ExpectSound(after);
    for (const int error : {test::kKilled, ENOSPC, EACCES, EIO}) {
      int points = 0;
      int done = 0;
      for (int nth = 1;; ++nth) {
        Keep(pristine.Path(), room.folder.Path());
        const test::StruckRun run = test::RunStruck(nth, error, Program(words));
        if (!run.struck) break;
        ++points;
        const Contents now = Now();
        for (const auto& [name, content] : now) {
          const bool asBefore = before.contains(name) && before.at(name) == content;
          const bool asAfter = after.contains(name) && after.at(name) == content;
          ASSERT_TRUE(asBefore || asAfter) << name << " at " << nth << " with " << error;
        }
        for (const auto& [name, content] : before)
          ASSERT_TRUE(now.contains(name) || !after.contains(name)) << name << " at " << nth << " with " << error;
        done += now == after;
        // The next try works, and sweeps what was left.
        const test::CliAnswer again = room.Run(words);
        ASSERT_TRUE(again.status == 0 || now == after || again.err.find("already exists") != std::string::npos)
            << again.err;
        if (again.status != 0) continue;
        ASSERT_TRUE(Now() == after) << nth << " with " << error;
        for (const auto& entry : fs::recursive_directory_iterator(room.folder.Path()))
          ASSERT_FALSE(entry.path().string().ends_with("-journal")) << entry.path();
      }
      EXPECT_GT(points, 10);
      RecordProperty("points_" + std::to_string(error), points);
      RecordProperty("done_" + std::to_string(error), done);
    }
  }

  test::CliRoom room;
  test::ScratchFolder pristine;
  fs::path real = room.folder / "Shop.vkd";
  fs::path link = room.folder / "Link.vkd";
};

// Whether it is compacted shows in the size alone: the rows are the same.
TEST_F(FileSteps, Compact) {
  const auto size = fs::file_size(real);
  const Contents before = Now();
  ExpectSound(before);
  for (const int error : {test::kKilled, ENOSPC, EACCES, EIO}) {
    int points = 0;
    int done = 0;
    for (int nth = 1;; ++nth) {
      Keep(pristine.Path(), room.folder.Path());
      const test::StruckRun run = test::RunStruck(nth, error, Program({"file", "compact"}));
      if (!run.struck) break;
      ++points;
      ASSERT_TRUE(Now() == before) << nth << " with " << error;
      done += fs::file_size(real) < size;
      ASSERT_EQ(room.Run({"file", "compact"}).status, 0) << nth << " with " << error;
      ASSERT_TRUE(Now() == before);
      ASSERT_LT(fs::file_size(real), size);
      for (const auto& entry : fs::directory_iterator(room.folder.Path()))
        ASSERT_FALSE(entry.path().string().ends_with(".vellumark")) << entry.path();
    }
    EXPECT_GT(points, 50);
    EXPECT_GT(done, 0);
    RecordProperty("points_" + std::to_string(error), points);
    RecordProperty("done_" + std::to_string(error), done);
  }
}

TEST_F(FileSteps, Create) {
  StrikeEverywhere({"file", "create", (room.folder / "New.vkd").string(), "--empty", "--database", "NEW"});
}

// The history tells the time.
TEST_F(FileSteps, DatabaseRename) {
  StrikeEverywhere({"--now", "2026-03-10 09:00:00", "db", "rename", "INK", "TINTE"});
}

TEST_F(FileSteps, SettingsSet) {
  StrikeEverywhere({"settings", "set", "PrinterFont", "Courier"});
}

// The layout in its file and its name in the list of the settings.
TEST_F(FileSteps, LabelLayouts) {
  StrikeEverywhere({"label", "set", "Default Label", "Label Width", "5760"});
  Keep(pristine.Path(), room.folder.Path());
  StrikeEverywhere({"label", "copy", "Default Label", "Drums"});
}

}  // namespace
}  // namespace vellumark
