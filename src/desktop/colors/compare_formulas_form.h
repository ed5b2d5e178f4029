#pragma once

#include "core/colors/guide_formulas.h"
#include "desktop/kit/window.h"

namespace vellumark::desktop {

/// A formula beside what was published. Opened with {"Color_Name", name} and, by the window that can put the formula
/// back, {"MayRevert", true}. It only shows and asks: it gives {"Revert", true} back once the operator has agreed, for
/// that window to call PutBackToGuide; closed otherwise it gives nothing.
class CompareFormulasForm : public Dialog {
  Q_OBJECT

 public:
  CompareFormulasForm(WindowList& windowList, QWidget* owner);
  void OnOpen(const Arguments& arguments) override;
  void UpdateEnabled() override;

 public Q_SLOTS:
  void cmdPrint_Click();
  void cmdRevert_Click();

 private:
  FormulaComparison shown_;
  bool mayRevert_ = false;

  QLabel* original_;
  QLabel* modified_;
  Grid* originalRows_;
  Grid* modifiedRows_;
  QLabel* date_;
  CommandButton* print_;
  CommandButton* revert_;
};

}  // namespace vellumark::desktop
