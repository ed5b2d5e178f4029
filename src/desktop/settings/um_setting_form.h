#pragma once

#include <optional>

#include "desktop/kit/window.h"
#include "desktop/settings/inventory_settings_panel.h"

namespace vellumark::desktop {

/// Inventory Settings: unit, cutoff, negative inventory, lots.
class UMSettingForm : public Dialog {
  Q_OBJECT

 public:
  UMSettingForm(WindowList& windowList, QWidget* owner);
  void UpdateEnabled() override;

 public Q_SLOTS:
  void cmdSave_Click();

 private:
  std::optional<InventorySettingsPanel> settings_;
};

}  // namespace vellumark::desktop
