#pragma once

#include <optional>

#include "desktop/kit/window.h"
#include "desktop/settings/cost_model_panel.h"

namespace vellumark::desktop {

/// The cost model that new Batches start with.
class DefaultCostModelForm : public Dialog {
  Q_OBJECT

 public:
  DefaultCostModelForm(WindowList& windowList, QWidget* owner);
  void UpdateEnabled() override { model_->UpdateEnabled(); }

 public Q_SLOTS:
  void cmdOK_Click();

 private:
  std::optional<CostModelPanel> model_;
};

/// How recycled ink counts for the VOC and HAP of new Batches.
class VOC_HAP_OptMenu : public Dialog {
  Q_OBJECT

 public:
  VOC_HAP_OptMenu(WindowList& windowList, QWidget* owner);

 public Q_SLOTS:
  void cmdOK_Click();

 private:
  std::optional<EmissionModelPanel> model_;
};

}  // namespace vellumark::desktop
