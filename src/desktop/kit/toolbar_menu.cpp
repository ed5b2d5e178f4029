#include "desktop/kit/toolbar_menu.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <QKeySequence>
#include <QLayout>
#include <QPushButton>
#include <algorithm>

#include "desktop/kit/icons.h"

namespace vellumark::desktop {
namespace {

constexpr int kIcon = 24;

}  // namespace

ToolbarMenu::ToolbarMenu(WindowList& windowList, const MenuTable& menu)
    : Window(windowList, menu.name, QCoreApplication::translate(menu.name, menu.title), Stands::OverIt),
      mayOpen_(menu.mayOpen) {
  Form form(*this);
  const auto beside = std::ranges::count_if(menu.entries, &MenuEntry::besideTheOthers);
  std::vector<Form> columns = beside == 0 ? std::vector{form} : form.Columns(static_cast<int>(beside) + 1);
  std::size_t column = 0;
  for (const MenuEntry& entry : menu.entries) {
    if (entry.besideTheOthers) ++column;
    if (windows.Knows(entry.window)) AddEntry(columns[column], entry, menu.buttonWidth);
  }
  layout()->setSizeConstraint(QLayout::SetFixedSize);
}

void ToolbarMenu::AddEntry(Form& form, const MenuEntry& entry, int width) {
  const QByteArray name = objectName().toLatin1();
  if (entry.heading != nullptr) form.Heading(QCoreApplication::translate(name, entry.heading));
  const bool first = findChild<QPushButton*>() == nullptr;
  CommandButton* button =
      form.Button(entry.button, QCoreApplication::translate(name, entry.caption), [this, entry] { Choose(entry); });
  if (entry.icon != nullptr) {
    button->setIcon(Icon(entry.icon));
    button->setIconSize({kIcon, kIcon});
  }
  button->setMinimumWidth(width);
  form.Wide(button);
  if (first) button->setFocus();
}

void ToolbarMenu::Choose(const MenuEntry& entry) {
  if (mayOpen_ != nullptr && !mayOpen_(*this, entry.window)) return;
  // This window is deleted by its close, and what it holds of the entry with it.
  WindowList& list = windows;
  const MenuEntry chosen = entry;
  if (!Leave()) return;
  if (chosen.isDialog)
    list.RunDialog(chosen.window);
  else
    list.OpenForm(chosen.window);
}

void ToolbarMenu::keyPressEvent(QKeyEvent* event) {
  if (!TakeKey(*event)) Window::keyPressEvent(event);
}

bool ToolbarMenu::TakeKey(const QKeyEvent& event) {
  if (event.key() == Qt::Key_Down || event.key() == Qt::Key_Up) {
    QWidget* from = focusWidget() != nullptr ? focusWidget() : this;
    const auto next = [&](QWidget* at) {
      return event.key() == Qt::Key_Down ? at->nextInFocusChain() : at->previousInFocusChain();
    };
    for (QWidget* to = next(from); to != from; to = next(to)) {
      if (qobject_cast<QPushButton*>(to) == nullptr || !isAncestorOf(to) || !to->isEnabled()) continue;
      to->setFocus(event.key() == Qt::Key_Down ? Qt::TabFocusReason : Qt::BacktabFocusReason);
      break;
    }
    return true;
  }
  if ((event.modifiers() & ~Qt::ShiftModifier) != 0 || event.text().isEmpty()) return false;
  const QKeySequence letter(Qt::ALT | static_cast<Qt::Key>(event.key()));
  for (QPushButton* button : findChildren<QPushButton*>()) {
    if (!button->isEnabled() || QKeySequence::mnemonic(button->text()) != letter) continue;
    button->click();
    return true;
  }
  return false;
}

void RegisterMenu(WindowList& windows, const MenuTable& menu) {
  windows.Register(menu.name, [menu](WindowList& list) -> Window* { return new ToolbarMenu(list, menu); });
}

}  // namespace vellumark::desktop
