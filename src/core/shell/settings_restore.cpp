#include "core/shell/settings_restore.h"

#include <fmt/format.h>

#include <array>
#include <system_error>

#include "core/backup/backup_set.h"
#include "core/base/files.h"
#include "core/base/progress_run.h"
#include "core/base/text.h"
#include "core/base/units.h"
#include "core/session/acts.h"
#include "core/session/settings.h"
#include "core/settings/ladder.h"
#include "core/settings/support_files.h"
#include "core/shell/support_renewal.h"

namespace vellumark {
namespace fs = std::filesystem;

namespace {

// Under this name the files climb; under the other one they are whole, and it is settled that they are taken.
constexpr std::string_view kClimbing = ".restored settings";
constexpr std::string_view kSettled = ".settings to take";

std::array<const SupportFile*, 5> All(const SupportFiles& files) {
  return {&files.settings, &files.scale, &files.label, &files.hazardLabel, &files.formulaLabel};
}

void Remove(const fs::path& folder) {
  std::error_code error;
  fs::remove_all(folder, error);
  if (error) throw Failure(folder.string(), "cannot be removed: " + error.message());
}

bool Exists(const fs::path& path) {
  std::error_code ignored;
  return fs::exists(path, ignored);
}

// Copies of a set's Support Files, brought to the present version.
class ClimbedFiles {
 public:
  ClimbedFiles(const fs::path& dataFolder, const fs::path& from) : folder_(dataFolder / kClimbing), files_(folder_) {
    Remove(folder_);
    MakeFolder(folder_);
    for (const SupportFile* file : All(files_))
      if (const fs::path source = from / file->Path().filename(); Exists(source))
        ReplaceFile(file->Path(), ReadFileBytes(source), Readers::Group);
    WriteMissingSupportFiles(files_);
    RunLadder(files_, nullptr);
  }
  ~ClimbedFiles() {
    std::error_code ignored;
    fs::remove_all(folder_, ignored);
  }
  ClimbedFiles(const ClimbedFiles&) = delete;
  ClimbedFiles& operator=(const ClimbedFiles&) = delete;

  SupportFile& Settings() { return files_.settings; }
  const SupportFiles& Files() const { return files_; }
  /// From here on the files are taken, whatever happens.
  void Settle() const { RenameToFree(folder_, folder_.parent_path() / kSettled); }

 private:
  fs::path folder_;
  SupportFiles files_;
};

// Renames need no room on the disk and cut no file in half; what has its place already is no longer in the folder.
void PlaceSettled(const fs::path& dataFolder) {
  const fs::path settled = dataFolder / kSettled;
  const SupportFiles places(dataFolder);
  for (const SupportFile* file : All(places)) {
    const fs::path taken = settled / file->Path().filename();
    if (!Exists(taken)) continue;
    if (const std::error_code error = platform::Replace(taken, file->Path()))
      throw Failure(file->Path().string(),
                    error.message() + "; the settings of the backup are taken at the next start");
  }
  SyncFolder(dataFolder);
  Remove(settled);
}

// The present files give way to the climbed ones.
void TakeSupportFiles(Session& session, const ClimbedFiles& climbed) {
  const fs::path kept = session.BackupsFolder / ("Before " + SetName(session.clock.Now()));
  MakeFolder(kept);
  const FolderLock lock(session.DataFolder);
  const auto theirs = All(climbed.Files());
  for (std::size_t i = 0; const SupportFile* mine : All(*session.support)) {
    const fs::path& prepared = theirs[i++]->Path();
    if (!mine->Exists()) continue;
    ReplaceFile(kept / mine->Path().filename(), ReadFileBytes(mine->Path()), Readers::Group);
    if (!Exists(prepared)) continue;
    std::error_code error;
    const platform::OpenFile file = platform::OpenExisting(prepared, platform::Opening::Write, error);
    if (!error) error = platform::KeepOwner(file, mine->Path());
    if (error) throw Failure(prepared.string(), error.message());
  }
  climbed.Settle();
  PlaceSettled(session.DataFolder);
}

}  // namespace

Result<bool> RestoreSupportFiles(Session& session, const fs::path& folder, RestoreFrom from) {
  if (auto allowed = RequireAct(session, Act::DataFiles); !allowed) return std::unexpected(allowed.error());
  std::error_code ignored;
  if (!fs::exists(folder / session.support->settings.Path().filename(), ignored))
    return Refuse("Select a Support File",
                  fmt::format("There are no Support Files in {}.", folder.string()), "DIR");
  FinishSettingsRestore(session.DataFolder);
  ClimbedFiles climbed(session.DataFolder, folder);
  SupportRecords settings = climbed.Settings().Read();
  const int unit = ParseUnit(settings.Get(setting::UMI.key)).value_or(session.UMI);
  if (unit != session.UMI) {
    const bool takes = session.prompt.Ask(
        "Restore Unit",
        fmt::format("In these Support Files stock is kept in {}, here in {}. The figures of stock are not converted.\n\n"
                    "'Yes' - Keep stock in {} from now on.\n'No' - Restore the rest and stay with {}.",
                    UnitName(unit), UnitName(session.UMI), UnitName(unit), UnitName(session.UMI)),
        Answer::No);
    if (!takes) settings.Set(setting::UMI.key, std::to_string(session.UMI));
  }
  settings.Set(setting::DbFileName50.key, DataFileToKeep(session));
  climbed.Settings().Write(settings);
  const ProgressRun progress(session.progress, "Restoring Support Files ...");
  TakeSupportFiles(session, climbed);
  ReadSettings(session);
  session.changes.Tell({{Change::Kind::Settings, "", "", Change::What::All, ""}});
  session.prompt.Tell("Restore Complete", from == RestoreFrom::Cloud
                                              ? "Cloud Support Files - Restore Completed Successfully!"
                                              : "Support Files - Restore Completed Successfully!");
  return true;
}

void FinishSettingsRestore(const fs::path& dataFolder) {
  if (!Exists(dataFolder / kSettled)) return;
  const FolderLock lock(dataFolder);
  PlaceSettled(dataFolder);
}

}  // namespace vellumark
