#pragma once

#include "core/batch/cost_model.h"

namespace vellumark {

// The cost and emission models that later Batches start with; a Batch on file keeps its own.

/// What a new Batch takes now.
BatchCostModel DefaultModels(const Session& session);

/// Makes a Batch's cost model, or its emission models, the default, and tells of a change of Settings.
void StoreDefaultCostModel(Session& session, const BatchCostModel& model);
void StoreDefaultEmissionModels(Session& session, const BatchCostModel& model);

/// The same from what was typed. Refuses what ReadCostModel refuses, an archive view, and a user who may not edit costs
/// or emissions.
Result<void> SaveDefaultCostModel(Session& session, const CostModelEntry& typed);
Result<void> SaveDefaultEmissionModels(Session& session, int mixVOCModelType, int mixHAPModelType);

}  // namespace vellumark
