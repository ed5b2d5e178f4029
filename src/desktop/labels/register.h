#pragma once

#include "desktop/kit/window_list.h"
#include "desktop/reports/print_devices.h"

namespace vellumark::desktop {

/// The windows of labels: what is printed on them, and their layouts.
void RegisterLabelWindows(WindowList& windows, const PrintDevices& devices = PrintDevices::OfSystem());

}  // namespace vellumark::desktop
