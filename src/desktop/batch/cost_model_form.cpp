#include "desktop/batch/cost_model_form.h"

#include <QLayout>

#include "core/batch/bench.h"

namespace vellumark::desktop {

CostModelForm::CostModelForm(WindowList& windowList, QWidget* owner)
    : Dialog(windowList, owner, "CostModelForm", tr("Cost Model - This Batch")) {
  Form form(*this);
  model_.emplace(*this, form);
  form.Space();
  form.Row(future_ = form.Check("chkFutureBatches", tr("&Apply this Model to all future Batches")));
  form.Buttons({form.Button("cmdSave", tr("&Save")), form.Button("cmdCancel", tr("Cancel"))});
  layout()->setSizeConstraint(QLayout::SetFixedSize);
}

void CostModelForm::OnOpen(const Arguments& arguments) {
  record_ = arguments.Get<BatchRecord*>("Record");
  model_->Show(record_->work.cost);
}

void CostModelForm::cmdSave_Click() {
  const Result<BatchCostModel> model = ReadCostModel(session, model_->Read(), record_->work.cost);
  if (!Accepted(model)) return;
  if (Accepted(SetBatchCostModel(session, *record_, *model, future_->isChecked()))) accept();
}

}  // namespace vellumark::desktop
