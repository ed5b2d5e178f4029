#pragma once

#include "desktop/kit/window_list.h"
#include "desktop/reports/print_devices.h"

namespace vellumark::desktop {

/// The windows of what is printed and reported.
void RegisterReportsWindows(WindowList& windows, const PrintDevices& devices = PrintDevices::OfSystem());

}  // namespace vellumark::desktop
