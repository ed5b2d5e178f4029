// Save, Delete, Print, Cut, Copy and Paste of whatever has the focus. They stand in a menu of their own that is in no
// bar: it opens over a window, and its keys are heard where nothing nearer to the focus takes them.

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMenu>
#include <QPlainTextEdit>
#include <algorithm>
#include <array>

#include "core/shell/gating.h"
#include "desktop/kit/grid.h"
#include "desktop/kit/row_menu.h"
#include "desktop/kit/text.h"
#include "desktop/kit/window.h"
#include "desktop/shell/main_form.h"

namespace vellumark::desktop {
namespace {

constexpr const char* kMenu = "menuHiddenMenu";

struct Common {
  const char* item;
  QKeyCombination key;
  const char* button = nullptr;  ///< of the window in front
  const char* slot = nullptr;    ///< of the control that has the focus
};
constexpr std::array<Common, 6> kCommon{{{"menuSaveRecord", Qt::CTRL | Qt::Key_S, "cmdSave"},
                                         {"menuDeleteRecord", Qt::CTRL | Qt::Key_D, "cmdDelete"},
                                         {"menuPrintRecord", Qt::CTRL | Qt::Key_P, "cmdPrint"},
                                         {"MenuEditCut", Qt::CTRL | Qt::Key_X, nullptr, "cut"},
                                         {"MenuEditCopy", Qt::CTRL | Qt::Key_C, nullptr, "copy"},
                                         {"MenuEditPaste", Qt::CTRL | Qt::Key_V, nullptr, "paste"}}};

/// What text can be taken from and put into, and whether some of it is selected now.
struct TextAtHand {
  QWidget* control = nullptr;
  bool selected = false;
  bool writable = false;
};

TextAtHand AtHand() {
  QWidget* focus = QApplication::focusWidget();
  if (auto* combo = qobject_cast<QComboBox*>(focus); combo != nullptr && combo->lineEdit() != nullptr)
    focus = combo->lineEdit();
  if (auto* line = qobject_cast<QLineEdit*>(focus); line != nullptr && line->isEnabled())
    return {line, line->hasSelectedText() && line->echoMode() == QLineEdit::Normal, !line->isReadOnly()};
  if (auto* note = qobject_cast<QPlainTextEdit*>(focus); note != nullptr && note->isEnabled())
    return {note, note->textCursor().hasSelection(), !note->isReadOnly()};
  for (QWidget* widget = focus; widget != nullptr; widget = widget->parentWidget())
    if (auto* grid = qobject_cast<Grid*>(widget)) return {grid, !grid->SelectedRows().empty(), false};
  return {};
}

void TakeText(QWidget& control, const char* slot) {
  if (auto* grid = qobject_cast<Grid*>(&control))
    CopyRows(*grid);
  else
    QMetaObject::invokeMethod(&control, slot);
}

bool CanDo(const Common& common, const Window* window, const TextAtHand& text) {
  if (common.button != nullptr) return window != nullptr && window->CanDo(common.button);
  if (text.control == nullptr) return false;
  const std::string_view slot = common.slot;
  if (slot == "copy") return text.selected;
  return text.writable && (slot == "cut" ? text.selected : !QApplication::clipboard()->text().isEmpty());
}

}  // namespace

void MainForm::BuildCommonCommands() {
  auto* menu = new QMenu(Q(MenuItemNow(session_, kMenu).caption), this);
  menu->setObjectName(kMenu);
  menus_[kMenu] = menu;
  actions_[kMenu] = menu->menuAction();
  connect(menu, &QMenu::aboutToShow, this, &MainForm::GateMenus);
  for (const Common& common : kCommon) {
    if (common.slot != nullptr && menu->actions().size() == 3) menu->addSeparator();
    QAction* action = menu->addAction(Q(MenuItemNow(session_, common.item).caption));
    action->setObjectName(common.item);
    // Shown only: the buttons and fields have these keys themselves, and twice they would be ambiguous.
    action->setShortcut(common.key);
    action->setShortcutContext(Qt::WidgetShortcut);
    actions_[common.item] = action;
    connect(action, &QAction::triggered, this, [this, item = std::string(common.item)] { DoCommon(item); });
  }
}

void MainForm::GateCommonCommands() {
  const TextAtHand text = AtHand();
  for (const Common& common : kCommon)
    actions_.at(common.item)->setEnabled(vellumark::desktop::CanDo(common, windows_.ActiveForm(), text));
}

void MainForm::DoCommon(const std::string& item) {
  const auto* common = std::ranges::find_if(kCommon, [&](const Common& one) { return item == one.item; });
  Window* window = windows_.ActiveForm();
  const TextAtHand text = AtHand();
  if (!vellumark::desktop::CanDo(*common, window, text)) return;
  if (common->button != nullptr)
    window->Do(common->button);
  else
    TakeText(*text.control, common->slot);
}

void MainForm::keyPressEvent(QKeyEvent* event) {
  const auto* common =
      std::ranges::find_if(kCommon, [&](const Common& one) { return event->keyCombination() == one.key; });
  if (common == kCommon.end()) return QMainWindow::keyPressEvent(event);
  DoCommon(common->item);
}

void MainForm::contextMenuEvent(QContextMenuEvent* event) {
  if (windows_.ActiveForm() == nullptr) return event->ignore();
  menus_.at(kMenu)->popup(event->globalPos());
  event->accept();
}

}  // namespace vellumark::desktop
