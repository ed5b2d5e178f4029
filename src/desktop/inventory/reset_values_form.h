#pragma once

#include "core/inventory/stock_resets.h"
#include "desktop/kit/window.h"

namespace vellumark::desktop {

enum class ResetFigure { Inventory, Reorder };

/// One figure of every Basic Color and of every formula, set to a value.
class ResetValuesForm : public Dialog {
  Q_OBJECT

 public:
  ResetValuesForm(WindowList& windowList, QWidget* owner, ResetFigure figure);
  void UpdateEnabled() override;

 public Q_SLOTS:
  void cmdSave_Click();

 private:
  ResetFigure figure_;
  CheckField* basics_;
  NumberField* basicsValue_;
  CheckField* mixes_;
  NumberField* mixesValue_;
  CommandButton* save_;
};

}  // namespace vellumark::desktop
