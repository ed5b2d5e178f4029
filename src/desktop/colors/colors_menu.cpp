#include "desktop/colors/colors_menu.h"

#include <QKeyEvent>
#include <QLayout>
#include <array>

#include "desktop/kit/icons.h"
#include "desktop/kit/menu_keys.h"
#include "desktop/kit/text.h"

namespace vellumark::desktop {
namespace {

struct Entry {
  const char* button;
  const char* caption;
  const char* icon;
  const char* window;
};

constexpr std::array<Entry, 2> kEntries{{
    {"cmdBasics", QT_TRANSLATE_NOOP("ColorsMenu", "&Basics / Additives"), "basic", "BasicColorsForm"},
    {"cmdMix", QT_TRANSLATE_NOOP("ColorsMenu", "&Master Formulas"), "Color", "MixColorsForm"},
}};

}  // namespace

ColorsMenu::ColorsMenu(WindowList& windowList)
    : Window(windowList, "ColorsMenu", tr("Colors"), Stands::OverIt) {
  Form form(*this);
  bool first = true;
  for (const Entry& entry : kEntries) {
    const std::string name = entry.window;
    if (!windows.Knows(name)) continue;
    CommandButton* button = form.Button(entry.button, tr(entry.caption), [this, name] { Choose(name); });
    button->setIcon(Icon(entry.icon));
    button->setIconSize({24, 24});
    button->setMinimumWidth(220);
    form.Wide(button);
    if (first) button->setFocus();
    first = false;
  }
  layout()->setSizeConstraint(QLayout::SetFixedSize);
}

void ColorsMenu::Choose(const std::string& name) {
  // This window is deleted by its close.
  WindowList& list = windows;
  if (Leave()) list.OpenForm(name);
}

void ColorsMenu::keyPressEvent(QKeyEvent* event) {
  if (!TakeMenuKey(*this, *event)) Window::keyPressEvent(event);
}

}  // namespace vellumark::desktop
