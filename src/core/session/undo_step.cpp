#include "core/session/undo_step.h"

#include <fmt/format.h>

#include <utility>

#include "core/datafile/stock_trail.h"
#include "core/datafile/undo_log.h"

namespace vellumark {
namespace {

UndoEntry EntryOf(const Session& session, Act act, std::string what, std::string subject) {
  UndoEntry entry;
  entry.Moment = session.clock.Now();
  entry.Username = session.CurrentUser;
  entry.database = session.CurrentDatabase;
  entry.what = std::move(what);
  entry.act = static_cast<int>(act);
  entry.subject = std::move(subject);
  return entry;
}

// Where what is told of colours of the past ends: Batches, what they took, items of Jobs. What names a colour behind
// these ends used a name that came with the act.
std::vector<std::pair<std::string, std::int64_t>> Ends(const Session& session) {
  std::vector<std::pair<std::string, std::int64_t>> ends;
  const auto add = [&](const std::string& table) {
    ends.emplace_back(table, session.File().Scalar(fmt::format("SELECT MAX(RowKey) FROM {}", Quoted(table))).Whole());
  };
  for (const std::string& database : session.databaseList) add(session.Table(schema::Batch, database));
  add(std::string(schema::JobRecords.name));
  return ends;
}

}  // namespace

UndoStep::UndoStep(Session& session, Act act, std::string what, std::string subject)
    : session_(session),
      act_(act),
      what_(std::move(what)),
      subject_(std::move(subject)),
      lastLine_(LastStockLine(session.File())),
      recorder_(session.File()) {}

void UndoStep::Keep() {
  if (!recorder_.Hears()) return;
  const ChangeRecorder::Heard heard = recorder_.Changes({"Color_Name", "SetName"});
  if (heard.changes.empty()) return;
  UndoEntry entry = EntryOf(session_, act_, what_, subject_);
  entry.firstLine = lastLine_ + 1;
  entry.lastLine = LastStockLine(session_.File());
  if (heard.nameCame) entry.ends = Ends(session_);
  AddUndoEntry(session_.File(), entry, heard.changes);
}

void KeepImportForUndo(Session& session, std::int64_t import, std::string_view source) {
  AddUndoEntry(session.File(),
               EntryOf(session, Act::ImportFormulas, fmt::format("Import {}", source),
                       fmt::format("{}{}", kImportSubject, import)),
               {});
}

}  // namespace vellumark
