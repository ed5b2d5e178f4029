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
  return {basic->PurchaseCost, basic->VOC, basic->HAP, InkOf(basic->book)};
}

GridFigures ReadGridFigures(const Session& session, const FormulaWork& work) {
  GridFigures figures;
  for (std::size_t row = 0; row < figures.lines.size(); ++row)
    figures.lines[row] = ReadIngredientFigures(session, work.grid[row].BC);
  if (const auto set = ReadAdditiveSet(session, work.AddSetName))
    for (const Ingredient& line : set->Rows())
      figures.set.push_back({line.name, line.amount, ReadIngredientFigures(session, line.name)});
  return figures;
}

LiveTotals ComputeLiveTotals(const Session& session, const FormulaWork& work, const GridFigures& figures) {
  const double parts = ParseNumber(UpdateBQTotal(work)).value_or(0);
  double rest = 100;
  for (const GridFigures::SetLine& line : figures.set) rest -= line.percent;
  IngredientFigures sum;
  std::vector<InkPart> inks;
  const auto add = [&](double share, const IngredientFigures& of) {
    sum.Cost = static_cast<float>(sum.Cost + share * of.Cost / 100);
    sum.VOC = static_cast<float>(sum.VOC + share * of.VOC / 100);
    sum.HAP = static_cast<float>(sum.HAP + share * of.HAP / 100);
  };
  for (std::size_t row = 0; parts > 0 && row < figures.lines.size(); ++row) {
    const auto typed = ParseNumber(work.grid[row].BQ);
    if (TrimView(work.grid[row].BC).empty() || !typed || std::fabs(*typed) > 1e9) continue;
    add(RoundTo(*typed, 3) / parts * rest, figures.lines[row]);
    inks.push_back({figures.lines[row].ink, *typed});
  }
  if (parts > 0)
    for (const GridFigures::SetLine& line : figures.set) add(line.percent, line.figures);
  return {Fixed(sum.Cost, session.DecimalPlaces), Fixed(sum.VOC, 3), Fixed(sum.HAP, 3), EstimateInk(inks)};
}

LiveTotals StoredTotals(const Session& session, const MixColor& mix) {
  return {Fixed(mix.BasicCost, session.DecimalPlaces), Fixed(mix.BasicVOC, 3), Fixed(mix.BasicHAP, 3),
          EstimateInk(session, mix.Ingredients())};
}

}  // namespace vellumark
