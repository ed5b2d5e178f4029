#include "core/colors/stock_trace.h"

#include <utility>

#include "core/datafile/references.h"
#include "core/session/stock_lines.h"

namespace vellumark {

void GiveUpColorStock(Session& session, ColorKind kind, std::string_view database, const std::string& name,
                      std::string reason) {
  StockLine line = NewStockLine(session, StockEvent::ColorDeleted, kind, database, name);
  line.reason = std::move(reason);
  AddLinesOfColor(session.File(), line, true);
  DeleteLotsAndMeasurements(session.File(), line.database, kind, name);
}

void TraceRename(Session& session, ColorKind kind, std::string_view oldName, std::string_view newName) {
  AddRenameLines(session.File(), NewStockLine(session, StockEvent::Renamed, kind), oldName, newName);
}

}  // namespace vellumark
