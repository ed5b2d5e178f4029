#pragma once

namespace vellumark::desktop {

class WindowList;

/// The windows of stock.
void RegisterInventoryWindows(WindowList& windows);

}  // namespace vellumark::desktop
