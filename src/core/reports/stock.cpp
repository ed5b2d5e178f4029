#include <fmt/format.h>

#include <map>
#include <tuple>

#include "core/base/text.h"
#include "core/batch/holding.h"
#include "core/inventory/lots.h"
#include "core/reports/color_book.h"
#include "core/reports/families.h"
#include "core/reports/stock_rows.h"

// Inventory: what is in stock, what it is worth, what is to be reordered.

namespace vellumark {
namespace {

// One figure of stock: what is unlotted of a colour, or a lot of it.
struct StockRow {
  const StockColor* color = nullptr;
  std::string database;
  std::optional<ReportLot> lot{};
  bool consigned = false;
  std::int64_t quantity = 0;
  std::int64_t price = 0;
  std::int64_t cost = 0;
};

struct StockSum {
  std::string name{};
  std::int64_t quantity = 0;
  std::int64_t cost = 0;
  std::int64_t ownedQty = 0;
  std::int64_t ownedCost = 0;
  std::int64_t consignedQty = 0;
  std::int64_t consignedCost = 0;

  void Add(const StockRow& row) {
    quantity += row.quantity;
    cost += row.cost;
    (row.consigned ? consignedQty : ownedQty) += row.quantity;
    (row.consigned ? consignedCost : ownedCost) += row.cost;
  }
};

constexpr int kOwned = 1;
constexpr int kConsigned = 2;

std::vector<ReportOption> InventoryOptions(bool summary) {
  return {{"MixCost", "what a formula costs: 0 its Basic Cost, 1 its Purchase Cost", 2, 0,
           summary ? "InventoryMixCost" : ""},
          {"InvOnly", "1 lists only what is in stock or has a reorder point", 2, 0, summary ? "InventoryInvOnly" : ""},
          {"ShowBasics", "1 lists Basics and Additives", 2, 1, summary ? "InventoryShowBasics" : ""},
          {"ShowMixes", "1 lists Master Formulas", 2, 1, summary ? "InventoryShowMixes" : ""},
          {"OptConsignment", "0 all stock, 1 what is owned, 2 what is on consignment", 3}};
}

std::int64_t UnitCostOf(const ReportContext& context, const StockColor& color) {
  return color.kind == ColorKind::Mix && context.Option("MixCost") == 0 ? color.BasicCost : color.PurchaseCost;
}

void ForEachStockRow(const ReportContext& context, const std::string& database,
                     const std::function<bool(const StockRow&)>& take) {
  const int decimals = context.session.DecimalPlaces;
  const int consignment = context.Option("OptConsignment");
  const auto wanted = [&](bool consigned) { return consignment == 0 || (consignment == kConsigned) == consigned; };
  bool goesOn = true;
  for (const ColorKind kind : {ColorKind::Basic, ColorKind::Mix}) {
    if (!goesOn || context.Option(kind == ColorKind::Mix ? "ShowMixes" : "ShowBasics") != 1) continue;
    ForEachStockColor(context, database, kind, [&](const StockColor& color) {
      if (context.Option("InvOnly") == 1 && color.total == 0 && color.Reorder == 0) return true;
      StockRow row{&color, database};
      row.price = UnitCostOf(context, color);
      row.quantity = color.Inventory;
      row.cost = CostOfQty(row.quantity, row.price, decimals);
      if (wanted(false)) goesOn = take(row);
      for (const StockLot& lot : color.lots) {
        if (!goesOn) break;
        if (!wanted(lot.consigned)) continue;
        row.lot = lot.lot;
        row.consigned = lot.consigned;
        row.quantity = lot.lot.LotQty;
        row.price = lot.lot.price;
        row.cost = lot.lot.cost;
        goesOn = take(row);
      }
      return goesOn;
    });
  }
}

RowTarget ColorTarget(ColorKind kind, const std::string& database, const std::string& name) {
  return {kind == ColorKind::Mix ? RowTarget::Kind::Mix : RowTarget::Kind::Basic, database, name};
}

ListTable Detail(const ReportContext& context) {
  using Row = StockRow;
  const int decimals = context.session.DecimalPlaces;
  const auto qty = [](const Row& r, bool counts) {
    return counts ? TableValue(OfWholeUnits(r.quantity, 3)) : TableValue();
  };
  const auto cost = [decimals](const Row& r, bool counts) {
    return counts ? TableValue(OfWholeUnits(r.cost, decimals)) : TableValue();
  };
  TableOf<Row> table;
  table.Add(
      "Color_Name", [](const Row& r) { return r.color->Color_Name; }, "Color Name");
  if (context.report.scope == ReportScope::Chosen) table.Add("Database", &Row::database, "Database");
  table
      .Add(
          "Color_Type", [](const Row& r) { return ColorTypeText(r.color->kind, r.color->Additive); }, "Color Type")
      .Add(
          "Color_Code", [](const Row& r) { return r.color->Color_Code; }, "Color Code")
      .Add(
          "LotNumber", [](const Row& r) { return r.lot ? r.lot->LotNumber : std::string(kUnlottedInv); }, "Lot Number")
      .Add(
          "LotLoc", [](const Row& r) { return r.lot ? r.lot->LotLoc : ""; }, "Lot Location")
      .Add(
          "LotContID", [](const Row& r) { return r.lot ? r.lot->LotContID : ""; }, "Lot Cont. ID")
      .Add(
          "LotDate", [](const Row& r) { return r.lot ? r.lot->LotDate : std::nullopt; }, "Lot Date", Format::Date)
      .Add("Consignment", &Row::consigned, "Consignment", Format::YesNo)
      .Add(
          "Inventory", [qty](const Row& r) { return qty(r, true); }, context.InUnit("Inventory"), Format::Amount)
      .Sum()
      .Add(
          "UnitCost", [decimals](const Row& r) { return OfWholeUnits(r.price, decimals); },
          context.InMoney("Unit Cost"), Format::Money, decimals)
      .Add(
          "TotalCost", [cost](const Row& r) { return cost(r, true); }, context.InMoney("Total Cost"), Format::Money,
          decimals)
      .Sum()
      .Add(
          "OwnedQty", [qty](const Row& r) { return qty(r, !r.consigned); }, context.InUnit("Owned"), Format::Amount)
      .Sum()
      .Add(
          "OwnedCost", [cost](const Row& r) { return cost(r, !r.consigned); }, context.InMoney("Owned Value"),
          Format::Money, decimals)
      .Sum()
      .Add(
          "ConsignedQty", [qty](const Row& r) { return qty(r, r.consigned); }, context.InUnit("On Consignment"),
          Format::Amount)
      .Sum()
      .Add(
          "ConsignedCost", [cost](const Row& r) { return cost(r, r.consigned); }, context.InMoney("Consigned Value"),
          Format::Money, decimals)
      .Sum()
      .Add(
          "Reorder", [](const Row& r) { return r.lot ? TableValue() : TableValue(OfWholeUnits(r.color->Reorder, 3)); },
          context.InUnit("Reorder"), Format::Amount)
      .Add(
          "Inv_Note", [](const Row& r) { return r.color->Inv_Note; }, "Inventory Note")
      .Add(
          "Date_Entered", [](const Row& r) { return r.color->Date_Entered; }, "Date Entered", Format::Date)
      .Add(
          "Notes", [](const Row& r) { return r.color->Notes; }, "Notes", Format::Notes)
      .Leads([](const Row& r) { return ColorTarget(r.color->kind, r.database, r.color->Color_Name); });
  return table.Of([&context](const std::function<bool(const Row&)>& take) {
    bool goesOn = true;
    std::int64_t colors = 0;
    const StockColor* last = nullptr;
    std::string lastName;
    for (const std::string& database : context.databases) {
      if (!goesOn) return;
      ForEachStockRow(context, database, [&](const Row& row) {
        if (!row.lot || row.color->Color_Name != lastName || last != row.color) ++colors;
        last = row.color;
        lastName = row.color->Color_Name;
        context.watch.SetCount(colors);
        return goesOn = take(row);
      });
    }
  });
}

ListTable Summary(const ReportContext& context) {
  using Row = StockSum;
  const int decimals = context.session.DecimalPlaces;
  TableOf<Row> table;
  table.Add("Database", &Row::name, "Database");
  const auto qty = [&](const char* key, std::int64_t Row::*figure, const char* caption) {
    table
        .Add(
            key, [figure](const Row& r) { return OfWholeUnits(r.*figure, 3); }, context.InUnit(caption))
        .Sum();
  };
  const auto cost = [&](const char* key, std::int64_t Row::*figure, const char* caption) {
    table
        .Add(
            key, [figure, decimals](const Row& r) { return OfWholeUnits(r.*figure, decimals); },
            context.InMoney(caption), Format::Money, decimals)
        .Sum();
  };
  qty("Inventory", &Row::quantity, "Inventory");
  cost("TotalCost", &Row::cost, "Total Cost");
  qty("OwnedQty", &Row::ownedQty, "Owned");
  cost("OwnedCost", &Row::ownedCost, "Owned Value");
  qty("ConsignedQty", &Row::consignedQty, "On Consignment");
  cost("ConsignedCost", &Row::consignedCost, "Consigned Value");
  table.Leads([](const Row& r) { return RowTarget{RowTarget::Kind::Database, r.name}; });
  return table.Of([&context](const std::function<bool(const Row&)>& take) {
    for (const std::string& database : context.databases) {
      Row sum{.name = database};
      ForEachStockRow(context, database, [&](const StockRow& row) {
        sum.Add(row);
        return true;
      });
      if (!take(sum)) return;
    }
  });
}

ListTable ToReorder(const ReportContext& context) {
  using Row = StockColor;
  const std::string database = context.databases.front();
  const int decimals = context.session.DecimalPlaces;
  TableOf<Row> table;
  table.Add("Color_Name", &Row::Color_Name, "Color Name")
      .Add(
          "Color_Type", [](const Row& r) { return ColorTypeText(r.kind, r.Additive); }, "Color Type")
      .Add("Color_Code", &Row::Color_Code, "Color Code")
      .Add(
          "Reorder", [](const Row& r) { return OfWholeUnits(r.Reorder, 3); }, context.InUnit("Reorder"))
      .Add(
          "Inventory", [](const Row& r) { return OfWholeUnits(r.total, 3); }, context.InUnit("Inventory"))
      .Add("Inv_Note", &Row::Inv_Note, "Inventory Note")
      .Add(
          "UnitCost", [&context, decimals](const Row& r) { return OfWholeUnits(UnitCostOf(context, r), decimals); },
          context.InMoney("Unit Cost"), Format::Money, decimals)
      .Add("Date_Entered", &Row::Date_Entered, "Date Entered", Format::Date)
      .Add("Notes", &Row::Notes, "Notes", Format::Notes)
      .Leads([database](const Row& r) { return ColorTarget(r.kind, database, r.Color_Name); });
  return table.Of([&context, database](const std::function<bool(const Row&)>& take) {
    bool goesOn = true;
    for (const ColorKind kind : {ColorKind::Basic, ColorKind::Mix}) {
      if (!goesOn || context.Option(kind == ColorKind::Mix ? "ShowMixes" : "ShowBasics") != 1) continue;
      ForEachStockColor(context, database, kind, [&](const Row& color) {
        if (context.Option("ReorderOnly") == 1 ? color.total >= color.Reorder
                                               : context.Option("PointsOnly") == 1 && color.Reorder <= 0)
          return true;
        return goesOn = take(color);
      });
    }
  });
}

}  // namespace

void AddStockReports(std::vector<ReportDefinition>& catalogue) {
  catalogue.push_back({.key = "InventoryThisDB",
                       .group = "Inventory",
                       .caption = "Detail this Database",
                       .window = "InventoryForm",
                       .prefix = "Inventory",
                       .name = "Inventory Report",
                       .noun = "Colors",
                       .description = "Lists all Basics / Additives and Master Formulas in the current Database in "
                                      "inventory and with reorder points.\nMany fields in this report are editable.",
                       .options = InventoryOptions(false),
                       .table = Detail,
                       .edits = true});
  catalogue.push_back({.key = "InventoryAllDBs",
                       .group = "Inventory",
                       .caption = "Summary all Databases",
                       .window = "InventorySummaryForm",
                       .prefix = "InventorySummary",
                       .name = "Inventory Report",
                       .noun = "Databases",
                       .description =
                           "Lists all Databases in the current Datafile. For each Database, the total weight and "
                           "total cost of inventory is displayed.",
                       .scope = ReportScope::All,
                       .options = InventoryOptions(true),
                       .table = Summary});
  catalogue.push_back({.key = "InventoryDetailAllDBs",
                       .group = "Inventory",
                       .caption = "Detail Selected Databases",
                       .window = "InventoryReportsForm",
                       .prefix = "InventoryDetailSelected",
                       .name = "Inventory Report",
                       .noun = "Colors",
                       .description = "Print Inventory Reports for any of the Databases you choose.",
                       .scope = ReportScope::Chosen,
                       .options = InventoryOptions(false),
                       .table = Detail});
  catalogue.push_back({.key = "Reorder",
                       .group = "Inventory",
                       .caption = "Reorder",
                       .window = "ReorderForm",
                       .prefix = "Reorder",
                       .name = "Reorder Report",
                       .noun = "Colors",
                       .description = "Lists all Basics / Additives and Master Formulas in the current Database with "
                                      "inventories below reorder points.",
                       .options = {{"ReorderOnly", "1 lists colors to be reordered only"},
                                   {"PointsOnly", "1 lists colors with reorder points only"},
                                   {"ShowBasics", "1 lists Basics and Additives", 2, 1},
                                   {"ShowMixes", "1 lists Master Formulas", 2, 1},
                                   {"MixCost", "what a formula costs: 0 its Basic Cost, 1 its Purchase Cost"}},
                       .table = ToReorder,
                       .edits = true});
}

}  // namespace vellumark
