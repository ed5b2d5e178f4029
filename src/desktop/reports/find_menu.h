#pragma once

#include "desktop/kit/window.h"

namespace vellumark::desktop {

/// The small menu of the toolbar's Find button: what can be searched for.
class FindMenu : public Window {
  Q_OBJECT

 public:
  explicit FindMenu(WindowList& windowList);

 protected:
  /// Up and Down walk, as in a menu.
  void keyPressEvent(QKeyEvent* event) override;

 private:
  void Choose(const std::string& name);
};

}  // namespace vellumark::desktop
