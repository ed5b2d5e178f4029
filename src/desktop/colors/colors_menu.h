#pragma once

#include "desktop/kit/window.h"

namespace vellumark::desktop {

/// The small menu of the toolbar's Color button: the windows of colours that there are.
class ColorsMenu : public Window {
  Q_OBJECT

 public:
  explicit ColorsMenu(WindowList& windowList);

 protected:
  /// Up and Down walk, as in a menu.
  void keyPressEvent(QKeyEvent* event) override;

 private:
  void Choose(const std::string& name);
};

}  // namespace vellumark::desktop
