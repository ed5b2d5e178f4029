#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "core/jobs/job_record.h"

namespace vellumark {

// What a Job really used of an item, and what of it goes back to stock. Each procedure moves the stock and writes the
// row in one transaction, in which it works the ceiling out anew; questions come before it.

/// How much a row can be set to have used.
struct JobCeiling {
  float most = 0;
  bool lot = false;      ///< its place is a lot
  bool ofBatch = false;  ///< what was made bounds it
};
JobCeiling CeilingOf(const Session& session, const JobRecord& record);

/// What stands in the row's place now and can be taken: nothing of a lot that is gone, or that lies on consignment.
float StandsInPlace(const Session& session, const JobRecord& record);

/// Sets QtyUsed as typed: above 0, and not above the ceiling. Of Unlotted Inventory more than is on file after a
/// question. More used leaves stock, less used returns to it, dated today; more than was issued was issued.
Result<void> SetQtyUsed(Session& session, std::int64_t row, std::string_view typed);

/// A return: so much less was used. What can come back is what is still out; when all of it does, the row goes, and its
/// Batch is that job's no longer.
struct JobReturn {
  std::int64_t row = 0;
  float quantity = 0;
  std::optional<std::string> LotLoc{};  ///< where the container stands now; the lot and its copies take it
  std::optional<std::string> LotContID{};
};
/// What is left on the row; 0 when it went.
Result<float> ReturnFromJob(Session& session, const JobReturn& back);

/// Takes an item from stock off its Job, after the question whether what it used goes back. A Batch's row is refused:
/// it goes with the job of its Batch.
Result<void> DeleteJobItem(Session& session, std::int64_t row);

/// Takes a booking of a Job back by its line of the stock history: what was issued returns, what returned is issued
/// again, also where the return took the item off its Job. Refused for lines of other events, for one that was taken
/// back already, and where the item or the stock no longer allows it.
Result<void> UndoJobBooking(Session& session, std::int64_t line);

/// For whoever books an item anew: takes it from stock within the caller's transaction.
Result<void> IssueFromStock(Session& session, JobRecord& record);
/// Refused above what is there: of a lot always, of Unlotted Inventory unless the operator insists.
Result<void> RequireStock(const Session& session, const JobRecord& record, float there, bool insists);
/// Asks about more than Unlotted Inventory has; true when it may be.
bool AskForMore(Session& session);

}  // namespace vellumark
