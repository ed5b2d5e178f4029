#include "desktop/settings/unit_cost_accuracy_form.h"

#include <QLayout>
#include <QLocale>

#include "core/base/number.h"
#include "core/colors/resets.h"
#include "desktop/kit/text.h"
#include "desktop/settings/explain.h"

namespace vellumark::desktop {
namespace {

constexpr double kExampleCost = 12.34567;
constexpr int kExampleDecimals = 5;

QString Shown(const std::string& number) {
  return Q(number).replace('.', QLocale().decimalPoint());
}

}  // namespace

UnitCostAccuracyForm::UnitCostAccuracyForm(WindowList& windowList, QWidget* owner)
    : Dialog(windowList, owner, "UnitCostAccuracyForm", tr("Unit Cost Accuracy")) {
  Form form(*this);
  form.Row(tr("&Decimal places"), places_ = form.Combo("cmbDecimalPlaces", {"2", "3", "4"}));
  form.Row(
      Explain(form, tr("The standard Unit Cost accuracy is 2 decimal places, the maximum decimal place accuracy is "
                       "4.")));
  form.Row(tr("Example"),
           {form.Hint(tr("A unit cost of %1 is kept as").arg(Shown(Fixed(kExampleCost, kExampleDecimals)))),
            example_ = form.Value("lblExample")});
  form.Buttons({form.Button("cmdOK", tr("OK")), form.Button("cmdCancel", tr("Cancel"))});
  layout()->setSizeConstraint(QLayout::SetFixedSize);
  ShowValueInForce();
}

int UnitCostAccuracyForm::Chosen() const {
  return places_->currentText().toInt();
}

void UnitCostAccuracyForm::ShowValueInForce() {
  places_->setCurrentIndex(places_->findText(QString::number(session.DecimalPlaces)));
}

void UnitCostAccuracyForm::UpdateEnabled() {
  example_->SetText(U8(Shown(Fixed(kExampleCost, Chosen()))));
}

void UnitCostAccuracyForm::cmdOK_Click() {
  const Result<bool> changed = ChangeDecimalPlaces(session, Chosen());
  if (!Accepted(changed)) return;
  if (*changed) return accept();
  // Declined: the value in force is shown again, for another choice or none.
  ShowValueInForce();
  FocusField("cmbDecimalPlaces");
}

}  // namespace vellumark::desktop
