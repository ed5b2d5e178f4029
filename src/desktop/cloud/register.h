#pragma once

#include "core/shell/startup.h"
#include "desktop/cloud/cloud_parts.h"

namespace vellumark::desktop {

class WindowList;

/// The windows of the cloud.
void RegisterCloudWindows(WindowList& windows, StartupWindows& startup, const CloudParts& parts = {});

}  // namespace vellumark::desktop
