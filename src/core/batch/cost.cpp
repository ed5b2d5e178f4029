#include "core/batch/cost.h"

#include <fmt/format.h>

#include <array>

#include "core/base/units.h"

namespace vellumark {
namespace {

constexpr std::array<std::int64_t, 5> kTenThousandths{10000, 1000, 100, 10, 1};  // in a unit of so many decimals

Currency Money(double value, int decimals) {
  return Currency::OfTenThousandths(WholeUnits(value, decimals) * kTenThousandths[static_cast<std::size_t>(decimals)]);
}

// One more item on the bill; the running total is rounded at every step, as a person adds up a bill.
void AddItem(Currency& total, float amount, float costPerUnit, double factor, int decimals) {
  const Currency weight = Currency::From(RoundTo(amount, 3));
  total = Money(total.ToDouble() + weight.ToDouble() * costPerUnit * factor, decimals);
}

struct Emission {
  float BatchIngredient::*ingredient;
  float RecycleColor::*basics;
  float RecycleColor::*mix;
};

float Emissions(const BatchWork& work, const Emission& of, int model, double factor) {
  float basics = 0;
  for (const auto* list : {&work.Ingredients, &work.Additions})
    for (const BatchIngredient& ingredient : *list)
      basics = static_cast<float>(basics + static_cast<double>(ingredient.*of.ingredient) * ingredient.Amount * factor);
  float recycled = 0;
  for (const RecycleColor& color : work.RecycledColors) {
    const float each = model == 0 ? color.*of.basics : model == 1 ? color.*of.mix : 0;
    recycled = static_cast<float>(recycled + static_cast<double>(each) * color.Usable * factor);
  }
  return static_cast<float>(static_cast<double>(basics) + recycled);
}

}  // namespace

BatchCosts CostsOf(const BatchCostModel& model, double quantity, double factor, Currency ingredients, int decimals) {
  BatchCosts costs;
  costs.markup = Money(ingredients.ToDouble() * model.MarkupPercent / 100, decimals);
  // The fixed cost per unit goes by the quantity that was asked for, not by the total that additions make of it.
  costs.fixed = Money(quantity * model.FixedCostPerUnit * factor, decimals) +
                Currency::OfTenThousandths(WholeUnits(model.FixedCostOfBatch, 4));
  costs.total = ingredients + costs.fixed + costs.markup;
  return costs;
}

void CalculateCost(const Session& session, BatchWork& work) {
  const int decimals = session.DecimalPlaces;
  const double factor = UnitFactor(work.UMF, session.UMI);
  const BatchCostModel& model = work.cost;
  BatchFigures& figures = work.figures;
  Currency basics;
  Currency mixes;
  if (model.CostModelType == 0) {
    for (const auto* list : {&work.Ingredients, &work.Additions})
      for (const BatchIngredient& ingredient : *list)
        AddItem(basics, ingredient.Amount, ingredient.PurchaseCost, factor, decimals);
    if (model.MixCostOption != 2)
      for (const RecycleColor& color : work.RecycledColors)
        AddItem(mixes, color.Usable, model.MixCostOption == 0 ? color.BasicCost : color.PurchaseCost, factor, decimals);
  } else {
    basics = Money(static_cast<double>(work.formula.PurchaseCost) * work.Total * factor, 2);
  }
  figures.CostOfBasics = basics.Rounded(decimals);
  figures.CostOfMixes = mixes.Rounded(decimals);
  CalculateTotalCost(session, work);
}

void CalculateTotalCost(const Session& session, BatchWork& work) {
  const int decimals = session.DecimalPlaces;
  const double factor = UnitFactor(work.UMF, session.UMI);
  const BatchCostModel& model = work.cost;
  BatchFigures& figures = work.figures;
  const Currency ingredients = figures.CostOfMixes + figures.CostOfBasics;
  const BatchCosts costs = CostsOf(model, work.Quantity(), factor, ingredients, decimals);
  figures.Markup = costs.markup;
  figures.TotalCost = costs.total;
  figures.UnitCost =
      work.Total == 0 ? Currency{}
                      : Money(figures.TotalCost.ToDouble() / RoundTo(work.Total, 3), UnitCostDecimals(session, work));
}

void CalculateBatch_VOC(const Session& session, BatchWork& work) {
  const Emission voc{&BatchIngredient::VOC, &RecycleColor::BasicVOC, &RecycleColor::VOC};
  work.figures.VOC = Emissions(work, voc, work.cost.MixVOCModelType, UnitFactor(work.UMF, session.UMI));
}

void CalculateBatch_HAP(const Session& session, BatchWork& work) {
  const Emission hap{&BatchIngredient::HAP, &RecycleColor::BasicHAP, &RecycleColor::HAP};
  work.figures.HAP = Emissions(work, hap, work.cost.MixHAPModelType, UnitFactor(work.UMF, session.UMI));
}

void CalculateFigures(const Session& session, BatchWork& work) {
  CalculateCost(session, work);
  CalculateBatch_VOC(session, work);
  CalculateBatch_HAP(session, work);
}

int UnitCostDecimals(const Session& session, const BatchWork& work) {
  return work.UMF == UnitGram || work.UMF == UnitOunce ? 4 : session.DecimalPlaces;
}

std::string UnitCostCaption(const BatchWork& work) {
  return fmt::format("Cost per {}", UnitName(work.UMF));
}

const char* MixCostOptionText(int option) {
  switch (option) {
    case 0:
      return "Cost of Recycled Ink (Basic / Additive Purchase Costs)";
    case 1:
      return "Cost of Recycled Ink (Master Formula Purchase Cost)";
    default:
      return "Cost of Recycled Ink (No Value - 0)";
  }
}

}  // namespace vellumark
