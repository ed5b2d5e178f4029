#include "desktop/labels/register.h"

#include <array>

#include "desktop/kit/toolbar_menu.h"
#include "desktop/labels/formula_label_form.h"
#include "desktop/labels/hazard_label_form.h"
#include "desktop/labels/label_data_selection.h"
#include "desktop/labels/label_form.h"
#include "desktop/labels/label_layout_form.h"
#include "desktop/labels/save_label_layout_form.h"
#include "desktop/labels/small_layout_forms.h"

namespace vellumark::desktop {
namespace {

constexpr std::array<MenuEntry, 3> kMenu{{
    {"cmdLabelForm", WindowsOf(LabelKind::Label).caption, WindowsOf(LabelKind::Label).print, "Label"},
    {"cmdGH_LabelForm", WindowsOf(LabelKind::Hazard).caption, WindowsOf(LabelKind::Hazard).print, "Label"},
    {"cmdFormula_LabelForm", WindowsOf(LabelKind::Formula).caption, WindowsOf(LabelKind::Formula).print, "Label"},
}};

template <class W>
void RegisterPrinting(WindowList& windows, const char* name, const PrintDevices& devices) {
  windows.Register(name, [devices](WindowList& list) -> Window* { return new W(list, devices); });
}

}  // namespace

void RegisterLabelWindows(WindowList& windows, const PrintDevices& devices) {
  RegisterMenu(windows, {"LabelMenu", QT_TRANSLATE_NOOP("LabelMenu", "Labels"), 220, kMenu});
  RegisterPrinting<LabelForm>(windows, "LabelForm", devices);
  RegisterPrinting<GH_LabelForm>(windows, "GH_LabelForm", devices);
  RegisterPrinting<Formula_LabelForm>(windows, "Formula_LabelForm", devices);
  RegisterPrinting<LabelLayoutForm>(windows, "LabelLayoutForm", devices);
  RegisterPrinting<GH_LabelLayoutForm>(windows, "GH_LabelLayoutForm", devices);
  RegisterPrinting<Formula_LabelLayoutForm>(windows, "Formula_LabelLayoutForm", devices);
  windows.RegisterDialog<LabelDataSelection>("LabelDataSelection");
  for (const LabelWindows& kind : kLabelWindows)
    windows.RegisterDialog(kind.save, [&kind](WindowList& list, QWidget* owner) -> Dialog* {
      return new SaveLabelLayoutForm(list, owner, kind);
    });
}

}  // namespace vellumark::desktop
