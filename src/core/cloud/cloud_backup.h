#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "core/backup/proof.h"
#include "core/cloud/cloud_run.h"

namespace vellumark {

struct CloudBackupMade {
  CloudOutcome outcome;
  std::string name;        ///< of the backup at the host
  std::size_t onFile = 0;  ///< backups of the account
  bool sound = false;      ///< what went up was read again before, and every rule holds
};
/// The open Data File, the Support Files and, if wanted, the photos of Designs go up, and what other shops may see of
/// them. Refused: to a user without the right, in an archive copy or a shared file, without settings, and when the account
/// has its 30 backups.
Result<CloudBackupMade> BackUpToCloud(CloudDesk& desk, bool photos);
/// The share alone.
Result<CloudOutcome> ShareToCloud(CloudDesk& desk, bool photos);

/// A backup of the account.
struct CloudBackupRow {
  std::string name;
  std::int64_t size = 0;
  std::optional<DateTime> date;
  bool proven = false;  ///< the digests of what it held stand beside it
};
struct CloudBackupList {
  CloudOutcome outcome;
  std::vector<CloudBackupRow> rows;  ///< the newest first
};
/// Backups, and what an administrator sent.
Result<CloudBackupList> ListCloudBackups(CloudDesk& desk);
/// With their Support Files, photos and proofs.
Result<CloudOutcome> DeleteCloudBackups(CloudDesk& desk, const std::vector<std::string>& names);

struct CloudBackupFetched {
  CloudOutcome outcome;
  std::filesystem::path dataFile;       ///< to be restored from
  std::filesystem::path supportFolder;  ///< of the Support Files that came with it; empty when none did
  int photos = 0;
};
/// Brings a backup down into a folder that was emptied, as a set with its proof. Without photos those that are here stay
/// as they are when it is restored.
Result<CloudBackupFetched> FetchCloudBackup(CloudDesk& desk, const std::string& name, bool photos);
/// Its Support Files alone; of the newest backup without a name.
Result<CloudBackupFetched> FetchCloudSupportFiles(CloudDesk& desk, const std::string& name = {});
/// After a restore from the cloud.
void NoteCloudRestore(const Session& session);

/// What the opening of a file says about backups in the cloud; nothing without an account, or when one was made within the
/// days after which the file asks for a backup.
std::optional<Message> CloudBackupReminder(const Session& session);

}  // namespace vellumark
