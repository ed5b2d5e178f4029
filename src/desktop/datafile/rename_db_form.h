#pragma once

#include "desktop/kit/window.h"

namespace vellumark::desktop {

/// Another name for the current Database.
class RenameDBForm : public Dialog {
  Q_OBJECT

 public:
  RenameDBForm(WindowList& windowList, QWidget* owner);

 public Q_SLOTS:
  void cmdRename_Click();

 private:
  TextField* name_;
};

}  // namespace vellumark::desktop
