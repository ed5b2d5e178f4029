#pragma once

#include "desktop/kit/window.h"

namespace vellumark::desktop {

/// The current user's rights, to be read.
class ViewPermissionsForm : public Dialog {
  Q_OBJECT

 public:
  ViewPermissionsForm(WindowList& windowList, QWidget* owner);
};

}  // namespace vellumark::desktop
