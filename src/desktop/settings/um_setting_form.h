#pragma once

#include "desktop/kit/window.h"

namespace vellumark::desktop {

/// Inventory Settings: unit, cutoff, negative inventory, lots.
class UMSettingForm : public Dialog {
  Q_OBJECT

 public:
  UMSettingForm(WindowList& windowList, QWidget* owner);
  void UpdateEnabled() override;

 public Q_SLOTS:
  void cmdSave_Click();
  void cmdCancel_Click() { reject(); }

 private:
  ComboField* unit_;
  NumberField* cutoff_;
  QLabel* cutoffUnit_;
  CheckField* negative_;
  QLabel* negativeMeans_;
  CheckField* lots_;
  RadioField* method_;
};

}  // namespace vellumark::desktop
