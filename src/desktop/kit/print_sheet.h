#pragma once

#include "core/base/sheet.h"
#include "desktop/kit/window_list.h"

namespace vellumark::desktop {

/// Whether there is a window that prints.
inline bool CanPrint(const WindowList& windows) {
  return windows.Knows("PrintBoxForm");
}

/// Shows the pages of the sheet and lets them be printed. False when nothing was.
inline bool PrintSheet(WindowList& windows, const Sheet& sheet) {
  return windows.RunDialog("PrintBoxForm", {{"Sheet", sheet}}).has_value();
}

}  // namespace vellumark::desktop
