#pragma once

#include <vector>

#include "core/batch/record.h"
#include "core/datafile/writer.h"

namespace vellumark {

/// The fields of a Batch's row as they are stored, but for LotRefID and Complete. For the procedures of this room.
std::vector<Cell> BatchRowCells(const BatchRecord& record, const DateTime& date);

}  // namespace vellumark
