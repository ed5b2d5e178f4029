#include "desktop/labels/label_menu.h"

#include <QKeyEvent>
#include <QLayout>

#include "desktop/kit/icons.h"
#include "desktop/kit/menu_keys.h"
#include "desktop/labels/label_windows.h"

namespace vellumark::desktop {
namespace {

constexpr int kButtonWidth = 220;

}  // namespace

LabelMenu::LabelMenu(WindowList& windowList) : Window(windowList, "LabelMenu", tr("Labels"), Stands::OverIt) {
  Form form(*this);
  bool first = true;
  for (const LabelWindows& kind : kLabelWindows) {
    if (!windows.Knows(kind.print)) continue;
    CommandButton* button = form.Button(QStringLiteral("cmd%1").arg(kind.print), tr(kind.caption),
                                        [this, name = std::string(kind.print)] { Choose(name); });
    button->setIcon(Icon("Label"));
    button->setIconSize({24, 24});
    button->setMinimumWidth(kButtonWidth);
    form.Wide(button);
    if (first) button->setFocus();
    first = false;
  }
  layout()->setSizeConstraint(QLayout::SetFixedSize);
}

void LabelMenu::Choose(const std::string& name) {
  // This window is deleted by its close.
  WindowList& list = windows;
  if (Leave()) list.OpenForm(name);
}

void LabelMenu::keyPressEvent(QKeyEvent* event) {
  if (!TakeMenuKey(*this, *event)) Window::keyPressEvent(event);
}

}  // namespace vellumark::desktop
