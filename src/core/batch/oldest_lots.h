#pragma once

#include "core/batch/record.h"

namespace vellumark {

/// Lets every row whose lots are not all chosen take the oldest first, as far as they reach.
Result<void> TakeOldestLots(Session& session, BatchRecord& record);

}  // namespace vellumark
