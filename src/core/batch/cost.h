#pragma once

#include <string>

#include "core/batch/batch_work.h"

namespace vellumark {

/// What a Batch costs beside its ingredients, and in all. Fixed costs are those of the Batch and those per unit of the
/// quantity that was asked for; `factor` takes that into the inventory unit.
struct BatchCosts {
  Currency fixed;
  Currency markup;
  Currency total;
};
BatchCosts CostsOf(const BatchCostModel& model, double quantity, double factor, Currency ingredients, int decimals);

/// The money figures of the Batch, from its lists, totals and cost model. Needs its rows shown.
void CalculateCost(const Session& session, BatchWork& work);
/// Markup, total and unit cost anew from the costs of basics and mixes that stand: those of a stored Batch.
void CalculateTotalCost(const Session& session, BatchWork& work);
/// The emissions of the Batch: those of what it takes, in the inventory unit.
void CalculateBatch_VOC(const Session& session, BatchWork& work);
void CalculateBatch_HAP(const Session& session, BatchWork& work);
/// All three.
void CalculateFigures(const Session& session, BatchWork& work);

/// The decimals of the unit cost: those of prices, but four for a gram or an ounce, of which those would leave nothing.
int UnitCostDecimals(const Session& session, const BatchWork& work);
/// "Cost per lb."
std::string UnitCostCaption(const BatchWork& work);
/// What MixCostOption 0, 1 and 2 mean, as the cost window shows it.
const char* MixCostOptionText(int option);

}  // namespace vellumark
