#pragma once

#include <string>

namespace vellumark::desktop {

class WindowList;

/// Another Database, as chosen by the operator: closes the child windows that show the current one, changes, and gives
/// the focus back to the window that had it, if it is still there. False when a window declined to close or the change
/// was refused, which then has been told.
bool ChangeDatabaseOnScreen(WindowList& windows, const std::string& name);

}  // namespace vellumark::desktop
