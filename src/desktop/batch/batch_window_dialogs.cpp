#include "desktop/batch/batch_window_dialogs.h"

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

}  // namespace vellumark::desktop
