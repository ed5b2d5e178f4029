#include "desktop/labels/register.h"

#include "desktop/labels/formula_label_form.h"
#include "desktop/labels/hazard_label_form.h"
#include "desktop/labels/label_data_selection.h"
#include "desktop/labels/label_form.h"
#include "desktop/labels/label_layout_form.h"
#include "desktop/labels/label_menu.h"
#include "desktop/labels/save_label_layout_form.h"
#include "desktop/labels/small_layout_forms.h"

namespace vellumark::desktop {
namespace {

template <class W>
void RegisterPrinting(WindowList& windows, const char* name, const PrintDevices& devices) {
  windows.Register(name, [devices](WindowList& list) -> Window* { return new W(list, devices); });
}

}  // namespace

void RegisterLabelWindows(WindowList& windows, const PrintDevices& devices) {
  windows.Register<LabelMenu>("LabelMenu");
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
