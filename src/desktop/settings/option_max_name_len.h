#pragma once

#include "desktop/kit/window.h"

namespace vellumark::desktop {

/// Name Length: how long a name and a code may be.
class OptionMaxNameLen : public Dialog {
  Q_OBJECT

 public:
  OptionMaxNameLen(WindowList& windowList, QWidget* owner);

 public Q_SLOTS:
  void cmdSave_Click();

 private:
  TextField* length_;
};

}  // namespace vellumark::desktop
