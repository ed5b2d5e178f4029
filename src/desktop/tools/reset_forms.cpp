#include "desktop/tools/reset_forms.h"

#include <QLayout>

#include "core/base/units.h"
#include "core/colors/amounts.h"
#include "core/colors/resets.h"
#include "desktop/kit/text.h"

namespace vellumark::desktop {
namespace {

constexpr int kMarkupDecimals = 2;
constexpr int kCostChars = 14;
constexpr int kNoteWidth = 440;

// The note of the window: whom the change reaches.
void Note(Form& form, const QString& text) {
  QLabel* note = form.Hint(text, "lblNote");
  note->setTextFormat(Qt::PlainText);
  note->setWordWrap(true);
  note->setMinimumWidth(kNoteWidth);
  form.Wide(note);
  form.Space();
}

QString CostNote(const Session& session, const QString& whose) {
  return QCoreApplication::translate("ResetForms",
                                     "NOTE - This changes the Purchase Cost of every %1 in the %2 Database.")
      .arg(whose, Q(session.CurrentDatabase));
}

QLabel* PerUnit(Form& form, const Session& session) {
  return form.Hint(QCoreApplication::translate("ResetForms", "per %1").arg(Q(UnitName(session.UMI))));
}

}  // namespace

// ---- Costs of Basic Colors

ResetBasicCostForm::ResetBasicCostForm(WindowList& windowList, QWidget* owner)
    : Dialog(windowList, owner, "ResetBasicCostForm", tr("Reset Basic Color Costs")) {
  Form form(*this);
  Note(form, CostNote(session, tr("Basic Color and Additive")));
  form.Row(chosen_ = form.Check("chkBasicCost", tr("&Purchase Cost")));
  value_ = form.Number("txtNewValue", session.DecimalPlaces, tr("0 to 99999"), kCostChars);
  form.Row(tr("&New value"), {value_, PerUnit(form, session)});
  form.Buttons({ok_ = form.Button("cmdOK", tr("OK")), form.Button("cmdCancel", tr("Cancel"))});
  layout()->setSizeConstraint(QLayout::SetFixedSize);
}

void ResetBasicCostForm::UpdateEnabled() {
  value_->setEnabled(chosen_->isChecked());
  ok_->setEnabled(chosen_->isChecked());
}

void ResetBasicCostForm::cmdOK_Click() {
  const auto wait = Wait(WaitKind::WaitingForm_NoCancel, tr("Reseting Basic Color Purchase Costs..."));
  if (Accepted(ResetBasicCosts(session, value_->Text()))) accept();
}

// ---- Costs of formulas

ResetMixCostForm::ResetMixCostForm(WindowList& windowList, QWidget* owner)
    : Dialog(windowList, owner, "ResetMixCostForm", tr("Reset Master Formula Costs")) {
  Form form(*this);
  Note(form, CostNote(session, tr("Master Formula")));
  way_ = form.Radio("optReset", {{"optNewValue", tr("&One value for all")},
                                 {"optBasicCost", tr("&Basic Cost of each, with a markup and a fixed amount")}});
  form.Row(way_);
  value_ = form.Number("txtNewValue", session.DecimalPlaces, tr("0 to 99999"), kCostChars);
  form.Row(tr("&New value"), {value_, PerUnit(form, session)});
  markup_ = form.Number("txtMarkup", kMarkupDecimals, tr("0 to 100"), kCostChars);
  form.Row(tr("&Markup"), {markup_, form.Hint(tr("percent of the Basic Cost"))});
  fixed_ = form.Number("txtFixed", session.DecimalPlaces, tr("0 to 99999"), kCostChars);
  form.Row(tr("&Fixed amount"), {fixed_, PerUnit(form, session)});
  form.Buttons({form.Button("cmdOK", tr("OK")), form.Button("cmdCancel", tr("Cancel"))});
  layout()->setSizeConstraint(QLayout::SetFixedSize);
}

void ResetMixCostForm::UpdateEnabled() {
  const bool one = way_->Chosen() == 0;
  value_->setEnabled(one);
  markup_->setEnabled(!one);
  fixed_->setEnabled(!one);
  for (NumberField* field : {value_, markup_, fixed_})
    if (!field->isEnabled()) field->ClearFault();
}

void ResetMixCostForm::cmdOK_Click() {
  const auto wait = Wait(WaitKind::WaitingForm_NoCancel, tr("Reseting Master Formula Purchase Costs..."));
  const Result<void> reset = way_->Chosen() == 0 ? ResetMixCosts(session, value_->Text())
                                                 : ResetMixCostsFromBasics(session, markup_->Text(), fixed_->Text());
  if (Accepted(reset)) accept();
}

// ---- Emissions

ResetEmissionsForm::ResetEmissionsForm(WindowList& windowList, QWidget* owner, ColorKind kind)
    : Dialog(windowList, owner, kind == ColorKind::Mix ? "ResetMixColor_VOC_HAP" : "ResetBasic_VOC_HAP_Form",
             kind == ColorKind::Mix ? tr("Reset Master Formula VOC and HAP") : tr("Reset Basic Color VOC and HAP")),
      kind_(kind) {
  const bool mix = kind == ColorKind::Mix;
  Form form(*this);
  Note(form, (mix ? tr("NOTE - This changes every Master Formula in the %1 Database.")
                  : tr("NOTE - This changes every Basic Color and Additive in the %1 Database."))
                 .arg(Q(session.CurrentDatabase)));
  const auto line = [&](const char* check, const QString& caption, const char* name, const char* figure,
                        NumberField*& field) {
    CheckField* box = form.Check(check, caption);
    field = form.Number(name, DecimalsOf(session, AmountKey::VOC), tr("0 to 99999"));
    field->setAccessibleName(tr("New value"));
    field->Means(figure);
    form.Row({box, field, PerUnit(form, session)});
    return box;
  };
  checkVOC_ = line(mix ? "chkMixVOC" : "chkBasicVOC", tr("&VOC"), "txtNewVOC", "VOC", voc_);
  checkHAP_ = line(mix ? "chkMixHAP" : "chkBasicHAP", tr("&HAP"), "txtNewHAP", "HAP", hap_);
  form.Buttons({ok_ = form.Button("cmdOK", tr("OK")), form.Button("cmdCancel", tr("Cancel"))});
  layout()->setSizeConstraint(QLayout::SetFixedSize);
}

void ResetEmissionsForm::UpdateEnabled() {
  voc_->setEnabled(checkVOC_->isChecked());
  hap_->setEnabled(checkHAP_->isChecked());
  ok_->setEnabled(checkVOC_->isChecked() || checkHAP_->isChecked());
}

void ResetEmissionsForm::cmdOK_Click() {
  EmissionReset reset;
  if (checkVOC_->isChecked()) reset.VOC = voc_->Text();
  if (checkHAP_->isChecked()) reset.HAP = hap_->Text();
  const auto wait = Wait(WaitKind::WaitingForm_NoCancel, tr("Reseting values..."));
  if (Accepted(ResetEmissions(session, kind_, reset))) accept();
}

}  // namespace vellumark::desktop
