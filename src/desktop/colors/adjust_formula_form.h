#pragma once

#include "core/colors/formula_work.h"
#include "desktop/kit/window.h"

namespace vellumark::desktop {

/// Changes one ingredient of a stored formula by a percentage, or adds one, and saves the formula at parts of 100.
/// Opened with {"Work", FormulaWork}, validated and as it stands on screen; gives {"Work", FormulaWork} back as it was
/// saved.
class AdjustFormulaForm : public Dialog {
  Q_OBJECT

 public:
  AdjustFormulaForm(WindowList& windowList, QWidget* owner);
  void OnOpen(const Arguments& arguments) override;
  void UpdateEnabled() override;

 public Q_SLOTS:
  void cmdOK_Click();
  /// Leaves the formula as it is and goes to the window that changes many formulas.
  void cmdDFM_Click();

 private:
  FormulaAdjustment Adjustment() const;
  void ShowChoices();
  void PercentLeft(QWidget* to);

  FormulaWork work_;
  ValueField* name_;
  RadioField* adjustment_;
  ComboField* ingredient_;
  QLabel* amount_;
  NumberField* percent_;
  CommandButton* modifier_;
};

}  // namespace vellumark::desktop
