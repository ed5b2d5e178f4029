#pragma once

#include "core/batch/record.h"

namespace vellumark {

/// Whether a Batch that another file of this shop holds (a backup) can be stored here. Refused: a Batch of that number
/// is here or went into an archive, a colour of it is not here any more, the file is not to be written.
Result<void> CheckTakeBack(const Session& session, const BatchRecord& there);

/// Stores it under its own number, day and user, as ReadBatch gave it of that file: what it takes leaves stock now and
/// what was returned to inventory comes in, by the rules of every Batch. Formulas stay as they are.
Result<void> StoreBatchAgain(Session& session, const BatchRecord& there);

}  // namespace vellumark
