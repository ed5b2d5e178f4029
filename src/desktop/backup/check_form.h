#pragma once

#include <memory>

#include "core/backup/deep_check.h"
#include "desktop/kit/grid.h"
#include "desktop/kit/record_source.h"
#include "desktop/kit/window.h"

namespace vellumark::desktop {

/// Checks the open Data File, and then shows what is wrong with it, where there is anything to show: from there it is
/// repaired, or what another program changed in it is accepted.
class CheckForm : public Dialog {
  Q_OBJECT

 public:
  CheckForm(WindowList& windowList, QWidget* owner);
  int exec() override;
  void UpdateEnabled() override;

 public Q_SLOTS:
  void cmdAccept_Click();
  void cmdRepair_Click();

 private:
  void Build();
  void Show();

  CheckAnswer found_;
  std::shared_ptr<RecordRows<CheckFault>> lines_;
  bool repair_ = false;
  QLabel* outcome_ = nullptr;
  Grid* grid_ = nullptr;
  CommandButton* accept_ = nullptr;
  CommandButton* mend_ = nullptr;
};

}  // namespace vellumark::desktop
