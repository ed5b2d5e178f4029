#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "core/cloud/cloud_run.h"

namespace vellumark {

// What the administrator of the accounts does, with a login of his own. All of it is refused to other accounts.

/// What came of an account, or went to it.
struct AdminRow {
  std::string AcctNum;
  std::string Facility;
  bool done = false;
  std::string why{};
  int files = 0;
  int photos = 0;
};
/// A report at the host, in the account that sent it.
struct AccountReport {
  std::string AcctNum;
  RemoteFile file;
};
struct AdminRun {
  CloudOutcome outcome;
  std::vector<AdminRow> rows;
  std::filesystem::path dataFile;       ///< that was fetched
  std::vector<AccountReport> reports;  ///< that were listed, by account and name
};

/// The reports of every account of the share list, each into a folder of its own.
Result<AdminRun> FetchUserReports(CloudDesk& desk);
struct UserReport {
  std::string AcctNum;
  std::filesystem::path file;
};
/// The reports that lie here, by account.
std::vector<UserReport> UserReportsHere(const Session& session);
/// The cells of a report, row by row. Throws Failure.
std::vector<std::vector<std::string>> ReadUserReport(const std::filesystem::path& file);

/// The reports that stand at the host, of every account of the share list or of one.
Result<AdminRun> ListUserReports(CloudDesk& desk, const std::string& account = {});
/// Removes these at the host. What lies here of them stays.
Result<AdminRun> DeleteUserReports(CloudDesk& desk, const std::vector<AccountReport>& reports);

/// The latest backup of an account.
Result<AdminRun> FetchUserDataFile(CloudDesk& desk, const std::string& account, bool photos);
/// A Data File for the restore of these accounts. Refused without accounts, and for what is no Data File.
Result<AdminRun> SendDataFile(CloudDesk& desk, const std::filesystem::path& file, const std::vector<std::string>& accounts,
                              bool photos);

}  // namespace vellumark
