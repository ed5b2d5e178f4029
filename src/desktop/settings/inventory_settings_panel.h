#pragma once

#include "core/session/options.h"
#include "desktop/kit/form.h"

namespace vellumark::desktop {

/// The settings of the inventory with what they mean: unit, cutoff, negative inventory, lots. Shown by a window that
/// reads and saves them.
class InventorySettingsPanel {
 public:
  /// `form` gets the lines, `lots` those of Lotted Inventory: another column, or the same form.
  InventorySettingsPanel(FormHost& host, Form& form, Form& lots);

  /// The settings in force.
  void Show();
  /// As they stand in the fields.
  InventorySettings Read() const;
  /// They differ from what was shown.
  bool IsChanged() const;
  /// What follows from other fields; to be called by the window's own UpdateEnabled.
  void UpdateEnabled();
  /// For a window that holds something else besides: changed settings do not make it dirty.
  void DoNotTrack();

 private:
  FormHost& host_;
  InventorySettings shown_;
  ComboField* unit_;
  NumberField* cutoff_;
  QLabel* cutoffUnit_;
  CheckField* negative_;
  QLabel* negativeMeans_;
  CheckField* lots_;
  RadioField* method_;
};

}  // namespace vellumark::desktop
