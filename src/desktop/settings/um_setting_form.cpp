#include "desktop/settings/um_setting_form.h"

#include "desktop/kit/tall_page.h"

namespace vellumark::desktop {

UMSettingForm::UMSettingForm(WindowList& windowList, QWidget* owner)
    : Dialog(windowList, owner, "UMSettingForm", tr("Inventory Settings")) {
  Form whole(*this);
  Form form = TallPart(*this, whole);
  settings_.emplace(*this, form, form);
  whole.Buttons({form.Button("cmdSave", tr("&Save"), QKeySequence::Save), form.Button("cmdCancel", tr("Cancel"))});
  FitScreen(*this);
}

void UMSettingForm::UpdateEnabled() {
  settings_->UpdateEnabled();
}

void UMSettingForm::cmdSave_Click() {
  if (Accepted(SaveInventorySettings(session, settings_->Read()))) accept();
}

}  // namespace vellumark::desktop
