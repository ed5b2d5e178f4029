#include "core/shell/database_menu.h"

#include <fmt/format.h>

#include <algorithm>

#include "core/base/progress_run.h"
#include "core/base/text.h"
#include "core/colors/copy_database.h"
#include "core/colors/guide_database.h"
#include "core/datafile/database_changes.h"
#include "core/datafile/databases.h"
#include "core/datafile/lifecycle.h"
#include "core/jobs/design_uses.h"
#include "core/session/acts.h"
#include "core/session/stock_lines.h"
#include "core/shell/opening.h"

namespace vellumark {
namespace {

constexpr std::string_view kDeleteWarning =
    "WARNING - Deleting a database will permanently remove it from the Data File.";

Result<void> RequireDatabaseRight(const Session& session) {
  return RequireAct(session, Act::Databases);
}

Result<std::string> ListedDatabase(const Session& session, std::string_view name) {
  const auto listed = std::ranges::find_if(
      session.databaseList, [&](const std::string& other) { return EqualNoCase(other, TrimView(name)); });
  if (listed == session.databaseList.end())
    return Refuse("Database Not Found",
                  fmt::format("The {} Data File has no Database named {}.", session.DataFileName, name), "cmbDBList");
  return *listed;
}

Result<std::string> NameForRename(const Session& session, std::string_view typedName) {
  std::string name = Upper(TrimView(typedName));
  if (name.empty()) return Refuse("Bad Database Name", "Enter a valid name for the database", "txtDBName");
  if (auto fault = DatabaseNameFault(name)) return Refuse("Bad Database Name", *fault, "txtDBName");
  if (ListedDatabase(session, name))
    return Refuse("Database Name Already Used",
                  name + " Database already exists in this Vellumark Data File. Please choose another name.",
                  "txtDBName");
  return name;
}

// False also when the file cannot tell.
bool FileLists(Session& session, const std::string& name) {
  try {
    const FileInfoRow info = ReadFileInfo(session.File());
    return std::ranges::find(info.dbList, name) != info.dbList.end();
  } catch (const Failure&) {
    return false;
  }
}

Result<std::string> NewEmptyDatabase(Session& session, std::string_view typedName) {
  auto name = NewDatabaseName(typedName, session.databaseList, session.DataFileName);
  if (!name) return name;
  ProgressRun progress(session.progress, "Creating Database ...");
  std::vector<std::string> before = session.databaseList;
  session.databaseList.push_back(*name);
  try {
    CreateEmptyDatabase(session.File(), *name);
  } catch (...) {
    session.databaseList = std::move(before);
    throw;
  }
  return name;
}

}  // namespace

ListTable ListDatabases(const Session& session) {
  const std::string current = ReadFileInfo(session.File()).currentDB;
  return TableOf<std::string>()
      .Add("Database", [](const std::string& name) { return name; })
      .Add("FullName", [&session](const std::string& name) { return ReadDatabaseInfo(session.File(), name).fullName; })
      .Add("Current", [current](const std::string& name) { return EqualNoCase(name, current); })
      .Of(session.databaseList);
}

Result<std::string> NewDatabase(Session& session, std::string_view typedName, const NewDatabaseContent& content) {
  if (auto allowed = RequireDatabaseRight(session); !allowed) return std::unexpected(allowed.error());
  switch (content.kind) {
    case NewDatabaseContent::Kind::Guides:
      return CreateGuideDatabase(session, typedName, content.guides);
    case NewDatabaseContent::Kind::Copy:
      return CopyDatabase(session, TrimView(content.source), typedName);
    default:
      return NewEmptyDatabase(session, typedName);
  }
}

Result<std::string> RenameDatabase(Session& session, std::string_view name, std::string_view typedName) {
  if (auto allowed = RequireDatabaseRight(session); !allowed) return std::unexpected(allowed.error());
  const auto old = ListedDatabase(session, name);
  if (!old) return old;
  auto newName = NameForRename(session, typedName);
  if (!newName) return newName;

  const std::vector<std::string> listBefore = session.databaseList;
  const std::string currentBefore = session.CurrentDatabase;
  std::optional<OpenedDatabase> before;
  try {
    // The Database is open under its new name when the commit tells of it.
    Transaction transaction(session.File());
    RenameDatabaseTables(session.File(), *old, *newName);
    AddDatabaseRenameLines(session.File(), NewStockLine(session, StockEvent::DatabaseRenamed, ColorKind::Basic), *old,
                           *newName);
    std::ranges::replace(session.databaseList, *old, *newName);
    if (*old == currentBefore) {
      session.CurrentDatabase = *newName;
      OpenedDatabase opened(session);
      opened.Exchange(session);
      before.emplace(std::move(opened));
    }
    transaction.Commit();
  } catch (...) {
    // A commit that fails at its last step can stand all the same: the file knows.
    if (FileLists(session, *newName)) throw;
    session.databaseList = listBefore;
    session.CurrentDatabase = currentBefore;
    if (before) before->Exchange(session);
    throw;
  }
  return newName;
}

Result<bool> DeleteDatabases(Session& session, const std::vector<std::string>& names) {
  if (auto allowed = RequireDatabaseRight(session); !allowed) return std::unexpected(allowed.error());
  const std::string stored = ReadFileInfo(session.File()).currentDB;
  std::vector<std::string> chosen;
  for (const std::string& name : names) {
    const auto listed = ListedDatabase(session, name);
    if (!listed) return std::unexpected(listed.error());
    if (EqualNoCase(*listed, session.CurrentDatabase) || EqualNoCase(*listed, stored))
      return Refuse("Delete Databases?",
                    fmt::format("NOTE - The active database {} can't be selected for deletion.", *listed));
    if (std::ranges::find(chosen, *listed) == chosen.end()) chosen.push_back(*listed);
  }
  if (chosen.empty()) return false;
  if (!session.prompt.Ask("Delete Databases?", fmt::format("Delete these databases?\n{}", kDeleteWarning), Answer::No))
    return false;

  std::vector<std::string> before = session.databaseList;
  std::erase_if(session.databaseList,
                [&](const std::string& name) { return std::ranges::find(chosen, name) != chosen.end(); });
  try {
    Transaction transaction(session.File());
    DeleteDatabaseTables(session.File(), chosen);
    FollowLastUsed(session);
    for (const std::string& name : chosen)
      AddDatabaseDeletedLine(session.File(),
                             NewStockLine(session, StockEvent::DatabaseDeleted, ColorKind::Basic, name));
    transaction.Commit();
  } catch (...) {
    session.databaseList = std::move(before);
    throw;
  }
  session.prompt.Tell("Databases Deleted", "Selected databases have been deleted.", Icon::Information);
  return true;
}

}  // namespace vellumark
