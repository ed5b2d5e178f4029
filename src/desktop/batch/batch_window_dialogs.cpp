#include "desktop/batch/batch_window_dialogs.h"

#include <algorithm>

#include "core/batch/cover.h"

namespace vellumark::desktop {

LotReminderAnswer BatchWindowDialogs::ShowLotNumReminder() {
  const auto answered = windows_.RunDialog("BatchFormLotNumReminder");
  return answered ? answered->Get<LotReminderAnswer>("Answer") : LotReminderAnswer{.returnToBatch = true};
}

std::optional<ModifiedBatchChoice> BatchWindowDialogs::ShowSaveModifiedBatch(Session&, const BatchRecord& record) {
  const auto chosen = windows_.RunDialog("SaveModifiedBatch", {{"Record", &record}});
  if (!chosen) return std::nullopt;
  return chosen->Get<ModifiedBatchChoice>("Choice");
}

bool BatchWindowDialogs::ShowShortStock(Session& session, const std::vector<ShortStock>& lines) {
  const std::string text = ShortStockText(session, lines);
  if (std::ranges::none_of(lines, [](const ShortStock& line) { return line.inLots > 0; })) {
    session.prompt.Tell(std::string(kShortStockTitle), text);
    return true;
  }
  return !session.prompt.Ask(std::string(kShortStockTitle), text + "\n\nChoose lots before the Batch is saved?");
}

}  // namespace vellumark::desktop
