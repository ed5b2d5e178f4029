#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "core/backup/backup_set.h"
#include "core/backup/restore.h"
#include "core/session/session.h"
#include "core/shell/opening.h"
#include "core/upgrade/upgrade_report.h"

namespace vellumark {

// Backups and restores of the session's open Data File, which they close for as long as it takes. Child windows are
// closed by the caller. What fails is a Failure that names the file; the file that was open is open again.

/// A set in a folder of the operator's. The day it was made and the next reminder are stored in the Data File, the folder
/// in the settings; "Backup Complete" is told. Refused to a user without the right and for archive and backup copies.
Result<BackupSet> BackUpToFolder(Session& session, const std::filesystem::path& folder);

/// The closing of the main window asks for a backup when one is due: `asks` shows `BackupReminderForm`.
struct BackupReminder {
  std::optional<DateTime> LastBackupDate;
  int DaysToRemindBackup = 1;
};
/// Nothing when none is due, in an archive or backup copy, and when the reminder is off.
std::optional<BackupReminder> DueBackupReminder(const Session& session);
struct ReminderAnswer {
  bool dontShow = false;
  bool backsUp = false;  ///< a backup is made next
  int DaysToRemindBackup = 1;
};
/// The reminder waits for the interval again; "Don't Show" switches it off. That a backup was made only a backup stores:
/// when it is not made after all, the reminder comes at the next closing.
void StoreReminderAnswer(Session& session, const ReminderAnswer& answer);

struct RestoredDataFile : RestoredFiles {
  /// What was done to a backup of an older version, or of an earlier program. The report is kept beside the Data File.
  std::optional<UpgradeReport> updated;
  std::vector<std::string> notes;  ///< what did not come with it, and what failed once it had its place
};

/// Puts a Data File back over the session's own, after verifying it and asking, with what it would replace by what. One
/// of an older version is brought up to date on a copy: the backup stays as it was proven. The file that was there, and
/// its photos, are kept in a folder beside. The restored file is opened, with login. One that is lost comes back to its
/// place; where its folder is gone too, or none was known, under the next free name of the default one. A Failure where
/// another process works in the file.
Result<RestoredDataFile> RestoreDataFile(Session& session, const std::filesystem::path& source, RestoreFrom from,
                                      OpeningWindows& windows);

}  // namespace vellumark
