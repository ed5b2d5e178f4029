#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "core/base/date.h"
#include "core/base/refusal.h"
#include "core/cloud/ftp_client.h"
#include "core/session/session.h"

namespace vellumark {

/// How the cloud account of this installation is reached. It stands in a file of its own in the data folder, which the
/// group of the installation may read and no backup holds. What has no value yet is nothing.
struct CloudSettings {
  std::string Facility;
  std::string AcctNum;
  std::string CloudHost;
  std::string CloudHostUserName;
  std::string CloudHostPassword;
  std::string RemoteDirectory;
  std::optional<bool> Passive;
  std::optional<bool> TLS;
  std::optional<bool> ssl;
  std::optional<int> Port;
  std::string CertFile;  ///< a path, or a name in "Cloud Certs"
  bool SSL_Verify = true;
  bool ClearControlChannel = false;
  std::string AdminUsername;
  std::string AdminPassword;
  std::string AdminDefaultDF;
  std::string Installation;  ///< tells this installation from others of the account; made with the first save
  std::optional<DateTime> LastBackup;
  std::optional<DateTime> LastRestore;
  std::string LastProven;  ///< the backup of `LastBackup`, whose copy was found sound

  /// Whether a connection can be tried: host, user and password are there.
  bool Configured() const { return !CloudHost.empty() && !CloudHostUserName.empty() && !CloudHostPassword.empty(); }
  /// The account is a VKCloudAdmin.
  bool IsAdmin() const { return !AdminUsername.empty() && !AdminPassword.empty(); }
  bool operator==(const CloudSettings&) const = default;
};

std::filesystem::path CloudSettingsFile(const Session& session);
/// Empty ones where there is no file. Throws Failure for one that cannot be read.
CloudSettings ReadCloudSettings(const Session& session);
/// As they are, without a check.
void WriteCloudSettings(const Session& session, const CloudSettings& settings);

/// One value by its name. Refused: an unknown name, a value that the field cannot hold. Passive, TLS, ssl, SSL_Verify and
/// ClearControlChannel are 1 or 0.
Result<void> SetCloudValue(CloudSettings& settings, std::string_view name, const std::string& value);
/// Names and values in the order of the record, a password as "(set)" or nothing.
std::vector<std::pair<std::string, std::string>> CloudValues(const CloudSettings& settings);

/// The refusal of settings that cannot be used, with the control at fault; else they are stored, and that is told.
Result<void> CheckCloudSettings(const CloudSettings& settings);
Result<void> SaveCloudSettings(Session& session, const CloudSettings& settings);

/// What a file of settings ("VKCloudSettings.txt") makes of these: lines of a short key and a value. Refused: a file
/// without the keys of host, user and password, and one that leaves no account number, which `account` gives where the
/// file has none ("AN").
Result<CloudSettings> ImportCloudSettings(CloudSettings settings, const std::filesystem::path& file,
                                          const std::string& account);

/// Where to log in: as the account, or as the administrator of the accounts.
FtpHost HostOf(const Session& session, const CloudSettings& settings, bool asAdmin = false);
/// The certificate to check against; empty when none is named.
std::filesystem::path CertificateFile(const Session& session, const CloudSettings& settings);

/// The line of the main window: the account and its facility; empty while there is none.
std::string CloudLine(const Session& session);

/// Another shop whose share is fetched.
struct SharedAccount {
  std::string AcctNum;
  std::string Facility;
  bool operator==(const SharedAccount&) const = default;
};
std::filesystem::path SharedAccountsFile(const Session& session);
std::vector<SharedAccount> ReadSharedAccounts(const Session& session);
/// Refused: an account number that no folder can be called by, or that stands there twice. "Share Accounts have been Saved"
/// is told.
Result<void> SaveSharedAccounts(Session& session, const std::vector<SharedAccount>& accounts);
/// The accounts of a text of lines "account,facility". Refused when it has none.
Result<std::vector<SharedAccount>> SharedAccountsFrom(const std::string& bytes);
/// From a file of this machine; stored.
Result<std::vector<SharedAccount>> ImportSharedAccounts(Session& session, const std::filesystem::path& file);
/// Refused while nobody shares with this account.
Result<std::vector<SharedAccount>> RequireSharedAccounts(const Session& session);

/// The Data File that an administrator works with. Refused: no administrator, none chosen, one that is not there.
Result<std::filesystem::path> AdminDefaultDataFile(const Session& session);
/// Refused: a file in a folder that is kept for the system; no administrator.
Result<void> StoreAdminDefaultDataFile(Session& session, const std::filesystem::path& file);
Result<void> RequireCloudAdmin(const CloudSettings& settings);

}  // namespace vellumark
