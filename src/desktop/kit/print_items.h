#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "core/base/sheet.h"
#include "desktop/kit/window_list.h"

namespace vellumark::desktop {

/// What can be left out of a sheet. Where it is printed the operator chooses, and sees what comes of it.
struct PrintItems {
  std::vector<std::string> names{};
  std::function<bool(std::size_t item)> isOn{};
  std::function<void(std::size_t item, bool on)> set{};
  std::function<Sheet()> make{};
};

/// Shows the pages and lets parts of them be left out. False when nothing was printed.
inline bool PrintSheet(WindowList& windows, const PrintItems& items) {
  return windows.RunDialog("PrintBoxForm", {{"Sheet", items.make()}, {"Items", items}}).has_value();
}

}  // namespace vellumark::desktop
