#include <memory>

#include "cli/color_fields.h"
#include "cli/frame.h"
#include "core/base/number.h"
#include "core/base/text.h"
#include "core/base/units.h"
#include "core/colors/names.h"
#include "core/inventory/adjust.h"
#include "core/inventory/stock_list.h"

namespace vellumark::cli {
namespace {

Json LotJson(const Session& session, const LotRow& lot) {
  return {{"LotRefID", lot.LotRefID},
          {"LotNumber", lot.LotNumber},
          {"LotLoc", lot.LotLoc},
          {"LotContID", lot.LotContID},
          {"LotDate", lot.LotDate ? Json(lot.LotDate->DateText()) : Json()},
          {"LotQty", Number(lot.LotQty)},
          {"LotPrice", session.Perm_Costs == 0 ? Json() : Number(lot.LotPrice)},
          {"LotConsignment", lot.LotConsignment}};
}

Json StockJson(const Session& session, const ColorStock& stock) {
  Json lots = Json::array();
  for (const LotRow& lot : stock.lots) lots.push_back(LotJson(session, lot));
  return {{"Color_Name", stock.Color_Name},
          {"Kind", static_cast<int>(stock.kind)},
          {"Inventory", Number(stock.Inventory)},
          {"lots", std::move(lots)},
          {"Unlotted", Number(RoundSingle(stock.Inventory, 3))},
          {"Lotted", Number(stock.lotted)},
          {"Total", Number(stock.total)}};
}

// A line for Unlotted Inventory, one for each lot and, where there are lots, one for the total.
std::string StockText(const Session& session, const std::vector<ColorStock>& stock) {
  std::vector<std::vector<std::string>> rows;
  for (const ColorStock& one : stock) {
    const std::string kind = one.kind == ColorKind::Mix ? "Formula" : "Basic";
    rows.push_back({one.Color_Name, kind, std::string(kUnlottedInv), "", "", "", Fixed(one.Inventory, 3), "", ""});
    for (const LotRow& lot : one.lots) {
      rows.push_back({"", "", lot.LotNumber, lot.LotLoc, lot.LotContID, lot.LotDate ? lot.LotDate->DateText() : "",
                      Fixed(lot.LotQty, 3), session.Perm_Costs == 0 ? "" : Fixed(lot.LotPrice, session.DecimalPlaces),
                      lot.LotConsignment ? "Yes" : "No"});
    }
    if (!one.lots.empty()) rows.push_back({"", "", "Total", "", "", "", Fixed(one.total, 3), "", ""});
  }
  const std::string quantity = "Quantity (" + std::string(UnitName(session.UMI)) + ")";
  return TableText(
      {"Color Name", "Type", "Lot Number", "Location", "Cont ID Num", "Date", quantity, "Price", "Consignment"}, rows,
      {false, false, false, false, false, false, true, true, false});
}

Result<Json> ShowStock(Context& context, const std::optional<std::string>& typed) {
  const Session& session = context.session;
  std::vector<ColorStock> stock;
  if (typed) {
    const auto name = TypedName(session, *typed);
    if (!name) return std::unexpected(name.error());
    stock = ListStock(session, *name);
    if (stock.empty()) return std::unexpected(InventoryColorNotFound(session));
  } else {
    stock = ListStock(session);
  }
  Json answer = Json::array();
  for (const ColorStock& one : stock) answer.push_back(StockJson(session, one));
  if (!context.json) context.text = StockText(session, stock);
  return answer;
}

struct AdjustOptions {
  std::string name;
  std::string quantity;
  std::string lot;
  std::optional<std::string> location;
  std::optional<std::string> container;
  std::optional<std::string> price;
  std::optional<std::string> date;
  std::string count;
  bool consignment = false;
  std::string kind;
};

// The fields as typed. A lot that is there already keeps whatever was not named.
Result<AdjustFields> FieldsOf(const Session& session, const InventoryWork& work, const AdjustOptions& options,
                              float quantity) {
  AdjustFields fields = ClearedFields(session, work);
  const std::string location = Trim(options.location.value_or(""));
  const std::string container = Trim(options.container.value_or(""));
  if (!Trim(options.lot).empty()) {
    if (session.InvLotTracking != 1)
      return Refuse("Lotted Inventory", "Lotted Inventory is turned off; no lot can be named.", "cmbLotNum");
    if (const auto row = FindRow(work, options.lot, location, container)) {
      fields = FieldsOfRow(session, work, *row);
    } else {
      fields.lotNumber = Trim(options.lot);
      fields.location = location;
      fields.contID = container;
    }
  }
  fields.quantity = quantity;
  if (options.consignment) fields.consignment = true;
  if (options.price) {
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
  const auto read = TypedName(session, options.name);
  if (!read) return std::unexpected(read.error());
  const std::string& name = *read;
  std::optional<ColorKind> wanted;
  if (!options.kind.empty()) wanted = options.kind == "formula" ? ColorKind::Mix : ColorKind::Basic;
  const auto kind = ChooseInventoryColor(session, name, wanted);
  if (!kind) return std::unexpected(kind.error());

  InventoryWork work = LoadInventory(session, *kind, name);
  const auto fields = FieldsOf(session, work, options, *quantity);
  if (!fields) return std::unexpected(fields.error());
  if (const auto applied = ApplyAdjust(session, work, *fields); !applied) return std::unexpected(applied.error());
  if (const auto saved = SaveInventory(session, work); !saved) return std::unexpected(saved.error());

  const std::vector<ColorStock> stock = ListStock(session, work.name, *kind);
  if (!context.json) context.text = StockText(session, stock);
  return StockJson(session, stock.front());
}

}  // namespace

void AddStockCommands(CLI::App& app, Commands& commands) {
  CLI::App* noun = AddNoun(app, "stock", "What is in stock: show, adjust");

  auto* show = noun->add_subcommand("show", "Unlotted stock, lots and totals");
  const auto shown = std::make_shared<std::optional<std::string>>();
  show->add_option("NAME", *shown, "A Basic Color or formula; all of them without a name");
  commands.Add(show, Needs::File, [shown](Context& context) { return ShowStock(context, *shown); });

  auto* adjust = noun->add_subcommand("adjust", "Add to a colour's stock, or take from it with a negative quantity");
  const auto options = std::make_shared<AdjustOptions>();
  adjust->add_option("NAME", options->name, "The Basic Color or formula")->required();
  adjust->add_option("QTY", options->quantity, "In the inventory unit; of one container with --count")->required();
  auto* lot = adjust->add_option("--lot", options->lot, "Lot number; Unlotted Inventory without it")->check(NotEmpty);
  adjust->add_option("--loc", options->location, "Location of the lot")->needs(lot);
  adjust->add_option("--cont", options->container, "Container of the lot")->needs(lot);
  adjust->add_option("--price", options->price, "Price per unit, or an entry of the price list: 1), 2), 3)")
      ->needs(lot);
  adjust->add_option("--date", options->date, "Date of the lot, YYYY-MM-DD; today for a new one")->needs(lot);
  adjust->add_option("--count", options->count, "Number of containers");
  adjust->add_flag("--consignment", options->consignment, "The lot is held on consignment")->needs(lot);
  adjust->add_option("--kind", options->kind, "Which is meant when both bear the name")
      ->transform(CLI::IsMember({"basic", "formula"}, CLI::ignore_case));
  commands.Add(adjust, Needs::Writable, [options](Context& context) { return AdjustStock(context, *options); });
}

}  // namespace vellumark::cli
