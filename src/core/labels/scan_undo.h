#pragma once

#include "core/datafile/stock_history.h"
#include "core/labels/scan_records.h"
#include "core/session/session.h"

namespace vellumark {

/// Takes a scanned booking back by its line of the stock history: what was added leaves the place that it went to, what
/// came back from a Job is issued again, row and stock in one transaction. Where a container stands stays as it was
/// scanned last. Refused for lines of other events, for one that was taken back already, and where the stock, the lot,
/// the colour or the item no longer allows it.
Result<void> UndoScan(Session& session, std::int64_t line);
/// The same for a record that was booked: it has failed then, and can be mended and run again.
Result<void> UndoScan(Session& session, ScanRecord& record);
/// Whether a line tells of a booking of that kind.
bool IsScanBooking(StockEvent event, double change);

}  // namespace vellumark
