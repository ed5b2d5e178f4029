#include "core/batch/rows.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "core/base/units.h"
#include "core/batch/recipe.h"

namespace vellumark {
namespace {

// Sums of shown amounts, in double: a Single holds 99,999 only to 1/128, and rows added up in it would no longer give
// the quantity to the last decimal.
struct Sums {
  double all = 0;
  double recycled = 0;
  double additions = 0;
};

BatchRow RecycledRow(const Session& session, const BatchWork& work, const RecycleColor& color, double recycledAbove) {
  BatchRow row;
  row.kind = RowKind::Mix;
  row.name = color.Color_Name;
  row.amount = Fixed(color.Usable, 3);
  row.unit = UnitName(work.UMF);
  row.nameHint = kHintInventory;
  row.amountHint = kHintAmount;
  if (color.Recycle_Percent != 0) {
    // What is in use can be used: a share that is no whole number of thousandths was rounded up, not cut.
    row.max = RoundSingle(std::max(CutToThousandths(MostRecycled(work, color, recycledAbove)), row.Amount()), 3);
    row.amountHint = fmt::format("{} (Max Amount = {}{})", row.amount, Fixed(row.max, 3), row.unit);
  }
  const auto place = static_cast<std::int32_t>(work.Rows.size());
  row.moreUsable = place >= work.ClickedIndex && RoundTo(row.max, 3) > row.Amount();
  row.lotLink = session.InvLotTracking != 0;
  row.lowStock = color.Inventory < color.Reorder;
  return row;
}

BatchRow IngredientRow(const Session& session, const BatchWork& work, const BatchIngredient& ingredient, RowKind kind) {
  BatchRow row;
  row.kind = kind;
  row.name = ingredient.IngName;
  row.amount = Fixed(ingredient.Amount, 3);
  row.unit = UnitName(work.UMF);
  row.nameHint = kHintInventory;
  if (kind == RowKind::Addition || work.settings.overpour) row.amountHint = kHintAmount;
  row.lotLink = session.InvLotTracking != 0 && ingredient.Amount > 0.0005F;
  row.lowStock = ingredient.Inventory < ingredient.Reorder;
  return row;
}

// The first of the largest ingredient rows takes up what rounding left between the rows and the quantity.
void GiveRoundoff(BatchWork& work, Sums& sums) {
  work.Roundoff = RoundSingle(work.Quantity() - (sums.all - sums.additions), 3);
  if (work.Roundoff == 0) return;
  const std::size_t first = work.RecycledColors.size();
  const std::size_t count = work.Ingredients.size();
  if (count == 0) return;
  std::size_t largest = first;
  for (std::size_t i = first; i < first + count; ++i)
    if (work.Rows[i].Amount() > work.Rows[largest].Amount()) largest = i;
  work.LargestAmountIndex = static_cast<std::uint8_t>(largest);
  BatchRow& row = work.Rows[largest];
  row.amount = Fixed(row.Amount() + RoundTo(work.Roundoff, 3), 3);
  sums.all += RoundTo(work.Roundoff, 3);
}

// In whole thousandths, of which the quotient is exact where it falls on a half.
std::string PercentText(double part, double whole) {
  const double thousandths = std::round(whole * 1000);
  return Fixed(thousandths > 0 ? std::round(part * 1000) * 100 / thousandths : 0.0, 2) + "%";
}

}  // namespace

void ShowBatchRows(const Session& session, BatchWork& work) {
  if (work.settings.sortByAmount) {
    std::ranges::stable_sort(work.Ingredients, std::ranges::greater{}, &BatchIngredient::Amount);
  } else {
    std::ranges::stable_sort(work.Ingredients, {}, &BatchIngredient::IngSort);
  }
  work.Rows.clear();
  Sums sums;
  const auto add = [&](BatchRow row) -> double {
    sums.all += row.Amount();
    work.Rows.push_back(std::move(row));
    return work.Rows.back().Amount();
  };
  for (const RecycleColor& color : work.RecycledColors)
    sums.recycled += add(RecycledRow(session, work, color, sums.recycled));
  for (const BatchIngredient& ingredient : work.Ingredients)
    add(IngredientRow(session, work, ingredient, RowKind::Basic));
  for (const BatchIngredient& addition : work.Additions)
    sums.additions += add(IngredientRow(session, work, addition, RowKind::Addition));
  GiveRoundoff(work, sums);

  work.Total = RoundSingle(sums.all, 3);
  work.TotalText = Fixed(sums.all, 3);
  work.RecycledTotal = RoundSingle(sums.recycled, 3);
  work.AdditionsTotal = RoundSingle(sums.additions, 3);
  if (work.Quantity() > 0) work.QuantityText = Fixed(work.Quantity(), 3);
  work.CalculatedQuantity = work.QuantityText;
  work.zeroRows = 0;
  for (BatchRow& row : work.Rows) {
    row.zero = row.amount == "0.000";
    if (row.zero) ++work.zeroRows;
  }
  work.PercentRecycled = PercentText(sums.recycled, sums.all);
}

}  // namespace vellumark
