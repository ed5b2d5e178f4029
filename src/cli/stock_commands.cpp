#include <memory>

#include "cli/color_fields.h"
#include "cli/frame.h"
#include "cli/stock_text.h"
#include "core/base/text.h"
#include "core/colors/amounts.h"
#include "core/inventory/adjust.h"
#include "core/inventory/stock_tables.h"

namespace vellumark::cli {
namespace {

bool HasRows(const ListTable& table) {
  bool any = false;
  table.read([&](const TableRow&) { return any = true, false; });
  return any;
}

Result<Json> ShowStock(Context& context, const std::optional<std::string>& typed) {
  const Session& session = context.session;
  std::optional<std::string> name;
  if (typed) {
    const auto read = TypedColor(session, {}, *typed);
    if (!read) return std::unexpected(read.error());
    name = *read;
    if (!HasRows(ListColorStock(session, name, {}))) return std::unexpected(InventoryColorNotFound(session));
  }
  context.title = name ? "Stock of " + *name : "Stock";
  return context.Answer(context.json && !context.prints ? ListColorStock(session, name, {})
                                                        : ListStockLines(session, name, {}));
}

// The lots of one colour. A name that both kinds bear is asked for.
Result<Json> ShowLots(Context& context, const std::string& typed, const std::string& kindOption) {
  const Session& session = context.session;
  const auto name = TypedColor(session, KindOf(kindOption), typed);
  if (!name) return std::unexpected(name.error());
  const auto kind = ChooseInventoryColor(session, *name, KindOf(kindOption));
  if (!kind) return std::unexpected(kind.error());
  context.title = "Stock of " + *name;
  return context.Answer(context.json && !context.prints
                            ? LotColumns(session).Of(ListStock(session, *name, *kind).front().lots)
                            : ListStockLines(session, *name, *kind));
}

struct HistoryOptions {
  std::optional<std::string> name;
  std::optional<std::string> lot;
  std::string kind;
};

Result<Json> ShowHistory(Context& context, const HistoryOptions& options) {
  const Session& session = context.session;
  StockHistoryFilter filter;
  filter.lot = options.lot;
  filter.kind = KindOf(options.kind);
  if (options.name) {
    auto name = TypedColor(session, filter.kind, *options.name);
    if (!name) return std::unexpected(name.error());
    filter.name = *std::move(name);
  }
  ListTable history = ListHistory(session, filter);
  if (filter.name && !HasRows(history) && !HasRows(ListColorStock(session, filter.name, filter.kind)))
    return std::unexpected(InventoryColorNotFound(session));
  return context.Answer(std::move(history));
}

struct AdjustOptions {
  std::string name;
  std::string quantity;
  std::optional<std::int32_t> ref;
  std::string lot;
  std::optional<std::string> location;
  std::optional<std::string> container;
  std::optional<std::string> price;
  std::optional<std::string> date;
  std::string count;
  bool consignment = false;
  bool noConsignment = false;
  std::string kind;
  std::string reason;
};

// The row of a lot that is named by its reference, with what is to be written over.
Result<AdjustFields> FieldsOfReference(const Session& session, const InventoryWork& work,
                                       const AdjustOptions& options) {
  for (std::size_t row = 1; row < work.rows.size(); ++row) {
    if (work.rows[row].key != options.ref) continue;
    AdjustFields fields = FieldsOfRow(session, work, row);
    if (!Trim(options.lot).empty()) fields.lotNumber = Trim(options.lot);
    if (options.location) fields.location = Trim(*options.location);
    if (options.container) fields.contID = Trim(*options.container);
    return fields;
  }
  return Refuse("Lot Not Found", work.name + " has no lot with the reference " + std::to_string(*options.ref) + ".",
                "cmbLotNum");
}

// The fields as typed. A lot that is there already keeps whatever was not named.
Result<AdjustFields> FieldsOf(const Session& session, const InventoryWork& work, const AdjustOptions& options,
                              float quantity) {
  AdjustFields fields = ClearedFields(session, work);
  const std::string location = Trim(options.location.value_or(""));
  const std::string container = Trim(options.container.value_or(""));
  if (options.ref || !Trim(options.lot).empty()) {
    if (session.InvLotTracking != 1)
      return Refuse("Lotted Inventory", "Lotted Inventory is turned off; no lot can be named.", "cmbLotNum");
    if (options.ref) {
      const auto named = FieldsOfReference(session, work, options);
      if (!named) return named;
      fields = *named;
    } else if (const auto row = FindRow(work, options.lot, location, container)) {
      fields = FieldsOfRow(session, work, *row);
    } else {
      fields.lotNumber = Trim(options.lot);
      fields.location = location;
      fields.contID = container;
    }
  }
  fields.quantity = quantity;
  if (options.consignment || options.noConsignment) fields.consignment = options.consignment;
  if (options.price) {
    if (const auto right = RequireRight(session, AmountKey::Currency, "cmbPrice"); !right)
      return std::unexpected(right.error());
    const auto price = ReadLotPrice(session, work, *options.price);
    if (!price) return std::unexpected(price.error());
    fields.price = *price;
  }
  if (options.date) {
    if (fields.selected) {
      if (const auto free = RequireDateChangeable(session, work, *fields.selected); !free)
        return std::unexpected(free.error());
    }
    const auto date = ReadLotDate(*options.date);
    if (!date) return std::unexpected(date.error());
    fields.date = *date;
  }
  const auto count = ReadUnitCount(session, options.count);
  if (!count) return std::unexpected(count.error());
  if (!count->has_value() && !Trim(options.count).empty())
    return Refuse("Large Unit Count Confirmation", "The Unit Count was not confirmed; nothing was changed.",
                  "cmbContCount");
  fields.count = *count;
  return fields;
}

Result<Json> AdjustStock(Context& context, const AdjustOptions& options) {
  Session& session = context.session;
  const auto quantity = ReadAdjustQuantity(options.quantity);
  if (!quantity) return std::unexpected(quantity.error());
  const auto read = TypedColor(session, KindOf(options.kind), options.name);
  if (!read) return std::unexpected(read.error());
  const std::string& name = *read;
  const auto kind = ChooseInventoryColor(session, name, KindOf(options.kind));
  if (!kind) return std::unexpected(kind.error());

  InventoryWork work = LoadInventory(session, *kind, name);
  work.reason = Trim(options.reason);
  const auto fields = FieldsOf(session, work, options, *quantity);
  if (!fields) return std::unexpected(fields.error());
  if (const auto applied = ApplyAdjust(session, work, *fields); !applied) return std::unexpected(applied.error());
  if (const auto saved = SaveInventory(session, work); !saved) return std::unexpected(saved.error());
  return AnswerStock(context, *kind, work.name);
}

}  // namespace

void AddStockCommands(CLI::App& app, Commands& commands) {
  CLI::App* noun = AddNoun(app, "stock", "What is in stock, and how it came there");

  auto* show = noun->add_subcommand("show", "Unlotted stock, lots and totals");
  const auto shown = std::make_shared<std::optional<std::string>>();
  show->add_option("NAME", *shown, "A Basic Color or formula; all of them without a name");
  commands.AddPrinting(show);
  commands.Add(show, Needs::File, [shown](Context& context) { return ShowStock(context, *shown); });

  auto* lots = noun->add_subcommand("lots", "The lots of a colour");
  const auto whose = std::make_shared<std::pair<std::string, std::string>>();
  lots->add_option("NAME", whose->first, "The Basic Color or formula")->required();
  AddKindOption(lots, whose->second);
  commands.AddPrinting(lots);
  commands.Add(lots, Needs::File, [whose](Context& context) { return ShowLots(context, whose->first, whose->second); });

  auto* low = noun->add_subcommand("low", "The colours whose stock is below their reorder point");
  commands.AddList(low, Needs::File, "Colors below Reorder Point",
                   [](Context& context) { return context.Answer(ListLowStock(context.session)); });

  auto* history =
      noun->add_subcommand("history", "Every change of stock: when, who, what moved it, what then was there");
  const auto told = std::make_shared<HistoryOptions>();
  history->add_option("NAME", told->name, "A Basic Color or formula, through all its names; all of them without one");
  history->add_option("--lot", told->lot, "Only this lot, or \"Unlotted Inv.\"")->check(NotEmpty);
  AddKindOption(history, told->kind);
  commands.AddList(history, Needs::File, "Stock History",
                   [told](Context& context) { return ShowHistory(context, *told); });

  AddStockResetCommands(*noun, commands);
  AddScanCommand(*noun, commands);

  auto* adjust = noun->add_subcommand("adjust", "Add to a colour's stock, or take from it with a negative quantity");
  const auto options = std::make_shared<AdjustOptions>();
  adjust->add_option("NAME", options->name, "The Basic Color or formula")->required();
  adjust->add_option("QTY", options->quantity, "In the inventory unit; of one container with --count")->required();
  adjust->add_option("--ref", options->ref, "LotRefID of a lot that is there; the other options then change it");
  adjust->add_option("--lot", options->lot, "Lot number; Unlotted Inventory without it")->check(NotEmpty);
  adjust->add_option("--loc", options->location, "Location of the lot");
  adjust->add_option("--cont", options->container, "Container of the lot");
  adjust->add_option("--price", options->price, "Price per unit, or an entry of the price list: 1), 2), 3)");
  adjust->add_option("--date", options->date, "Date of the lot, YYYY-MM-DD; today for a new one");
  adjust->add_option("--count", options->count, "Number of containers");
  auto* consignment = adjust->add_flag("--consignment", options->consignment, "The lot is held on consignment");
  adjust->add_flag("--no-consignment", options->noConsignment, "The lot is no longer held on consignment")
      ->excludes(consignment);
  AddKindOption(adjust, options->kind);
  adjust->add_option("--reason", options->reason, "Why, for the history");
  adjust->parse_complete_callback([adjust] {
    if (adjust->count("--lot") + adjust->count("--ref") > 0) return;
    for (const char* option : {"--loc", "--cont", "--price", "--date", "--consignment", "--no-consignment"})
      if (adjust->count(option) > 0) throw CLI::RequiresError(option, "--lot or --ref");
  });
  commands.Add(adjust, Needs::Writable, [options](Context& context) { return AdjustStock(context, *options); });
}

}  // namespace vellumark::cli
