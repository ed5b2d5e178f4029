#pragma once

#include "desktop/kit/window_list.h"

namespace vellumark::desktop {

/// The windows that work on many colours at once, and the menu of the toolbar's DB Tools button.
void RegisterToolsWindows(WindowList& windows);

}  // namespace vellumark::desktop
