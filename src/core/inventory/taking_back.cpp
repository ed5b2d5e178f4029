#include "core/inventory/taking_back.h"

#include <fmt/format.h>

#include "core/datafile/stock_history.h"

namespace vellumark {

std::string TakesBack(std::int64_t line) {
  return fmt::format(", takes back line {}", line);
}

bool WasTakenBack(const Session& session, std::int64_t line) {
  const Value found =
      session.File().Scalar(fmt::format("SELECT 1 FROM {} WHERE ID > ? AND Reason LIKE ? LIMIT 1", kStockHistoryTable),
                            {line, "%" + TakesBack(line)});
  return !found.IsNull();
}

std::unexpected<Refusal> NotTakenBack(std::string_view title, std::int64_t line, std::string_view why) {
  return Refuse(std::string(title), fmt::format("Line {} of the stock history {}.", line, why), "ID");
}

}  // namespace vellumark
