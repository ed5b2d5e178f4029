#pragma once

#include "desktop/kit/window_list.h"

namespace vellumark::desktop {

/// The windows of Basic Colors and Additives, and the menu of the toolbar's Color button.
void RegisterColorsWindows(WindowList& windows);

}  // namespace vellumark::desktop
