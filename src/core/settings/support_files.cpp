#include "core/settings/support_files.h"

#include <algorithm>
#include <array>
#include <system_error>
#include <vector>

#include "core/base/files.h"
#include "core/base/refusal.h"
#include "core/settings/catalogue.h"
#include "core/settings/label_defaults.h"

namespace vellumark {
namespace {

constexpr RecordShape kLabelShape = RecordShape::LayoutKeyValue;

using DefaultLayout = std::vector<SupportRecord> (*)(std::string_view);

void WriteDefault(SupportFile& file, DefaultLayout layout, const FolderLock& lock) {
  file.Write(SupportRecords(kLabelShape, layout(DefaultLayoutName)), lock);
}

bool WriteMissing(SupportFile& file, DefaultLayout layout, const FolderLock& lock) {
  if (file.HoldsRecords()) return false;
  WriteDefault(file, layout, lock);
  return true;
}

}  // namespace

SupportFiles::SupportFiles(const std::filesystem::path& dataFolder)
    : folder(dataFolder),
      settings(dataFolder / "vk50suvdf.dat", RecordShape::KeyValue),
      scale(dataFolder / "vk50scaledf.dat", RecordShape::KeyValue),
      label(dataFolder / "vk50labeldf.dat", kLabelShape),
      hazardLabel(dataFolder / "vk50_GH_labeldf.dat", kLabelShape),
      formulaLabel(dataFolder / "vk50_Formula_labeldf.dat", kLabelShape) {}

WrittenSupportFiles WriteMissingSupportFiles(SupportFiles& files) {
  MakeFolder(files.folder);
  WrittenSupportFiles written;
  const auto holds = [](const SupportFile* file) { return file->HoldsRecords(); };
  if (std::ranges::all_of(std::array{&files.label, &files.hazardLabel, &files.formulaLabel, &files.settings}, holds))
    return written;
  const FolderLock lock(files.folder);
  // The settings come last: should the machine stop in between, the next start still counts as the first.
  written.label = WriteMissing(files.label, DefaultLabel, lock);
  written.hazardLabel = WriteMissing(files.hazardLabel, DefaultHazardLabel, lock);
  written.formulaLabel = WriteMissing(files.formulaLabel, DefaultFormulaLabel, lock);
  if (!files.settings.HoldsRecords()) {
    files.settings.Write(DefaultSettings(), lock);
    written.settings = true;
  }
  return written;
}

void WriteFreshSupportFiles(SupportFiles& files) {
  // The settings come first: they have no version then, so that the ladder makes the scale file whatever happens next.
  const FolderLock lock(files.folder);
  files.settings.Write(DefaultSettings(), lock);
  WriteDefault(files.hazardLabel, DefaultHazardLabel, lock);
  WriteDefault(files.formulaLabel, DefaultFormulaLabel, lock);
  WriteDefault(files.label, DefaultLabel, lock);
  std::error_code error;
  std::filesystem::remove(files.scale.Path(), error);
  if (error) throw Failure(files.scale.Path().string(), error.message());
  SyncFolder(files.folder);
}

DataFolders::DataFolders(const std::filesystem::path& dataFolder)
    : backups(dataFolder / "Backups"),
      cloudCerts(dataFolder / "Cloud Certs"),
      cloudUploads(dataFolder / "Cloud Uploads"),
      uploadSupportFiles(cloudUploads / "SUVFiles_Backup"),
      uploadPhotosBackup(cloudUploads / "DesignPhotos_Backup"),
      uploadPhotosShare(cloudUploads / "DesignPhotos_Share"),
      cloudDownloads(dataFolder / "Cloud Downloads"),
      downloadBackups(cloudDownloads / "Backups"),
      downloadPhotos(downloadBackups / "DesignPhotos"),
      downloadSupportFiles(downloadBackups / "SUVFiles"),
      downloadShareData(cloudDownloads / "ShareData"),
      downloadAdminReports(cloudDownloads / "CloudAdmin_Reports"),
      downloadAdminDataFiles(cloudDownloads / "CloudAdmin_DataFiles"),
      cloudLogFiles(dataFolder / "Cloud Log Files") {}

void DataFolders::MakeCloudFolders() const {
  for (const auto& folder :
       {cloudCerts, uploadSupportFiles, uploadPhotosBackup, uploadPhotosShare, downloadPhotos, downloadSupportFiles,
        downloadShareData, downloadAdminReports, downloadAdminDataFiles, cloudLogFiles})
    MakeFolder(folder);
}

}  // namespace vellumark
