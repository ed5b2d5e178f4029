#pragma once

#include <cerrno>
#include <initializer_list>

#include "core/backup/deep_check.h"
#include "core/datafile/databases.h"
#include "support/core_desk.h"
#include "support/small_page_memory.h"
#include "support/snapshot.h"
#include "support/struck.h"

namespace vellumark::test {

/// A small ink room that is put back to how it was kept, and an act of the core in it that is struck at its file
/// operations: killed there, or meeting a full or a failing disk. The act and who looks at what it left run as processes of
/// the test and not as programs of their own, so that thousands of strikes take minutes.
class StruckRoom : public testing::Test {
 protected:
  static constexpr int kFullFromThereOn = -ENOSPC;  ///< the disk is full, and stays it
  using Act = std::function<bool(CoreDesk&)>;

  StruckRoom() {
    std::filesystem::create_directories(folder / "VKDat");
    std::filesystem::create_directories(folder / "Program");
    CreateFile(file);
    CreateEmptyDatabase(*Database::Open(file, OpenMode::Exclusive), "INK");
    AddColor("RED", {{"Notes", std::string(600, 'n')}});
  }
  void AddColor(const std::string& name, std::vector<Cell> cells = {}) const {
    const Arranging arranging;
    cells.emplace_back("Color_Name", name);
    InsertRow(*Database::Open(file, OpenMode::Exclusive), schema::Basic, "INK_Basic", cells);
  }

  /// Does it as a program does that starts, opens the file and ends: 0 when it was done, 1 when it was refused, 2 when it
  /// failed, with a cause.
  int Do(const Act& act, const std::function<void()>& mark = [] {}) const {
    const SmallPageMemory small;  // or no strike would meet a file that is written before its commit
    mark();
    try {
      CoreDesk desk(folder.Path());
      try {
        desk.Open(file);
      } catch (const Failure&) {
        if (!worksClosed || desk.session.DataFileDB) throw;
        desk.session.DataFileName = file.string();
      }
      const bool done = act(desk);
      CloseDataFile(desk.session, desk.windows);
      return done ? 0 : 1;
    } catch (const Failure& failure) {
      return failure.cause.empty() ? 3 : 2;
    }
  }
  /// What stands in the file, after an opening that heals; it has to be sound.
  std::string Content() const {
    std::string content;
    EXPECT_EQ(Do([&](CoreDesk& desk) {
                content = Snapshot(desk.session.File());
                return CheckDataFileRules(desk.session, CheckDepth::Deep, CheckState::InUse).Sound();
              }),
              0);
    return content;
  }

  /// What every strike begins with.
  void KeepState() { Copy(folder.Path(), pristine_.Path()); }

  /// `look` sees what each strike left. Every `stride`th operation is struck; how many there were.
  int Strike(const Act& act, int stride, const std::function<void()>& look,
             std::initializer_list<int> errors = {kKilled, ENOSPC, EIO}) {
    int points = 0;
    for (const int error : errors)
      for (int nth = 1;; nth += stride) {
        Copy(pristine_.Path(), folder.Path());
        const bool full = error == kFullFromThereOn;
        const StruckRun run = RunStruck(nth, full ? ENOSPC : error, [&]() -> int { return Do(act, MarkStep); },
                                        full ? test::Strike::FromThereOn : test::Strike::Once);
        if (!run.struck) break;
        ++points;
        SCOPED_TRACE(std::to_string(nth) + " with " + std::to_string(error));
        EXPECT_TRUE(error == kKilled || (run.status >= 0 && run.status <= 2)) << "the program ended with " << run.status;
        look();
        if (HasFailure()) return points;
      }
    RecordProperty("points", points);
    return points;
  }

  bool worksClosed = false;  ///< what is done is done too where the file cannot be opened
  SoundFolder folder;
  std::filesystem::path file = folder / "Ink.vkd";

 private:
  static void Copy(const std::filesystem::path& from, const std::filesystem::path& to) {
    for (const auto& entry : std::filesystem::directory_iterator(to)) std::filesystem::remove_all(entry.path());
    std::filesystem::copy(from, to, std::filesystem::copy_options::recursive);
  }

  ScratchFolder pristine_;
};

}  // namespace vellumark::test
