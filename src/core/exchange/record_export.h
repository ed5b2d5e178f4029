#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/session/session.h"

namespace vellumark {

// Batch and Job Records as tab text files: first into a grid, then the grid into a file.

/// Which records are wanted: by number, when `first` or `last` is told, else by date. Both ends count, the last day to
/// its end.
struct RecordRange {
  std::string first{};
  std::string last{};
  std::optional<DateTime> from{};
  std::optional<DateTime> to{};
  bool ByNumber() const { return !first.empty() || !last.empty(); }
};

/// What was gathered.
struct RecordGrid {
  std::vector<std::vector<std::string>> rows;
  std::size_t captions = 0;  ///< how many rows on top are captions
  std::size_t records = 0;
  bool complete = true;  ///< false: the operator stopped it, and no file is made of it
};

/// The Batches of the current Database, a block each: a label and its value in a row, what the settings of printing
/// choose. Tells how many there are. Refused: a bad number or date, a range without records, more cells than a report
/// may hold.
Result<RecordGrid> GatherBatchRecords(Session& session, const RecordRange& range);
/// The Job Records with the columns that `JobRecordColumns` chooses, or all. Between two numbers a Job counts as the
/// number that it begins with.
Result<RecordGrid> GatherJobRecords(Session& session, const RecordRange& range, bool allColumns = false);

/// "Batch ID Export 1 - 5.txt", "Batch Date Export 2026_01_01 - 2026_01_31.txt", "Export Jobs - 7 - 9.txt".
std::string BatchExportName(const RecordRange& range);
std::string JobExportName(const RecordRange& range);

/// The bytes before the code page: one line a row, its cells joined by tabs.
std::string RecordText(const RecordGrid& grid);
/// Writes the file, whole or not at all; an existing one is asked about. Tells where it is. Refused for a grid that is
/// not complete.
Result<void> SaveRecordFile(Session& session, const RecordGrid& grid, const std::filesystem::path& path);

}  // namespace vellumark
