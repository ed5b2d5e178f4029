#pragma once

#include <string_view>

#include "core/batch/batch_work.h"

namespace vellumark {

// What the operator does to a Batch as a whole. Each validates the quantity first; a refused or declined action changes
// nothing. The result tells whether rows were calculated: false when the operator answered that they should not be.

/// The name of the formula that a typed text means: its name, with or without "PANTONE ", or its code. Refuses a Basic
/// Color and a name that the Database does not have.
Result<std::string> FindBatchFormula(const Session& session, std::string_view typed);

/// Mix: straight from the recipe. Colours put in by hand are taken out only after a question.
Result<bool> MixAction(Session& session, BatchWork& work);

/// Recycle: from what is in stock as far as the recipe permits. Asks before the recycled amounts shrink or grow.
Result<bool> RecycleAction(Session& session, BatchWork& work);

/// What both actions end with: the calculation, the rows, the Recycle List, the figures.
void RunCalculation(Session& session, BatchWork& work, bool doRecycle);

/// True when a calculation should be followed by the moving graphic.
bool ShowsBatchGraphic(const BatchWork& work);

}  // namespace vellumark
