#pragma once

#include "core/inventory/lot_selection.h"

namespace vellumark {

/// Checks rows until nothing is left to place: lots by their date, those without one behind them, what is unlotted
/// last.
void TakeOldestFirst(LotSelectionWork& work);
/// The row where the operator begins: the first lot with stock that gives nothing yet, else Unlotted Inventory.
std::size_t FirstToTake(const LotSelectionWork& work);

}  // namespace vellumark
