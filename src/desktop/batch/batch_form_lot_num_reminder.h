#pragma once

#include "desktop/kit/window.h"

namespace vellumark::desktop {

/// Reminds of the lot number of a Batch that is about to be saved without one. Gives {"Answer", LotReminderAnswer};
/// closed without an answer it gives nothing, and the operator wants to stay on the Batch.
class BatchFormLotNumReminder : public Dialog {
  Q_OBJECT

 public:
  BatchFormLotNumReminder(WindowList& windowList, QWidget* owner);
  void UpdateEnabled() override;

 public Q_SLOTS:
  void cmdYes_Click() { Give(true); }
  void cmdNo_Click() { Give(false); }

 private:
  void Give(bool returnToBatch);

  QLabel* select_;
  QWidget* mark_;
  CheckField* never_;
};

}  // namespace vellumark::desktop
