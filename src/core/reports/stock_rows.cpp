#include "core/reports/stock_rows.h"

#include <fmt/format.h>

#include <map>
#include <utility>

#include "core/base/text.h"
#include "core/batch/holding.h"
#include "core/datafile/schema.h"
#include "core/reports/by_name.h"

namespace vellumark {
namespace {

// Thousandths that an open Batch holds of a colour's figures, by the reference of the lot.
struct Held {
  std::string name{};
  std::map<std::int32_t, std::pair<std::int64_t, bool>> figures{};  // and whether the lot was there before
};

struct Lots {
  std::string name{};
  std::vector<std::pair<std::int32_t, StockLot>> lots{};
};

ByName<Held> HeldOf(const ReportContext& context, const std::string& database, ColorKind kind) {
  ByName<Held> held;
  for (const HeldStock& figure : ReadHeldStock(context.File()))
    if (figure.kind == kind && EqualNoCase(figure.database, database)) {
      auto& [quantity, wasThere] = held.At(figure.Color_Name).figures[figure.LotRefID];
      quantity += WholeUnits(figure.quantity, 3);
      wasThere = figure.wasThere;
    }
  return held;
}

ByName<Lots> LotsByColor(const ReportContext& context, const std::string& database, ColorKind kind) {
  ByName<Lots> lots;
  if (context.session.InvLotTracking != 1) return lots;
  Statement rows = context.File().Prepare(
      fmt::format("SELECT {}, LotConsignment, LotRefID, LotCName FROM {} ORDER BY LotCName, LotNumber, LotRefID",
                  kLotColumns, context.session.QuotedTable(LotTable(kind), database)));
  while (rows.Step())
    lots.At(rows.TextView(kLotColumnCount + 2))
        .lots.emplace_back(static_cast<std::int32_t>(rows.Whole(kLotColumnCount + 1)),
                           StockLot{ReadReportLot(rows, 0, context.session.DecimalPlaces), rows.Bool(kLotColumnCount)});
  return lots;
}

void TakeLots(StockColor& color, const Lots* lots, const Held* held, int decimals) {
  if (lots == nullptr) return;
  for (const auto& [ref, lot] : lots->lots) {
    StockLot net = lot;
    if (held != nullptr)
      if (const auto figure = held->figures.find(ref); figure != held->figures.end()) {
        net.lot.LotQty -= figure->second.first;
        if (!figure->second.second && net.lot.LotQty <= 0) continue;
        net.lot.cost = CostOfQty(net.lot.LotQty, net.lot.price, decimals);
      }
    color.lotted += net.lot.LotQty;
    color.lots.push_back(std::move(net));
  }
}

std::string ColumnsOf(ColorKind kind) {
  const bool mix = kind == ColorKind::Mix;
  std::string columns = fmt::format(
      "Color_Name, Color_Code, Inventory, Reorder, PurchaseCost, VOC, HAP, Date_Entered, Inv_Note, Notes, {}",
      mix ? "BasicCost, BasicVOC, BasicHAP, LastProduced, LastModified, Recycle"
          : "PurchaseCost, VOC, HAP, LastConsumed, Date_Entered, Additive");
  if (mix)
    for (const char* word : {"BC", "BQ"})
      for (int i = 0; i < schema::kIngredientSlots; ++i) columns += ", " + schema::Numbered(word, i);
  return columns;
}

StockColor ReadColor(const Statement& row, ColorKind kind, int decimals) {
  constexpr int kFirstSlot = 16;
  const auto qty = [&](int column) { return WholeUnits(row.Single(column), 3); };
  StockColor color{.kind = kind, .Color_Name = row.Text(0), .Color_Code = row.Text(1)};
  color.Inventory = qty(2);
  color.Reorder = qty(3);
  color.PurchaseCost = WholeUnits(row.Single(4), decimals);
  color.VOC = qty(5);
  color.HAP = qty(6);
  color.Date_Entered = row.Date(7);
  color.Inv_Note = row.Text(8);
  color.Notes = row.Text(9);
  color.BasicCost = WholeUnits(row.Single(10), decimals);
  color.BasicVOC = qty(11);
  color.BasicHAP = qty(12);
  color.last = row.Date(13);
  if (kind == ColorKind::Basic) {
    color.Additive = row.Bool(15);
    return color;
  }
  color.LastModified = row.Date(14);
  color.Recycle = row.Bool(15);
  for (int i = 0; i < schema::kIngredientSlots; ++i)
    if (!row.TextView(kFirstSlot + i).empty())
      color.recipe.emplace_back(row.Text(kFirstSlot + i), qty(kFirstSlot + schema::kIngredientSlots + i));
  return color;
}

}  // namespace

void ForEachStockColor(const ReportContext& context, const std::string& database, ColorKind kind,
                       const std::function<bool(const StockColor&)>& take) {
  const int decimals = context.session.DecimalPlaces;
  const std::string table = context.session.QuotedTable(ColorTable(kind), database);
  const ByName<Held> held = HeldOf(context, database, kind);
  const ByName<Lots> lots = LotsByColor(context, database, kind);
  const double all = std::max(1.0, context.File().Scalar(fmt::format("SELECT COUNT(*) FROM {}", table)).Number());
  Statement rows = context.File().Prepare(fmt::format("SELECT {} FROM {} ORDER BY Color_Name", ColumnsOf(kind), table));
  double done = 0;
  while (rows.Step()) {
    StockColor color = ReadColor(rows, kind, decimals);
    const Held* of = held.Find(color.Color_Name);
    if (of != nullptr)
      if (const auto figure = of->figures.find(0); figure != of->figures.end()) color.Inventory -= figure->second.first;
    TakeLots(color, lots.Find(color.Color_Name), of, decimals);
    color.total = color.Inventory + color.lotted;
    if (!take(color) || !context.watch.GoOn(100 * ++done / all)) return;
  }
}

}  // namespace vellumark
