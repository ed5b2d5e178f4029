#pragma once

#include "core/batch/record.h"

namespace vellumark {

// The colour that a Batch makes, in stock. For the procedures of this room.

/// Puts what is returned to inventory into stock and sets `LotRefID`, within the caller's transaction. Of a saved Batch
/// only the difference to what it had put there moves: ink that was used meanwhile does not come back. False when no
/// reference was free for the lot: `LotNumber` is cleared and the quantity went to Unlotted Inventory.
bool PostMadeColor(Session& session, BatchRecord& record);

/// Takes what a saved Batch has made out of stock again: its lot, or the quantity from Unlotted Inventory.
void RemoveMadeColor(Session& session, const BatchRecord& record);

/// The lot that the Batch made, where it still is.
std::optional<LotRow> MadeLot(const Session& session, const BatchRecord& record);

}  // namespace vellumark
