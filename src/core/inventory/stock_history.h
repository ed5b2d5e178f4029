#pragma once

#include <optional>
#include <string>
#include <vector>

#include "core/datafile/stock_history.h"
#include "core/session/session.h"

namespace vellumark {

/// Which lines of the stock history are wanted.
struct StockHistoryFilter {
  std::optional<std::string> name{};  ///< all colours without it
  std::optional<ColorKind> kind{};    ///< both without it
  std::string database{};             ///< empty for the current one
  /// Only lots that ever bore this number (of a colour that has lots of the number now: only those), or Unlotted
  /// Inventory ("Unlotted Inv.").
  std::optional<std::string> lot{};
};

/// The lines in the order in which they were written. Those of one colour are followed through its renames and add up
/// to its stock; without a name they are all lines of the Database, which is followed through its own.
std::vector<StockLine> ListStockHistory(const Session& session, const StockHistoryFilter& filter);

}  // namespace vellumark
