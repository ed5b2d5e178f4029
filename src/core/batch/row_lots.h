#pragma once

#include "core/batch/record.h"

namespace vellumark {

/// Lets every row whose lots are not all chosen take the oldest first, as far as they reach.
Result<void> TakeOldestLots(Session& session, BatchRecord& record);

/// Gives the rows of a saved Batch that was calculated anew the lots that they were saved with, as far as these reach
/// and no further than a row needs now. Rows whose lots are chosen keep theirs.
Result<void> TakeSavedLots(Session& session, BatchRecord& record);

}  // namespace vellumark
