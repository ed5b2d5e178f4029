#pragma once

#include "core/batch/batch_work.h"

namespace vellumark {

inline constexpr const char* kHintInventory = "Click to Adjust Inventory";
/// What can be done to a row's amount, with the most that it can be; empty when it cannot be changed by hand.
std::string AmountHint(const BatchWork& work, const BatchRow& row);
/// "12.50%".
std::string PercentRecycledText(const BatchWork& work);

/// Shown while any row is too small to be weighed.
inline constexpr const char* kZeroMsg =
    "NOTE - To obtain measurable amounts for all ingredients increase the batch quantity or change the unit of "
    "measure.";

/// Puts Ingredients in order and fills the rows, recycled colours first, then ingredients, then additions; gives the
/// round-off to the largest ingredient row and sums the totals.
void ShowBatchRows(const Session& session, BatchWork& work);

}  // namespace vellumark
