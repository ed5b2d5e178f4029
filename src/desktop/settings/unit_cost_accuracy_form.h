#pragma once

#include "desktop/kit/window.h"

namespace vellumark::desktop {

/// The decimals of every unit cost and price.
class UnitCostAccuracyForm : public Dialog {
  Q_OBJECT

 public:
  UnitCostAccuracyForm(WindowList& windowList, QWidget* owner);
  void UpdateEnabled() override;

 public Q_SLOTS:
  void cmdOK_Click();

 private:
  int Chosen() const;
  void ShowValueInForce();

  ComboField* places_;
  ValueField* example_;
};

}  // namespace vellumark::desktop
