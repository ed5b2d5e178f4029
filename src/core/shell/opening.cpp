#include "core/shell/opening.h"

#include <fmt/format.h>

#include <algorithm>
#include <system_error>
#include <utility>

#include "core/backup/deep_check.h"
#include "core/base/files.h"
#include "core/base/progress_run.h"
#include "core/base/text.h"
#include "core/batch/leave.h"
#include "core/colors/guide_database.h"
#include "core/colors/rollup.h"
#include "core/datafile/cost_decimals.h"
#include "core/datafile/databases.h"
#include "core/datafile/file_kind.h"
#include "core/datafile/lifecycle.h"
#include "core/datafile/stock_history.h"
#include "core/datafile/stock_joins.h"
#include "core/jobs/photo_library.h"
#include "core/session/settings.h"
#include "core/session/users.h"
#include "core/settings/support_files.h"
#include "core/shell/archiving.h"

namespace vellumark {
namespace fs = std::filesystem;

namespace {

void ShowMessageAsStart(Session& session, OpeningWindows& windows, std::string message) {
  session.StartupMessage = std::move(message);
  windows.ShowNewDataFile(session.StartupMessage);
}

// Whether the session's own Data File could be used instead. One that cannot be read is not at hand.
bool UsableFileAtHand(const Session& session) {
  std::error_code ignored;
  if (session.DataFileName.empty() || !fs::exists(session.DataFileName, ignored)) return false;
  if (session.DataFileDB) return true;
  try {
    return ReadFileVersion(session.DataFileName) <= kFileVersion;
  } catch (const Failure&) {
    return false;
  }
}

// What the opening can see at a glance is told; the file is used as far as it can be. Open Batches of a killed program
// are no fault here: they are closed, and told, in a moment.
void TellWhatIsUnsound(Session& session) {
  const CheckAnswer check = CheckDataFileRules(session, CheckDepth::Opening, CheckState::InUse);
  if (check.Sound()) return;
  std::string text = fmt::format("{} is not sound:\n", session.DataFileName);
  constexpr std::size_t kMostLines = 10;
  for (std::size_t i = 0; i < check.faults.size() && i < kMostLines; ++i) text += "\n" + FaultText(check.faults[i]);
  if (check.faults.size() > kMostLines) text += fmt::format("\nand {} more", check.faults.size() - kMostLines);
  session.prompt.Tell("Data File", text, Icon::Exclamation);
}

// The state in which no file is open.
void LeaveFile(Session& session) {
  session.RecordsetsOpen = false;
  session.templateDB.reset();
  session.DataFileDB.reset();
  session.DataFileOpen = false;
  session.ArchiveView = false;
  session.databaseList.clear();
  session.CurrentDatabase.clear();
  session.FullName.clear();
  session.CurrentUser.clear();
  session.CostChanged = session.VOCChanged = session.HAPChanged = false;
}

// A template that cannot be read must not keep a Database shut: it opens without its guides.
std::unique_ptr<Database> OpenTemplate(const Session& session, std::string& templateFile, const fs::path& path) {
  if (templateFile.empty()) return nullptr;
  try {
    return Database::Open(path, OpenMode::ReadOnly);
  } catch (const Failure& failure) {
    templateFile.clear();
    session.prompt.Tell(
        "Color Guides",
        fmt::format("The template {} cannot be used: {}.\nThe Database {} is opened without its guides.",
                    failure.subject, failure.cause, session.CurrentDatabase),
        Icon::Exclamation);
    return nullptr;
  }
}

std::unique_ptr<Database> OpenFile(Session& session) {
  auto file = Database::Open(session.DataFileName, session.ArchiveView ? OpenMode::ReadOnly : OpenMode::Exclusive);
  file->SetChanges(&session.changes);
  return file;
}

// False when the template holds none of the guides; nothing was made then.
bool MakeOfFirstGuides(Session& session, const std::string& name) {
  std::vector<std::string> codes;
  for (const Guide* guide : GuidesInTemplate(session))
    if (std::ranges::find(kFirstGuides, guide->code) != kFirstGuides.end()) codes.emplace_back(guide->code);
  if (codes.empty()) return false;
  Transaction transaction(session.File());
  if (const auto made = CreateGuideDatabase(session, name, codes); !made)
    throw Failure(session.DataFileName, made.error().text);
  StoreCurrentDatabase(session.File(), name);
  transaction.Commit();
  return true;
}

// For the work files of conversions. Where it cannot be made, whoever writes into it says so.
void MakeConversionFolder(const Session& session) {
  try {
    MakeFolder(session.ProgramFolder / "Converted");
  } catch (const Failure&) {
    return;
  }
}

// Files of photos that a session which died had still to write or to remove. Where the folder cannot be written the
// steps stand until the next time.
void FinishPhotosOrTell(Session& session) {
  try {
    RunPhotoSteps(session);
  } catch (const Failure& failure) {
    session.prompt.Tell("Design Photos", fmt::format("{}: {}.", failure.subject, failure.cause), Icon::Exclamation);
  }
}

// What follows once the file is in the session's hands.
void OpenContent(Session& session, const FileInfoRow& info, OpeningWindows& windows) {
  windows.SetCaption(VersionCaption() + "   -   " + session.DataFileName);
  session.BatchNumber = info.batchNumber;
  session.ItemNumber = info.itemNumber;
  session.DataFileOpen = true;
  session.databaseList = info.dbList;
  if (!session.ArchiveView) session.File().CompleteLayout(info.dbList);
  TellWhatIsUnsound(session);
  if (!session.ArchiveView) {
    SettleCostDecimals(session.File(), info.dbList, session.DecimalPlaces);
    if (HasStockHistory(session.File())) {
      BringStockHistoryUpToDate(session.File(), info.dbList);
    } else {
      BeginStockHistory(session.File(), info.dbList, session.clock.Now(), session.CurrentUser);
    }
  }
  const auto logIn = [&] { UsersEnabled(session) ? windows.Login(session) : LogInWithoutUsers(session); };
  if (info.dbList.empty()) {
    MakeFirstDatabase(session);
    logIn();
  } else {
    logIn();
    const auto current =
        std::ranges::find_if(info.dbList, [&](const std::string& name) { return EqualNoCase(name, info.currentDB); });
    session.CurrentDatabase = current != info.dbList.end() ? *current : info.dbList.front();
    OpenDatabase(session);
    if (!session.ArchiveView) {
      UndoUnfinishedArchiveOrTell(session);
      HealAbandonedBatches(session);
      FinishPhotosOrTell(session);
      RunPendingPassesOrTell(session);  // what a session that died left to do
      windows.SuggestArchive(session);
    }
  }
  MakeConversionFolder(session);
}

}  // namespace

std::string VersionCaption() {
  return "Version " VELLUMARK_VERSION;
}

std::optional<std::string> CheckDataFile(Session& session, const std::string& path, OpeningWindows& windows) {
  session.StartupMessage.clear();
  if (path.empty()) {
    windows.ShowNewDataFile({});
    return std::nullopt;
  }
  std::error_code ignored;
  if (!fs::exists(path, ignored)) {
    ShowMessageAsStart(session, windows, path + " file does not exist.");
    return std::nullopt;
  }
  const DataFileKind kind = session.DataFileDB && session.DataFileDB->Path() == path
                                ? DataFileKind{false, ReadFileInfo(*session.DataFileDB).fileVersion}
                                : LookAtDataFile(path);
  const int version = kind.version;
  const VersionGate gate = GateOf(version);
  if (gate == VersionGate::Unusable) {
    session.StartupMessage = UnusableText(path, version);
    if (UsableFileAtHand(session)) {
      session.prompt.Tell("Data File", session.StartupMessage + std::string(50, ' '), Icon::Exclamation);
    } else {
      windows.ShowNewDataFile(session.StartupMessage);
    }
    return std::nullopt;
  }
  if (gate != VersionGate::Older && !kind.jet) return path;
  if (const auto updated = windows.ShowUpdateDataFile(path, version)) return updated->string();
  ShowMessageAsStart(session, windows,
                     fmt::format("Updating {}\nfrom file version {} to file version {}\n failed.\n\n"
                                 "Try using another data file.",
                                 path, version, kFileVersion));
  return std::nullopt;
}

void OpenDataFile(Session& session, OpeningWindows& windows) {
  if (session.DataFileName.empty()) return;
  const std::string named = session.DataFileName;
  const bool archiveBefore = session.ArchiveView;
  bool taken = false;
  try {
    // What stands beside a file stands beside the real one, also when a link leads to it.
    session.DataFileName = RealPath(named).string();
    session.ArchiveView = IsArchiveCopy(ReadFileVersion(session.DataFileName), session.DataFileName);
    auto file = OpenFile(session);
    const FileInfoRow info = ReadFileInfo(*file);
    session.DataFileDB = std::move(file);
    taken = true;
    OpenContent(session, info, windows);
  } catch (...) {
    if (taken) {
      LeaveFile(session);
      windows.SetCaption(VersionCaption());
    }
    session.DataFileName = named;
    session.ArchiveView = archiveBefore;
    throw;
  }
}

void CloseDataFile(Session& session, OpeningWindows& windows) {
  RunPendingPassesOrTell(session);
  session.progress.Begin("Closing File ...");
  LeaveFile(session);
  windows.SetCaption(VersionCaption());
  session.progress.End();
}

void StoreDefaultDataFile(Session& session, const std::string& name) {
  try {
    StoreSettings(session, {setting::DbFileName50.To(name)});
  } catch (const Failure& failure) {
    session.prompt.Tell(
        "Data File",
        fmt::format("{} could not be stored as the default Data File.\n{}: {}.", name, failure.subject, failure.cause),
        Icon::Exclamation);
  }
}

void CreateDataFile(Session& session, const fs::path& path, OpeningWindows& windows, const std::string& database,
                    FirstContent content) {
  {
    const ProgressRun progress(session.progress, "Creating Data File ...");
    RequireFreeName(path);
    FileBeside place(path, Readers::Group);
    auto file = CreateBeside(place);
    if (session.DataFileOpen) {
      CloseDataFile(session, windows);
      windows.ShutdownBackup(session, "AutoBackup");
    }
    session.DataFileName = place.Target().string();
    session.DataFileDB = std::move(file);
    try {
      WorkBeside(place, [&] { MakeFirstDatabase(session, database, content); });
    } catch (...) {
      LeaveFile(session);
      throw;
    }
    LeaveFile(session);
    place.TakeFreePlace();
  }
  StoreDefaultDataFile(session, session.DataFileName);
}

void ReopenWorkingSets(Session& session) {
  session.RecordsetsOpen = false;
  try {
    session.DataFileDB.reset();
    session.DataFileDB = OpenFile(session);
    OpenDatabase(session);
  } catch (...) {
    LeaveFile(session);
    throw;
  }
}

void CompactDataFile(Session& session) {
  session.RecordsetsOpen = false;
  try {
    CompactFile(session.File());
  } catch (const Failure&) {
    ReopenWorkingSets(session);
    throw;
  }
  ReopenWorkingSets(session);
}

OpenedDatabase::OpenedDatabase(Session& session) {
  session.LoadingDatabase = true;
  session.progress.Begin("Opening Database ...");
  // Whatever fails, the main window must be able to close again.
  const struct Finish {
    Session& session;
    ~Finish() {
      session.LoadingDatabase = false;
      session.progress.End();
    }
  } finish{session};

  Database& file = session.File();
  const DatabaseInfo info = ReadDatabaseInfo(file, session.CurrentDatabase);
  fullName_ = info.fullName;
  const fs::path templatePath = TemplatePath(session);
  if (!templatePath.empty()) {
    disclaimer_ = info.disclaimer;
    tradeMark_ = info.tradeMark;
    templateFile_ = info.templateFile;
  }
  // What cannot be read fails here, before anything comes into force.
  for (const Table* table : {&schema::Basic, &schema::Mix, &schema::Batch})
    file.Scalar("SELECT 1 FROM " + session.QuotedTable(*table) + " LIMIT 1");
  file.Scalar("SELECT 1 FROM " + Quoted(schema::JobRecords.name) + " LIMIT 1");
  template_ = OpenTemplate(session, templateFile_, templatePath);
}

void OpenedDatabase::Exchange(Session& session) {
  std::swap(session.FullName, fullName_);
  std::swap(session.Disclaimer, disclaimer_);
  std::swap(session.TradeMark, tradeMark_);
  std::swap(session.TemplateFile, templateFile_);
  std::swap(session.templateDB, template_);
  std::swap(session.RecordsetsOpen, open_);
}

void OpenDatabase(Session& session) {
  OpenedDatabase(session).Exchange(session);
}

Result<void> ChangeDatabase(Session& session, std::string_view name, bool remember) {
  const auto found =
      std::ranges::find_if(session.databaseList, [&](const std::string& listed) { return EqualNoCase(listed, name); });
  if (found == session.databaseList.end())
    return Refuse("Database Not Found",
                  fmt::format("The {} Data File has no Database named {}.", session.DataFileName, name), "cmbDBList");
  if (*found == session.CurrentDatabase) return {};
  RunPendingPasses(session);
  const std::string before = std::exchange(session.CurrentDatabase, *found);
  try {
    OpenedDatabase opened(session);
    if (remember && !session.ArchiveView) StoreCurrentDatabase(session.File(), *found);
    opened.Exchange(session);
  } catch (...) {
    session.CurrentDatabase = before;
    throw;
  }
  // The list of Databases, and windows that stay open across the change, show the new one.
  session.changes.Tell({{Change::Kind::DatabaseList, *found, "", Change::What::All, ""}});
  return {};
}

void MakeFirstDatabase(Session& session, const std::string& name, FirstContent content) {
  std::string lacking;  // why the Database has no guides
  bool made = false;
  const std::string templatePath = TemplatePath(session).string();
  if (content == FirstContent::Guides && templatePath.empty()) {
    lacking = "There is no template of color guides.";
  } else if (content == FirstContent::Guides) {
    try {
      made = MakeOfFirstGuides(session, name);
      if (!made) lacking = fmt::format("The template {} holds none of the guides of a first Database.", templatePath);
    } catch (const Failure& failure) {
      if (failure.subject != templatePath) throw;
      lacking = fmt::format("The template {} cannot be used: {}.", templatePath, failure.cause);
    } catch (const BadValue& bad) {
      lacking = fmt::format("The template {} cannot be used: {}.", templatePath, bad.what());
    }
  }
  if (!made) {
    Transaction transaction(session.File());
    CreateEmptyDatabase(session.File(), name);
    StoreCurrentDatabase(session.File(), name);
    transaction.Commit();
  }
  session.databaseList = {name};
  session.CurrentDatabase = name;
  OpenDatabase(session);
  if (!lacking.empty())
    session.prompt.Tell(
        "New Database",
        fmt::format("{}\nThe Database {} is therefore empty.\n\n{}", lacking, name, HowToGetTemplate(session)),
        Icon::Information);
}

}  // namespace vellumark
