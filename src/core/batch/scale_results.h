#pragma once

#include <cstdint>
#include <vector>

#include "core/batch/record.h"

namespace vellumark {

// `<DB>_BatchScaleResults`: what was weighed of the lines of a Batch, a row for each kind and name. Within the
// transaction of the Batch itself.

std::vector<WeighedLine> ReadScaleResults(const Session& session, std::int32_t batchNo);
/// Makes the rows of a Batch those of its record.
void WriteScaleResults(Session& session, const BatchRecord& record);
void DeleteScaleResults(Session& session, std::int32_t batchNo);

}  // namespace vellumark
