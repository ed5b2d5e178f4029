#include "desktop/inventory/reset_values_form.h"

#include <QLayout>

#include "core/base/units.h"
#include "desktop/kit/text.h"
#include "desktop/settings/explain.h"

namespace vellumark::desktop {

ResetValuesForm::ResetValuesForm(WindowList& windowList, QWidget* owner, const QString& name, const Words& words)
    : Dialog(windowList, owner, name, words.title), reset_(words.reset) {
  Form form(*this);
  form.Heading(words.figure.arg(Q(session.CurrentDatabase)));
  const auto row = [&](const char* check, const QString& text, const char* value, CheckField*& checkField,
                       NumberField*& valueField) {
    checkField = form.Check(check, text);
    valueField = form.Number(value, 3, tr("0 to 99999"));
    valueField->setAccessibleName(text);
    valueField->SetText("0");
    checkField->setMinimumWidth(208);
    form.Row({checkField, valueField, form.Hint(Q(UnitName(session.UMI)))});
  };
  row("chkBasics", tr("Set all &Basic Colors to"), words.basicsField, basics_, basicsValue_);
  row("chkMixes", tr("Set all &Master Formulas to"), words.mixesField, mixes_, mixesValue_);
  if (!words.note.isEmpty()) {
    form.Space();
    form.Wide(Explain(form, words.note, "lblNote"));
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
  const auto done = reset_(session, values);
  if (Accepted(done) && *done) accept();
}

ResetInvForm::ResetInvForm(WindowList& windowList, QWidget* owner)
    : ResetValuesForm(windowList, owner, "ResetInvForm",
                      {tr("Reset Inventory"), tr("Inventory of the %1 Database"),
                       windowList.session.InvLotTracking == 1 ? Q(kResetInvNote) : QString(), "BasicValue", "MixValue",
                       [](Session& open, const ResetValues& values) { return ResetInventories(open, values); }}) {}

ResetReorderForm::ResetReorderForm(WindowList& windowList, QWidget* owner)
    : ResetValuesForm(windowList, owner, "ResetReorderForm",
                      {tr("Reset Reorder Points"),
                       tr("Reorder points of the %1 Database"),
                       {},
                       "txtBasicsNewValue",
                       "txtMixesNewValue",
                       [](Session& open, const ResetValues& values) { return ResetReorderPoints(open, values); }}) {}

}  // namespace vellumark::desktop
