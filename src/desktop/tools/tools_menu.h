#pragma once

#include "desktop/kit/window.h"

namespace vellumark::desktop {

/// The small menu of the toolbar's DB Tools button: the bulk tools that there are.
class DBToolsMenu : public Window {
  Q_OBJECT

 public:
  explicit DBToolsMenu(WindowList& windowList);

 protected:
  /// Up and Down walk, as in a menu.
  void keyPressEvent(QKeyEvent* event) override;

 private:
  void Choose(const std::string& name, bool isDialog);
};

}  // namespace vellumark::desktop
