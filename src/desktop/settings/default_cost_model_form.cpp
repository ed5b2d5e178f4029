#include "desktop/settings/default_cost_model_form.h"

#include <QLayout>

#include "core/batch/default_models.h"
#include "desktop/kit/text.h"

namespace vellumark::desktop {

DefaultCostModelForm::DefaultCostModelForm(WindowList& windowList, QWidget* owner)
    : Dialog(windowList, owner, "DefaultCostModelForm",
             tr("Default Batch Cost Model - %1 Database").arg(Q(windowList.session.CurrentDatabase))) {
  Form form(*this);
  model_.emplace(*this, form);
  form.Buttons({form.Button("cmdOK", tr("OK")), form.Button("cmdCancel", tr("Cancel"))});
  layout()->setSizeConstraint(QLayout::SetFixedSize);
  model_->Show(DefaultModels(session));
}

void DefaultCostModelForm::cmdOK_Click() {
  if (Accepted(SaveDefaultCostModel(session, model_->Read()))) accept();
}

VOC_HAP_OptMenu::VOC_HAP_OptMenu(WindowList& windowList, QWidget* owner)
    : Dialog(windowList, owner, "VOC_HAP_OptMenu",
             tr("VOC _ HAP Calculation Model - %1 Database").arg(Q(windowList.session.CurrentDatabase))) {
  Form form(*this);
  model_.emplace(form);
  form.Buttons({form.Button("cmdOK", tr("OK")), form.Button("cmdCancel", tr("Cancel"))});
  layout()->setSizeConstraint(QLayout::SetFixedSize);
  model_->Show(DefaultModels(session));
}

void VOC_HAP_OptMenu::cmdOK_Click() {
  if (Accepted(SaveDefaultEmissionModels(session, model_->MixVOCModelType(), model_->MixHAPModelType()))) accept();
}

}  // namespace vellumark::desktop
