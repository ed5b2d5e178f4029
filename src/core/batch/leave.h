#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "core/batch/dialogs.h"
#include "core/batch/record.h"
#include "core/batch/store.h"

namespace vellumark {

// The ways out of a Batch. Whatever the operator answers, the ingredients of a saved Batch are consumed again or the
// Batch is stored anew. Each returns false when the operator stays; nothing has happened then.

/// Next and Previous: leaves the Batch and opens the one beside it, or clears the window at either end.
Result<bool> NextBatch(Session& session, BatchRecord& record, BatchDialogs& dialogs);
Result<bool> PreviousBatch(Session& session, BatchRecord& record, BatchDialogs& dialogs);
/// Find and the recent-batch list: refused when there is no such Batch ("Batch Not Found").
Result<bool> FindBatch(Session& session, BatchRecord& record, BatchDialogs& dialogs, std::int32_t batchNo);

/// "Batch Not Found", and into which archive it went.
std::unexpected<Refusal> RefuseUnknownBatch(const Session& session, std::int32_t batchNo);
/// A sentence that tells that archive; empty for any other Batch.
std::string WhereMoved(const Session& session, std::int32_t batchNo);

/// Gives the Batch up: asks when something changed, then clears the window.
Result<bool> CancelBatch(Session& session, BatchRecord& record);
/// Closing the window, the Database, the Data File or the program.
Result<bool> CloseBatch(Session& session, BatchRecord& record, BatchDialogs& dialogs);

/// Deletes the stored Batch: both questions, then moves on as Next does.
Result<bool> DeleteBatch(Session& session, BatchRecord& record, BatchDialogs& dialogs, MoveOn moveOn = MoveOn::ToNext);

/// Consumes the ingredients of an open Batch again and takes its marker away, in one transaction. Where stock still
/// stands as the opening left it, every figure becomes what it was before, to the last digit.
void Reset_Ing_Inv_CancelEdit_ExistingBatch(Session& session, BatchRecord& record);

/// A saved Batch that is marked as open.
struct MarkedBatch {
  std::string database;
  std::int32_t BatchNo = 0;
  bool atWork = false;  ///< whoever opened it lives; else a killed process left it behind
};
/// Those that a file holds a marker of; reads only.
std::vector<MarkedBatch> MarkedBatches(Database& file);
/// At the opening of a Data File: takes the ingredients of Batches from stock again whose owner has died, and tells so
/// once.
void HealAbandonedBatches(Session& session);

}  // namespace vellumark
