#include "core/colors/live_totals.h"

#include <cmath>

#include "core/base/number.h"
#include "core/base/text.h"
#include "core/colors/basics.h"

namespace vellumark {

IngredientFigures ReadIngredientFigures(const Session& session, std::string_view name) {
  if (TrimView(name).empty()) return {};
  const auto basic = ReadBasic(session, TrimView(name));
  if (!basic) return {};
  return {basic->PurchaseCost, basic->VOC, basic->HAP, basic->book.Red, basic->book.Green, basic->book.Blue};
}

GridFigures ReadGridFigures(const Session& session, const FormulaWork& work) {
  GridFigures figures;
  for (std::size_t row = 0; row < figures.size(); ++row)
    figures[row] = ReadIngredientFigures(session, work.grid[row].BC);
  return figures;
}

LiveTotals ComputeLiveTotals(const Session& session, const FormulaWork& work, const GridFigures& figures) {
  const double parts = ParseNumber(UpdateBQTotal(work)).value_or(0);
  IngredientFigures sum;
  for (std::size_t row = 0; parts > 0 && row < figures.size(); ++row) {
    const auto typed = ParseNumber(work.grid[row].BQ);
    if (TrimView(work.grid[row].BC).empty() || !typed || std::fabs(*typed) > 1e9) continue;
    const double amount = RoundTo(*typed, 3);
    sum.Cost = static_cast<float>(sum.Cost + amount * figures[row].Cost / parts);
    sum.VOC = static_cast<float>(sum.VOC + amount * figures[row].VOC / parts);
    sum.HAP = static_cast<float>(sum.HAP + amount * figures[row].HAP / parts);
  }
  return {Fixed(sum.Cost, session.DecimalPlaces), Fixed(sum.VOC, 3), Fixed(sum.HAP, 3)};
}

}  // namespace vellumark
