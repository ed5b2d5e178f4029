#pragma once

#include <optional>
#include <string>
#include <vector>

#include "core/backup/backup_days.h"
#include "core/cloud/cloud_run.h"

namespace vellumark {

/// Asks the host which backups the account has and what they hold, by their proofs; what was told is kept here, and a
/// proof that is here already does not come again. Refused without an account.
Result<CloudOutcome> AskForCloudSets(CloudDesk& desk);

/// The backups of the account as they were told the last time, for the list of days that one can go back to. Nobody is
/// asked. A set's folder is the name of the backup.
class CloudSets final : public SetSource {
 public:
  explicit CloudSets(const Session& session) : session_(session) {}
  /// "Cloud account 1001".
  std::string Name() const override;
  std::vector<BackupSet> Sets() override;
  /// When the host was asked; nothing when that never was.
  std::optional<DateTime> Asked() const;

 private:
  const Session& session_;
};

/// What is kept here follows what this installation does to the account: a backup that went up with its proof, one that
/// is gone.
void KeepCloudSet(const Session& session, const std::string& name, const std::string& proof);
void ForgetCloudSets(const Session& session, const std::vector<std::string>& names);

}  // namespace vellumark
