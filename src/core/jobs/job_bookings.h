#pragma once

#include <string_view>
#include <vector>

#include "core/base/table.h"
#include "core/datafile/stock_history.h"
#include "core/session/session.h"

namespace vellumark {

/// What a Job issued and gave back, by the stock history, the latest first. UndoJobBooking takes a line of it back.
std::vector<StockLine> JobBookings(const Session& session, std::string_view jobNumber);
/// The same as people see it.
TableOf<StockLine> JobBookingColumns(const Session& session);

}  // namespace vellumark
