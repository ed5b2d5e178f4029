#pragma once

#include <memory>

#include "core/backup/repair.h"
#include "core/shell/startup.h"
#include "desktop/kit/grid.h"
#include "desktop/kit/record_source.h"
#include "desktop/kit/window.h"

namespace vellumark::desktop {

/// Asks, repairs, and then shows what was changed, left and lost, where there is anything to show.
class RepairForm : public Dialog {
  Q_OBJECT

 public:
  RepairForm(WindowList& windowList, QWidget* owner, StartupWindows& startup);
  int exec() override;

 private:
  void Build(const RepairReport& report);

  StartupWindows& startup_;
  std::shared_ptr<RecordRows<StepLineOf>> lines_;
};

}  // namespace vellumark::desktop
