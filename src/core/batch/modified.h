#pragma once

#include "core/batch/dialogs.h"
#include "core/colors/normalise.h"

namespace vellumark {

/// Whether the save offers to fold the additions into the formula: a new Batch with additions, without recycled
/// colours, of at most 14 ingredients with them.
bool OffersFormulaChange(const Session& session, const BatchRecord& record);

/// The recipe that formula and additions come to, in parts of 100, the lines of its Additive Set last.
Recipe ModifiedRecipe(const Session& session, const BatchRecord& record);

/// The checks of SaveModifiedBatch on its choice: a recipe of nothing but the Additive Set (the Batch is then saved
/// without a change, which is told, and the choice comes back as None), a formula name in use, a Basic Color of that
/// name (asked about: No refuses with an empty text).
Result<ModifiedBatchChoice> CheckModifiedBatch(Session& session, const BatchRecord& record,
                                               const ModifiedBatchChoice& choice);

/// Writes the formula, within the caller's transaction. False when the formula to be updated is gone.
bool WriteModifiedFormula(Session& session, BatchRecord& record, const ModifiedBatchChoice& choice);

}  // namespace vellumark
