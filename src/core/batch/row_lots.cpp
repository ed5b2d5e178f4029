#include "core/batch/row_lots.h"

#include <algorithm>

#include "core/base/number.h"
#include "core/base/text.h"
#include "core/batch/bench.h"
#include "core/inventory/lot_picking.h"

namespace vellumark {
namespace {

// What the row can take of these lots.
Result<LotSelectionWork> Offered(Session& session, const BatchRecord& record, std::size_t row, const LotSelection& lots) {
  const BatchRow& shown = record.work.Rows[row];
  return LoadLotSelection(session, shown.name, shown.kind, LotNeed(session, record, row), record.work.UMF, lots,
                          WithheldFrom(session, record, row));
}

// The lot chosen last gives way first; what is left of it then is not written off.
LotSelection CutTo(LotSelection lots, float need) {
  double over = RoundTo(lots.Used(), 3) - RoundTo(need, 3);
  for (auto use = lots.uses.rbegin(); use != lots.uses.rend() && over > 0; ++use) {
    const double less = std::min(over, RoundTo(use->LotQty, 3));
    use->LotQty = RoundSingle(RoundTo(use->LotQty, 3) - less, 3);
    use->Remove = false;
    over = RoundTo(over - less, 3);
  }
  std::erase_if(lots.uses, [](const LotUse& use) { return use.LotQty <= 0; });
  return lots;
}

}  // namespace

Result<void> TakeOldestLots(Session& session, BatchRecord& record) {
  for (std::size_t row = 0; row < record.work.Rows.size(); ++row) {
    const BatchRow& shown = record.work.Rows[row];
    const float need = LotNeed(session, record, row);
    if (!shown.lotLink || need <= 0 || RowLots(record, row).CompleteFor(need)) continue;
    auto work = Offered(session, record, row, RowLots(record, row));
    if (!work) return std::unexpected(work.error());
    TakeOldestFirst(*work);
    if (auto chosen = SetRowLots(session, record, row, work->Selection()); !chosen) return chosen;
  }
  return {};
}

Result<void> TakeSavedLots(Session& session, BatchRecord& record) {
  auto saved = record.remembered.rows;
  for (std::size_t row = 0; row < record.work.Rows.size(); ++row) {
    const BatchRow& shown = record.work.Rows[row];
    // An ink and an addition of it are two rows of one name.
    const auto found =
        std::ranges::find_if(saved, [&](const auto& before) { return EqualNoCase(before.first, shown.name); });
    if (found == saved.end()) continue;
    found->first.clear();
    const float need = LotNeed(session, record, row);
    if (!shown.lotLink || need <= 0 || !RowLots(record, row).uses.empty()) continue;
    auto work = Offered(session, record, row, record.remembered.lots.at(static_cast<std::size_t>(found - saved.begin())));
    if (!work) return std::unexpected(work.error());
    if (auto chosen = SetRowLots(session, record, row, CutTo(work->Selection(), need)); !chosen) return chosen;
  }
  return {};
}

}  // namespace vellumark
