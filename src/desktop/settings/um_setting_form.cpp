#include "desktop/settings/um_setting_form.h"

#include <QLayout>

namespace vellumark::desktop {

UMSettingForm::UMSettingForm(WindowList& windowList, QWidget* owner)
    : Dialog(windowList, owner, "UMSettingForm", tr("Inventory Settings")) {
  Form form(*this);
  settings_.emplace(*this, form, form);
  form.Buttons({form.Button("cmdSave", tr("&Save"), QKeySequence::Save), form.Button("cmdCancel", tr("Cancel"))});
  layout()->setSizeConstraint(QLayout::SetFixedSize);
}

void UMSettingForm::UpdateEnabled() {
  settings_->UpdateEnabled();
}

void UMSettingForm::cmdSave_Click() {
  if (Accepted(SaveInventorySettings(session, settings_->Read()))) accept();
}

}  // namespace vellumark::desktop
