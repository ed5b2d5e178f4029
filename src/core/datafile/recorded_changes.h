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

/// Writes changes as a text to be kept: names of fields once for a table, an added or removed row as the values of all
/// its fields, a changed one as what stood and stands in those that changed. A letter tells the kind of each part;
/// numbers end with a blank, texts have their length in front.
class ChangeWriter {
 public:
  /// What follows is of this table.
  void Begin(std::string_view table);
  /// All fields, before the first row that came or went, whose values follow it in their order.
  void Fields(const std::vector<std::string>& fields);
  void Row(RecordedChange::What what, std::int64_t row);
  /// Within a changed row: a field that was not told of this table before.
  void NewField(std::string_view field);
  /// Its place among those that were; its value before and after follow.
  void Field(std::size_t place);
  void EndOfFields();
  void Null() { text_ += 'N'; }
  void Whole(std::int64_t whole);
  void Number(double number);
  void Text(std::string_view text);
  std::string Take() { return std::move(text_); }

 private:
  void AddWord(std::int64_t whole);
  void AddText(std::string_view text);

  std::string text_;
};

/// Hears what is written into the file for as long as it lives. One that begins while another listens hears nothing.
class ChangeRecorder {
 public:
  explicit ChangeRecorder(Database& file);
  ~ChangeRecorder();
  ChangeRecorder(const ChangeRecorder&) = delete;
  ChangeRecorder& operator=(const ChangeRecorder&) = delete;

  bool Hears() const;
  struct Heard {
    std::string changes;    ///< as ChangesOfText reads them; empty when nothing was written
    bool nameCame = false;  ///< a row came, or got another value, in one of the fields that were asked for
  };
  /// So far. What was changed and changed back is not among it.
  Heard Changes(const std::vector<std::string_view>& nameFields) const;

 private:
  struct Engine;
  std::unique_ptr<Engine> engine_;
};

/// The text is the file's own: a malformed one is a Failure.
std::vector<RecordedChange> ChangesOfText(const Database& file, std::string_view text);

/// The first change whose row no longer stands as it was left; null when all do. Figures of formulas that follow from
/// their ingredients do not count.
const RecordedChange* FirstTouchedSince(Database& file, const std::vector<RecordedChange>& changes);
/// Puts back what stood there before, in the caller's transaction. Figures that follow from others come back only where
/// they stand as they were left; true when some did not, and are to be worked out anew.
bool PutBack(Database& file, const std::vector<RecordedChange>& changes);

}  // namespace vellumark
