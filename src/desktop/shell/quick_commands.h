#pragma once

#include <vector>

namespace vellumark::desktop {

/// A window that can be opened by itself, for those who look for it by its name.
struct QuickCommand {
  const char* caption;
  const char* detail;
  const char* window;
  const char* way = nullptr;  ///< of the interlocks that are asked
  bool isDialog = false;
};

/// Those that stand behind buttons of the toolbar and of other windows. Menus and reports tell their own names.
const std::vector<QuickCommand>& QuickCommands();

}  // namespace vellumark::desktop
