#include "desktop/batch/voc_hap_calc_form.h"

#include <QLayout>

#include "core/batch/bench.h"
#include "core/session/rights.h"

namespace vellumark::desktop {
VOC_HAP_CalcForm::VOC_HAP_CalcForm(WindowList& windowList, QWidget* owner)
    : Dialog(windowList, owner, "VOC_HAP_CalcForm", tr("VOC _ HAP Calculation Model - This Batch")) {
  Form form(*this);
  model_.emplace(form);
  form.Space();
  form.Wide(future_ = form.Check("chkFutureBatches", tr("&Apply this Model to all future Batches")));
  form.Buttons({save_ = form.Button("cmdSave", tr("&Save")), form.Button("cmdCancel", tr("Cancel"))});
  layout()->setSizeConstraint(QLayout::SetFixedSize);
}

void VOC_HAP_CalcForm::OnOpen(const Arguments& arguments) {
  record_ = arguments.Get<BatchRecord*>("Record");
  model_->Show(record_->work.cost);
}

void VOC_HAP_CalcForm::UpdateEnabled() {
  save_->setEnabled(Allows(session, CommandRight::VOCHAP));
}

void VOC_HAP_CalcForm::cmdSave_Click() {
  BatchCostModel model = record_->work.cost;
  model.MixVOCModelType = model_->MixVOCModelType();
  model.MixHAPModelType = model_->MixHAPModelType();
  if (Accepted(SetBatchEmissionModel(session, *record_, model, future_->isChecked()))) accept();
}

}  // namespace vellumark::desktop
