#pragma once

#include <string>

#include "core/datafile/stock_history.h"
#include "core/inventory/lots.h"

namespace vellumark {

/// Who edits a lot, for its history.
struct LotEdit {
  ColorKind kind = ColorKind::Basic;
  std::string name{};
  std::string database{};  ///< empty for the current one
  StockEvent event = StockEvent::ManualAdjust;
  std::string document{};
};

/// Writes everything of a lot that is on file but its quantity. The history finds it under each of its numbers and
/// tells whose it was; the copies go in step: its number on the Batch that made it (a formula's), number, place and
/// date on the lines of Batches and Job Records that took from it. Within the caller's transaction, which tells the
/// change.
void RewriteLot(Session& session, const LotEdit& edit, const LotRow& earlier, const LotRow& now);

}  // namespace vellumark
