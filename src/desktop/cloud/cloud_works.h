#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "desktop/cloud/get_put_data_form.h"

namespace vellumark::desktop {

// The tasks of the core as the windows run them. What a task is about stands in it; what it brings goes where it says.

/// A task that needs nothing but its name; nothing for one that does.
CloudWork WorkOf(CloudTask task);

/// A file at the host as lists show it.
struct CloudFile {
  std::string name;
  std::int64_t size = 0;
  std::optional<DateTime> date;  ///< in UTC
  std::string note{};            ///< what else is known of it: its proof, whose it is
};
using CloudFiles = std::shared_ptr<std::vector<CloudFile>>;

CloudWork ListBackups(CloudFiles into);
CloudWork DeleteBackups(const std::vector<CloudFile>& files);

CloudWork ListReports(CloudFiles into);
CloudWork DeleteReports(const std::vector<CloudFile>& files);
CloudWork SendReport(std::string name, std::string text);

/// What a restore goes on with.
struct Fetched {
  std::filesystem::path dataFile;
  std::filesystem::path supportFolder;
};
CloudWork FetchBackup(std::string name, std::shared_ptr<Fetched> into);
CloudWork FetchSupportFiles(std::string name, std::shared_ptr<Fetched> into);

/// Brings what is known of the account's backups up to date.
CloudWork AskForSets();

// The administrator's.
/// Reports of all accounts; the note of a file is its account.
CloudWork ListReportsOfUsers(CloudFiles into);
CloudWork DeleteReportsOfUsers(std::vector<CloudFile> files);
CloudWork FetchDataFileOf(std::string account, std::shared_ptr<Fetched> into);
CloudWork SendDataFileTo(std::filesystem::path file, std::vector<std::string> accounts);

}  // namespace vellumark::desktop
