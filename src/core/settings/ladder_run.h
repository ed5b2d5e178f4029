#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "core/settings/catalogue.h"
#include "core/settings/ladder.h"
#include "core/settings/support_files.h"

namespace vellumark {

/// A list window that can write a file: its name, the prefix of its column family and its first column.
struct ReportWindow {
  std::string_view window;
  std::string_view prefix;
  std::string_view firstColumn;
};

/// Puts those of the wanted records that the layout lacks behind the record of `anchor`.
void AddMissingAfter(SupportRecords& records, std::string_view layout, std::string_view anchor,
                     std::vector<SupportRecord> wanted);

/// One run of the ladder: the files that its steps have opened, as they stand at the step under way. What a step adds
/// comes in only where the key is missing.
class LadderRun {
 public:
  LadderRun(SupportFiles& files, LadderDataFile* dataFile);

  /// At the end of the settings.
  void Add(const std::vector<SettingText>& added);
  void Add(const SettingInfo& setting) { Add(InitialValues(setting)); }
  void AddFamily(const ColumnFamily& family);
  /// Behind another key of the settings.
  void AddAfter(std::string_view anchor, const std::vector<SettingText>& added);
  /// Width keys behind the one before `first`.
  void AddWidths(std::string_view prefix, int first, int last, int width = 0);
  /// The seven keys that an exporting window keeps; its own column order starts as the columns chosen now.
  void AddReportKeys(const ReportWindow& report);

  SupportRecords& Label() { return Opened(label_, files_.label); }
  SupportRecords& HazardLabel() { return Opened(hazardLabel_, files_.hazardLabel); }
  SupportRecords& FormulaLabel() { return Opened(formulaLabel_, files_.formulaLabel); }

  bool HasScaleFile() const { return scale_.has_value(); }
  void MakeScaleFile();
  void AddHandshaking();
  /// Copies of four files for the folder Backups, where they are not there yet.
  void CopyToBackups();

  /// Whether anything is to be written.
  bool Changed() const;
  /// Writes what was changed. The lock was there before the files were read.
  void WriteAll(const FolderLock& lock);

  SupportRecords settings;
  int daysToRemindBackup = 0;  ///< above 0: to be stored in the Data File
  bool designPhotos = false;   ///< the folder of the photos is to be made beside the Data File

 private:
  using Opening = std::optional<SupportRecords>;

  static SupportRecords& Opened(Opening& records, const SupportFile& file);

  SupportFiles& files_;
  LadderDataFile* dataFile_;
  Opening label_;
  Opening hazardLabel_;
  Opening formulaLabel_;
  Opening scale_;
  std::vector<std::pair<std::filesystem::path, std::string>> copies_;
};

}  // namespace vellumark
