#include <fmt/format.h>

#include <algorithm>
#include <memory>

#include "cli/color_fields.h"
#include "cli/frame.h"
#include "core/base/number.h"
#include "core/base/text.h"
#include "core/base/units.h"
#include "core/batch/actions.h"
#include "core/batch/additions.h"
#include "core/batch/adjust.h"
#include "core/batch/cost.h"
#include "core/batch/recycle_list.h"
#include "core/batch/rows.h"
#include "core/colors/names.h"

namespace vellumark::cli {
namespace {

struct CalcOptions {
  std::string formula;
  std::string quantity;
  std::string unit;
  bool recycle = false;
  bool mix = false;
  std::vector<std::string> take;  ///< "NAME=AMOUNT"
  std::vector<std::string> add;   ///< "NAME=AMOUNT"
};

std::string NotAPair(const std::string& text) {
  const auto pair = SplitPair(text, true);
  return pair && !pair->first.empty() ? "" : fmt::format("{}: expected NAME=AMOUNT", text);
}

std::string NotAUnit(const std::string& text) {
  return ParseUnit(text) ? "" : fmt::format("{}: expected lb., kg., g. or oz.", text);
}

Json Money(const Session& session, Currency amount) {
  return session.Perm_Costs == 0 ? Json() : Json(amount.Fixed(session.DecimalPlaces));
}

Json RowsJson(const BatchWork& work) {
  Json rows = Json::array();
  for (const BatchRow& row : work.Rows)
    rows.push_back({{"Kind", RowKindName(row.kind)},
                    {"Name", row.name},
                    {"Amount", row.amount},
                    {"Max", row.kind == RowKind::Mix ? Json(Fixed(row.max, 3)) : Json()}});
  return rows;
}

Json RecycleListJson(const BatchWork& work) {
  Json list = Json::array();
  for (const RecycleListRow& row : RecycleListRows(work, {})) {
    const RecycleColor& color = work.RecycleList[row.place];
    list.push_back({{"Color_Name", color.Color_Name},
                    {"Recycle_Percent", Number(color.Recycle_Percent)},
                    {"Inventory", Number(color.Inventory)},
                    {"Recycle", color.Recycle}});
  }
  return list;
}

Json BatchJson(const Session& session, const BatchWork& work) {
  return {{"Color_Name", work.Color_Name},
          {"Color_Code", work.formula.Color_Code},
          {"Quantity", Number(static_cast<float>(work.Quantity()))},
          {"UMF", UnitName(work.UMF)},
          {"Rows", RowsJson(work)},
          {"Total", work.TotalText},
          {"RecycledTotal", Fixed(work.RecycledTotal, 3)},
          {"AdditionsTotal", Fixed(work.AdditionsTotal, 3)},
          {"PercentRecycled", work.PercentRecycled},
          {"Roundoff", Number(work.Roundoff)},
          {"LargestAmountIndex", work.LargestAmountIndex},
          {"ClickedIndex", work.ClickedIndex},
          {"RecycleList", RecycleListJson(work)},
          {"CostOfBasics", Money(session, work.figures.CostOfBasics)},
          {"CostOfMixes", Money(session, work.figures.CostOfMixes)},
          {"CostOfBatch", Money(session, work.figures.TotalCost)},
          {"UnitCost", Money(session, work.figures.UnitCost)},
          {"VOC", Fixed(work.figures.VOC, 3)},
          {"HAP", Fixed(work.figures.HAP, 3)}};
}

std::string BatchText(const Session& session, const BatchWork& work) {
  std::vector<std::vector<std::string>> rows;
  for (const BatchRow& row : work.Rows)
    rows.push_back({std::string(RowKindName(row.kind)), row.name, row.amount, row.unit,
                    row.kind == RowKind::Mix ? Fixed(row.max, 3) : ""});
  const std::string unit(UnitName(work.UMF));
  rows.push_back({"", "Total", work.TotalText, unit, ""});
  std::string text =
      fmt::format("{}{}\n\n", work.Color_Name, work.formula.Color_Code.empty() ? "" : "  " + work.formula.Color_Code);
  text += TableText({"Kind", "Name", "Amount", "Unit", "Max"}, rows, {false, false, true, false, true});
  std::vector<std::pair<std::string, std::string>> figures{{"Percent Recycled", work.PercentRecycled}};
  if (session.Perm_Costs != 0) {
    const int decimals = session.DecimalPlaces;
    figures.insert(figures.end(),
                   {{"Cost of Basics / Additives", work.figures.CostOfBasics.Fixed(decimals)},
                    {MixCostOptionText(work.cost.MixCostOption), work.figures.CostOfMixes.Fixed(decimals)},
                    {"Total Cost of Batch", work.figures.TotalCost.Fixed(decimals)},
                    {UnitCostCaption(work), work.figures.UnitCost.Fixed(decimals)}});
  }
  figures.insert(figures.end(), {{"VOC", Fixed(work.figures.VOC, 3)}, {"HAP", Fixed(work.figures.HAP, 3)}});
  std::size_t label = 0;
  std::size_t value = 0;
  for (const auto& [caption, figure] : figures) {
    label = std::max(label, caption.size());
    value = std::max(value, figure.size());
  }
  text += '\n';
  for (const auto& [caption, figure] : figures) text += fmt::format("{:<{}}  {:>{}}\n", caption, label, figure, value);
  if (work.zeroRows > 0) text += fmt::format("\n{}\n", kZeroMsg);
  return text;
}

Result<void> Take(Session& session, BatchWork& work, const std::string& option) {
  const auto [typed, amount] = SplitPair(option, true).value();
  const auto read = TypedName(session, typed);
  if (!read) return std::unexpected(read.error());
  std::string name = *read;
  for (const RecycleListRow& row : RecycleListRows(work, {}))
    if (SameColorName(row.Color_Name, name)) name = row.Color_Name;
  const auto taken = ChooseFromRecycleList(session, work, name, Trim(amount));
  if (!taken) return std::unexpected(taken.error());
  if (*taken) return {};
  if (work.Rows.size() >= static_cast<std::size_t>(kMostBatchLines))
    return Refuse("Recycle List", fmt::format("A Batch holds at most {} lines.", kMostBatchLines), "fgRecList");
  return Refuse("Recycle List", fmt::format("{} is not in the Recycle List of this Batch.", name), "fgRecList");
}

/// A calculated Batch that is stored nowhere.
Result<BatchWork> Calculate(Session& session, const CalcOptions& options) {
  const auto named = TypedName(session, options.formula);
  if (!named) return std::unexpected(named.error());
  const auto formula = FindBatchFormula(session, *named);
  if (!formula) return std::unexpected(formula.error());
  BatchWork work = NewBatchWork(session);
  work.Color_Name = *formula;
  work.QuantityText = options.quantity;
  if (!options.unit.empty()) work.UMF = ParseUnit(options.unit).value_or(work.UMF);
  const bool recycle = options.recycle || (!options.mix && options.take.empty() && work.settings.recycleByDefault);
  if (const auto done = recycle ? RecycleAction(session, work) : MixAction(session, work); !done)
    return std::unexpected(done.error());
  for (const std::string& option : options.take)
    if (const auto taken = Take(session, work, option); !taken) return std::unexpected(taken.error());
  std::vector<AdditionLine> additions;
  for (const std::string& option : options.add) {
    const auto [name, amount] = SplitPair(option, true).value();
    if (auto valid = TypedName(session, name); !valid) return std::unexpected(valid.error());
    additions.push_back({name, Trim(amount)});
  }
  if (!additions.empty())
    if (const auto added = AddAdditions(session, work, additions); !added) return std::unexpected(added.error());
  return work;
}

void AddCalcOptions(CLI::App& verb, CalcOptions& options) {
  verb.add_option("--formula", options.formula, "The Master Formula: its name, number or code")->required();
  verb.add_option("--quantity", options.quantity, "How much, up to 99999")->required();
  verb.add_option("--unit", options.unit, "lb., kg., g. or oz.; default as set")->check(NotAUnit);
  auto* recycle = verb.add_flag("--recycle", options.recycle, "Use inks from stock as far as the recipe permits");
  auto* mix = verb.add_flag("--mix", options.mix, "Straight from the recipe");
  recycle->excludes(mix);
  OneEachTime(verb.add_option("--take", options.take, "Put a colour of the Recycle List in by hand: NAME=AMOUNT"))
      ->check(NotAPair);
  OneEachTime(verb.add_option("--add", options.add, "A batch addition: NAME=AMOUNT"))->check(NotAPair);
}

}  // namespace

void AddBatchCommands(CLI::App& app, Commands& commands) {
  CLI::App* noun = AddNoun(app, "batch", "Batches: calc");
  auto* calc = noun->add_subcommand("calc", "Calculate a Batch and store nothing");
  const auto options = std::make_shared<CalcOptions>();
  AddCalcOptions(*calc, *options);
  commands.Add(calc, Needs::File, [options](Context& context) -> Result<Json> {
    const auto work = Calculate(context.session, *options);
    if (!work) return std::unexpected(work.error());
    if (!context.json) context.text = BatchText(context.session, *work);
    return BatchJson(context.session, *work);
  });
}

}  // namespace vellumark::cli
