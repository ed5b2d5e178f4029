#include "desktop/labels/register.h"

#include "desktop/labels/label_menu.h"
#include "desktop/labels/save_label_layout_form.h"

namespace vellumark::desktop {

void RegisterLabelWindows(WindowList& windows, const PrintDevices&) {
  windows.Register<LabelMenu>("LabelMenu");
  for (const LabelWindows& kind : kLabelWindows)
    windows.RegisterDialog(kind.save, [&kind](WindowList& list, QWidget* owner) -> Dialog* {
      return new SaveLabelLayoutForm(list, owner, kind);
    });
}

}  // namespace vellumark::desktop
