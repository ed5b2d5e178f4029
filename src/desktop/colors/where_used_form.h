#pragma once

#include "core/datafile/color_kind.h"
#include "desktop/kit/window.h"

namespace vellumark::desktop {

/// Everything that has a colour as its ingredient: formulas, Additive Sets and Designs. Opened with
/// {"Color_Name", name} and {"Kind", ColorKind}.
class WhereUsedForm : public Dialog {
  Q_OBJECT

 public:
  WhereUsedForm(WindowList& windowList, QWidget* owner);
  void OnOpen(const Arguments& arguments) override;

 private:
  QLabel* text_;
  Grid* uses_;
};

}  // namespace vellumark::desktop
