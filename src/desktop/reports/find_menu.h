#pragma once

#include "desktop/kit/toolbar_menu.h"

namespace vellumark::desktop {

/// The small menu of the toolbar's Find button: what can be searched for, and the lists of all there is.
class FindMenu : public ToolbarMenu {
  Q_OBJECT

 public:
  explicit FindMenu(WindowList& windowList);
};

}  // namespace vellumark::desktop
