#pragma once

#include "desktop/kit/window.h"

namespace vellumark::desktop {

/// What the cloud service is.
class CloudAbout : public Dialog {
  Q_OBJECT

 public:
  CloudAbout(WindowList& windowList, QWidget* owner);
};

}  // namespace vellumark::desktop
