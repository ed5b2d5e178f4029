#pragma once

#include "desktop/kit/window.h"

namespace vellumark::desktop {

/// The small menu of the toolbar's Jobs button: the Job Window, and what belongs to Jobs.
class JobMenu : public Window {
  Q_OBJECT

 public:
  explicit JobMenu(WindowList& windowList);

 protected:
  /// Up and Down walk, as in a menu.
  void keyPressEvent(QKeyEvent* event) override;

 private:
  void Choose(const std::string& name, const char* way);
};

}  // namespace vellumark::desktop
