#pragma once

#include "core/batch/adjust.h"
#include "desktop/kit/window.h"

namespace vellumark::desktop {

/// How much of a recycled colour goes into the Batch. Opened with {"Adjustment", MixAdjustment}; gives {"Choice",
/// MixAdjustChoice}, its amount checked.
class AdjustMixForm : public Dialog {
  Q_OBJECT

 public:
  AdjustMixForm(WindowList& windowList, QWidget* owner);
  void OnOpen(const Arguments& arguments) override;

 public Q_SLOTS:
  void cmdRecycle_Click() { Leave(true); }
  void cmdMix_Click() { Leave(false); }
  void cmdMax_Click();

 private:
  void Leave(bool recycle);

  MixAdjustment adjustment_;
  NumberField* amount_;
  QLabel* unit_;
  CheckField* remove_;
  CommandButton* recycle_;
  CommandButton* mix_;
};

}  // namespace vellumark::desktop
