#pragma once

#include "core/batch/dialogs.h"
#include "desktop/kit/window_list.h"

namespace vellumark::desktop {

/// The windows that saving a Batch shows, opened by their names.
class BatchWindowDialogs final : public BatchDialogs {
 public:
  explicit BatchWindowDialogs(WindowList& windows) : windows_(windows) {}
  LotReminderAnswer ShowLotNumReminder() override;
  std::optional<ModifiedBatchChoice> ShowSaveModifiedBatch(Session& session, const BatchRecord& record) override;
  bool ShowShortStock(Session& session, const std::vector<ShortStock>& lines) override;

 private:
  WindowList& windows_;
};

}  // namespace vellumark::desktop
