#include "core/reports/stock_past.h"

#include <algorithm>

#include "core/base/number.h"
#include "core/base/text.h"
#include "core/batch/holding.h"
#include "core/inventory/stock_history.h"

namespace vellumark {
namespace {

constexpr int kExactDecimals = 9;
constexpr std::string_view kBalanceDeleted = "Delete Inv. Balance";

std::int64_t StockMoves::*MoveOf(const StockLine& line, bool within) {
  if (!within || line.event == StockEvent::Opening) return &StockMoves::opening;
  if (line.reason == kBalanceDeleted) return &StockMoves::writtenOff;
  switch (line.event) {
    case StockEvent::BatchMakes:
    case StockEvent::BatchUnmakes:
      return &StockMoves::made;
    case StockEvent::BatchTakes:
    case StockEvent::BatchTakesAgain:
    case StockEvent::BatchReturns:
    case StockEvent::BatchRestores:
      return &StockMoves::used;
    case StockEvent::JobRecord:
      return line.change < 0 ? &StockMoves::used : &StockMoves::returned;
    case StockEvent::ScanReturn:
      return &StockMoves::returned;
    default:
      return line.change < 0 ? &StockMoves::writtenOff : &StockMoves::received;
  }
}

}  // namespace

std::int64_t PastLot::Thousandths() const {
  return WholeUnits(OfWholeUnits(exact, kExactDecimals), 3);
}

PastStock::PastStock(const ReportContext& context, const std::string& database) {
  Read(context, database);
  if (context.dates.to >= context.session.clock.Today()) TakeHeld(context, database);
}

// Counted is by how much the printed figure changes, so that all steps lead from one printed figure to the next.
void PastStock::Take(PastColor& color, std::int32_t ref, double change, std::int64_t StockMoves::*kind) {
  PastLot& lot = color.lots[ref];
  const std::int64_t before = lot.Thousandths();
  lot.exact += WholeUnits(change, kExactDecimals);
  color.moves.*kind += lot.Thousandths() - before;
}

void PastStock::Rename(ColorKind kind, const std::string& from, const std::string& to) {
  PastColor moved = std::move(Of(kind).At(from));
  Of(kind).At(from) = PastColor{.name = moved.name};
  PastColor& color = Of(kind).At(to);
  for (const auto move : {&StockMoves::opening, &StockMoves::made, &StockMoves::received, &StockMoves::used,
                          &StockMoves::returned, &StockMoves::writtenOff})
    color.moves.*move += moved.moves.*move;
  for (auto& [ref, lot] : moved.lots) {
    color.lots[ref].exact += lot.exact;
    color.lots[ref].LotNumber = std::move(lot.LotNumber);
  }
}

void PastStock::Read(const ReportContext& context, const std::string& database) {
  const DateTime end = DateTime::FromDayNumber(context.dates.to.DayNumber() + 1);
  StockHistoryReader reader(context.session, {.database = database}, LineOrder::OldestFirst);
  std::vector<StockLine> lines;
  for (bool more = true; more;) {
    lines.clear();
    more = reader.ReadOn(lines);
    for (const StockLine& line : lines) {
      if (line.event == StockEvent::Renamed) Rename(line.kind, line.Color_Name, line.reason);
      // A clock that was set back leaves later lines of earlier days.
      if (line.event >= StockEvent::Renamed || line.when >= end) continue;
      PastColor& color = Of(line.kind).At(line.Color_Name);
      Take(color, line.LotRefID, line.change, MoveOf(line, line.when >= context.dates.from));
      if (!line.LotNumber.empty()) color.lots[line.LotRefID].LotNumber = line.LotNumber;
      if (!context.watch.GoOn(0)) return;
    }
  }
}

void PastStock::TakeHeld(const ReportContext& context, const std::string& database) {
  for (const HeldStock& held : ReadHeldStock(context.File()))
    if (EqualNoCase(held.database, database))
      Take(Of(held.kind).At(held.Color_Name), held.LotRefID, -held.quantity, &StockMoves::used);
}

}  // namespace vellumark
