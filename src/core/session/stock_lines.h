#pragma once

#include <string_view>

#include "core/datafile/stock_history.h"
#include "core/session/session.h"

namespace vellumark {

/// A line of the stock history by the present user at this moment, for a colour of `database` or of the current one.
StockLine NewStockLine(const Session& session, StockEvent event, ColorKind kind, std::string_view database = {},
                       std::string_view name = {});

}  // namespace vellumark
