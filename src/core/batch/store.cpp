#include "core/batch/store.h"

#include <fmt/format.h>

#include <algorithm>
#include <limits>
#include <stdexcept>

#include "core/base/text.h"
#include "core/batch/additions.h"
#include "core/batch/holding.h"
#include "core/batch/job_rows.h"
#include "core/batch/leave.h"
#include "core/batch/loader.h"
#include "core/batch/made.h"
#include "core/batch/modified.h"
#include "core/batch/open.h"
#include "core/batch/row_cells.h"
#include "core/batch/saving.h"
#include "core/batch/scale_results.h"
#include "core/batch/sent_files.h"
#include "core/batch/take_back.h"
#include "core/batch/takings.h"
#include "core/colors/color_dates.h"
#include "core/datafile/lifecycle.h"
#include "core/session/settings.h"
#include "core/session/undo_step.h"

namespace vellumark {
namespace {

// One store, on a copy of the record: what fails leaves the record on the screen as it was.
class BatchStore {
 public:
  BatchStore(Session& session, const BatchRecord& record, ModifiedBatchChoice choice)
      : session_(session), record_(record), choice_(std::move(choice)), now_(session.clock.Now()) {}
  /// One that was stored before, in another file: it keeps its number and its day.
  BatchStore(Session& session, const BatchRecord& record, const DateTime& day)
      : session_(session), record_(record), now_(day), again_(true) {}

  // The number under which the Batch is stored.
  std::int32_t Run() {
    const bool isNew = record_.state == BatchState::Add;
    Transaction transaction(session_.File());
    if (isNew && !again_) record_.BatchNo = UpcomingBatchNo(session_);
    formulaThere_ = WriteModifiedFormula(session_, record_, choice_);
    std::vector<BatchTaking> takings = PlanTakings(session_, record_);
    if (!isNew) DeleteTakings(session_, record_.BatchNo);
    WriteRow(isNew);
    WriteScaleResults(session_, record_);
    if (isNew) ForgetUnsavedSender(session_.File(), record_.sender);
    // The date was set above to this very day, so the question whether the ingredients of a Batch of earlier days are
    // to be taken anew never arises: they are.
    granted_ = PostMadeColor(session_, record_);
    WriteLot();
    Take(takings, isNew);
    MarkUse(takings);
    WriteJobRows(session_, record_, now_);
    if (isNew) StepCounter();
    transaction.Note({Change::Kind::Batch,
                      session_.CurrentDatabase,
                      std::to_string(record_.BatchNo),
                      isNew ? Change::What::Added : Change::What::Updated,
                      {}});
    transaction.Commit();
    return record_.BatchNo;
  }

  /// The store is on file.
  void Done() const {
    if (counter_) session_.BatchNumber = *counter_;
  }

  void TellAfterwards() const {
    if (!formulaThere_)
      session_.prompt.Tell("Master Formula Modification",
                           "The Master Formula could not be found.\nModification couldn't be performed.");
    if (!granted_)
      session_.prompt.Tell("Lotted Inventory", fmt::format("Unable to add {}\nto Lotted Inventory\n"
                                                           "Quantity was added to Unlotted Inv.",
                                                           record_.work.Color_Name));
  }

 private:
  std::string Batches() const { return session_.Table(schema::Batch); }

  void WriteRow(bool isNew) {
    std::vector<Cell> cells = BatchRowCells(record_, now_);
    // Without the setting a Batch is never complete; what an earlier one says stays.
    if (isNew) {
      cells.emplace_back("Complete", GetSetting(session_, setting::BatchComplete) && record_.Complete);
      record_.key = 0;
      const std::int64_t row = InsertRow(session_.File(), schema::Batch, Batches(), cells);
      newRow_ = row;
    } else {
      if (GetSetting(session_, setting::BatchComplete)) cells.emplace_back("Complete", record_.Complete);
      if (!UpdateRow(session_.File(), schema::Batch, Batches(), record_.key, cells))
        throw Failure(session_.File().Path().string(),
                      fmt::format("has lost the Batch {} while it was open", BatchNoText(record_.BatchNo)));
      newRow_ = record_.key;
    }
  }

  void WriteLot() {
    UpdateRow(session_.File(), schema::Batch, Batches(), newRow_,
              {{"LotRefID", record_.LotRefID}, {"LotNumber", record_.fields.LotNumber}});
    record_.madeLotNumber = record_.fields.LotNumber;
  }

  // What is recorded is what really left, since that is what comes back one day.
  void Take(std::vector<BatchTaking>& takings, bool isNew) {
    std::vector<NetTaking> net = NetTakings(session_, takings);
    if (!isNew && record_.stockReturned && SameAsHeld(session_, record_.BatchNo, net)) {
      for (NetTaking& place : net) place.place.LotQty = Covered(session_, place);
      LowerTo(session_, takings, net);
      WriteTakings(session_, record_.BatchNo, now_, takings);
      TakeHeldAgain(session_, session_.CurrentDatabase, record_.BatchNo);
      return;
    }
    if (!isNew) DropHold(session_, record_.BatchNo);
    TakeFromStock(session_, record_.BatchNo, net);
    LowerTo(session_, takings, net);
    WriteTakings(session_, record_.BatchNo, now_, takings);
  }

  // The counter never goes back.
  void StepCounter() {
    if (!again_ || record_.BatchNo >= ReadFileInfo(session_.File()).batchNumber)
      counter_ = StepBatchNumber(session_.File(), record_.BatchNo);
  }

  void MarkUse(const std::vector<BatchTaking>& takings) {
    if (IsLatest(schema::Mix, "LastProduced", record_.work.Color_Name))
      StoreLastProduced(session_, record_.work.Color_Name, now_);
    for (const BatchTaking& taking : takings)
      if (taking.IngType != LineKind::Mix && IsLatest(schema::Basic, "LastConsumed", taking.IngName))
        StoreLastConsumed(session_, taking.IngName, now_);
  }
  // A colour may have been used since the day of a Batch that comes back.
  bool IsLatest(const Table& table, std::string_view field, const std::string& color) const {
    return !again_ || session_.File()
                          .Scalar(fmt::format("SELECT 1 FROM {} WHERE Color_Name = ? AND {} > ?",
                                              session_.QuotedTable(table), field),
                                  {color, now_})
                          .IsNull();
  }

  Session& session_;
  BatchRecord record_;
  ModifiedBatchChoice choice_;
  DateTime now_;
  std::int64_t newRow_ = 0;
  bool again_ = false;
  std::optional<std::int32_t> counter_;
  bool formulaThere_ = true;
  bool granted_ = true;
};

// A Batch's record of lots is narrower than the lots' own: told before anything is written.
Result<void> CheckLotReferences(const Session& session, const BatchRecord& record) {
  if (session.InvLotTracking == 0) return {};
  const auto check = [](const std::string& name, const LotSelection& lots) -> Result<void> {
    for (const LotUse& use : lots.uses)
      if (use.LotRefID > std::numeric_limits<std::int16_t>::max())
        return Refuse("Lotted Inventory",
                      fmt::format("Lot {} of {} has the reference {}.\n"
                                  "A Batch can only record references up to {}; use another lot.",
                                  use.LotNumber, name, use.LotRefID, std::numeric_limits<std::int16_t>::max()));
    return {};
  };
  for (const RecycleColor& color : record.work.RecycledColors)
    if (auto valid = check(color.Color_Name, color.lots); !valid) return valid;
  for (const auto* list : {&record.work.Ingredients, &record.work.Additions})
    for (const BatchIngredient& ingredient : *list)
      if (auto valid = check(ingredient.IngName, ingredient.lots); !valid) return valid;
  return {};
}

// The first colour of the Batch that was there when it was calculated and is not any more.
std::optional<std::string> ColorGone(const Session& session, const BatchRecord& record) {
  const auto gone = [&](ColorKind kind, const std::string& name) {
    return session.File()
        .Scalar(fmt::format("SELECT 1 FROM {} WHERE Color_Name = ? LIMIT 1", session.QuotedTable(ColorTable(kind))),
                {name})
        .IsNull();
  };
  const BatchWork& work = record.work;
  if (work.formulaFound && gone(ColorKind::Mix, work.Color_Name)) return work.Color_Name;
  for (const RecycleColor& color : work.RecycledColors)
    if (color.key != 0 && gone(ColorKind::Mix, color.Color_Name)) return color.Color_Name;
  for (const auto* list : {&work.Ingredients, &work.Additions})
    for (const BatchIngredient& i : *list)
      if (i.inDatabase && gone(ColorKind::Basic, i.IngName)) return i.IngName;
  return std::nullopt;
}

// A colour that got another name, was merged or deleted while the Batch was on the bench: stored under its old name its
// line would take from nothing.
Result<void> CheckNames(const Session& session, const BatchRecord& record) {
  const auto stored = ReadStoredLines(session, record.key);
  bool same = record.state != BatchState::Edit || (stored && stored->Color_Name == record.remembered.Color_Name);
  for (const OldBatchLine& old : record.OldLines)
    same = same && std::ranges::any_of(stored->lines, [&](const StoredLine& line) {
             return line.IngType == old.IngType && EqualNoCase(line.IngName, old.IngName);
           });
  if (!same)
    return Refuse("Batches Window - Edit State",
                  "This Batch is no longer editable.\n"
                  "A Master Formula associated with this Batch has been deleted or modified\n"
                  "since this Batch was saved.");
  if (const auto gone = ColorGone(session, record))
    return Refuse("Color Not Found",
                  fmt::format("{} is no longer in this database.\nCalculate the Batch again.", *gone), "txtQuantity");
  return {};
}

}  // namespace

Result<void> CheckStorable(const Session& session, const BatchRecord& record) {
  if (auto writable = RequireWritable(session); !writable) return writable;
  if (record.work.QuantityChanged)
    return Refuse("Recalculate Batch",
                  "You've changed the Quantity of this batch.\n"
                  "Click the Recycle(F2) or Mix(F3) button to\n"
                  "recalculate the batch before saving the batch.",
                  "txtQuantity");
  if (record.work.Rows.size() > static_cast<std::size_t>(kMostBatchLines))
    return Refuse("Save Batch", fmt::format("A Batch holds at most {} lines.", kMostBatchLines));
  if (auto named = CheckNames(session, record); !named) return named;
  if (record.state != BatchState::Edit || RecordHasChanged(session, record))
    if (auto kept = CheckNegativeAdditions(record.work); !kept) return kept;
  return CheckLotReferences(session, record);
}

Result<SaveEnd> StoreBatch(Session& session, BatchRecord& record, BatchDialogs& dialogs, const AfterStore& after,
                           std::int32_t* storedNo) {
  if (const auto storable = CheckStorable(session, record); !storable) return std::unexpected(storable.error());
  if (record.state == BatchState::Edit && !record.stockReturned)
    throw std::logic_error("a Batch that was left is not stored: " + BatchNoText(record.BatchNo));
  ModifiedBatchChoice choice;
  if (OffersFormulaChange(session, record)) {
    const auto chosen = dialogs.ShowSaveModifiedBatch(session, record);
    if (!chosen) return SaveEnd::Stays;
    choice = *chosen;
  }
  BatchStore store(session, record, std::move(choice));
  BatchRecord next;
  // Nothing that can fail comes after the commit: a store that is told as failed has not happened.
  Transaction transaction(session.File());
  const bool isNew = record.state != BatchState::Edit;
  const std::string batchNo = BatchNoText(isNew ? UpcomingBatchNo(session) : record.BatchNo);
  // One that is open is closed again first: what is taken back one day is the Batch as it was saved, with what it took.
  // Where its stock has moved meanwhile that is no state to return to.
  const bool closes = !isNew && HeldStandsAsLeft(session, record.BatchNo);
  if (closes) TakeHeldAgain(session, session.CurrentDatabase, record.BatchNo);
  UndoStep step(session, isNew ? Undoable::SaveBatch : Undoable::ChangeBatch,
                fmt::format("{} Batch {} of {}", isNew ? "Save" : "Change", batchNo, record.work.Color_Name), batchNo);
  if (closes) HoldStored(session, record);
  const std::int32_t number = store.Run();
  if (isNew || closes) step.Keep();
  if (after.stored) {
    OpenBatch(session, next, number);
  } else {
    MoveTo(session, next, after.row);
  }
  transaction.Commit();
  store.Done();
  if (storedNo != nullptr) *storedNo = number;
  record = std::move(next);
  store.TellAfterwards();
  return SaveEnd::Stored;
}

namespace {

BatchRecord AsNew(BatchRecord batch) {
  batch.state = BatchState::Add;
  batch.key = 0;
  batch.LotRefID = 0;
  batch.oldReturned = 0;
  batch.madeLotNumber.clear();
  batch.OldLines.clear();
  batch.stockReturned = false;
  batch.sender = 0;
  batch.work.made = {};
  return batch;
}

}  // namespace

Result<void> CheckTakeBack(const Session& session, const BatchRecord& there) {
  if (BatchRowOf(session, there.BatchNo) != 0)
    return Refuse("Take Back", fmt::format("A Batch {} is here already.", BatchNoText(there.BatchNo)));
  if (const std::string moved = WhereMoved(session, there.BatchNo); !moved.empty()) return Refuse("Take Back", moved);
  return CheckStorable(session, AsNew(there));
}

Result<void> StoreBatchAgain(Session& session, const BatchRecord& there) {
  if (auto storable = CheckTakeBack(session, there); !storable) return storable;
  BatchStore store(session, AsNew(there), there.Date_Entered.value_or(session.clock.Now()));
  Transaction transaction(session.File());
  UndoStep step(session, Undoable::TakeOverBatch,
                fmt::format("Take Batch {} of {} from a backup", BatchNoText(there.BatchNo), there.work.Color_Name),
                BatchNoText(there.BatchNo));
  store.Run();
  step.Keep();
  transaction.Commit();
  store.Done();
  store.TellAfterwards();
  return {};
}

Result<void> CompleteBatch(Session& session, BatchRecord& record, bool complete) {
  if (auto writable = RequireWritable(session); !writable) return writable;
  if (!GetSetting(session, setting::BatchComplete))
    return Refuse("Batch Completion State", "Batches are not marked as Complete; the option is turned off.",
                  "chkComplete");
  record.Complete = complete;
  StoreComplete(session, record);
  return {};
}

void StoreComplete(Session& session, const BatchRecord& record) {
  if (!GetSetting(session, setting::BatchComplete) || record.key == 0) return;
  Transaction transaction(session.File());
  const int changed =
      session.File()
          .Prepare(fmt::format("UPDATE {} SET Complete = ?1 WHERE RowKey = ?2 AND COALESCE(Complete, 0) <> ?1",
                               session.QuotedTable(schema::Batch)))
          .Bind(1, record.Complete ? 1 : 0)
          .Bind(2, record.key)
          .Run();
  if (changed > 0)
    transaction.Note(
        {Change::Kind::Batch, session.CurrentDatabase, std::to_string(record.BatchNo), Change::What::Updated, {}});
  transaction.Commit();
}

}  // namespace vellumark
