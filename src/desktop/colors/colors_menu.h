#pragma once

#include "desktop/kit/toolbar_menu.h"

namespace vellumark::desktop {

/// The small menu of the toolbar's Color button: the windows of colours that there are.
class ColorsMenu : public ToolbarMenu {
  Q_OBJECT

 public:
  explicit ColorsMenu(WindowList& windowList);
};

}  // namespace vellumark::desktop
