#include <fmt/format.h>

#include <memory>

#include "cli/color_fields.h"
#include "cli/frame.h"
#include "cli/stock_text.h"
#include "core/base/text.h"
#include "core/inventory/lot_texts.h"
#include "core/inventory/reorder.h"
#include "core/inventory/stock_resets.h"

namespace vellumark::cli {
namespace {

// What a reset is told: one colour and which of its rows, or a value for all colours.
struct ResetOptions {
  std::string name;
  std::string value;  // the date or the price
  std::vector<std::string> lots;
  std::string kind;
  ResetValues all;
};

struct Chosen {
  InventoryWork work;
  std::vector<std::size_t> rows;
};

// The rows of the named lots, one number with all its containers; every row without a lot.
Result<std::vector<std::size_t>> RowsOf(const InventoryWork& work, const std::vector<std::string>& lots) {
  std::vector<std::size_t> rows;
  if (lots.empty()) {
    for (std::size_t i = 0; i < work.rows.size(); ++i) rows.push_back(i);
    return rows;
  }
  for (const std::string& lot : lots) {
    const std::size_t before = rows.size();
    for (std::size_t i = 0; i < work.rows.size(); ++i)
      if (SameLotText(work.rows[i].now.lotNumber, TrimView(lot))) rows.push_back(i);
    if (rows.size() == before)
      return Refuse("Lot Not Found", fmt::format("{} has no lot {}.", work.name, Trim(lot)), "cmbLotNum");
  }
  return rows;
}

Result<Chosen> Choose(const Session& session, const ResetOptions& options) {
  const auto name = TypedColor(session, KindOf(options.kind), options.name);
  if (!name) return std::unexpected(name.error());
  const auto kind = ChooseInventoryColor(session, *name, KindOf(options.kind));
  if (!kind) return std::unexpected(kind.error());
  Chosen chosen{LoadInventory(session, *kind, *name), {}};
  auto rows = RowsOf(chosen.work, options.lots);
  if (!rows) return std::unexpected(rows.error());
  chosen.rows = *std::move(rows);
  return chosen;
}

Result<Json> Answer(Context& context, const Chosen& chosen, const Result<bool>& done, std::string title) {
  if (!done) return std::unexpected(done.error());
  if (!*done) return Declined(std::move(title), chosen.work.name);
  return AnswerStock(context, chosen.work.kind, chosen.work.name);
}

Json OptionalText(const std::optional<std::string>& text) {
  return text ? Json(Trim(*text)) : Json();
}

// What a reset of all colours answers: the values as they were given.
Result<Json> AnswerAll(const ResetValues& values, const Result<bool>& done) {
  if (!done) return std::unexpected(done.error());
  if (!*done) return Refuse("Reset", "The reset was cancelled; nothing was changed.");
  return Json{{"Basics", OptionalText(values.basics)}, {"Formulas", OptionalText(values.mixes)}};
}

Result<Json> ResetInventory(Context& context, const ResetOptions& options) {
  Session& session = context.session;
  if (options.name.empty()) return AnswerAll(options.all, ResetInventories(session, options.all));
  auto chosen = Choose(session, options);
  if (!chosen) return std::unexpected(chosen.error());
  return Answer(context, *chosen, ResetRowInventories(session, chosen->work, chosen->rows), "Reset Inventory");
}

Result<Json> ResetDate(Context& context, const ResetOptions& options) {
  Session& session = context.session;
  const auto date = ReadLotDate(options.value);
  if (!date) return std::unexpected(date.error());
  auto chosen = Choose(session, options);
  if (!chosen) return std::unexpected(chosen.error());
  return Answer(context, *chosen, ResetRowDates(session, chosen->work, chosen->rows, *date), "Reset Dates");
}

Result<Json> ResetPrice(Context& context, const ResetOptions& options) {
  Session& session = context.session;
  auto chosen = Choose(session, options);
  if (!chosen) return std::unexpected(chosen.error());
  const auto price = ReadLotPrice(session, chosen->work, options.value);
  if (!price) return std::unexpected(price.error());
  return Answer(context, *chosen, ResetRowPrices(session, chosen->work, chosen->rows, *price), "Reset Prices");
}

Result<Json> Reorder(Context& context, const ResetOptions& options) {
  Session& session = context.session;
  if (const auto value = ReadReorderPoint(options.value); !value) return std::unexpected(value.error());
  const auto name = TypedColor(session, KindOf(options.kind), options.name);
  if (!name) return std::unexpected(name.error());
  const auto kind = ChooseReorderColor(session, *name, KindOf(options.kind));
  if (!kind) return std::unexpected(kind.error());
  if (const auto saved = SaveReorderPoint(session, *kind, *name, options.value); !saved)
    return std::unexpected(saved.error());
  const ColorStock stock = ListStock(session, *name, *kind).front();
  return Json{{"Color_Name", stock.Color_Name},
              {"Kind", static_cast<int>(*kind)},
              {"Reorder", Number(*ReadReorderPoint(options.value))},
              {"Total", Number(stock.total)}};
}

CLI::Option* AddLotOption(CLI::App* verb, ResetOptions& options) {
  return OneEachTime(
      verb->add_option("--lot", options.lots, "Only lots of this number, or \"Unlotted Inv.\"; may be given again"));
}

void AddAllOptions(CLI::App* verb, ResetValues& values) {
  verb->add_option("--basics", values.basics, "The value for all Basic Colors and Additives");
  verb->add_option("--formulas,--mixes", values.mixes, "The value for all formulas");
}

void AddRowReset(CLI::App& noun, Commands& commands, const std::string& verbName, const std::string& description,
                 const std::string& valueName, const std::string& valueHelp,
                 Result<Json> (*run)(Context&, const ResetOptions&)) {
  auto* verb = noun.add_subcommand(verbName, description);
  const auto options = std::make_shared<ResetOptions>();
  verb->add_option("NAME", options->name, "The Basic Color or formula")->required()->check(NotEmpty);
  verb->add_option(valueName, options->value, valueHelp)->required();
  AddLotOption(verb, *options);
  AddKindOption(verb, options->kind);
  commands.Add(verb, Needs::Writable, [options, run](Context& context) { return run(context, *options); });
}

}  // namespace

void AddStockResetCommands(CLI::App& stockNoun, Commands& commands) {
  CLI::App* reset = AddNoun(stockNoun, "reset", "Set stock, dates or prices over");

  auto* inventory = reset->add_subcommand("inventory", "One colour's stock to 0, or that of all colours to a value");
  const auto options = std::make_shared<ResetOptions>();
  auto* name = inventory->add_option("NAME", options->name, "The Basic Color or formula whose stock becomes 0");
  name->check(NotEmpty);
  AddLotOption(inventory, *options)->needs(name);
  AddKindOption(inventory, options->kind);
  AddAllOptions(inventory, options->all);
  inventory->footer("With a value of 0 for all colours their lots are removed as well.");
  inventory->parse_complete_callback([options] {
    const bool all = options->all.basics || options->all.mixes;
    if (all == !options->name.empty())
      throw CLI::ValidationError("reset inventory", "give either NAME, or --basics and --formulas");
  });
  commands.Add(inventory, Needs::Writable, [options](Context& context) { return ResetInventory(context, *options); });

  AddRowReset(*reset, commands, "date", "The date of a colour's lots", "DATE", "YYYY-MM-DD", ResetDate);
  AddRowReset(*reset, commands, "price", "The price of a colour's lots", "PRICE",
              "Per unit, or an entry of the price list: 1), 2), 3)", ResetPrice);

  auto* reorder = stockNoun.add_subcommand("reorder", "Set the reorder point of a colour");
  const auto one = std::make_shared<ResetOptions>();
  reorder->add_option("NAME", one->name, "The Basic Color or formula")->required();
  reorder->add_option("VALUE", one->value, "In the inventory unit")->required();
  AddKindOption(reorder, one->kind);
  commands.Add(reorder, Needs::Writable, [one](Context& context) { return Reorder(context, *one); });

  auto* all = stockNoun.add_subcommand("reset-reorder", "Set the reorder points of all colours");
  const auto values = std::make_shared<ResetValues>();
  AddAllOptions(all, *values);
  all->require_option();
  commands.Add(all, Needs::Writable,
               [values](Context& context) { return AnswerAll(*values, ResetReorderPoints(context.session, *values)); });
}

}  // namespace vellumark::cli
