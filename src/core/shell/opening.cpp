#include "core/shell/opening.h"

#include <fmt/format.h>

#include <algorithm>
#include <system_error>

#include "core/base/progress_run.h"
#include "core/base/text.h"
#include "core/batch/leave.h"
#include "core/colors/guide_database.h"
#include "core/colors/rollup.h"
#include "core/datafile/databases.h"
#include "core/datafile/lifecycle.h"
#include "core/datafile/stock_history.h"
#include "core/session/users.h"

namespace vellumark {
namespace fs = std::filesystem;

namespace {

void ShowMessageAsStart(Session& session, OpeningWindows& windows, std::string message) {
  session.StartupMessage = std::move(message);
  windows.ShowNewDataFile(session.StartupMessage);
}

std::string UnusableText(const std::string& path, int version) {
  return fmt::format(
      "Data File: {}\nhas a file version of: {}\n\nVellumark {} can only use data files up to version: {}\n\n"
      "Consider the following options:\n1) Update this Vellumark Software\n2) Create a new data file\n"
      "3) Open another data file\n4) Restore from another file",
      path, version, VELLUMARK_VERSION, kFileVersion);
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

void CloseWorkingSets(Session& session) {
  session.BasicRS.reset();
  session.MixRS.reset();
  session.BatchRS.reset();
  session.RecordsetsOpen = false;
}

void OpenWorkingSets(Session& session) {
  Database& file = session.File();
  session.BasicRS.emplace(file, schema::Basic, session.Table(schema::Basic), std::vector<std::string>{"Color_Name"});
  session.BasicRS->MoveFirst();
  session.MixRS.emplace(file, schema::Mix, session.Table(schema::Mix), std::vector<std::string>{"Color_Name"});
  session.MixRS->MoveFirst();
  session.BatchRS.emplace(file, schema::Batch, session.Table(schema::Batch), std::vector<std::string>{"BatchNo"});
  session.BatchRS->MoveLast();
  if (!session.JobRS)
    session.JobRS.emplace(file, schema::JobRecords, schema::JobRecords.name,
                          std::vector<std::string>{"JobNumber", "Date_Entered"});
  session.RecordsetsOpen = true;
}

// A template that cannot be read must not keep a Database shut: it opens without its guides.
void OpenTemplate(Session& session, const fs::path& path) {
  session.templateDB.reset();
  if (session.TemplateFile.empty()) return;
  try {
    session.templateDB = Database::Open(path, OpenMode::ReadOnly);
  } catch (const Failure& failure) {
    session.TemplateFile.clear();
    session.prompt.Tell(
        "Color Guides",
        fmt::format("The template {} cannot be used: {}.\nThe Database {} is opened without its guides.",
                    failure.subject, failure.cause, session.CurrentDatabase),
        Icon::Exclamation);
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

// The flags of pending passes are the session's, and tell nothing of which Database they are for: what is pending runs
// before that Database is left, so that a backup and the next session find figures that belong together.
void RunPassesBeforeLeaving(Session& session) {
  if (!session.DataFileDB || session.CurrentDatabase.empty()) return;
  if (session.File().TableExists(session.Table(schema::Mix))) RunPendingPasses(session);
}

}  // namespace

std::string VersionCaption() {
  return "Version " VELLUMARK_VERSION;
}

bool CheckDataFile(Session& session, const std::string& path, OpeningWindows& windows) {
  session.StartupMessage.clear();
  if (path.empty()) {
    windows.ShowNewDataFile({});
    return false;
  }
  std::error_code ignored;
  if (!fs::exists(path, ignored)) {
    ShowMessageAsStart(session, windows, path + " file does not exist.");
    return false;
  }
  const int version = session.DataFileDB && session.DataFileDB->Path() == path
                          ? ReadFileInfo(*session.DataFileDB).fileVersion
                          : ReadFileVersion(path);
  switch (GateOf(version)) {
    case VersionGate::Current:
    case VersionGate::ReadOnly:
      return true;
    case VersionGate::Unusable:
      session.StartupMessage = UnusableText(path, version);
      if (UsableFileAtHand(session)) {
        session.prompt.Tell("Data File", session.StartupMessage + std::string(50, ' '), Icon::Exclamation);
      } else {
        windows.ShowNewDataFile(session.StartupMessage);
      }
      return false;
    case VersionGate::Older:
      break;
  }
  if (windows.ShowUpdateDataFile(path, version)) return true;
  ShowMessageAsStart(session, windows,
                     fmt::format("Updating {}\nfrom file version {} to file version {}\n failed.\n\n"
                                 "Try using another data file.",
                                 path, version, kFileVersion));
  return false;
}

void OpenDataFile(Session& session, OpeningWindows& windows) {
  if (session.DataFileName.empty()) return;
  const int version = ReadFileVersion(session.DataFileName);
  const bool archiveBefore = std::exchange(session.ArchiveView, IsArchiveCopy(version, session.DataFileName));
  std::unique_ptr<Database> file;
  FileInfoRow info;
  try {
    file = OpenFile(session);
    info = ReadFileInfo(*file);
  } catch (const Failure&) {
    session.ArchiveView = archiveBefore;
    throw;
  }
  session.DataFileDB = std::move(file);
  windows.SetCaption(VersionCaption() + "   -   " + session.DataFileName);
  session.BatchNumber = info.batchNumber;
  session.ItemNumber = info.itemNumber;
  session.DataFileOpen = true;
  session.databaseList = info.dbList;
  if (!session.ArchiveView && !HasStockHistory(session.File()))
    BeginStockHistory(session.File(), info.dbList, session.clock.Now(), session.CurrentUser);
  const auto logIn = [&] { UsersEnabled(session) ? windows.Login(session) : LogInWithoutUsers(session); };
  if (info.dbList.empty()) {
    MakeFirstDatabase(session);
    logIn();
    return;
  }
  logIn();
  const auto current =
      std::ranges::find_if(info.dbList, [&](const std::string& name) { return EqualNoCase(name, info.currentDB); });
  session.CurrentDatabase = current != info.dbList.end() ? *current : info.dbList.front();
  OpenDatabase(session);
  if (!session.ArchiveView) {
    HealAbandonedBatches(session);
    windows.SuggestArchive(session);
  }
  // For the work files of conversions. Where it cannot be made, whoever writes into it says so.
  std::error_code ignored;
  fs::create_directories(session.ProgramFolder / "Converted", ignored);
}

void CloseDataFile(Session& session, OpeningWindows& windows) {
  try {
    RunPassesBeforeLeaving(session);
  } catch (const Failure& failure) {
    // The file must be left all the same.
    session.prompt.Tell("Master Formulas", failure.subject + "\n" + failure.cause + ".", Icon::Exclamation);
  }
  session.progress.Begin("Closing File ...");
  CloseWorkingSets(session);
  session.JobRS.reset();
  session.templateDB.reset();
  session.DataFileDB.reset();
  session.DataFileOpen = false;
  session.ArchiveView = false;
  session.databaseList.clear();
  session.CurrentDatabase.clear();
  session.FullName.clear();
  session.CurrentUser.clear();
  session.CostChanged = session.VOCChanged = session.HAPChanged = false;
  windows.SetCaption(VersionCaption());
  session.progress.End();
}

void CreateDataFile(Session& session, const fs::path& path, OpeningWindows& windows) {
  const ProgressRun progress(session.progress, "Creating Data File ...");
  CreateFile(path);
  if (session.DataFileOpen) {
    CloseDataFile(session, windows);
    windows.ShutdownBackup(session, "AutoBackup");
  }
  session.DataFileName = path.string();
  SetSupportValue(session, "dbFileName50", session.DataFileName);
}

void ReopenWorkingSets(Session& session) {
  CloseWorkingSets(session);
  session.JobRS.reset();
  session.DataFileDB = OpenFile(session);
  OpenWorkingSets(session);
}

void CompactDataFile(Session& session) {
  CloseWorkingSets(session);
  session.JobRS.reset();
  session.DataFileDB.reset();
  try {
    CompactFile(session.DataFileName);
  } catch (const Failure&) {
    ReopenWorkingSets(session);
    throw;
  }
  ReopenWorkingSets(session);
}

void OpenDatabase(Session& session) {
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

  CloseWorkingSets(session);
  const DatabaseInfo info = ReadDatabaseInfo(session.File(), session.CurrentDatabase);
  session.FullName = info.fullName;
  const fs::path templatePath = TemplatePath(session);
  const bool hasTemplate = !templatePath.empty();
  session.Disclaimer = hasTemplate ? info.disclaimer : "";
  session.TradeMark = hasTemplate ? info.tradeMark : "";
  session.TemplateFile = hasTemplate ? info.templateFile : "";
  OpenWorkingSets(session);
  OpenTemplate(session, templatePath);
}

Result<void> ChangeDatabase(Session& session, std::string_view name, bool remember) {
  const auto found =
      std::ranges::find_if(session.databaseList, [&](const std::string& listed) { return EqualNoCase(listed, name); });
  if (found == session.databaseList.end())
    return Refuse("Database Not Found",
                  fmt::format("The {} Data File has no Database named {}.", session.DataFileName, name), "cmbDBList");
  if (*found == session.CurrentDatabase) return {};
  RunPassesBeforeLeaving(session);
  session.CurrentDatabase = *found;
  if (remember && !session.ArchiveView) StoreCurrentDatabase(session.File(), *found);
  OpenDatabase(session);
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

std::int32_t NextBatchNumber(Session& session) {
  return session.BatchNumber = StepBatchNumber(session.File(), session.BatchNumber);
}

std::int32_t NextItemNumber(Session& session) {
  return session.ItemNumber = StepItemNumber(session.File(), session.ItemNumber);
}

}  // namespace vellumark
