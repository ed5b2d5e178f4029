#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include "core/base/date.h"
#include "core/base/refusal.h"
#include "core/cloud/cloud_settings.h"

namespace vellumark {

inline constexpr std::size_t kMostCloudBackups = 30;
inline constexpr std::string_view kShareListFile = "VKCloudShareUsers.txt";

/// The folders of an account on the host.
struct RemoteFolders {
  RemoteFolders(const std::string& remoteDirectory, const std::string& account);

  std::string root;
  std::string backups;
  std::string backupPhotos;
  std::string backupSupportFiles;
  std::string shareDataFile;
  std::string sharePhotos;
  std::string shareUserList;
  std::string reports;
  std::string logFiles;
  std::string notices;  ///< of all accounts, beside their roots
};
/// "folder/name".
std::string RemotePath(const std::string& folder, std::string_view name);

/// A name that may become a file or a folder here or at the host: not empty, no "/", "\", "..", control characters.
bool IsPlainName(std::string_view name);
Result<void> RequirePlainName(std::string_view name, std::string_view field);

/// "03_10_2026_09_05_00".
std::string CloudStamp(const DateTime& time);
/// What tells this installation from another within the account: the name of its Data File, in letters and digits, and
/// the mark of the installation.
std::string AccountWord(const CloudSettings& settings, const std::filesystem::path& dataFile);
/// "INKROOM_Backup_03_10_2026_09_05_00.vkd".
std::string CloudBackupName(const std::string& word, const DateTime& time);
/// Whether a name is that of a backup: "*Backup*.vkd", or what an administrator sent.
bool IsCloudBackup(std::string_view name);
bool IsAdminFile(std::string_view name);
/// Whether a name is that of a report: a text.
bool IsCloudReport(std::string_view name);
/// The names that belong to a backup begin with these: "INKROOM_Backup_…_DP_", "…_SUV_".
std::string PhotoPrefix(std::string_view backup);
std::string SupportPrefix(std::string_view backup);
/// The proof that goes up beside it.
std::string ProofName(std::string_view file);
/// "…_DesignPhotos", the folder of an account's photos beside its share file.
std::filesystem::path SharedFolder(const Session& session, const std::string& account);
std::filesystem::path SharedDataFile(const Session& session, const std::string& account);
std::filesystem::path SharedPhotos(const Session& session, const std::string& account);
/// Whether a Data File is one that was fetched from another account, or lies in a folder kept for the system.
bool IsSharedDataFile(const Session& session, const std::filesystem::path& file);
bool IsInSystemFolder(const Session& session, const std::filesystem::path& file);

}  // namespace vellumark
