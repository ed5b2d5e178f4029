#pragma once

#include "desktop/kit/window.h"

namespace vellumark::desktop {

/// The small menu of the toolbar's Labels button: the kinds of labels.
class LabelMenu : public Window {
  Q_OBJECT

 public:
  explicit LabelMenu(WindowList& windowList);

 protected:
  /// Up and Down walk, as in a menu.
  void keyPressEvent(QKeyEvent* event) override;

 private:
  void Choose(const std::string& name);
};

}  // namespace vellumark::desktop
