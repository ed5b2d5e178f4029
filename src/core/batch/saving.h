#pragma once

#include "core/batch/dialogs.h"
#include "core/batch/record.h"
#include "core/batch/store.h"

namespace vellumark {

// What saving and leaving share. For the procedures of this room.

/// What must hold before a Batch can be stored at all, whoever asks.
Result<void> CheckStorable(const Session& session, const BatchRecord& record);

/// What is stored of an open Batch has passed the guard before a change, whatever way it came in.
Result<void> PassGuard(Session& session, BatchRecord& record);

/// The lot number reminder, where it is due: the Batch has no lot number, or lines of it no lots though there are some.
/// False when the operator returns to the Batch.
bool PassLotReminder(Session& session, const BatchRecord& record, BatchDialogs& dialogs);
/// Tells of stock that does not cover the Batch; false when the operator returns to it.
bool PassShortStock(Session& session, const BatchRecord& record, BatchDialogs& dialogs);

/// What is on the bench after a store: a Batch by its row, the stored one again, or none.
struct AfterStore {
  std::optional<std::int64_t> row{};
  bool stored = false;
};
/// The store and what follows it, in one transaction: what fails of it leaves the file and `record` as they were. No
/// checks before it, all questions of the sequence. Stays when SaveModifiedBatch was cancelled.
Result<SaveEnd> StoreBatch(Session& session, BatchRecord& record, BatchDialogs& dialogs, const AfterStore& after,
                           std::int32_t* storedNo = nullptr);

/// Writes the Complete of an open Batch where the setting is on and it differs.
void StoreComplete(Session& session, const BatchRecord& record);

/// Leaves an open Batch unstored: its Complete is kept when `keepComplete`, its ingredients are consumed again, and the
/// Batch of `nextRow` is opened or the window cleared, all in one transaction.
void LeaveFor(Session& session, BatchRecord& record, bool keepComplete, std::optional<std::int64_t> nextRow);

/// Opens the Batch of that row, or clears the window without one. No other Batch is open.
void MoveTo(Session& session, BatchRecord& record, std::optional<std::int64_t> row);

}  // namespace vellumark
