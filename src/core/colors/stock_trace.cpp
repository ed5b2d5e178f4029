#include "core/colors/stock_trace.h"

#include <fmt/format.h>

#include <utility>

#include "core/base/number.h"
#include "core/datafile/references.h"
#include "core/session/stock_lines.h"

namespace vellumark {

void TraceEnteredStock(Session& session, ColorKind kind, const std::string& name, std::int64_t rowId, float inventory) {
  float before = 0;
  if (rowId != 0)
    before =
        session.File()
            .Scalar(fmt::format("SELECT Inventory FROM {} WHERE rowid = ?1", Quoted(session.Table(ColorTable(kind)))),
                    {rowId})
            .Single();
  if (before == inventory) return;
  StockLine line = NewStockLine(session, StockEvent::ColorEdited, kind, {}, name);
  line.change = StockDifference(before, inventory);
  line.result = inventory;
  AddStockLine(session.File(), line);
}

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
