#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "core/batch/record.h"

namespace vellumark {

// How a made Batch is shared: Total = what jobs use + what is returned to inventory. What changes it runs the guards of
// the bench first.

/// Leaving JobNumber: a number makes the Batch that job's, all of it unless a quantity stands already; an empty text
/// takes the job away. Nothing happens while the Batch is split.
Result<void> EnterJobNumber(Session& session, BatchRecord& record, std::string_view typed);
/// A key into txtQtyUsed: refused without a job and while the Batch is split.
Result<void> CheckQtyUsedKey(const BatchRecord& record);
/// Leaving txtQtyUsed.
Result<void> EnterQtyUsed(Session& session, BatchRecord& record, std::string_view typed);
/// chkReturnToInventory; cannot be unchecked while there is a job.
Result<void> SetReturnToInventory(Session& session, BatchRecord& record, bool checked);

/// One pair of JobItemsForm as typed.
struct JobItem {
  std::string JobNumber;
  std::string QtyUsed;
};
/// Leaving an amount of JobItemsForm: 0 to the Batch's total; empty counts as 0. The amount with three decimals.
Result<std::string> EnterJobItemQty(const BatchRecord& record, std::string_view typed);
/// "Quantity Returned to Inventory" of JobItemsForm while pairs are typed.
std::string JobItemsReturned(const BatchRecord& record, const std::vector<JobItem>& items);
/// cmdSave of JobItemsForm: refuses a number given twice and more than the total; empty pairs are dropped.
Result<void> SaveJobItems(Session& session, BatchRecord& record, const std::vector<JobItem>& items);
/// What a click on lblInvQty tells.
std::string ReturnedRuleText();

/// After the rows became others: the jobs and the quantity returned follow the total. A smaller Batch that is split
/// loses its lines, which is told.
void FollowTotal(Session& session, BatchRecord& record);
/// The quantity returned to inventory anew, from the total, the jobs and the check.
void UpdateReturned(BatchRecord& record);

}  // namespace vellumark
