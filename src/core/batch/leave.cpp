#include "core/batch/leave.h"

#include <fmt/format.h>

#include "core/base/text.h"
#include "core/batch/bench.h"
#include "core/batch/holding.h"
#include "core/batch/loader.h"
#include "core/batch/made.h"
#include "core/batch/open.h"
#include "core/batch/saving.h"
#include "core/batch/scale_results.h"
#include "core/batch/store.h"
#include "core/batch/takings.h"
#include "core/colors/color_dates.h"
#include "core/datafile/moved_rows.h"
#include "core/jobs/job_records.h"
#include "core/session/undo_step.h"

namespace vellumark {
namespace {

// How an open Batch is left: stored, or as it was on file.
enum class Parting { Stays, Store, Keep };

std::string Padded40(std::string_view title) {
  return std::string(40, ' ') + std::string(title);
}

bool AskWhether(Session& session, std::string title, std::string text, Answer standard = Answer::Yes) {
  return session.prompt.Ask(std::move(title), std::move(text), standard);
}

bool Changed(const Session& session, const BatchRecord& record) {
  return record.formulaUnchanged && !session.ArchiveView && RecordHasChanged(session, record);
}

Parting AskToSave(Session& session, const BatchRecord& record, BatchDialogs& dialogs) {
  if (!PassLotReminder(session, record, dialogs)) return Parting::Stays;
  return AskWhether(session, "Batch Window - Save Information?", "Save this information?") ? Parting::Store
                                                                                           : Parting::Keep;
}

// Next, Previous and Find.
Parting PartFor(Session& session, const BatchRecord& record, BatchDialogs& dialogs) {
  if (!Changed(session, record)) return Parting::Keep;
  if (record.work.Total == 0) {
    const bool stays = AskWhether(session, Padded40("Update Batch"),
                                  "Batch total must be greater than zero.\nRevise and fix the recipe?");
    return stays ? Parting::Stays : Parting::Keep;
  }
  return AskToSave(session, record, dialogs);
}

// Leaves for the Batch of a row, or for the cleared window.
Result<bool> Leave(Session& session, BatchRecord& record, BatchDialogs& dialogs, Parting parting,
                   std::optional<std::int64_t> row) {
  if (parting == Parting::Stays) return false;
  if (parting == Parting::Keep) {
    LeaveFor(session, record, true, row);
    return true;
  }
  if (const auto guarded = PassGuard(session, record); !guarded) return std::unexpected(guarded.error());
  if (!PassShortStock(session, record, dialogs)) return false;
  const auto stored = StoreBatch(session, record, dialogs, {.row = row});
  if (!stored) return std::unexpected(stored.error());
  return *stored != SaveEnd::Stays;
}

// Takes a Batch off the dates of its formula and Basic Colors, which then tell of the Batches that remain.
void ResetDates(Session& session, const std::string& formula, const std::vector<StoredLine>& lines) {
  const auto latest = [&](std::string_view where) {
    return session.File().Prepare(
        fmt::format("SELECT MAX(Date_Entered) FROM {} WHERE {}", session.QuotedTable(schema::Batch), where));
  };
  const auto of = [](Statement& date, std::string_view name) {
    date.Reset();
    return date.Bind(1, name).Step() ? date.Date(0) : std::nullopt;
  };
  Statement made = latest("Color_Name = ?1");
  StoreLastProduced(session, formula, of(made, formula));
  std::string uses;
  for (int i = 0; i < schema::kBatchLines; ++i)
    uses += fmt::format("{}(IngName{} = ?1 AND IngType{} <> 2)", i == 0 ? "" : " OR ", i, i);
  Statement used = latest(uses);
  for (const StoredLine& line : lines)
    if (line.IngType != LineKind::Mix) StoreLastConsumed(session, line.IngName, of(used, line.IngName));
}

void DeleteStored(Session& session, BatchRecord& record, bool returnIngredients) {
  Transaction transaction(session.File());
  const auto stored = ReadStoredLines(session, record.key);
  if (!returnIngredients) TakeHeldAgain(session, session.CurrentDatabase, record.BatchNo);
  DropHold(session, record.BatchNo);
  RemoveMadeColor(session, record);
  DeleteTakings(session, record.BatchNo);
  DeleteScaleResults(session, record.BatchNo);
  session.File()
      .Prepare(fmt::format("DELETE FROM {} WHERE RowKey = ?1", session.QuotedTable(schema::Batch)))
      .Bind(1, record.key)
      .Run();
  if (stored) ResetDates(session, record.work.Color_Name, stored->lines);
  ReplaceJobRecords(session, record.BatchNo, {});
  transaction.Note(
      {Change::Kind::Batch, session.CurrentDatabase, std::to_string(record.BatchNo), Change::What::Deleted, {}});
  transaction.Commit();
}

}  // namespace

void MoveTo(Session& session, BatchRecord& record, std::optional<std::int64_t> row) {
  if (!row || !OpenBatchRow(session, record, *row)) record = NewBatchRecord(session);
}

void LeaveFor(Session& session, BatchRecord& record, bool keepComplete, std::optional<std::int64_t> nextRow) {
  if (session.ArchiveView) {
    MoveTo(session, record, nextRow);
    return;
  }
  BatchRecord next;
  Transaction transaction(session.File());
  if (record.state == BatchState::Edit) {
    if (keepComplete) StoreComplete(session, record);
    if (record.stockReturned) TakeHeldAgain(session, session.CurrentDatabase, record.BatchNo);
  }
  MoveTo(session, next, nextRow);
  transaction.Commit();
  record = std::move(next);
}

void Reset_Ing_Inv_CancelEdit_ExistingBatch(Session& session, BatchRecord& record) {
  if (!record.stockReturned) return;
  TakeHeldAgain(session, session.CurrentDatabase, record.BatchNo);
  record.stockReturned = false;
}

std::string WhereMoved(const Session& session, std::int32_t batchNo) {
  const std::string in = FileOfMovedBatch(session.File(), session.CurrentDatabase, batchNo);
  return in.empty() ? std::string() : fmt::format("It stands in {}.", in);
}

std::unexpected<Refusal> RefuseUnknownBatch(const Session& session, std::int32_t batchNo) {
  const std::string where = WhereMoved(session, batchNo);
  return Refuse("Batch Not Found",
                fmt::format("There is no Batch {} in the {} database.{}{}", BatchNoText(batchNo),
                            session.CurrentDatabase, where.empty() ? "" : "\n", where),
                "BatchNo");
}

Result<bool> NextBatch(Session& session, BatchRecord& record, BatchDialogs& dialogs) {
  const auto row = NextBatchRow(session, record);
  return Leave(session, record, dialogs, PartFor(session, record, dialogs), row);
}

Result<bool> PreviousBatch(Session& session, BatchRecord& record, BatchDialogs& dialogs) {
  const auto row = PreviousBatchRow(session, record);
  return Leave(session, record, dialogs, PartFor(session, record, dialogs), row);
}

Result<bool> FindBatch(Session& session, BatchRecord& record, BatchDialogs& dialogs, std::int32_t batchNo) {
  const std::int64_t row = BatchRowOf(session, batchNo);
  if (row == 0) return RefuseUnknownBatch(session, batchNo);
  return Leave(session, record, dialogs, PartFor(session, record, dialogs), row);
}

Result<bool> CancelBatch(Session& session, BatchRecord& record) {
  if (RecordHasChanged(session, record) && !AskWhether(session, Padded40("Cancel?"), "Cancel without saving changes?"))
    return false;
  LeaveFor(session, record, false, std::nullopt);
  return true;
}

Result<bool> CloseBatch(Session& session, BatchRecord& record, BatchDialogs& dialogs) {
  Parting parting = Parting::Keep;
  if (Changed(session, record)) {
    if (CheckStorable(session, record) && record.work.Total > 0) {
      parting = AskToSave(session, record, dialogs);
    } else if (!AskWhether(session, Padded40("Close?"), "Close without saving changes?")) {
      parting = Parting::Stays;
    }
  }
  return Leave(session, record, dialogs, parting, std::nullopt);
}

Result<bool> DeleteBatch(Session& session, BatchRecord& record, BatchDialogs&, MoveOn moveOn) {
  if (record.state != BatchState::Edit) return false;
  if (const auto writable = RequireWritable(session); !writable) return std::unexpected(writable.error());
  if (const auto open = CheckNotComplete(session, record); !open) return std::unexpected(open.error());
  if (!AskWhether(session, "Batch Window - Delete Batch?",
                  "Deleting this Batch will alter Production and Consumption Reports.\n\nDelete this Batch?",
                  Answer::No))
    return false;
  const bool returnIngredients =
      AskWhether(session, "Batch Window - Update Inventories?", "Return ingredients to inventory?");
  const auto next = moveOn == MoveOn::ToNext ? NextBatchRow(session, record) : std::nullopt;
  BatchRecord then;
  Transaction transaction(session.File());
  // Closed again first: what is taken back one day is the Batch as it was saved, with what it had taken.
  if (record.stockReturned) TakeHeldAgain(session, session.CurrentDatabase, record.BatchNo);
  UndoStep step(session, Undoable::DeleteBatch, fmt::format("Delete Batch {}", BatchNoText(record.BatchNo)),
                BatchNoText(record.BatchNo));
  if (record.stockReturned) HoldStored(session, record);
  DeleteStored(session, record, returnIngredients);
  step.Keep();
  MoveTo(session, then, next);
  transaction.Commit();
  record = std::move(then);
  return true;
}

}  // namespace vellumark
