#pragma once

#include "desktop/settings/printers.h"

namespace vellumark::desktop {

class WindowList;

/// The windows of the first start, the Options menu, and those that tell of the program itself.
void RegisterSettingsWindows(WindowList& windows, const PrinterSource& printers = PrintersOfSystem);

}  // namespace vellumark::desktop
