#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "core/batch/record.h"

namespace vellumark {

// The rows that a Batch has in `JobRecords`. Quantities stand there in the inventory unit. For the procedures of this
// room.

/// The job lines of a stored Batch in its unit; lines that used it up add up to `total`.
std::vector<BatchJobLine> ReadJobLines(const Session& session, std::int32_t batchNo, int unit, double total);
/// What the jobs use in all, in the inventory unit.
float JobsUse(const Session& session, std::int32_t batchNo);

/// What goes to stock of what is made, in the inventory unit: with what the jobs use there it makes up the whole, so
/// that it is what a stored Batch is later found to have put there.
float ReturnedQuantity(const Session& session, const BatchRecord& record);

/// Writes the Batch's rows anew, within the caller's transaction.
void WriteJobRows(Session& session, const BatchRecord& record, const DateTime& date);

}  // namespace vellumark
