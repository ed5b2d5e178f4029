#pragma once

#include "desktop/kit/window.h"

namespace vellumark::desktop {

/// A Data File of an older version: makes its safety copy and says that this release cannot bring it up to date.
class UpdateDataFileForm : public Dialog {
  Q_OBJECT

 public:
  UpdateDataFileForm(WindowList& windowList, QWidget* owner);
  void OnOpen(const Arguments& arguments) override;

 private:
  QLabel* file_;
  QLabel* version_;
  QLabel* copy_;
};

}  // namespace vellumark::desktop
