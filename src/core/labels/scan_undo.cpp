#include "core/labels/scan_undo.h"

#include <fmt/format.h>

#include "core/base/number.h"
#include "core/base/text.h"
#include "core/datafile/stock_trail.h"
#include "core/inventory/posting.h"
#include "core/inventory/taking_back.h"
#include "core/jobs/job_stock.h"

namespace vellumark {
namespace {

constexpr std::string_view kTitle = "Scan Booking";

std::unexpected<Refusal> NotUndone(const StockLine& line, std::string_view why) {
  return NotTakenBack(kTitle, line.id, why);
}

Result<void> TakeOut(Session& session, const StockLine& line) {
  const auto change = static_cast<float>(line.change);
  const StockPlace place{.LotRefID = line.LotRefID, .LotNumber = line.LotRefID == 0 ? "" : line.LotNumber};
  const PresentName now = NamesNow(session.File(), line);
  if (session.FindDatabase(now.database) == nullptr ||
      !ColorIsThere(session, line.kind, now.Color_Name, now.database))
    return NotUndone(line, fmt::format("is of {}, which is no longer in the {} database", line.Color_Name, line.database));
  float there = UnlottedQty(session, line.kind, now.Color_Name, now.database);
  if (line.LotRefID != 0) {
    const auto lot = FindLot(session, line.kind, now.Color_Name, now.database, place);
    if (!lot) return NotUndone(line, fmt::format("is of the lot {}, which is no longer there", line.LotNumber));
    there = lot->LotQty;
  }
  if (RoundTo(there, 3) < RoundTo(change, 3))
    return NotUndone(line, fmt::format("added {}, of which only {} is left there", Fixed(change, 3), Fixed(there, 3)));
  const PostingResult result = PostStock(session, {.source = PostingSource::ScanReturn,
                                                   .kind = line.kind,
                                                   .name = now.Color_Name,
                                                   .database = now.database,
                                                   .quantity = -change,
                                                   .place = place,
                                                   .reason = "Scan" + TakesBack(line.id),
                                                   .knownLot = true});
  using enum PostingResult::Outcome;
  if (result.outcome == Posted || result.outcome == LotDeleted) return {};
  return NotUndone(line, "can no longer be taken back from where it went");
}

}  // namespace

bool IsScanBooking(StockEvent event, double change) {
  return event == StockEvent::JobRecord || (event == StockEvent::ScanReturn && change > 0);
}

Result<void> UndoScan(Session& session, std::int64_t id) {
  if (auto writable = RequireWritable(session); !writable) return writable;
  const auto line = ReadStockLine(session.File(), id);
  if (!line) return NotTakenBack(kTitle, id, "does not exist");
  if (line->event == StockEvent::JobRecord) return UndoJobBooking(session, id);
  if (line->event != StockEvent::ScanReturn) return NotUndone(*line, "is no scanned booking");
  if (line->change <= 0) return NotUndone(*line, "takes another one back");
  if (WasTakenBack(session, id)) return NotUndone(*line, "was taken back already");
  Transaction transaction(session.File());
  if (auto taken = TakeOut(session, *line); !taken) return taken;
  transaction.Commit();
  return {};
}

Result<void> UndoScan(Session& session, ScanRecord& record) {
  if (record.state != ScanRecord::State::Successful)
    return Refuse(std::string(kTitle), "This record was not booked.", "txtMessages");
  if (auto undone = UndoScan(session, record.Line); !undone) return undone;
  record.state = ScanRecord::State::Failed;
  record.Message =
      fmt::format("Line {} of the stock history was taken back.\n\nUpdate information - Process Again.", record.Line);
  record.Line = 0;
  return {};
}

}  // namespace vellumark
