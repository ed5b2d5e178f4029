#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "core/batch/record.h"

namespace vellumark {

// How a made Batch is shared: Total = what jobs use + what is returned to inventory. What changes it runs the guards of
// the bench first.

/// The job as typed: a number makes the Batch that job's, all of it unless a quantity stands already; an empty text
/// takes the job away. Nothing happens while the Batch is split.
Result<void> EnterJobNumber(Session& session, BatchRecord& record, std::string_view typed);
/// Whether what the job uses can be typed: refused without a job and while the Batch is split.
Result<void> CheckQtyUsedKey(const BatchRecord& record);
/// What the only job uses, as typed.
Result<void> EnterQtyUsed(Session& session, BatchRecord& record, std::string_view typed);
/// Whether what is made goes to stock; it always does while there is a job.
Result<void> SetReturnToInventory(Session& session, BatchRecord& record, bool checked);

/// One job of a Batch that is split, as typed.
struct JobItem {
  std::string JobNumber;
  std::string QtyUsed;
};
/// An amount of one of them as typed: 0 to the Batch's total; empty counts as 0. The amount with three decimals.
Result<std::string> EnterJobItemQty(const BatchRecord& record, std::string_view typed);
/// What the jobs leave to be returned to inventory while they are typed.
std::string JobItemsReturned(const BatchRecord& record, const std::vector<JobItem>& items);
/// Splits the Batch so: refuses a number given twice and more than the total; empty pairs are dropped.
Result<void> SaveJobItems(Session& session, BatchRecord& record, const std::vector<JobItem>& items);
/// How the quantity returned to inventory comes about, for the operator who wonders.
std::string ReturnedRuleText();

/// After the rows became others: the jobs and the quantity returned follow the total. A smaller Batch that is split
/// loses its lines, which is told.
void FollowTotal(Session& session, BatchRecord& record);
/// The quantity returned to inventory anew, from the total, the jobs and the check.
void UpdateReturned(BatchRecord& record);

}  // namespace vellumark
