#include "desktop/colors/colors_menu.h"

#include <array>

namespace vellumark::desktop {
namespace {

constexpr std::array<MenuEntry, 2> kEntries{{
    {"cmdBasics", QT_TRANSLATE_NOOP("ColorsMenu", "&Basics / Additives"), "BasicColorsForm", "basic"},
    {"cmdMix", QT_TRANSLATE_NOOP("ColorsMenu", "&Master Formulas"), "MixColorsForm", "Color"},
}};

}  // namespace

ColorsMenu::ColorsMenu(WindowList& windowList)
    : ToolbarMenu(windowList, "ColorsMenu", QT_TRANSLATE_NOOP("ColorsMenu", "Colors"), 220, kEntries) {}

}  // namespace vellumark::desktop
