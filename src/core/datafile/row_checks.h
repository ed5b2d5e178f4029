#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <vector>

#include "core/datafile/engine.h"
#include "core/datafile/kept_value.h"

namespace vellumark {

// Every commit keeps a digest of each row that it wrote, in the engine's own part of the file: no table of the layout
// shows it. Whoever writes into the file past this program leaves the digests as they were, and so does a bit that
// flips on the disk; the row is then known by its digest.

/// A row that is not as this program wrote it.
struct StrayRow {
  enum class What {
    Changed,  ///< values are others
    Added,
    Gone,
    Unknown,  ///< what was kept of this row and those around it cannot be relied on
  };
  std::string table;
  std::int64_t row = 0;  ///< 0 of a whole table
  What what = What::Changed;
};

/// Whether the file has the digests. One that an earlier program made gets them when it is first opened to be written;
/// one of another engine has none.
bool HasRowChecks(Database& file);
/// A table of which every row was read: how many, and the sum of their digests, which does not ask in which order they come.
struct ReadTable {
  std::string table;
  std::int64_t rows = 0;
  std::uint64_t digest = 0;
};
/// Hears of each row of a table with its values, in the order in which the table has its fields.
using RowLook = std::function<void(std::int64_t row, std::span<const KeptValue> values)>;
/// Asked before the rows of a table are read; empty of one whose rows nobody wants to hear of.
using LookAtTable = std::function<RowLook(const std::string& table, const std::vector<std::string>& fields)>;
/// Of a file that has them: reads every row and tells the stray ones, by table and row. `goOn` hears how many rows of how
/// many are read, and stops the reading with false; `read` hears of each table that was read to its end, and what `look` gives of the rows on the way.
void ForEachStrayRow(Database& file, const std::function<void(const StrayRow&)>& found,
                     const std::function<bool(std::int64_t done, std::int64_t all)>& goOn,
                     const std::function<void(const ReadTable&)>& read = {}, const LookAtTable& look = {});
/// One table of a file of this engine, compared with nothing. Throws Failure where a row cannot be read.
ReadTable ReadRowsOf(Database& file, const std::string& table);
/// Takes every row as it stands from now on.
void AcceptRows(Database& file);

}  // namespace vellumark
