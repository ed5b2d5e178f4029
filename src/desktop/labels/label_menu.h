#pragma once

#include "desktop/kit/toolbar_menu.h"

namespace vellumark::desktop {

/// The small menu of the toolbar's Labels button: the kinds of labels.
class LabelMenu : public ToolbarMenu {
  Q_OBJECT

 public:
  explicit LabelMenu(WindowList& windowList);
};

}  // namespace vellumark::desktop
