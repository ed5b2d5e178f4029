#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "core/datafile/engine.h"

namespace vellumark {

// What an act wrote, row by row, so that it can be taken back: what stood in a field before, and what the act left
// there. Tables of the system's own, the counters of the file and its users are left out.

struct RecordedChange {
  enum class What : char { Added = 'A', Removed = 'R', Updated = 'U' };
  struct Cell {
    std::string field;
    Value before;  ///< null of an added row
    Value after;   ///< null of a removed one
    bool operator==(const Cell&) const = default;
  };
  What what = What::Updated;
  std::string table;
  std::int64_t row = 0;
  std::vector<Cell> cells;  ///< of an updated row those that changed
  bool operator==(const RecordedChange&) const = default;
};

/// Hears what is written into the file for as long as it lives. One that begins while another listens hears nothing.
class ChangeRecorder {
 public:
  explicit ChangeRecorder(Database& file);
  ~ChangeRecorder();
  ChangeRecorder(const ChangeRecorder&) = delete;
  ChangeRecorder& operator=(const ChangeRecorder&) = delete;

  bool Hears() const;
  /// So far. What was changed and changed back is not among them.
  std::vector<RecordedChange> Changes() const;

 private:
  struct Engine;
  std::unique_ptr<Engine> engine_;
};

/// As a text to be kept, and read again. The text is the file's own: a malformed one is a Failure.
std::string TextOfChanges(const std::vector<RecordedChange>& changes);
std::vector<RecordedChange> ChangesOfText(const Database& file, std::string_view text);

/// The first change whose row no longer stands as it was left; null when all do. Figures of formulas that follow from
/// their ingredients do not count.
const RecordedChange* FirstTouchedSince(Database& file, const std::vector<RecordedChange>& changes);
/// Puts back what stood there before, in the caller's transaction. Figures that follow from others come back only where
/// they stand as they were left; true when some did not, and are to be worked out anew.
bool PutBack(Database& file, const std::vector<RecordedChange>& changes);

}  // namespace vellumark
