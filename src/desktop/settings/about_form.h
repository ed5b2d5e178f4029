#pragma once

#include "desktop/kit/window.h"

namespace vellumark::desktop {

/// What this program is, what it has open, and whose work it stands on.
class AboutForm : public Dialog {
  Q_OBJECT

 public:
  AboutForm(WindowList& windowList, QWidget* owner);

 protected:
  void paintEvent(QPaintEvent* event) override;
};

}  // namespace vellumark::desktop
