#include "core/settings/ladder_run.h"

#include <fmt/format.h>

#include <array>

#include "core/base/files.h"
#include "core/settings/settings.h"

namespace vellumark {

void AddMissingAfter(SupportRecords& records, std::string_view layout, std::string_view anchor,
                     std::vector<SupportRecord> wanted) {
  std::erase_if(wanted, [&](const SupportRecord& record) { return records.Contains(layout, record.key); });
  records.InsertAfter(layout, anchor, std::move(wanted));
}

LadderRun::LadderRun(SupportFiles& files, LadderDataFile* dataFile)
    : settings(files.settings.Read()), files_(files), dataFile_(dataFile) {}

void LadderRun::Add(const std::vector<SettingText>& added) {
  for (const auto& [key, value] : added)
    if (!settings.Contains(key)) settings.Append(key, value);
}

void LadderRun::AddFamily(const ColumnFamily& family) {
  for (const SupportRecord& record : FamilyRecords(family)) Add({{record.key, record.value}});
}

void LadderRun::AddAfter(std::string_view anchor, const std::vector<SettingText>& added) {
  std::vector<SupportRecord> records;
  for (const auto& [key, value] : added) records.push_back({{}, key, value});
  AddMissingAfter(settings, {}, anchor, std::move(records));
}

void LadderRun::AddWidths(std::string_view prefix, int first, int last, int width) {
  std::vector<SettingText> added;
  for (int i = first; i <= last; ++i) added.push_back(setting::ColWidth.Of(prefix, i).To(width));
  AddAfter(setting::ColWidth.Of(prefix, first - 1).key, added);
}

void LadderRun::AddReportKeys(const ReportWindow& report) {
  const std::string header =
      fmt::format("|{}|{}", report.firstColumn, settings.Get(setting::Columns.Of(report.prefix).key));
  AddAfter(setting::SecondSortCol.Of(report.prefix).key,
           {setting::FileFormat.Of(report.window).Initial(), setting::IncHeading.Of(report.window).Initial(),
            setting::IncData.Of(report.window).Initial(), setting::IncTotals.Of(report.window).Initial(),
            setting::UDH_Setting.Of(report.window).Initial(), setting::UDHeader.Of(report.window).To(header),
            setting::DefaultFileName.Of(report.window).Initial()});
}

void LadderRun::MakeScaleFile() {
  scale_ = DefaultScaleSettings();
}

SupportRecords& LadderRun::Opened(Opening& records, const SupportFile& file) {
  if (!records) records = file.Read();
  return *records;
}

void LadderRun::AddHandshaking() {
  if (!scale_ && !files_.scale.HoldsRecords()) MakeScaleFile();
  SupportRecords& records = Opened(scale_, files_.scale);
  const SettingInfo& added = setting::Handshaking;
  if (!records.Contains(added.key)) records.Append(added.key, added.initial);
}

// The copies hold what the files hold at this step, changes of the steps before it included.
void LadderRun::CopyToBackups() {
  const DataFolders folders(files_.folder);
  const auto copy = [&](const SupportFile& file, const SupportRecords* records) {
    const SupportFile target(folders.backups / file.Path().filename(), file.Shape());
    if (target.Exists()) return;
    if (records != nullptr) {
      copies_.emplace_back(target.Path(), records->Bytes());
    } else if (file.Exists()) {
      copies_.emplace_back(target.Path(), ReadFileBytes(file.Path()));
    }
  };
  const auto opened = [](const Opening& records) { return records ? &*records : nullptr; };
  copy(files_.hazardLabel, opened(hazardLabel_));
  copy(files_.label, opened(label_));
  copy(files_.scale, opened(scale_));
  copy(files_.settings, &settings);
}

bool LadderRun::Changed() const {
  const auto opened = [](const Opening& records) { return records && records->Changed(); };
  return settings.Changed() || opened(scale_) || opened(label_) || opened(hazardLabel_) || opened(formulaLabel_);
}

void LadderRun::WriteAll(const FolderLock& lock) {
  const auto write = [&lock](SupportFile& file, const Opening& records) {
    if (records && records->Changed()) file.Write(*records, lock);
  };
  write(files_.scale, scale_);
  write(files_.label, label_);
  write(files_.hazardLabel, hazardLabel_);
  write(files_.formulaLabel, formulaLabel_);
  if (!copies_.empty()) MakeFolder(DataFolders(files_.folder).backups);
  for (const auto& [path, bytes] : copies_) ReplaceFile(path, bytes, Readers::Group);
  if (dataFile_ != nullptr && designPhotos) MakeFolder(dataFile_->Folder() / "DesignPhotos");
  if (dataFile_ != nullptr && daysToRemindBackup > 0) dataFile_->SetDaysToRemindBackup(daysToRemindBackup);
  // The versions stand in the settings: last, so that they never claim work that was not done.
  write(files_.settings, settings);
}

}  // namespace vellumark
