#pragma once

#include "desktop/kit/toolbar_menu.h"

namespace vellumark::desktop {

/// The small menu of the toolbar's Jobs button: the Job Window, and what belongs to Jobs.
class JobMenu : public ToolbarMenu {
  Q_OBJECT

 public:
  explicit JobMenu(WindowList& windowList);

 protected:
  bool MayOpen(std::string_view window) override;
};

}  // namespace vellumark::desktop
