#pragma once

#include <cerrno>
#include <initializer_list>

#include "support/cli_run.h"
#include "support/scratch.h"
#include "support/struck.h"

namespace vellumark::test {

/// A room of the command line that is put back to how it was kept, and a command in it that is struck at its file
/// operations: killed there, or meeting a full or a failing disk.
class StruckRoom : public testing::Test {
 protected:
  using Words = std::vector<std::string>;
  static constexpr int kFullFromThereOn = -ENOSPC;  ///< the disk is full, and stays it

  /// What every strike begins with.
  void KeepState() { Copy(room.folder.Path(), pristine_.Path()); }

  /// `look` sees what each strike left. Every `stride`th operation is struck; how many there were.
  int Strike(const Words& words, int stride, const std::function<void()>& look,
             std::initializer_list<int> errors = {kKilled, ENOSPC, EIO}) {
    return StrikeWork([&]() -> int { room.Become(words, "/dev/null", MarkStep); }, stride, look, errors);
  }
  /// The same of work in a child of this process, which sets the mark itself.
  int StrikeWork(const std::function<int()>& work, int stride, const std::function<void()>& look,
                 std::initializer_list<int> errors = {kKilled, ENOSPC, EIO}) {
    int points = 0;
    for (const int error : errors)
      for (int nth = 1;; nth += stride) {
        Copy(pristine_.Path(), room.folder.Path());
        const bool full = error == kFullFromThereOn;
        if (!RunStruck(nth, full ? ENOSPC : error, work, full ? test::Strike::FromThereOn : test::Strike::Once).struck)
          break;
        ++points;
        SCOPED_TRACE(std::to_string(nth) + " with " + std::to_string(error));
        look();
        if (HasFatalFailure()) return points;
      }
    RecordProperty("points", points);
    return points;
  }

  CliRoom room;

 private:
  static void Copy(const std::filesystem::path& from, const std::filesystem::path& to) {
    for (const auto& entry : std::filesystem::directory_iterator(to)) std::filesystem::remove_all(entry.path());
    std::filesystem::copy(from, to, std::filesystem::copy_options::recursive);
  }

  ScratchFolder pristine_;
};

}  // namespace vellumark::test
