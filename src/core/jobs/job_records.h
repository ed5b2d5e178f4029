#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "core/datafile/writer.h"
#include "core/session/session.h"

namespace vellumark {

// The one writer of `JobRecords`. What goes through all tables, a colour's, a lot's or a Database's new name, is
// written there by core/datafile.

/// The user-defined values and the design of a row, which people enter there and nobody works out.
std::vector<std::string> EnteredJobFields();

/// Puts the rows of a Batch of the current Database in the place of those that it has. Each needs its `JobNumber` and
/// may lack the entered fields: they are those of the row that the job had, else empty. Tells the jobs before and
/// after.
void ReplaceJobRecords(Session& session, std::int32_t batchNo, const std::vector<std::vector<Cell>>& rows);

}  // namespace vellumark
