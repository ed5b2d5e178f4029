#include <fmt/format.h>

#include <tuple>

#include "core/base/text.h"
#include "core/inventory/lots.h"
#include "core/reports/color_book.h"
#include "core/reports/families.h"
#include "core/reports/lot_columns.h"
#include "core/reports/stock_past.h"

// What the stock history tells: how stock moved, and what was there on a past day.

namespace vellumark {
namespace {

struct MoveRow {
  const PastColor* color = nullptr;
  ColorKind kind = ColorKind::Basic;
  const BookColor* book = nullptr;
};

struct PastRow {
  MoveRow of{};
  bool unlotted = true;
  std::string LotNumber{};
  std::int64_t quantity = 0;
  std::int64_t price = 0;
  std::int64_t cost = 0;
};

std::vector<ReportOption> KindOptions(bool costs) {
  std::vector<ReportOption> options{{"ShowBasics", "1 lists Basics and Additives", 2, 1},
                                    {"ShowMixes", "1 lists Master Formulas", 2, 1}};
  if (costs) options.push_back({"MixCost", "what a formula costs: 0 its Basic Cost, 1 its Purchase Cost"});
  return options;
}

template <class Row>
void AddColorColumns(TableOf<Row>& table, const MoveRow& (*of)(const Row&)) {
  table
      .Add(
          "Color_Name", [of](const Row& r) { return of(r).color->name; }, "Color Name")
      .Add(
          "Color_Type", [of](const Row& r) { return ColorTypeText(of(r).kind, of(r).book->Additive); }, "Color Type")
      .Add(
          "Color_Code", [of](const Row& r) { return of(r).book->Color_Code; }, "Color Code");
}

RowTarget TargetOf(const MoveRow& row, const std::string& database) {
  return {row.kind == ColorKind::Mix ? RowTarget::Kind::Mix : RowTarget::Kind::Basic, database, row.color->name};
}

void ForEachColor(const ReportContext& context, PastStock& past, const ColorBook& book,
                  const std::function<bool(const MoveRow&)>& take) {
  for (const ColorKind kind : {ColorKind::Basic, ColorKind::Mix}) {
    if (context.Option(kind == ColorKind::Mix ? "ShowMixes" : "ShowBasics") != 1) continue;
    for (const PastColor* color : past.Of(kind).InOrder())
      if (!take({color, kind, &book.Of(kind, color->name)})) return;
  }
}

ListTable Movement(const ReportContext& context) {
  using Row = MoveRow;
  const std::string database = context.databases.front();
  TableOf<Row> table;
  // NOLINTNEXTLINE(bugprone-return-const-ref-from-parameter): the row outlives the cell that is made of it
  AddColorColumns<Row>(table, [](const Row& r) -> const MoveRow& { return r; });
  const auto quantity = [&](const char* key, std::int64_t StockMoves::*move) {
    table
        .Add(
            key, [move](const Row& r) { return OfWholeUnits(r.color->moves.*move, 3); }, context.InUnit(key))
        .Sum();
  };
  quantity("Opening", &StockMoves::opening);
  quantity("Made", &StockMoves::made);
  quantity("Received", &StockMoves::received);
  quantity("Used", &StockMoves::used);
  quantity("Returned", &StockMoves::returned);
  table
      .Add(
          "WrittenOff", [](const Row& r) { return OfWholeUnits(r.color->moves.writtenOff, 3); },
          context.InUnit("Written Off"))
      .Sum()
      .Add(
          "Closing", [](const Row& r) { return OfWholeUnits(r.color->moves.Closing(), 3); }, context.InUnit("Closing"))
      .Sum()
      .Leads([database](const Row& r) { return TargetOf(r, database); });
  return table.Of([&context, database](const std::function<bool(const Row&)>& take) {
    PastStock past(context, database);
    const ColorBook book(context, database);
    ForEachColor(context, past, book, [&](const Row& row) { return !row.color->moves.Any() || take(row); });
  });
}

// What lots cost: those that are there, and of those that are used up what the Batches that took of them tell.
class LotPrices {
 public:
  LotPrices(const ReportContext& context, const std::string& database) {
    const int decimals = context.session.DecimalPlaces;
    Statement used = context.File().Prepare(fmt::format("SELECT IngType, IngName, LotRefID, LotPrice FROM {}",
                                                        context.session.QuotedTable(schema::BatchLotInv, database)));
    while (used.Step())
      Keep(used.Whole(0) == 2 ? ColorKind::Mix : ColorKind::Basic, used.TextView(1), used.Whole(2),
           WholeUnits(used.Single(3), decimals));
    for (const ColorKind kind : {ColorKind::Basic, ColorKind::Mix}) {
      Statement lots = context.File().Prepare(fmt::format("SELECT LotCName, LotRefID, LotPrice FROM {}",
                                                          context.session.QuotedTable(LotTable(kind), database)));
      while (lots.Step()) Keep(kind, lots.TextView(0), lots.Whole(1), WholeUnits(lots.Single(2), decimals));
    }
  }
  std::optional<std::int64_t> Of(ColorKind kind, std::string_view name, std::int32_t ref) const {
    const auto price = prices_.find({kind, Upper(name), ref});
    return price == prices_.end() ? std::nullopt : std::optional(price->second);
  }

 private:
  void Keep(ColorKind kind, std::string_view name, std::int64_t ref, std::int64_t price) {
    prices_[{kind, Upper(name), static_cast<std::int32_t>(ref)}] = price;
  }

  std::map<std::tuple<ColorKind, std::string, std::int32_t>, std::int64_t> prices_;
};

void ForEachPastRow(const ReportContext& context, const std::string& database,
                    const std::function<bool(const PastRow&)>& take) {
  const int decimals = context.session.DecimalPlaces;
  PastStock past(context, database);
  const ColorBook book(context, database);
  const LotPrices prices(context, database);
  ForEachColor(context, past, book, [&](const MoveRow& color) {
    const bool basicCost = color.kind == ColorKind::Mix && context.Option("MixCost") == 0;
    for (const auto& [ref, lot] : color.color->lots) {
      PastRow row{.of = color, .unlotted = ref == 0};
      row.LotNumber = ref == 0 ? std::string(kUnlottedInv) : lot.LotNumber;
      row.quantity = lot.Thousandths();
      if (row.quantity == 0) continue;
      const std::int64_t cost = basicCost ? color.book->BasicCost : color.book->PurchaseCost;
      row.price = ref == 0 ? cost : prices.Of(color.kind, color.color->name, ref).value_or(cost);
      row.cost = CostOfQty(row.quantity, row.price, decimals);
      if (!take(row)) return false;
    }
    return true;
  });
}

ListTable AsOf(const ReportContext& context) {
  using Row = PastRow;
  const std::string database = context.databases.front();
  const int decimals = context.session.DecimalPlaces;
  TableOf<Row> table;
  AddColorColumns<Row>(table, [](const Row& r) -> const MoveRow& { return r.of; });
  table.Add("LotNumber", &Row::LotNumber, "Lot Number")
      .Add(
          "Inventory", [](const Row& r) { return OfWholeUnits(r.quantity, 3); }, context.InUnit("Inventory"))
      .Sum()
      .Add(
          "UnitCost", [decimals](const Row& r) { return OfWholeUnits(r.price, decimals); },
          context.InMoney("Unit Cost"), Format::Money, decimals)
      .Add(
          "TotalCost", [decimals](const Row& r) { return OfWholeUnits(r.cost, decimals); },
          context.InMoney("Total Cost"), Format::Money, decimals)
      .Sum()
      .Leads([database](const Row& r) { return TargetOf(r.of, database); });
  return table.Of(
      [&context, database](const std::function<bool(const Row&)>& take) { ForEachPastRow(context, database, take); });
}

}  // namespace

void AddStockHistoryReports(std::vector<ReportDefinition>& catalogue) {
  catalogue.push_back({.key = "InventoryAsOf",
                       .group = "Stock History",
                       .caption = "Inventory as of a past day",
                       .window = "InventoryAsOfForm",
                       .prefix = "InventoryAsOf",
                       .name = "Inventory Report",
                       .noun = "Lot Selections",
                       .description = "Lists what was in inventory at the end of the day you choose, from the stock "
                                      "history.\nLots count with their own prices, all else with the present costs.",
                       .dateRangeKey = "InventoryAsOfDateRange",
                       .options = KindOptions(true),
                       .table = AsOf,
                       .usesHistory = true,
                       .asOf = true});
  catalogue.push_back({.key = "StockMovement",
                       .group = "Stock History",
                       .caption = "Stock movement",
                       .window = "StockMovementForm",
                       .prefix = "StockMovement",
                       .name = "Stock Movement Report",
                       .noun = "Colors",
                       .description =
                           "Lists for every color what was in inventory at first, what was made, received, "
                           "used, returned and written off within a specified date range, and what was left.",
                       .dateRangeKey = "StockMovementDateRange",
                       .options = KindOptions(false),
                       .table = Movement,
                       .usesHistory = true});
}

}  // namespace vellumark
