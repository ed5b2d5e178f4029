#include "core/batch/cost_model.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>

#include "core/base/units.h"
#include "core/batch/cost.h"
#include "core/settings/settings.h"

namespace vellumark {
namespace {

constexpr int kPercentDecimals = 1;

const char* NameOf(const std::array<const char*, kMixOptions>& names, int option) {
  return names.at(static_cast<std::size_t>(option));
}

Result<float> ReadCost(const Session& session, std::string_view typed, const char* field) {
  if (const auto cost = ParseNumber(typed); cost && *cost >= 0 && *cost <= kMostQuantity)
    return RoundSingle(*cost, session.DecimalPlaces);
  return Refuse("Invalid Cost", "You must enter a valid, positive cost.", field);
}

Result<float> ReadMarkup(std::string_view typed) {
  if (const auto percent = ParseNumber(typed);
      percent && *percent >= 0 && *percent <= setting::MarkupPercent.limits.most)
    return RoundSingle(*percent, kPercentDecimals);
  return Refuse("Invalid Percentage", "You must enter a valid percentage between 0 and 100.", "txtMarkupPercent");
}

}  // namespace

const FieldMap<BatchCostModel>& CostModelFields() {
  using M = BatchCostModel;
  static const FieldMap<M> fields = [] {
    const FieldTraits cost{.use = FieldUse::Typed, .price = true};
    const FieldTraits emission{.use = FieldUse::Typed};
    FieldMap<M> map;
    map.Add("CostModelType", &M::CostModelType, cost)
        .Add("MixCostOption", &M::MixCostOption, cost)
        .Add("FixedCostOfBatch", &M::FixedCostOfBatch, cost)
        .Add("FixedCostPerUnit", &M::FixedCostPerUnit, cost)
        .Add("MarkupPercent", &M::MarkupPercent, cost)
        .Add("MixVOCModelType", &M::MixVOCModelType, emission)
        .Add("MixHAPModelType", &M::MixHAPModelType, emission);
    return map;
  }();
  return fields;
}

int& ChoiceIn(BatchCostModel& model, const RecordField& field) {
  if (field.column == "CostModelType") return model.CostModelType;
  if (field.column == "MixCostOption") return model.MixCostOption;
  return field.column == "MixVOCModelType" ? model.MixVOCModelType : model.MixHAPModelType;
}

int LastChoice(const RecordField& field) {
  return field.column == "CostModelType" ? 1 : kMixOptions - 1;
}

void KeepChoices(BatchCostModel& model) {
  for (const RecordField& field : CostModelFields())
    if (int* choice = field.type == RecordField::Type::Whole ? &ChoiceIn(model, field) : nullptr)
      *choice = std::clamp(*choice, 0, LastChoice(field));
}

const char* CostModelTypeName(int type) {
  return type == 0 ? "Use Ingredients" : "Do Not Use Ingredients";
}

const char* CostModelTypeText(int type) {
  return type == 0 ? "Individual Ingredient Costs add together to create a Batch Cost."
                   : "Master Formula Purchase cost is multiplied against Batch weight to create a Batch Cost.";
}

const char* MixCostOptionName(int option) {
  return NameOf({"Use Basic & Additive Purchase Costs", "Use Master Formula Purchase Cost", "Use 0 - No Value"},
                option);
}

const char* MixVOCModelName(int type) {
  return NameOf({"Use Basic / Addivitve VOC Value", "Use Master Formula VOC Value", "Use No VOC Value -> 0"}, type);
}

const char* MixHAPModelName(int type) {
  return NameOf({"Use Basic / Addivitve HAP Value", "Use Master Formula HAP Value", "Use No HAP Value -> 0"}, type);
}

CostModelEntry ShowCostModel(const Session& session, const BatchCostModel& model) {
  return {model.CostModelType, model.MixCostOption, Fixed(model.FixedCostOfBatch, session.DecimalPlaces),
          Fixed(model.FixedCostPerUnit, session.DecimalPlaces), Fixed(model.MarkupPercent, kPercentDecimals)};
}

Result<BatchCostModel> ReadCostModel(const Session& session, const CostModelEntry& typed,
                                     const BatchCostModel& before) {
  const auto fixedOfBatch = ReadCost(session, typed.FixedCostOfBatch, "txtFixedCostBatch");
  if (!fixedOfBatch) return std::unexpected(fixedOfBatch.error());
  const auto fixedPerUnit = ReadCost(session, typed.FixedCostPerUnit, "txtFixedCostUnit");
  if (!fixedPerUnit) return std::unexpected(fixedPerUnit.error());
  const auto markup = ReadMarkup(typed.MarkupPercent);
  if (!markup) return std::unexpected(markup.error());
  BatchCostModel model = before;
  model.CostModelType = typed.CostModelType;
  model.MixCostOption = typed.MixCostOption;
  model.FixedCostOfBatch = *fixedOfBatch;
  model.FixedCostPerUnit = *fixedPerUnit;
  model.MarkupPercent = *markup;
  return model;
}

std::string CostModelExample(const Session& session) {
  constexpr double kWeight = 10;
  constexpr double kCost = 8.75;
  const double shownCost = RoundTo(kCost, session.DecimalPlaces);
  return fmt::format("(Example - {} {} * {} = {})", kWeight, UnitName(session.UMI),
                     Fixed(shownCost, session.DecimalPlaces), Fixed(kWeight * shownCost, session.DecimalPlaces));
}

std::vector<CostLine> CostDetail(const Session& session, const BatchWork& work) {
  using Kind = CostLine::Kind;
  const BatchFigures& figures = work.figures;
  const BatchCostModel& model = work.cost;
  const Currency ingredients = figures.CostOfBasics + figures.CostOfMixes;
  const Currency additional = figures.TotalCost - ingredients;
  const Currency fixedOfBatch = Currency::From(RoundTo(model.FixedCostOfBatch, 4));
  std::vector<CostLine> lines;
  if (model.CostModelType == 0) {
    lines.push_back({Kind::Part, "lblCostOfBasics", "Cost of Basics / Additives", figures.CostOfBasics});
    lines.push_back({Kind::Part, "lblCostOfMixes", MixCostOptionText(model.MixCostOption), figures.CostOfMixes});
    lines.push_back({Kind::Subtotal, "lblIngredientCost", "Ingredient Cost - Subtotal", ingredients});
  } else {
    lines.push_back(
        {Kind::Subtotal, "lblIngredientCost", "Batch Cost calculated with Master Formula Purchase Cost", ingredients});
  }
  lines.push_back({Kind::Part, "lblFixedCostOfBatch", "Fixed Cost of Batch", fixedOfBatch});
  lines.push_back({Kind::Part, "lblFixedCostPerUnit",
                   fmt::format("Fixed Cost of {} / {}", Fixed(model.FixedCostPerUnit, session.DecimalPlaces),
                               UnitName(session.UMI)),
                   additional - fixedOfBatch - figures.Markup});
  lines.push_back({Kind::Part, "lblMarkup",
                   fmt::format("Markup Ingredients {}%", Fixed(model.MarkupPercent, kPercentDecimals)),
                   figures.Markup});
  lines.push_back({Kind::Subtotal, "lblAdditionalCost", "Addtional Costs - Subtotal", additional});
  lines.push_back({Kind::Total, "lblTotalCost", "Total Cost of Batch", figures.TotalCost});
  return lines;
}

}  // namespace vellumark
