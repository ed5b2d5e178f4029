#include "core/shell/startup.h"

#include <fmt/format.h>

#include <algorithm>
#include <system_error>

#include "core/base/files.h"
#include "core/base/number.h"
#include "core/base/text.h"
#include "core/base/units.h"
#include "core/datafile/databases.h"
#include "core/datafile/lifecycle.h"
#include "core/session/settings.h"
#include "core/settings/catalogue.h"
#include "core/shell/data_files.h"
#include "core/shell/settings_restore.h"

namespace vellumark {
namespace fs = std::filesystem;

namespace {

class OpenFileOfLadder final : public LadderDataFile {
 public:
  explicit OpenFileOfLadder(Session& session) : session_(session) {}
  void SetDaysToRemindBackup(int days) override {
    if (session_.ArchiveView) return;
    StoreDaysToRemindBackup(session_.File(), days);
  }
  fs::path Folder() const override { return fs::path(session_.DataFileName).parent_path(); }

 private:
  Session& session_;
};

std::string Unquoted(std::string_view text) {
  text = TrimView(text);
  if (text.starts_with('"')) text.remove_prefix(1);
  if (text.ends_with('"')) text.remove_suffix(1);
  return std::string(text);
}

void TakeDataFileName(Session& session, const std::string& name) {
  session.DataFileName = name;
  StoreDefaultDataFile(session, name);
}

// A Data File of an older installation, the most trusted first.
void LookForOlderFile(Session& session) {
  std::error_code ignored;
  const fs::path standard = session.ProgramFolder / kDefaultDataFile;
  if (fs::exists(standard, ignored)) {
    TakeDataFileName(session, standard.string());
    return;
  }
  const SupportFile previous(session.DataFolder / "vk5suvdf.dat", RecordShape::KeyValue);
  if (!previous.Exists()) return;
  const std::string old = previous.Read().Get(setting::DbFileName40.key);
  if (old.empty() || !fs::exists(old, ignored)) return;
  if (const auto copy = BringOlderFileOver(session, old, "Your most recently used Vellumark 4.0.9 database was found."))
    TakeDataFileName(session, copy->string());
}

// A settings file that was emptied, or is something else, holds none that could be in force. What it is is kept beside.
// What was found and done; nothing for a file that is usable or missing.
std::string ClearUnusableSettings(const SupportFile& file) {
  if (!file.Exists()) return {};
  const SupportRecords records = file.Read();
  if (std::ranges::any_of(records.Records(), [](const SupportRecord& one) { return FindSetting(one.key) != nullptr; }))
    return {};
  const std::string bytes = ReadFileBytes(file.Path());
  if (bytes.empty()) return fmt::format("{} is no settings file: it is empty.\n", file.Path().string());
  fs::path kept = file.Path();
  kept.replace_filename("vk50suvdf unusable.dat");
  if (Stands(kept)) kept = NextFreeName(kept);
  RenameToFree(file.Path(), kept);
  return fmt::format("{} is no settings file: it holds no setting. It is kept as {}.\n", file.Path().string(),
                     kept.filename().string());
}

// What cannot be read is nobody's to remove.
bool NeverGotADatabase(Session& session) {
  if (!session.DataFileOpen || session.RecordsetsOpen || session.ArchiveView || !session.DataFileDB) return false;
  try {
    return HoldsNoDatabase(session.File());
  } catch (const Failure&) {
    return false;
  }
}

}  // namespace

bool PrepareSupportFiles(Session& session, const Folders& folders) {
  session.DataFolder = folders.data;
  session.BackupsFolder = folders.data / "Backups";
  session.ProgramFolder = folders.program;
  session.ShippedFolder = folders.shipped;
  MakeDataFolder(folders.data);
  FinishSettingsRestore(folders.data);
  session.support = std::make_unique<SupportFiles>(folders.data);
  const std::string unusable = ClearUnusableSettings(session.support->settings);
  const WrittenSupportFiles written = WriteMissingSupportFiles(*session.support);
  session.DataFileName = GetSetting(session, setting::DbFileName50);
  ReadSettings(session);
  if (!unusable.empty())
    session.prompt.Tell("Settings",
                        fmt::format("{}A new one with all defaults stands in its place: stock is kept in {}, Batches in {}, "
                                    "Lotted Inventory is {}.\nSet them anew, or restore the settings of a backup.",
                                    unusable, UnitName(session.UMI), UnitName(session.UMF),
                                    session.InvLotTracking == 1 ? "in use" : "off"),
                        Icon::Exclamation);
  return written.settings;
}

void RunSupportLadder(Session& session) {
  OpenFileOfLadder file(session);
  if (RunLadder(*session.support, session.DataFileOpen ? &file : nullptr)) ReadSettings(session);
  TellUnusableSettings(session);
}

bool StartUp(Session& session, const StartOptions& options, StartupWindows& windows) {
  session.DataFolder = options.folders.data;
  MakeDataFolder(session.DataFolder);
  if (windows.AnotherInstanceRuns(session)) {
    session.prompt.Tell(
        "The Vellumark is already running",
        "The Vellumark is already running on this computer. If this computer is on a network, another user may be "
        "running "
        "The Vellumark at another workstation. If this is a stand-alone PC, click the Vellumark icon on your Taskbar.",
        Icon::Exclamation);
    return false;
  }
  windows.ShowMainWindow(VersionCaption());
  if (PrepareSupportFiles(session, options.folders)) windows.ShowNewSetup(session);
  if (!options.dataFileArgument.empty()) {
    std::error_code ignored;
    const fs::path named = Unquoted(options.dataFileArgument);
    const fs::path absolute = fs::absolute(named, ignored);
    TakeDataFileName(session, (absolute.empty() ? named : absolute).string());
  }
  ReadSettings(session);
  windows.TakePrinter(session);
  windows.PrepareCloud(session);
  session.DataFileOpen = session.RecordsetsOpen = session.LoadingDatabase = false;
  if (session.DataFileName.empty()) LookForOlderFile(session);
  OpenRecentDataFile(session, windows);
  RunSupportLadder(session);
  windows.LoadScalePort(session);
  windows.ShowSplash();
  windows.ShowCloudLine(session);
  return true;
}

bool MayEnd(Session& session, StartupWindows& windows) {
  if (session.LoadingDatabase) return false;
  if (!GetSetting(session, setting::RemindBackup) && session.RecordsetsOpen) {
    windows.CloseAllChildWindows();
    windows.RemindBackup(session);
  }
  return true;
}

void EndSession(Session& session, StartupWindows& windows) {
  const bool removes = NeverGotADatabase(session);
  CloseDataFile(session, windows);
  windows.ShutdownBackup(session, "AutoBackup");
  std::error_code error;
  if (removes) fs::remove(session.DataFileName, error);
  if (session.ScalePowered == 1) windows.PowerOffScale(session);
  if (error) throw Failure(session.DataFileName, "cannot be removed: " + error.message());
}

}  // namespace vellumark
