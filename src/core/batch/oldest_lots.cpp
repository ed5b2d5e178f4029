#include "core/batch/oldest_lots.h"

#include "core/batch/bench.h"
#include "core/inventory/lot_picking.h"

namespace vellumark {

Result<void> TakeOldestLots(Session& session, BatchRecord& record) {
  for (std::size_t row = 0; row < record.work.Rows.size(); ++row) {
    const BatchRow& shown = record.work.Rows[row];
    const float need = LotNeed(session, record, row);
    if (!shown.lotLink || need <= 0 || RowLots(record, row).CompleteFor(need)) continue;
    auto work = LoadLotSelection(session, shown.name, shown.kind, need, record.work.UMF, RowLots(record, row),
                                 WithheldFrom(session, record, row));
    if (!work) return std::unexpected(work.error());
    TakeOldestFirst(*work);
    if (auto chosen = SetRowLots(session, record, row, work->Selection()); !chosen) return chosen;
  }
  return {};
}

}  // namespace vellumark
