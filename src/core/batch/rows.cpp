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
  row.kind = LineKind::Mix;
  row.name = color.Color_Name;
  row.amount = RoundTo(color.Usable, 3);
  row.adjustable = true;
  if (color.Recycle_Percent != 0) {
    // What is in use can be used: a share that is no whole number of thousandths was rounded up, not cut.
    row.max = RoundSingle(std::max(CutToThousandths(MostRecycled(work, color, recycledAbove)), row.amount), 3);
  }
  const auto place = static_cast<std::int32_t>(work.Rows.size());
  row.moreUsable = place >= work.ClickedIndex && RoundTo(row.max, 3) > row.amount;
  row.lotLink = session.InvLotTracking != 0;
  row.lowStock = color.Inventory < color.Reorder;
  return row;
}

BatchRow IngredientRow(const Session& session, const BatchWork& work, const BatchIngredient& ingredient,
                       LineKind kind) {
  BatchRow row;
  row.kind = kind;
  row.name = ingredient.IngName;
  row.amount = RoundTo(ingredient.Amount, 3);
  row.adjustable = kind == LineKind::Addition || work.settings.Overpour;
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
    if (work.Rows[i].amount > work.Rows[largest].amount) largest = i;
  work.LargestAmountIndex = static_cast<std::uint8_t>(largest);
  BatchRow& row = work.Rows[largest];
  row.amount = RoundTo(row.amount + RoundTo(work.Roundoff, 3), 3);
  sums.all += RoundTo(work.Roundoff, 3);
}

// In whole thousandths, of which the quotient is exact where it falls on a half.
double Percentage(double part, double whole) {
  const double thousandths = std::round(whole * 1000);
  return RoundTo(thousandths > 0 ? std::round(part * 1000) * 100 / thousandths : 0.0, 2);
}

}  // namespace

std::string AmountHint(const BatchWork& work, const BatchRow& row) {
  if (!row.adjustable) return {};
  if (!(row.max > 0)) return "Click to Adjust this Amount";
  return fmt::format("{} (Max Amount = {}{})", Fixed(row.amount, 3), Fixed(row.max, 3), UnitName(work.UMF));
}

std::string PercentRecycledText(const BatchWork& work) {
  return Fixed(work.PercentRecycled, 2) + "%";
}

void ShowBatchRows(const Session& session, BatchWork& work) {
  if (!work.settings.userOrder) {
    std::ranges::stable_sort(work.Ingredients, std::ranges::greater{}, &BatchIngredient::Amount);
  } else {
    std::ranges::stable_sort(work.Ingredients, {}, &BatchIngredient::IngSort);
  }
  work.Rows.clear();
  Sums sums;
  const auto add = [&](BatchRow row) -> double {
    sums.all += row.amount;
    work.Rows.push_back(std::move(row));
    return work.Rows.back().amount;
  };
  for (const RecycleColor& color : work.RecycledColors)
    sums.recycled += add(RecycledRow(session, work, color, sums.recycled));
  for (const BatchIngredient& ingredient : work.Ingredients)
    add(IngredientRow(session, work, ingredient, LineKind::Basic));
  for (const BatchIngredient& addition : work.Additions)
    sums.additions += add(IngredientRow(session, work, addition, LineKind::Addition));
  GiveRoundoff(work, sums);

  work.Total = RoundSingle(sums.all, 3);
  work.ShownTotal = RoundTo(sums.all, 3);
  work.RecycledTotal = RoundSingle(sums.recycled, 3);
  work.AdditionsTotal = RoundSingle(sums.additions, 3);
  if (work.Quantity() > 0) work.QuantityText = Fixed(work.Quantity(), 3);
  work.CalculatedQuantity = RoundTo(work.Quantity(), 3);
  work.zeroRows = 0;
  for (BatchRow& row : work.Rows) {
    row.zero = row.amount == 0;
    if (row.zero) ++work.zeroRows;
  }
  work.PercentRecycled = Percentage(sums.recycled, sums.all);
}

}  // namespace vellumark
