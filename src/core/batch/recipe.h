#pragma once

#include <optional>
#include <string_view>

#include "core/batch/batch_work.h"

namespace vellumark {

/// Reads the formula of `work.Color_Name` into `Ingredients` and `FormulaIngredients`, the amounts for the quantity
/// wanted. An ingredient without a Basic Color keeps its name, with zero figures. False, and no ingredients, when there
/// is no such formula.
bool LoadFormulaIngredients(Session& session, BatchWork& work);

/// The figures of one Basic Color in the Batch's unit, without an amount; nothing when the Database lacks it.
std::optional<BatchIngredient> ReadBatchIngredient(Session& session, int unit, std::string_view name);

/// Finds for every ingredient in the working lists the slot of the formula that holds its name. To be called when lists
/// or FormulaIngredients were filled by other means than the procedures here.
void ResolveRecipeSlots(BatchWork& work);

/// Sets `Recycle_Percent`: the largest share of the remaining recipe that the colour can supply before one of its
/// ingredients runs out. An ingredient that does not remain, or whose share in the colour is 0, makes it 0.
void CalcRecyclePercent(const BatchWork& work, RecycleColor& color);

/// Lowers `Usable`, with its amounts, to what the remaining ingredients leave room for.
void CapRecycleAmount(const BatchWork& work, RecycleColor& color);

/// Sets Usable, and from it what the colour brings in.
void SetUsable(RecycleColor& color, float usable);

/// Orders RecycleList by `Recycle_Percent` in six decimals, largest first; ties keep their order.
void SortRecycleList(BatchWork& work);

/// `Recycle_Percent` of every colour in RecycleList against what remains of the recipe.
void RecalcRecycleList(BatchWork& work);

/// Takes colours from RecycleList as far as stock and recipe permit, always the one that can supply the largest share
/// next, of those whose `Recycle` flag is set.
void AutoRecycle(Session& session, BatchWork& work);

/// Fits the colours chosen earlier to the quantity of now; drops those of which nothing can be used.
void RefitRecycledColors(BatchWork& work);

/// The most of the colour that the recipe takes while rows of `above` in all stand over it.
double MostRecycled(const BatchWork& work, const RecycleColor& color, double above);
/// The same as a row shows it: cut to thousandths, but not below a thousandth that it only misses by the noise of
/// Singles (35 of 100 are 35.000).
double CutToThousandths(double most);
/// What the rows of the recycled colours so far come to.
double RecycledSoFar(const BatchWork& work);

/// Moves a colour of RecycleList into the Batch, with that amount or what the recipe leaves room for. False when the
/// list does not hold it.
bool AddRecycledColor(Session& session, BatchWork& work, std::string_view name, float amount);

/// The recipe, then the colours chosen earlier or a new RecycleList, then with `doRecycle` the automatic choice.
void CalculateBatch(Session& session, BatchWork& work, bool doRecycle);

}  // namespace vellumark
