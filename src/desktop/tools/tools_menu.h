#pragma once

#include "desktop/kit/toolbar_menu.h"

namespace vellumark::desktop {

/// The small menu of the toolbar's DB Tools button: the bulk tools that there are.
class DBToolsMenu : public ToolbarMenu {
  Q_OBJECT

 public:
  explicit DBToolsMenu(WindowList& windowList);
};

}  // namespace vellumark::desktop
