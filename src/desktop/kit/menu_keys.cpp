#include "desktop/kit/menu_keys.h"

#include <QKeySequence>
#include <QPushButton>

namespace vellumark::desktop {

bool TakeMenuKey(QWidget& menu, const QKeyEvent& event) {
  if (event.key() == Qt::Key_Down || event.key() == Qt::Key_Up) {
    QWidget* from = menu.focusWidget() != nullptr ? menu.focusWidget() : &menu;
    const auto next = [&](QWidget* at) {
      return event.key() == Qt::Key_Down ? at->nextInFocusChain() : at->previousInFocusChain();
    };
    for (QWidget* to = next(from); to != from; to = next(to)) {
      if (qobject_cast<QPushButton*>(to) == nullptr || !menu.isAncestorOf(to) || !to->isEnabled()) continue;
      to->setFocus(event.key() == Qt::Key_Down ? Qt::TabFocusReason : Qt::BacktabFocusReason);
      break;
    }
    return true;
  }
  if ((event.modifiers() & ~Qt::ShiftModifier) != 0 || event.text().isEmpty()) return false;
  const QKeySequence letter(Qt::ALT | static_cast<Qt::Key>(event.key()));
  for (QPushButton* button : menu.findChildren<QPushButton*>()) {
    if (!button->isEnabled() || QKeySequence::mnemonic(button->text()) != letter) continue;
    button->click();
    return true;
  }
  return false;
}

}  // namespace vellumark::desktop
