#pragma once

#include "core/batch/dialogs.h"
#include "core/batch/record.h"

namespace vellumark {

/// How a save ended.
enum class SaveEnd {
  Stays,   ///< the operator went back to the Batch; nothing was stored
  Stored,  ///< the Batch was stored
  Kept,    ///< an open Batch without a change: only Complete was saved, its ingredients are consumed again
};

/// What follows a save or a deletion: the next Batch, as in the window, or none.
enum class MoveOn { ToNext, Nowhere };

/// The checks in their order, all questions, and then the store in one transaction. Afterwards `record` is the
/// next Batch, or cleared at the end and after a new one. `*savedNo`, when given, takes the number.
Result<SaveEnd> SaveBatch(Session& session, BatchRecord& record, BatchDialogs& dialogs, std::int32_t* savedNo = nullptr,
                          MoveOn moveOn = MoveOn::ToNext);
/// The same, but stays on the Batch, which is loaded again.
Result<SaveEnd> SaveAndHoldBatch(Session& session, BatchRecord& record, BatchDialogs& dialogs);

/// Marks a stored Batch at once. What is on the bench has its own Complete, which goes with the save. Refused while the
/// setting is off.
Result<void> CompleteBatch(Session& session, BatchRecord& record, bool complete);

}  // namespace vellumark
