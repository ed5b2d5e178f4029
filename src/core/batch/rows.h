#pragma once

#include "core/batch/batch_work.h"

namespace vellumark {

inline constexpr const char* kHintInventory = "Click to Adjust Inventory";
inline constexpr const char* kHintAmount = "Click to Adjust this Amount";
/// Shown while any row is too small to be weighed.
inline constexpr const char* kZeroMsg =
    "NOTE - To obtain measurable amounts for all ingredients increase the batch quantity or change the unit of "
    "measure.";

/// Puts Ingredients in order and fills the rows, recycled colours first, then ingredients, then additions; gives the
/// round-off to the largest ingredient row and sums the totals.
void ShowBatchRows(const Session& session, BatchWork& work);

}  // namespace vellumark
