#include "core/reports/stock_past.h"

#include <algorithm>
#include <utility>

#include "core/base/number.h"
#include "core/base/text.h"
#include "core/batch/holding.h"
#include "core/batch/record.h"
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

bool IsOfBatch(StockEvent event) {
  return event <= StockEvent::BatchUnmakes || event == StockEvent::BatchRestores;
}

}  // namespace

std::int64_t PastLot::Thousandths() const {
  return WholeUnits(OfWholeUnits(exact, kExactDecimals), 3);
}

PastStock::PastStock(const ReportContext& context, const std::string& database)
    : from_(context.dates.from), end_(DateTime::FromDayNumber(context.dates.to.DayNumber() + 1)) {
  Read(context, database);
  TakeHeld(context, database);
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
  for (auto& [document, lines] : handedBack_)
    for (StockLine& line : lines)
      if (line.kind == kind && EqualNoCase(line.Color_Name, from)) line.Color_Name = to;
}

// A Batch that is opened hands back; one that is saved may do so too, but takes at the same time.
bool PastStock::IsOpening(const StockLine& line) const {
  return line.event == StockEvent::BatchReturns && !(line.document == saving_ && line.when == savedAt_);
}

// Another line of the Batch tells that it is open no more.
void PastStock::EndOpening(const StockLine& line) {
  const bool takes = line.event == StockEvent::BatchTakes;
  saving_ = takes ? line.document : std::string();
  savedAt_ = line.when;
  if (!IsOfBatch(line.event)) return;
  if (const auto lines = handedBack_.extract(line.document); !lines.empty())
    for (const StockLine& back : lines.mapped()) TakeLine(back, line.when);
}

// Of a clock that was set back there are later lines of earlier days.
void PastStock::TakeLine(const StockLine& line, const DateTime& when) {
  if (when >= end_) return;
  PastColor& color = Of(line.kind).At(line.Color_Name);
  Take(color, line.LotRefID, line.change, MoveOf(line, when >= from_));
  if (!line.LotNumber.empty()) color.lots[line.LotRefID].LotNumber = line.LotNumber;
}

void PastStock::Read(const ReportContext& context, const std::string& database) {
  StockHistoryReader reader(context.session, {.database = database}, LineOrder::OldestFirst);
  std::vector<StockLine> lines;
  for (bool more = true; more;) {
    lines.clear();
    more = reader.ReadOn(lines);
    for (const StockLine& line : lines) {
      if (line.event == StockEvent::Renamed) Rename(line.kind, line.Color_Name, line.reason);
      if (line.event >= StockEvent::Renamed) continue;
      if (IsOpening(line)) {
        handedBack_[line.document].push_back(line);
      } else {
        EndOpening(line);
        TakeLine(line, line.when);
      }
      if (!context.watch.GoOn(0)) return;
    }
  }
}

// Of what was handed back last an open Batch holds what its mark tells. The others were deleted, or saved without it.
void PastStock::TakeHeld(const ReportContext& context, const std::string& database) {
  for (const HeldStock& held : ReadHeldStock(context.File())) {
    if (!EqualNoCase(held.database, database)) continue;
    std::vector<StockLine>& lines = handedBack_[BatchNoText(held.BatchNo)];
    const auto told = std::ranges::find_if(lines, [&](const StockLine& line) {
      return line.kind == held.kind && line.LotRefID == held.LotRefID && EqualNoCase(line.Color_Name, held.Color_Name);
    });
    if (told != lines.end())
      lines.erase(told);
    else if (context.dates.to >= context.session.clock.Today())  // the history began while it was open
      Take(Of(held.kind).At(held.Color_Name), held.LotRefID, -held.quantity, &StockMoves::used);
  }
  for (const auto& [document, lines] : handedBack_)
    for (const StockLine& line : lines) TakeLine(line, line.when);
}

}  // namespace vellumark
