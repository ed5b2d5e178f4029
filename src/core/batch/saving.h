#pragma once

#include "core/batch/dialogs.h"
#include "core/batch/record.h"

namespace vellumark {

// What saving and leaving share. For the procedures of this room.

/// What must hold before a Batch can be stored at all, whoever asks.
Result<void> CheckStorable(const Session& session, const BatchRecord& record);

/// The lot number reminder, where it is due; false when the operator returns to the Batch.
bool PassLotReminder(Session& session, const BatchRecord& record, BatchDialogs& dialogs);

/// Writes chkComplete of an open Batch where the setting is on and it differs.
void StoreComplete(Session& session, const BatchRecord& record);

/// Leaves an open Batch unstored: its Complete is kept when `keepComplete`, its ingredients are consumed again, and the
/// Batch of `nextRow` is opened or the window cleared, all in one transaction.
void LeaveFor(Session& session, BatchRecord& record, bool keepComplete, std::optional<std::int64_t> nextRow);

/// Opens the Batch of that row, or clears the window without one. No other Batch is open.
void MoveTo(Session& session, BatchRecord& record, std::optional<std::int64_t> row);

}  // namespace vellumark
