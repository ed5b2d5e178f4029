#include "core/shell/repairs.h"

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <system_error>

#include "core/base/text.h"
#include "core/datafile/lifecycle.h"
#include "core/session/acts.h"
#include "core/session/users.h"

namespace vellumark {
namespace fs = std::filesystem;

namespace {

constexpr std::string_view kTitle = "Repair Data File";

Result<void> MayRepair(const Session& session) {
  if (session.DataFileDB) return RequireAct(session, Act::Work);
  std::error_code ignored;
  if (!fs::exists(session.DataFileName, ignored))
    return Refuse(std::string(kTitle), fmt::format("{} does not exist.", session.DataFileName), "PATH");
  if (IsArchiveCopy(kFileVersion, session.DataFileName))
    return Refuse(std::string(kTitle),
                  fmt::format("{} is an archive or backup copy, which is not changed.", session.DataFileName), "PATH");
  return {};
}

// Of a file that could not be opened nobody knew the user. A table of users that is damaged itself lets nobody in.
Result<void> LogInToCopy(Session& session, OpeningWindows& windows) {
  if (!UsersEnabled(session) || UserNames(session).empty()) return {};
  windows.Login(session);
  return RequireAct(session, Act::Work);
}

// The file in the session's hands again, as it was left or mended.
void Reopen(Session& session, OpeningWindows& windows) {
  const FileInfoRow info = ReadFileInfo(*Database::Open(session.DataFileName, OpenMode::ReadOnly));
  session.databaseList = info.dbList;
  session.BatchNumber = info.batchNumber;
  session.ItemNumber = info.itemNumber;
  const bool there = std::ranges::any_of(
      info.dbList, [&](const std::string& name) { return EqualNoCase(name, session.CurrentDatabase); });
  if (there) return ReopenWorkingSets(session);
  CloseDataFile(session, windows);
  OpenDataFile(session, windows);
}

}  // namespace

Result<RepairReport> RepairDataFile(Session& session, OpeningWindows& windows,
                                    const std::function<bool()>& closeWindows) {
  if (auto allowed = MayRepair(session); !allowed) return std::unexpected(allowed.error());
  const Message question{std::string(kTitle), "Repairing the Data File may take a few minutes.\nClick OK to continue.",
                         Buttons::OkCancel, Icon::Question, Answer::Cancel};
  if (session.prompt.Show(question) != Answer::Ok || !closeWindows()) return Decline(std::string(kTitle));

  const bool wasOpen = session.DataFileOpen;
  const std::string database = session.CurrentDatabase;
  const auto asBefore = [&] {
    session.CurrentDatabase = wasOpen ? database : "";
    if (!wasOpen) session.databaseList.clear();
    if (wasOpen) Reopen(session, windows);
  };
  Result<RepairReport> report;
  try {
    report = MendDataFile(session,
                          [&]() -> Result<void> { return wasOpen ? Result<void>{} : LogInToCopy(session, windows); });
  } catch (...) {
    asBefore();
    throw;
  }
  if (!report) {
    asBefore();
    return report;
  }
  wasOpen ? Reopen(session, windows) : OpenDataFile(session, windows);
  session.changes.Tell({{Change::Kind::DatabaseList, session.CurrentDatabase, "", Change::What::All, ""}});
  for (const std::string& name : report->emptyDatabases)
    session.prompt.Tell(std::string(kTitle), name + " is an empty Database. You may want to delete it.",
                        Icon::Information);
  session.prompt.Tell(std::string(kTitle), "Data File Repairing Completed.", Icon::Information);
  return report;
}

namespace {

constexpr std::string_view kCheckTitle = "Check Data File";

void TellWhenSound(Session& session, const CheckAnswer& answer) {
  if (answer.Sound() && answer.complete)
    session.prompt.Tell(std::string(kCheckTitle),
                        fmt::format("{} is sound.\nEvery row and every rule was checked.", session.DataFileName),
                        Icon::Information);
}

}  // namespace

CheckAnswer CheckOpenDataFile(Session& session) {
  CheckAnswer answer = CheckDataFileRules(session, CheckDepth::Deep, CheckState::InUse);
  TellWhenSound(session, answer);
  return answer;
}

bool HasHandEdits(const CheckAnswer& found) {
  return std::ranges::find(found.faults, "Rows", &CheckFault::rule) != found.faults.end();
}

Result<AcceptedRows> AcceptHandEdits(Session& session) {
  const Message question{std::string(kCheckTitle),
                         "Rows that another program changed will be taken as they stand.\nFigures that follow from them are "
                         "worked out anew.\nClick OK to continue.",
                         Buttons::OkCancel, Icon::Question, Answer::Cancel};
  if (session.prompt.Show(question) != Answer::Ok) return Decline(std::string(kCheckTitle));
  auto accepted = AcceptStrayRows(session);
  if (accepted) TellWhenSound(session, accepted->rest);
  return accepted;
}

}  // namespace vellumark
