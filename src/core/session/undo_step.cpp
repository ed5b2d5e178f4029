#include "core/session/undo_step.h"

#include <fmt/format.h>

#include <array>
#include <utility>

#include "core/datafile/stock_trail.h"
#include "core/datafile/undo_log.h"

namespace vellumark {
namespace {

using enum Undoable;

constexpr std::array kRows{
    UndoableRow{SaveBatch, Act::Work},
    UndoableRow{ChangeBatch, Act::Work},
    UndoableRow{DeleteBatch, Act::Work},
    UndoableRow{TakeOverBatch, Act::Work},
    UndoableRow{AdjustInventory, Act::Work},
    UndoableRow{ResetRowInventories, Act::Work},
    UndoableRow{ResetRowLots, Act::Work},
    UndoableRow{ResetInventories, Act::Work},
    UndoableRow{ResetReorderPoints, Act::Work},
    UndoableRow{SaveReorderPoint, Act::Work},
    UndoableRow{ScanStock, Act::Work},
    UndoableRow{ScanReturn, Act::Work},
    UndoableRow{IssueToJob, Act::Work},
    UndoableRow{SetQtyUsed, Act::Work},
    UndoableRow{DeleteJobItem, Act::Work},
    UndoableRow{RenameJob, Act::Work},
    UndoableRow{CloseJob, Act::Work},
    UndoableRow{SaveBasic, Act::Work},
    UndoableRow{RenameBasic, Act::Work},
    UndoableRow{DeleteBasic, Act::Work},
    UndoableRow{SaveMix, Act::Work},
    UndoableRow{SaveFormula, Act::EditFormulas},
    UndoableRow{DuplicateFormula, Act::EditFormulas},
    UndoableRow{RenameMix, Act::EditFormulas},
    UndoableRow{DeleteMix, Act::EditFormulas},
    UndoableRow{CreateAdditiveSet, Act::AdditiveSets},
    UndoableRow{EditAdditiveSet, Act::AdditiveSets},
    UndoableRow{RenameAdditiveSet, Act::AdditiveSets},
    UndoableRow{DeleteAdditiveSet, Act::AdditiveSets},
    UndoableRow{ApplyAdditiveSet, Act::AdditiveSets},
    UndoableRow{ModifyFormulas, Act::FormulaTools},
    UndoableRow{RenameBasics, Act::FormulaTools},
    UndoableRow{RenameMixes, Act::BulkFormulas},
    UndoableRow{DeleteFormulas, Act::BulkFormulas},
    UndoableRow{ResetCosts, Act::ResetCosts},
    UndoableRow{ResetMixCostsFromBasics, Act::ResetCosts},
    UndoableRow{ResetEmissions, Act::ResetEmissions},
    UndoableRow{SaveDesign, Act::Work},
    UndoableRow{CopyDesign, Act::Work},
    UndoableRow{RenameDesign, Act::Work},
    UndoableRow{DeleteDesign, Act::Work},
    UndoableRow{ImportDesigns, Act::Work},
    UndoableRow{ImportFormulas, Act::ImportFormulas},
};

// Data Files hold the numbers of the acts: a new one goes to the end.
static_assert(static_cast<int>(Act::Work) == 1 && static_cast<int>(Act::Users) == 19);

UndoEntry EntryOf(const Session& session, Undoable kind, std::string what, std::string subject) {
  UndoEntry entry;
  entry.Moment = session.clock.Now();
  entry.Username = session.CurrentUser;
  entry.database = session.CurrentDatabase;
  entry.what = std::move(what);
  entry.act = static_cast<int>(kRows.at(static_cast<std::size_t>(kind)).act);
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

std::span<const UndoableRow> UndoableRows() {
  return kRows;
}

UndoStep::UndoStep(Session& session, Undoable kind, std::string what, std::string subject)
    : session_(session),
      kind_(kind),
      what_(std::move(what)),
      subject_(std::move(subject)),
      lastLine_(LastStockLine(session.File())),
      recorder_(session.File()) {}

void UndoStep::Keep() {
  if (!recorder_.Hears()) return;
  const ChangeRecorder::Heard heard = recorder_.Changes({"Color_Name", "SetName"});
  if (heard.changes.empty()) return;
  UndoEntry entry = EntryOf(session_, kind_, what_, subject_);
  entry.firstLine = lastLine_ + 1;
  entry.lastLine = LastStockLine(session_.File());
  if (heard.nameCame) entry.ends = Ends(session_);
  AddUndoEntry(session_.File(), entry, heard.changes);
}

void KeepImportForUndo(Session& session, std::int64_t import, std::string_view source) {
  AddUndoEntry(session.File(),
               EntryOf(session, Undoable::ImportFormulas, fmt::format("Import {}", source),
                       fmt::format("{}{}", kImportSubject, import)),
               {});
}

}  // namespace vellumark
