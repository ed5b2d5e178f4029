#include "desktop/settings/cost_model_panel.h"

#include <QCoreApplication>

#include "core/base/units.h"
#include "desktop/kit/text.h"
#include "desktop/settings/explain.h"

namespace vellumark::desktop {
namespace {

constexpr int kWidth = 440;  // of the emission models: room for the title

QString Tr(const char* text) {
  return QCoreApplication::translate("CostModelPanel", text);
}

std::vector<RadioField::Option> Options(const QString& name, const char* (*nameOf)(int), int count) {
  std::vector<RadioField::Option> options;
  for (int option = 0; option < count; ++option) options.push_back({name + QString::number(option), Q(nameOf(option))});
  return options;
}

}  // namespace

CostModelPanel::CostModelPanel(FormHost& host, Form& form) : host_(host) {
  form.Heading(Tr("Ingredients"));
  form.Row(Tr("Cost model"), type_ = form.Radio("CostModelType", Options("CostModelType", CostModelTypeName, 2)));
  form.Row(means_ = Explain(form, {}, "lblCostModelType"));
  // Room for the longer of the two texts, so that nothing moves under the pointer.
  means_->setMinimumHeight(2 * means_->fontMetrics().lineSpacing());
  means_->setAlignment(Qt::AlignTop);
  form.Row(example_ = Explain(form, Q(CostModelExample(host_.session)), "lblExample"));
  QStringList recycled;
  for (int option = 0; option < kMixOptions; ++option) recycled += Q(MixCostOptionName(option));
  form.Row(Tr("&Recycled ink"), recycled_ = form.Combo("cmbMixCostOption", recycled));
  form.Heading(Tr("Additional costs"));
  const QString unit = Q(UnitName(host_.session.UMI));
  ofBatch_ = Cost(form, "txtFixedCostBatch", Tr("&Fixed cost of a Batch"), {});
  perUnit_ = Cost(form, "txtFixedCostUnit", Tr("Fixed cost per &unit"), Tr("per %1").arg(unit));
  markup_ = form.Number("txtMarkupPercent", 1, Tr("0 to 100"));
  form.Row(Tr("&Markup on ingredients"), {markup_, form.Hint("%")});
}

NumberField* CostModelPanel::Cost(Form& form, const QString& name, const QString& label, const QString& unit) {
  NumberField* field = form.Number(name, host_.session.DecimalPlaces, Tr("0 or more"));
  if (unit.isEmpty()) {
    form.Row(label, field);
  } else {
    form.Row(label, {field, form.Hint(unit)});
  }
  return field;
}

void CostModelPanel::Show(const BatchCostModel& model) {
  const CostModelEntry shown = ShowCostModel(host_.session, model);
  type_->Choose(shown.CostModelType);
  recycled_->setCurrentIndex(shown.MixCostOption);
  ofBatch_->SetText(shown.FixedCostOfBatch);
  perUnit_->SetText(shown.FixedCostPerUnit);
  markup_->SetText(shown.MarkupPercent);
}

CostModelEntry CostModelPanel::Read() const {
  return {type_->Chosen(), recycled_->currentIndex(), ofBatch_->Text(), perUnit_->Text(), markup_->Text()};
}

void CostModelPanel::UpdateEnabled() {
  means_->setText(Q(CostModelTypeText(type_->Chosen())));
  // The line keeps its place.
  example_->setText(type_->Chosen() == 0 ? QString(" ") : Q(CostModelExample(host_.session)));
  recycled_->setEnabled(type_->Chosen() == 0);
}

EmissionModelPanel::EmissionModelPanel(Form& form) {
  form.Heading(Tr("VOC of recycled ink"));
  form.Wide(voc_ = form.Radio("OptVOCModel", Options("OptVOCModel", MixVOCModelName, kMixOptions)));
  form.Heading(Tr("HAP of recycled ink"));
  form.Wide(hap_ = form.Radio("OptHAPModel", Options("OptHAPModel", MixHAPModelName, kMixOptions)));
  voc_->setMinimumWidth(kWidth);
  voc_->setAccessibleName(Tr("VOC of recycled ink"));
  hap_->setAccessibleName(Tr("HAP of recycled ink"));
}

void EmissionModelPanel::Show(const BatchCostModel& model) {
  voc_->Choose(model.MixVOCModelType);
  hap_->Choose(model.MixHAPModelType);
}

}  // namespace vellumark::desktop
