#pragma once

#include <vector>

#include "core/inventory/stock_history.h"

namespace vellumark::test {

/// The lines that are wanted, in the order in which they were written.
inline std::vector<StockLine> ListStockHistory(const Session& session, const StockHistoryFilter& filter) {
  std::vector<StockLine> lines;
  StockHistoryReader reader(session, filter, LineOrder::OldestFirst);
  while (reader.ReadOn(lines)) continue;
  return lines;
}

}  // namespace vellumark::test
