#include "desktop/inventory/reset_values_form.h"

#include <QLayout>

#include "core/base/units.h"
#include "desktop/kit/text.h"
#include "desktop/settings/explain.h"

namespace vellumark::desktop {

ResetValuesForm::ResetValuesForm(WindowList& windowList, QWidget* owner, ResetFigure figure)
    : Dialog(windowList, owner, figure == ResetFigure::Inventory ? "ResetInvForm" : "ResetReorderForm",
             figure == ResetFigure::Inventory ? tr("Reset Inventory") : tr("Reset Reorder Points")),
      figure_(figure) {
  const bool stock = figure == ResetFigure::Inventory;
  Form form(*this);
  form.Heading((stock ? tr("Inventory of the %1 Database") : tr("Reorder points of the %1 Database"))
                   .arg(Q(session.CurrentDatabase)));
  const auto row = [&](const char* check, const QString& text, const char* value, CheckField*& checkField,
                       NumberField*& valueField) {
    checkField = form.Check(check, text);
    valueField = form.Number(value, 3, tr("0 to 99999"));
    valueField->setAccessibleName(text);
    valueField->SetText("0");
    checkField->setMinimumWidth(208);
    form.Row({checkField, valueField, form.Hint(Q(UnitName(session.UMI)))});
  };
  row("chkBasics", tr("Set all &Basic Colors to"), stock ? "BasicValue" : "txtBasicsNewValue", basics_, basicsValue_);
  row("chkMixes", tr("Set all &Master Formulas to"), stock ? "MixValue" : "txtMixesNewValue", mixes_, mixesValue_);
  if (stock && session.InvLotTracking == 1) {
    form.Space();
    form.Wide(Explain(form, Q(kResetInvNote), "lblNote"));
  }
  form.Buttons({save_ = form.Button("cmdSave", tr("&Reset")), form.Button("cmdCancel", tr("Cancel"))});
  layout()->setSizeConstraint(QLayout::SetFixedSize);
}

void ResetValuesForm::UpdateEnabled() {
  basicsValue_->setEnabled(basics_->isChecked());
  mixesValue_->setEnabled(mixes_->isChecked());
  save_->setEnabled(basics_->isChecked() || mixes_->isChecked());
}

void ResetValuesForm::cmdSave_Click() {
  ResetValues values;
  if (basics_->isChecked()) values.basics = basicsValue_->Text();
  if (mixes_->isChecked()) values.mixes = mixesValue_->Text();
  const auto wait = Wait(WaitKind::WaitForm, windowTitle());
  const auto done = figure_ == ResetFigure::Inventory ? ResetInventories(session, values) : ResetReorderPoints(session, values);
  if (Accepted(done) && *done) accept();
}

}  // namespace vellumark::desktop
