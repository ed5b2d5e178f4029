#include "desktop/batch/cost_model_form.h"

#include <QLayout>

#include "core/base/units.h"
#include "core/batch/bench.h"
#include "core/batch/cost_model.h"
#include "desktop/kit/text.h"
#include "desktop/settings/explain.h"

namespace vellumark::desktop {
namespace {

QStringList MixCostOptions() {
  QStringList names;
  for (int option = 0; option < kMixOptions; ++option) names += Q(MixCostOptionName(option));
  return names;
}

}  // namespace

CostModelForm::CostModelForm(WindowList& windowList, QWidget* owner)
    : Dialog(windowList, owner, "CostModelForm", tr("Cost Model - This Batch")) {
  const int decimals = session.DecimalPlaces;
  const QString unit = Q(UnitName(session.UMI));
  Form form(*this);
  type_ = form.Radio("CostModelType",
                     {{"optIngredients", Q(CostModelTypeName(0))}, {"optNoIngredients", Q(CostModelTypeName(1))}});
  form.Row(tr("Cost model"), type_);
  form.Row(means_ = Explain(form, {}, "lblCostModelType"));
  form.Row(example_ = Explain(form, Q(CostModelExample(session)), "lblExample"));
  form.Row(tr("&Recycled ink"), mixCost_ = form.Combo("cmbMixCostOption", MixCostOptions()));
  form.Heading(tr("Additional costs"));
  fixedOfBatch_ = form.Number("txtFixedCostBatch", decimals, tr("0 or more"));
  form.Row(tr("&Fixed cost of the Batch"), fixedOfBatch_);
  fixedPerUnit_ = form.Number("txtFixedCostUnit", decimals, tr("0 or more"));
  form.Row(tr("Fixed cost per &unit"), {fixedPerUnit_, form.Hint(tr("per %1").arg(unit))});
  markup_ = form.Number("txtMarkupPercent", 1, tr("0 to 100"));
  form.Row(tr("&Markup of the ingredients"), {markup_, form.Hint("%")});
  form.Space();
  form.Row(future_ = form.Check("chkFutureBatches", tr("&Apply this Model to all future Batches")));
  form.Buttons({form.Button("cmdSave", tr("&Save")), form.Button("cmdCancel", tr("Cancel"))});
  layout()->setSizeConstraint(QLayout::SetFixedSize);
}

void CostModelForm::OnOpen(const Arguments& arguments) {
  record_ = arguments.Get<BatchRecord*>("Record");
  const CostModelEntry shown = ShowCostModel(session, record_->work.cost);
  type_->Choose(shown.CostModelType == 0 ? 0 : 1);
  mixCost_->setCurrentIndex(shown.MixCostOption);
  fixedOfBatch_->SetText(shown.FixedCostOfBatch);
  fixedPerUnit_->SetText(shown.FixedCostPerUnit);
  markup_->SetText(shown.MarkupPercent);
}

void CostModelForm::UpdateEnabled() {
  const bool ingredients = type_->Chosen() == 0;
  means_->setText(Q(CostModelTypeText(type_->Chosen())));
  example_->setVisible(!ingredients);
  mixCost_->setEnabled(ingredients);
}

void CostModelForm::cmdSave_Click() {
  const CostModelEntry typed{type_->Chosen(), mixCost_->currentIndex(), fixedOfBatch_->Text(), fixedPerUnit_->Text(),
                             markup_->Text()};
  const Result<BatchCostModel> model = ReadCostModel(session, typed, record_->work.cost);
  if (!Accepted(model)) return;
  if (Accepted(SetBatchCostModel(session, *record_, *model, future_->isChecked()))) accept();
}

}  // namespace vellumark::desktop
