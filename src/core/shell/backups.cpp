#include "core/shell/backups.h"

#include <fmt/format.h>

#include <system_error>

#include "core/backup/kept_folder.h"
#include "core/base/counted.h"
#include "core/base/files.h"
#include "core/base/progress_run.h"
#include "core/base/text.h"
#include "core/base/units.h"
#include "core/cloud/cloud_backup.h"
#include "core/datafile/databases.h"
#include "core/datafile/file_kind.h"
#include "core/datafile/lifecycle.h"
#include "core/session/acts.h"
#include "core/session/settings.h"
#include "core/shell/data_files.h"
#include "core/shell/previous_file.h"
#include "core/shell/startup.h"
#include "core/upgrade/upgrade.h"

namespace vellumark {
namespace fs = std::filesystem;

namespace {

constexpr std::string_view kRestoreTitle = "Restore Data File";
constexpr std::int64_t kNanoseconds = 1'000'000'000;  // of a second

DateTime DaysAfter(const DateTime& day, int days) {
  return DateTime::FromDayNumber(day.DayNumber() + days);
}

// The file in the hands of whoever copies it, and back in the session's whatever happens.
template <typename Work>
auto WithFileClosed(Session& session, Work work) {
  session.DataFileDB.reset();
  session.RecordsetsOpen = false;
  try {
    auto done = work();
    ReopenWorkingSets(session);
    return done;
  } catch (...) {
    ReopenWorkingSets(session);
    throw;
  }
}

std::string ContentText(const ContentProof& content) {
  std::string text;
  for (const DatabaseProof& database : content.databases)
    text += fmt::format("\n    {}: {}", database.name, CountsText(database));
  return text.empty() ? "\n    no Database" : text;
}

bool IsJet(const fs::path& source) {
  try {
    return LookAtDataFile(source).jet;
  } catch (const Failure&) {
    return false;  // what it is then, whoever opens it says
  }
}

// The source as it is now: as a set with its proof, or alone.
Result<SetCheck> CheckSource(Session& session, const fs::path& source) {
  if (IsJet(source)) {  // of which nothing is known before it is brought up to date
    SetCheck check;
    if (const auto made = TimeOfSet(source.parent_path().filename().string())) check.set.made = *made;
    check.set.dataFile = source;
    return check;
  }
  auto set = ReadSet(source.parent_path());
  if (set && set->dataFile == source && (set->proof || TimeOfSet(source.parent_path().filename().string())))
    return VerifySet(session, *set, Reproof::IfNeeded);
  const ProgressRun progress(session.progress, "Checking backup ...");
  SetCheck check;
  check.set.folder = source.parent_path();
  check.set.dataFile = source;
  try {
    check.content = ProveContent(session, source);
    check.faults = check.content.faults;
  } catch (const Failure& failure) {
    return Refuse("Restore Error",
                  fmt::format("{} cannot be read: {}.\nNothing was replaced.", failure.subject, failure.cause), "PATH");
  }
  return check;
}

// What stands in the place now, in words; it may be damaged, since that is what restores are for.
std::string PresentText(Session& session, const fs::path& current) {
  std::error_code ignored;
  if (!fs::exists(current, ignored)) return fmt::format("{}, which is not there.", current.string());
  try {
    std::unique_ptr<Database> closed;
    if (!session.DataFileDB) closed = Database::Open(current, OpenMode::ReadOnly);
    Database& file = closed ? *closed : session.File();
    ContentProof content;
    for (const std::string& name : ReadFileInfo(file).dbList) {
      const DatabaseCounts counts = CountRows(file, name);
      content.databases.push_back({name, counts.basics, counts.formulas, counts.batches});
    }
    const DateTime changed = LocalOf(FromSecondNumber(platform::StateOf(current, ignored).modified / kNanoseconds));
    return fmt::format("{}, last changed {}{}", current.string(), changed.ToText(), ContentText(content));
  } catch (const Failure& failure) {
    return fmt::format("{}, which cannot be read: {}.", current.string(), failure.cause);
  }
}

Result<void> AskForRestore(Session& session, const SetCheck& check, const fs::path& place) {
  Prompt& prompt = session.prompt;
  const fs::path& source = check.set.dataFile;
  if (!check.faults.empty() &&
      !prompt.Ask("Restore Error",
                  fmt::format("The backup is not sound:{}\n\nRestore it all the same?", FaultLines(check.faults)),
                  Answer::No))
    return Decline("Restore Error");
  if (check.set.proof && check.set.proof->UMI != session.UMI &&
      !prompt.Ask("Restore Unit",
                  fmt::format("The backup was made where stock is kept in {}. Here it is kept in {}, and the figures "
                              "of stock are not converted.\n\nRestore it all the same?",
                              UnitName(check.set.proof->UMI), UnitName(session.UMI)),
                  Answer::No))
    return Decline("Restore Unit");
  const std::string made =
      check.set.made == DateTime{} ? std::string() : fmt::format(" of {}", check.set.made.ToText());
  if (!prompt.Ask(std::string(kRestoreTitle),
                  fmt::format("This replaces\n  {}\nby the backup{}\n  {}{}\n\nWhat is replaced is kept in a folder "
                              "beside it. Restore now?",
                              PresentText(session, place), made, source.string(), ContentText(check.content)),
                  Answer::No))
    return Decline(std::string(kRestoreTitle));
  return {};
}

// A source of an older version is brought up to date on a copy: the set stays as it was proven.
class UsableSource {
 public:
  UsableSource(const fs::path& source, const fs::path& place) : source_(source), place_(RealPath(place)), path_(source) {}
  ~UsableSource() {
    std::error_code ignored;
    if (!folder_.empty()) fs::remove_all(folder_, ignored);
  }
  UsableSource(const UsableSource&) = delete;
  UsableSource& operator=(const UsableSource&) = delete;

  /// Refused when the version cannot be used, or when it is not brought up to date.
  Result<void> Prepare(Session& session) {
    const DataFileKind kind = LookAtDataFile(path_);
    const VersionGate gate = GateOf(kind.version);
    if (gate == VersionGate::Older || (kind.jet && gate != VersionGate::Unusable)) return Update(session);
    if (gate == VersionGate::Unusable) return Refuse("Data File", UnusableText(path_, kind.version), "PATH");
    return {};
  }
  const fs::path& Path() const { return path_; }
  std::optional<UpgradeReport>& Updated() { return updated_; }

 private:
  Result<void> Update(Session& session) {
    CopyBeside();
    try {
      // Under a name of its own, so that no safety copy is made of what is a copy itself.
      auto updated = UpdateDataFile(session, {.source = path_, .to = NextFreeName(fs::path(path_).replace_extension(".vkd"))});
      if (!updated) return std::unexpected(updated.error());
      path_ = updated->file;
      updated_ = *std::move(updated);
      return {};
    } catch (const UpdateFailure& failure) {
      throw Failure(source_.string(), failure.text);
    }
  }

  void CopyBeside() {
    folder_ = place_.parent_path() / fmt::format(".{} before upgrade", place_.filename().string());
    std::error_code error;
    fs::remove_all(folder_, error);  // of a killed process
    if (error) throw Failure(folder_.string(), error.message());
    MakeFolder(folder_);
    const fs::path copy = folder_ / source_.filename();
    CopyProved(source_, copy, source_.filename().string());
    path_ = copy;
  }

  fs::path source_;
  fs::path place_;
  fs::path path_;
  fs::path folder_;
  std::optional<UpgradeReport> updated_;
};

// The report goes where the copy that it is about went. Without one the restore is as good.
void KeepReport(UpgradeReport& report, const fs::path& source, const fs::path& restored) {
  report.source = source;
  report.file = restored;
  report.text = UpdateReportPath(restored);
  try {
    ReplaceFile(report.text, UpgradeText(report), Readers::Group);
  } catch (const Failure& failure) {
    report.left.push_back({"Report", "", 1, fmt::format("the report could not be kept: {}", failure.what())});
    report.text.clear();
  }
}

std::string UpdatedText(const UpgradeReport& report) {
  std::string text = fmt::format("\n\nThe backup had the file version {} and was brought up to version {} on a copy; it is as "
                                 "it was.\n{}",
                                 report.fromVersion, report.toVersion,
                                 report.Balanced() ? "Every row is accounted for." : "Not every sum is the same.");
  for (const auto& [lines, words] : {std::pair{&report.refused, "what did not come in"},
                                     {&report.damaged, "what could not be read"},
                                     {&report.left, "what people should look at"}})
    if (!lines->empty()) text += fmt::format("\n{} {}.", Counted(lines->size(), "line tells", "lines tell"), words);
  return text + (report.text.empty() ? "\nThe report could not be kept." : fmt::format("\nThe report is kept in\n{}", report.text.string()));
}

// What was restored stands; what fails from here on is told with it.
class Finish {
 public:
  explicit Finish(RestoredDataFile& restored) : restored_(restored) {}
  template <typename Work>
  void operator()(Work work) {
    try {
      work();
    } catch (const Failure& failure) {
      restored_.notes.push_back(fmt::format("{}: {}.", failure.subject, failure.cause));
    }
  }

 private:
  RestoredDataFile& restored_;
};

std::string RestoredText(const RestoredDataFile& restored) {
  std::string text = "Restore Completed Successfully!";
  if (restored.updated) text += UpdatedText(*restored.updated);
  for (const std::string& note : restored.notes) text += "\n\n" + note;
  if (!restored.since.empty())
    text += fmt::format("\n\nWhat had been made since that backup is not in this file any more:{}\n\nThe file that holds "
                        "it is kept in\n{}",
                        MadeSinceText(restored.since), restored.kept.string());
  return text;
}

// The copy has its place: it is remembered, opened, and what it replaced is looked through.
void OpenRestored(Session& session, const fs::path& source, RestoreFrom from, OpeningWindows& windows,
                  RestoredDataFile& restored) {
  Finish finish(restored);
  finish([&] {
    if (from == RestoreFrom::Location)
      StoreSettings(session, {setting::BackupRestoreFileLocation.To(source.parent_path().string())});
    if (from == RestoreFrom::Cloud) NoteCloudRestore(session);
  });
  StoreDefaultDataFile(session, session.DataFileName);
  const fs::path file = RealPath(session.DataFileName);
  if (restored.updated) KeepReport(*restored.updated, source, file);
  OpenDataFile(session, windows);
  finish([&] { RemovePhotosOfNobody(session, restored); });
  finish([&] {
    if (!restored.hadPhotoFolder && !PhotosIn(file.parent_path() / kPhotoFolderOfSet).empty())
      restored.notes.emplace_back("No photos came with the backup. Those that are here stay as they are.");
  });
  finish([&] {
    if (session.DataFileDB && !restored.kept.empty())
      restored.since = MadeSinceThen(restored.kept / file.filename(), session.File());
  });
}

// Where it is restored to: over the known Data File, also where that is lost, but not into a folder that is gone with it.
fs::path PlaceToRestore(const Session& session) {
  fs::path known = session.DataFileName;
  std::error_code ignored;
  if (!known.empty() && fs::is_directory(RealPath(known).parent_path(), ignored)) return known;
  const fs::path place = session.ProgramFolder / kDefaultDataFile;
  return fs::exists(place, ignored) ? NextFreeName(place) : place;
}

}  // namespace

Result<BackupSet> BackUpToFolder(Session& session, const fs::path& folder) {
  if (auto allowed = RequireAct(session, Act::BackUp); !allowed) return std::unexpected(allowed.error());
  if (auto writable = RequireWritable(session); !writable) return std::unexpected(writable.error());
  const fs::path file = session.DataFileName;
  BackupSet set = WithFileClosed(session, [&] { return MakeBackupSet(session, file, folder); });
  const auto faults = FaultsOfSet(set);
  std::string text = faults.value_or("Backup Completed Successfully!");
  try {
    BackupDates dates = ReadBackupDates(session.File());
    dates.LastBackupDate = session.clock.Today();
    dates.DayBeforeNextBackupDate = DaysAfter(session.clock.Today(), dates.DaysToRemindBackup);
    StoreBackupDates(session.File(), dates);
    StoreSettings(session, {setting::BackupRestoreFileLocation.To(folder.string())});
  } catch (const Failure& failure) {
    text += fmt::format("\n\nIts day or its folder could not be stored: {}: {}.", failure.subject, failure.cause);
  }
  session.prompt.Tell(faults ? "Backup" : "Backup Complete", text, faults ? Icon::Exclamation : Icon::None);
  return set;
}

std::optional<BackupReminder> DueBackupReminder(const Session& session) {
  if (session.ArchiveView || !session.DataFileDB || GetSetting(session, setting::RemindBackup)) return std::nullopt;
  const BackupDates dates = ReadBackupDates(session.File());
  const DateTime today = session.clock.Today();
  if (today <= dates.DayBeforeNextBackupDate.value_or(DaysAfter(today, -1))) return std::nullopt;
  return BackupReminder{dates.LastBackupDate, dates.DaysToRemindBackup};
}

void StoreReminderAnswer(Session& session, const ReminderAnswer& answer) {
  if (session.ArchiveView || !session.DataFileDB) return;
  BackupDates dates = ReadBackupDates(session.File());
  if (answer.dontShow) {
    StoreSettings(session, {setting::RemindBackup.To(true)});
  } else {
    dates.DaysToRemindBackup = answer.DaysToRemindBackup;
  }
  if (!answer.backsUp) dates.DayBeforeNextBackupDate = DaysAfter(session.clock.Today(), dates.DaysToRemindBackup);
  StoreBackupDates(session.File(), dates);
}

Result<RestoredDataFile> RestoreDataFile(Session& session, const fs::path& typedSource, RestoreFrom from,
                                      OpeningWindows& windows) {
  if (auto allowed = RequireAct(session, Act::BackUp); !allowed) return std::unexpected(allowed.error());
  std::error_code ignored;
  const fs::path source = RealPath(typedSource);
  if (!fs::exists(source, ignored))
    return Refuse("Restore Error", fmt::format("{} does not exist.", source.string()), "PATH");
  if (!session.DataFileName.empty() && fs::equivalent(source, session.DataFileName, ignored))
    return Refuse("Restore Error",
                  "Current data file and choosen file are the same!\nPlease select another file.", "PATH");
  const fs::path place = PlaceToRestore(session);
  if (!session.DataFileDB) HoldIfItOpens(place);  // whoever works in it is told of before a question is asked
  auto check = CheckSource(session, source);
  if (!check) return std::unexpected(check.error());
  UsableSource usable(source, place);
  try {
    if (auto prepared = usable.Prepare(session); !prepared) return std::unexpected(prepared.error());
  } catch (const Failure& failure) {
    return Refuse("Restore Error", fmt::format("{}: {}.\nNothing was replaced.", failure.subject, failure.cause), "PATH");
  }
  if (usable.Updated()) {
    check->content = ProveContent(session, usable.Path());
    check->faults.insert(check->faults.end(), check->content.faults.begin(), check->content.faults.end());
  }
  if (auto asked = AskForRestore(session, *check, place); !asked) return std::unexpected(asked.error());

  PreviousFile previous(session, windows);
  RestoredDataFile restored;
  try {
    if (session.DataFileOpen) CloseDataFile(session, windows);
    session.DataFileName = place.string();
    MakeFolder(RealPath(place).parent_path());
    const ProgressRun progress(session.progress, "Restoring Data File ...");
    static_cast<RestoredFiles&>(restored) =
        PutDataFileBack(session, usable.Path(), source.parent_path() / kPhotoFolderOfSet, RealPath(place),
                        check->set.proof ? check->set.proof->files : std::vector<FileProof>());
  } catch (...) {
    previous.Return();
    throw;
  }
  restored.updated = std::move(usable.Updated());
  OpenRestored(session, source, from, windows, restored);
  session.prompt.Tell("Restore Complete", RestoredText(restored));
  return restored;
}

}  // namespace vellumark
