#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/base/refusal.h"
#include "core/datafile/engine.h"

namespace vellumark {

/// A Database is a name and tables whose names start with it; `FileInfo.DBList` keeps the names in menu order.
constexpr std::size_t kDatabaseNameLength = 15;

/// The name as it will be stored: trimmed, upper case. Refused: empty, longer than 15 characters, a character other
/// than A to Z, 0 to 9, blank, "/" and "-", a name that the engine keeps for itself, one that stands in `existing`.
Result<std::string> NewDatabaseName(std::string_view typed, const std::vector<std::string>& existing,
                                    std::string_view dataFileName);

/// What is wrong with a name for a Database, in words for the operator; nothing for a good one. The name
/// is trimmed and in upper case already, and not empty.
std::optional<std::string> DatabaseNameFault(const std::string& name);

/// Makes the tables, the `_Info` row of a plain Database and the entry in `DBList`, in one transaction.
void CreateEmptyDatabase(Database& file, const std::string& name);

/// Whether the file's own list of Databases is empty and no table of one is there.
bool HoldsNoDatabase(Database& file);

void StoreDatabaseList(Database& file, const std::vector<std::string>& names);
void StoreCurrentDatabase(Database& file, std::string_view name);
void StoreDaysToRemindBackup(Database& file, int days);

/// When the file was last backed up to a place of the operator's, and when it is to be asked for again.
struct BackupDates {
  std::optional<DateTime> LastBackupDate;
  std::optional<DateTime> DayBeforeNextBackupDate;
  int DaysToRemindBackup = 1;
};
BackupDates ReadBackupDates(Database& file);
void StoreBackupDates(Database& file, const BackupDates& dates);

/// The `<DB>_Info` row.
struct DatabaseInfo {
  std::string fullName;
  std::string disclaimer;
  std::string tradeMark;
  std::string templateFile;
};
/// Numbers of rows, for overviews.
struct DatabaseCounts {
  std::int64_t basics = 0;
  std::int64_t formulas = 0;
  std::int64_t batches = 0;
};
DatabaseCounts CountRows(Database& file, std::string_view database);

DatabaseInfo ReadDatabaseInfo(Database& file, std::string_view database);

}  // namespace vellumark
