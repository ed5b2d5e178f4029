#pragma once

#include <QKeyEvent>
#include <QWidget>

namespace vellumark::desktop {

/// The keys of a window that is a list of buttons, as in a menu: up and down go through the buttons, the underlined
/// letter alone presses one. False for any other key.
bool TakeMenuKey(QWidget& menu, const QKeyEvent& event);

}  // namespace vellumark::desktop
