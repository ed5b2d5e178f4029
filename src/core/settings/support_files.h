#pragma once

#include <filesystem>
#include <string_view>

#include "core/settings/support_file.h"

namespace vellumark {

/// The Support Files of one data folder, shared by all Data Files of the machine.
struct SupportFiles {
  explicit SupportFiles(const std::filesystem::path& dataFolder);

  std::filesystem::path folder;
  SupportFile settings;      ///< vk50suvdf.dat
  SupportFile scale;         ///< vk50scaledf.dat
  SupportFile label;         ///< vk50labeldf.dat
  SupportFile hazardLabel;   ///< vk50_GH_labeldf.dat
  SupportFile formulaLabel;  ///< vk50_Formula_labeldf.dat
};

/// Which files were missing and have been written.
struct WrittenSupportFiles {
  bool settings = false;  ///< the first run: the setup window comes next
  bool label = false;
  bool hazardLabel = false;
  bool formulaLabel = false;
};

/// Writes the settings file with all defaults and each label file with its default label, where they are missing; each
/// is tested on its own. The scale file is made by the ladder. The data folder is made when it is missing.
WrittenSupportFiles WriteMissingSupportFiles(SupportFiles& files);

/// Puts fresh default files in the place of all five; the scale file is removed for the ladder to make it again, which
/// has to run next.
void WriteFreshSupportFiles(SupportFiles& files);

/// The folders under the data folder.
struct DataFolders {
  explicit DataFolders(const std::filesystem::path& dataFolder);

  std::filesystem::path backups;
  std::filesystem::path cloudCerts;
  std::filesystem::path cloudUploads;
  std::filesystem::path uploadSupportFiles;
  std::filesystem::path uploadPhotosBackup;
  std::filesystem::path uploadPhotosShare;
  std::filesystem::path cloudDownloads;
  std::filesystem::path downloadBackups;
  std::filesystem::path downloadPhotos;
  std::filesystem::path downloadSupportFiles;
  std::filesystem::path downloadShareData;
  std::filesystem::path downloadAdminReports;
  std::filesystem::path downloadAdminDataFiles;
  std::filesystem::path cloudLogFiles;

  /// Makes the cloud folders that are missing; `backups` comes with the ladder. Throws Failure naming the folder.
  void MakeCloudFolders() const;
};

}  // namespace vellumark
