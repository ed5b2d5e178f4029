#include "desktop/batch/voc_hap_calc_form.h"

#include <QLayout>

#include "core/batch/bench.h"
#include "core/batch/cost_model.h"
#include "core/session/rights.h"
#include "desktop/kit/text.h"

namespace vellumark::desktop {
namespace {

std::vector<RadioField::Option> Options(const QString& prefix, const char* (*nameOf)(int)) {
  std::vector<RadioField::Option> options;
  for (int type = 0; type < kMixOptions; ++type) options.push_back({prefix + QString::number(type), Q(nameOf(type))});
  return options;
}

}  // namespace

VOC_HAP_CalcForm::VOC_HAP_CalcForm(WindowList& windowList, QWidget* owner)
    : Dialog(windowList, owner, "VOC_HAP_CalcForm", tr("VOC _ HAP Calculation Model - This Batch")) {
  Form form(*this);
  form.Heading(tr("Recycled ink counts as"));
  form.Row(tr("VOC"), voc_ = form.Radio("MixVOCModelType", Options("optVOC", MixVOCModelName)));
  form.Space();
  form.Row(tr("HAP"), hap_ = form.Radio("MixHAPModelType", Options("optHAP", MixHAPModelName)));
  form.Space();
  form.Row(future_ = form.Check("chkFutureBatches", tr("&Apply this Model to all future Batches")));
  form.Buttons({save_ = form.Button("cmdSave", tr("&Save")), form.Button("cmdCancel", tr("Cancel"))});
  layout()->setSizeConstraint(QLayout::SetFixedSize);
}

void VOC_HAP_CalcForm::OnOpen(const Arguments& arguments) {
  record_ = arguments.Get<BatchRecord*>("Record");
  voc_->Choose(record_->work.cost.MixVOCModelType);
  hap_->Choose(record_->work.cost.MixHAPModelType);
}

void VOC_HAP_CalcForm::UpdateEnabled() {
  save_->setEnabled(Allows(session, CommandRight::VOCHAP));
}

void VOC_HAP_CalcForm::cmdSave_Click() {
  BatchCostModel model = record_->work.cost;
  model.MixVOCModelType = voc_->Chosen();
  model.MixHAPModelType = hap_->Chosen();
  if (Accepted(SetBatchEmissionModel(session, *record_, model, future_->isChecked()))) accept();
}

}  // namespace vellumark::desktop
