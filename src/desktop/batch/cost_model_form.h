#pragma once

#include <optional>

#include "core/batch/record.h"
#include "desktop/kit/window.h"
#include "desktop/settings/cost_model_panel.h"

namespace vellumark::desktop {

/// The cost model of the Batch on screen, which can be made that of all later ones. Opened with
/// {"Record", BatchRecord*}; the record has the new model and its figures when the window closes with a result.
class CostModelForm : public Dialog {
  Q_OBJECT

 public:
  CostModelForm(WindowList& windowList, QWidget* owner);
  void OnOpen(const Arguments& arguments) override;
  void UpdateEnabled() override { model_->UpdateEnabled(); }

 public Q_SLOTS:
  void cmdSave_Click();

 private:
  BatchRecord* record_ = nullptr;

  std::optional<CostModelPanel> model_;
  CheckField* future_;
};

}  // namespace vellumark::desktop
