#include "core/inventory/stock_tables.h"

#include "core/base/number.h"
#include "core/base/units.h"
#include "core/session/rights.h"

namespace vellumark {
namespace {

std::string WithUnit(const Session& session, std::string_view caption) {
  return std::string(caption) + " (" + std::string(UnitName(session.UMI)) + ")";
}

/// A line of the stock of a colour: where it stands and how much; the colour stands in its first line.
struct StockPlaceLine {
  const ColorStock* color = nullptr;
  std::string_view place;
  const LotRow* lot = nullptr;
  float quantity = 0;
};

template <class Get>
auto OfLot(Get get) {
  return [get](const StockPlaceLine& line) { return get(line.lot == nullptr ? LotRow{} : *line.lot); };
}

bool TakeLines(const ColorStock& stock, const std::function<bool(const StockPlaceLine&)>& take) {
  if (!take({&stock, kUnlottedInv, nullptr, stock.Inventory})) return false;
  for (const LotRow& lot : stock.lots)
    if (!take({nullptr, lot.LotNumber, &lot, lot.LotQty})) return false;
  return stock.lots.empty() || take({nullptr, "Total", nullptr, stock.total});
}

}  // namespace

std::string KindText(ColorKind kind) {
  return kind == ColorKind::Mix ? "Formula" : "Basic";
}

TableOf<LotRow> LotColumns(const Session& session) {
  TableOf<LotRow> table;
  LotFields().AddColumns(table, SeenBy(session));
  return table;
}

TableOf<InventoryRow> InventoryColumns(const Session& session) {
  TableOf<InventoryRow> table;
  const Seen seen = SeenBy(session);
  const auto add = [&](const char* column, auto InventoryValues::*member, std::optional<Format> format = {}) {
    const RecordField& field = LotFields()[column];
    table
        .Add(
            column, [member](const InventoryRow& row) { return row.now.*member; }, field.CaptionSeen(seen),
            format.value_or(field.ShownAs()), field.DecimalsSeen(seen))
        .Width(field.width);
    if (field.large) table.Large();
  };
  add("LotNumber", &InventoryValues::lotNumber);
  add("LotLoc", &InventoryValues::location);
  add("LotContID", &InventoryValues::contID);
  add("LotQty", &InventoryValues::qty);
  add("LotDate", &InventoryValues::date);
  add("LotPrice", &InventoryValues::price);
  add("LotConsignment", &InventoryValues::consignment, Format::YesNo);
  return table;
}

TableOf<ColorStock> StockColumns(const Session& session) {
  return TableOf<ColorStock>()
      .Add("Color_Name", &ColorStock::Color_Name)
      .Add("Kind", &ColorStock::kind)
      .Add("Inventory", &ColorStock::Inventory)
      .Add("lots", [lots = LotColumns(session)](const ColorStock& stock) { return lots.Of(stock.lots); })
      .Add("Unlotted", [](const ColorStock& stock) { return RoundSingle(stock.Inventory, 3); })
      .Add("Lotted", &ColorStock::lotted)
      .Add("Total", &ColorStock::total);
}

ListTable ListColorStock(const Session& session, const std::optional<std::string>& name,
                         std::optional<ColorKind> kind) {
  return StockColumns(session).Of(
      [&session, name, kind](const auto& take) { ForEachStock(session, name, kind, take); });
}

ListTable ListStockLines(const Session& session, const std::optional<std::string>& name,
                         std::optional<ColorKind> kind) {
  using Line = StockPlaceLine;
  return TableOf<Line>()
      .Add(
          "", [](const Line& line) { return line.color == nullptr ? std::string() : line.color->Color_Name; },
          "Color Name")
      .Add(
          "", [](const Line& line) { return line.color == nullptr ? std::string() : KindText(line.color->kind); },
          "Type")
      .Add("", &Line::place, "Lot Number")
      .Add("", OfLot([](const LotRow& lot) { return lot.LotLoc; }), "Location")
      .Add("", OfLot([](const LotRow& lot) { return lot.LotContID; }), "Cont ID Num")
      .Add("", OfLot([](const LotRow& lot) { return lot.LotDate; }), "Date", Format::Date)
      .Add("", &Line::quantity, WithUnit(session, "Quantity"))
      .Add(
          "",
          [&session](const Line& line) {
            return line.lot == nullptr ? std::nullopt : SeenPrice(session, line.lot->LotPrice);
          },
          "Price", Format::Amount, session.DecimalPlaces)
      .Add(
          "",
          [](const Line& line) {
            return std::string(line.lot == nullptr ? "" : line.lot->LotConsignment ? "Yes" : "No");
          },
          "Consignment")
      .Of([&session, name, kind](const auto& take) {
        ForEachStock(session, name, kind, [&](const ColorStock& stock) { return TakeLines(stock, take); });
      });
}

TableOf<LowStock> LowStockColumns(const Session& session) {
  return TableOf<LowStock>()
      .Add("Color_Name", &LowStock::Color_Name, "Color Name")
      .Add("Kind", &LowStock::kind)
      .Add(
          "", [](const LowStock& low) { return KindText(low.kind); }, "Type")
      .Heading("Color Type")
      .Add("Total", &LowStock::total, WithUnit(session, "Inventory"))
      .Heading(WithUnit(session, "In stock"))
      .Large()
      .Add("Reorder", &LowStock::Reorder, WithUnit(session, "Reorder"))
      .Large()
      .Show({"Color Name", "Type", WithUnit(session, "Inventory"), WithUnit(session, "Reorder")});
}

ListTable ListLowStock(const Session& session) {
  return LowStockColumns(session).Of(ColorsBelowReorder(session));
}

TableOf<StockLine> HistoryColumns(const Session& session) {
  using Line = StockLine;
  return TableOf<Line>()
      .Add("Date", &Line::when, "", Format::Moment)
      .Heading("When")
      .Width(2040)
      .Add("Username", &Line::user, "User")
      .Width(1200)
      .Add("Source", [](const Line& line) { return StockEventText(line.event); })
      .Heading("Event")
      .Width(2160)
      .Add("Kind", &Line::kind)
      .Add(
          "", [](const Line& line) { return KindText(line.kind); }, "Type")
      .Width(1080)
      .Add("Database", &Line::database)
      .Add("Color_Name", &Line::Color_Name, "Color Name")
      .Width(2400)
      .Add("LotRefID", &Line::LotRefID)
      .Add(
          "LotNumber", [](const Line& line) { return line.LotRefID == 0 ? std::string(kUnlottedInv) : line.LotNumber; },
          "Lot Number")
      .Width(1680)
      .Add("Change", &Line::change)
      .Heading(WithUnit(session, "Change"))
      .Width(1800)
      .Large()
      .Add("Result", &Line::result)
      .Heading(WithUnit(session, "In stock"))
      .Width(1800)
      .Large()
      .Add("Document", &Line::document)
      .Width(1320)
      .Add("Reason", &Line::reason)
      .Width(2880)
      .Show({"Date", "User", "Source", "Color Name", "Lot Number", "Change", "Result", "Document", "Reason"});
}

std::vector<RowTarget> TargetsOf(const StockLine& line) {
  std::vector<RowTarget> targets;
  switch (line.event) {
    case StockEvent::BatchTakes:
    case StockEvent::BatchTakesAgain:
    case StockEvent::BatchReturns:
    case StockEvent::BatchMakes:
    case StockEvent::BatchUnmakes:
    case StockEvent::BatchRestores:
      if (const auto number = ParseNumber(line.document); number && *number > 0)
        targets.push_back(
            {.kind = RowTarget::Kind::Batch, .database = line.database, .BatchNo = static_cast<std::int32_t>(*number)});
      break;
    case StockEvent::JobRecord:
      if (!line.document.empty()) targets.push_back({.kind = RowTarget::Kind::Job, .name = line.document});
      break;
    default:
      break;
  }
  if (!line.Color_Name.empty())
    targets.push_back({.kind = line.kind == ColorKind::Mix ? RowTarget::Kind::Mix : RowTarget::Kind::Basic,
                       .database = line.database,
                       .name = line.Color_Name});
  return targets;
}

ListTable ListHistory(const Session& session, const StockHistoryFilter& filter) {
  using Line = StockLine;
  return HistoryColumns(session).Of([&session, filter](const std::function<bool(const Line&)>& take) {
    StockHistoryReader reader(session, filter, LineOrder::OldestFirst);
    std::vector<Line> lines;
    for (bool more = true; more; lines.clear()) {
      more = reader.ReadOn(lines);
      for (const Line& line : lines)
        if (!take(line)) return;
    }
  });
}

}  // namespace vellumark
