#include "core/session/stock_lines.h"

namespace vellumark {

StockLine NewStockLine(const Session& session, StockEvent event, ColorKind kind, std::string_view database,
                       std::string_view name) {
  StockLine line;
  line.when = session.clock.Now();
  line.user = session.CurrentUser;
  line.event = event;
  line.kind = kind;
  line.database = database.empty() ? std::string_view(session.CurrentDatabase) : database;
  line.Color_Name = name;
  return line;
}

}  // namespace vellumark
