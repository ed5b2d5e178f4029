#include "core/cloud/cloud_names.h"

#include <fmt/format.h>

#include <algorithm>

#include "core/base/files.h"
#include "core/base/text.h"
#include "core/settings/support_files.h"

namespace vellumark {
namespace fs = std::filesystem;

namespace {

constexpr std::string_view kBackup = "_Backup_";
constexpr std::string_view kAdminFile = "Admin_VKDataFile_";
constexpr std::string_view kExtension = ".vkd";

bool EndsWithNoCase(std::string_view text, std::string_view end) {
  return text.size() >= end.size() && EqualNoCase(text.substr(text.size() - end.size()), end);
}

bool IsUnder(const fs::path& file, const fs::path& folder) {
  const fs::path relative = RealPath(file).lexically_relative(RealPath(folder));
  return !relative.empty() && *relative.begin() != "..";
}

}  // namespace

RemoteFolders::RemoteFolders(const std::string& remoteDirectory, const std::string& account) {
  std::string top = remoteDirectory;
  std::ranges::replace(top, '\\', '/');
  while (!top.empty() && top.back() == '/') top.pop_back();
  const std::string before = top.empty() ? (remoteDirectory.starts_with('/') ? "/" : "") : top + "/";
  root = before + account;
  backups = root + "/Backups";
  backupPhotos = backups + "/DesignPhotos";
  backupSupportFiles = backups + "/SUVFiles";
  shareDataFile = root + "/ShareDataFile";
  sharePhotos = shareDataFile + "/DesignPhotos";
  shareUserList = root + "/ShareUserList";
  reports = root + "/Reports";
  logFiles = root + "/LogFiles";
  notices = before + "VK_CloudErrors_AllUsers_Notices";
}

std::string RemotePath(const std::string& folder, std::string_view name) {
  return fmt::format("{}/{}", folder, name);
}

bool IsPlainName(std::string_view name) {
  return !name.empty() && name.size() <= 200 && name.find_first_of("/\\") == std::string_view::npos &&
         name.find("..") == std::string_view::npos && name != "." && IsUtf8(name) &&
         std::ranges::none_of(name, [](char c) { return static_cast<unsigned char>(c) < 32 || c == 127; });
}

Result<void> RequirePlainName(std::string_view name, std::string_view field) {
  if (IsPlainName(name)) return {};
  return Refuse("Cloud", fmt::format("\"{}\" is no name of a file.", name), std::string(field));
}

std::string CloudStamp(const DateTime& time) {
  return fmt::format("{:02}_{:02}_{:04}_{:02}_{:02}_{:02}", time.month, time.day, time.year, time.hour, time.minute,
                     time.second);
}

std::string AccountWord(const CloudSettings& settings, const fs::path& dataFile) {
  std::string word;
  for (const char c : Upper(dataFile.stem().string()))
    if ((c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9')) word += c;
  if (word.empty()) word = "INK";
  return word.substr(0, 30) + (settings.Installation.empty() ? "" : "-" + settings.Installation);
}

std::string CloudBackupName(const std::string& word, const DateTime& time) {
  return fmt::format("{}{}{}{}", word, kBackup, CloudStamp(time), kExtension);
}

bool IsCloudBackup(std::string_view name) {
  return EndsWithNoCase(name, kExtension) && FindNoCase(name, "Backup") != std::string::npos && IsPlainName(name);
}

bool IsAdminFile(std::string_view name) {
  return EndsWithNoCase(name, kExtension) && StartsWithNoCase(name, kAdminFile) && IsPlainName(name);
}

bool IsCloudReport(std::string_view name) {
  return name.size() > 4 && EndsWithNoCase(name, ".txt") && IsPlainName(name);
}

std::string PhotoPrefix(std::string_view backup) {
  return std::string(backup.substr(0, backup.rfind('.'))) + "_DP_";
}

std::string SupportPrefix(std::string_view backup) {
  return std::string(backup.substr(0, backup.rfind('.'))) + "_SUV_";
}

std::string ProofName(std::string_view file) {
  return std::string(file) + ".proof";
}

fs::path SharedFolder(const Session& session, const std::string& account) {
  return DataFolders(session.DataFolder).downloadShareData / account;
}

fs::path SharedDataFile(const Session& session, const std::string& account) {
  return SharedFolder(session, account) / (account + std::string(kExtension));
}

fs::path SharedPhotos(const Session& session, const std::string& account) {
  return SharedFolder(session, account) / (account + "_DesignPhotos");
}

bool IsSharedDataFile(const Session& session, const fs::path& file) {
  return IsUnder(file, DataFolders(session.DataFolder).downloadShareData);
}

bool IsInSystemFolder(const Session& session, const fs::path& file) {
  const DataFolders folders(session.DataFolder);
  return IsUnder(file, folders.cloudUploads) || IsUnder(file, folders.cloudDownloads) ||
         IsUnder(file, folders.backups) || FindNoCase(file.generic_string(), "/Auto Backup/") != std::string::npos;
}

}  // namespace vellumark
