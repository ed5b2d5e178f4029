#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "core/base/date.h"
#include "core/datafile/engine.h"

namespace vellumark {

// What an archive moves from one file to another: the Batches and Job Records up to a day, each by its own date, with
// what was taken and weighed for these Batches. Rows without a date stay. `MSysMovedRows` tells each of both files what
// of its Batches and Jobs stands in the other one.

/// The rows that move from a table.
struct MovingRows {
  std::string table;
  std::string where;  ///< a condition over its rows, true or false, with DayAfter(cutoff) as ?1
};
/// The bound of those conditions.
std::string DayAfter(const DateTime& cutoff);
/// In the order in which the rows can be removed: what tells by another table which of its rows move stands before it.
std::vector<MovingRows> RowsThatMove(Database& file, const std::vector<std::string>& databases);

/// How many rows of a Database, and of a year, move.
struct MovingCount {
  std::string database;
  int year = 0;
  std::int64_t batches = 0;
  std::int64_t lotLines = 0;  ///< what was taken from stock for these Batches
  std::int64_t weighings = 0;
  std::int64_t jobs = 0;
};
/// By Database in the order of the list, and by year; those of a Database that is not listed last.
std::vector<MovingCount> CountMovingRows(Database& file, const std::vector<std::string>& databases,
                                         const DateTime& cutoff);

enum class Leaving { Moving, Staying };
/// Removes the rows that move, or those that stay, of the tables of RowsThatMove, and notes of them that they stand in the
/// file `inFile`. In one transaction, which tells of it.
void RemoveMovedRows(Database& file, const std::vector<std::string>& databases, const DateTime& cutoff, Leaving leaving,
                     std::string_view inFile);

inline constexpr std::string_view kMovedRowsTable = "MSysMovedRows";
/// The name of the file into which this Batch was moved; empty when it was not.
std::string FileOfMovedBatch(Database& file, std::string_view database, std::int64_t batchNo);
/// For conditions: "(SELECT ...)" with the fields `DatabaseName`, `BatchNo` of the Batches that were moved, with
/// `JobNumber` besides of the moved Job Records of Batches that are here, with `DesignID` and `Date_Entered` of the latest
/// uses of Designs in moved ones. Without rows in a file that never was divided.
std::string MovedBatches(Database& file);
std::string MovedJobRecords(Database& file);
std::string MovedDesignUses(Database& file);

/// A Job Record of a Batch that is here was lost, into no file: the Batch keeps the number of its job, like that of one whose
/// record was moved.
void NoteLostJobRecord(Database& file, std::string_view database, std::int64_t batchNo, std::string_view jobNumber);
/// Whether something was moved into the file of that name.
bool MovedInto(Database& file, std::string_view name);
/// That file stands elsewhere now; empty: nowhere any more.
void RenameMovedFile(Database& file, std::string_view name, std::string_view newName);

void RenameMovedDatabase(Database& file, std::string_view name, std::string_view newName);
void DeleteMovedDatabase(Database& file, std::string_view name);
void RenameMovedDesign(Database& file, std::string_view designID, std::string_view newID);

}  // namespace vellumark
