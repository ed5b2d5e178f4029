#include "desktop/labels/label_menu.h"

#include <array>

#include "desktop/labels/label_windows.h"

namespace vellumark::desktop {
namespace {

constexpr std::array<MenuEntry, 3> kEntries{{
    {"cmdLabelForm", WindowsOf(LabelKind::Label).caption, WindowsOf(LabelKind::Label).print, "Label"},
    {"cmdGH_LabelForm", WindowsOf(LabelKind::Hazard).caption, WindowsOf(LabelKind::Hazard).print, "Label"},
    {"cmdFormula_LabelForm", WindowsOf(LabelKind::Formula).caption, WindowsOf(LabelKind::Formula).print, "Label"},
}};

}  // namespace

LabelMenu::LabelMenu(WindowList& windowList)
    : ToolbarMenu(windowList, "LabelMenu", QT_TRANSLATE_NOOP("LabelMenu", "Labels"), 220, kEntries) {}

}  // namespace vellumark::desktop
