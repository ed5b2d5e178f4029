#pragma once

#include <optional>

#include "core/batch/record.h"
#include "desktop/kit/window.h"
#include "desktop/settings/cost_model_panel.h"

namespace vellumark::desktop {

/// How recycled ink counts in the emissions of the Batch on screen. Opened with {"Record", BatchRecord*}; the record
/// has the new models and figures when the window closes with a result.
class VOC_HAP_CalcForm : public Dialog {
  Q_OBJECT

 public:
  VOC_HAP_CalcForm(WindowList& windowList, QWidget* owner);
  void OnOpen(const Arguments& arguments) override;
  void UpdateEnabled() override;

 public Q_SLOTS:
  void cmdSave_Click();

 private:
  BatchRecord* record_ = nullptr;

  std::optional<EmissionModelPanel> model_;
  CheckField* future_;
  CommandButton* save_;
};

}  // namespace vellumark::desktop
