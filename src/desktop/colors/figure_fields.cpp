#include "desktop/colors/figure_fields.h"

#include "core/base/units.h"
#include "core/colors/amounts.h"
#include "desktop/kit/text.h"

namespace vellumark::desktop {

FigureFields::FigureFields(FormHost& host, Form& form, BoundFields& bound, const char* flagColumn, CheckField* flag,
                           const Beside& beside)
    : QObject(&host.Self()), host_(host) {
  const auto figure = [&](const char* name, AmountKey key, const char* column, int chars = 10) {
    return bound.Bind(column, form.Number(name, DecimalsOf(host.session, key), tr("0 to 99999"), chars));
  };
  const auto row = [&](const QString& label, QWidget* field, QWidget* hint, QWidget* behind) {
    behind == nullptr ? form.Row(label, {field, hint}) : form.Row(label, {field, hint, behind});
  };
  form.Row(tr("Color &code"),
           bound.Bind("Color_Code", form.Text("txtColorCode", TextRule::Any(host.session.NameLength))));
  form.Row(bound.Bind(flagColumn, flag));
  form.Row(tr("&Reorder point"), {figure("txtReorder", AmountKey::Reorder, "Reorder"), UnitHint(form, "%1")});
  cost_ = figure("txtPurchaseCost", AmountKey::Currency, "PurchaseCost");
  const bool priceBlocked = host.session.Perm_Costs == 0;
  cost_->setVisible(!priceBlocked);
  if (beside.cost != nullptr) beside.cost->setVisible(!priceBlocked);
  QLabel* perUnit = priceBlocked ? form.Hint(tr("User Permissions - Price Blocked")) : UnitHint(form, tr("per %1"));
  perUnit->setObjectName("lblPriceBlocked");
  row(tr("&Purchase cost"), cost_, perUnit, beside.cost);
  row(tr("&VOC"), figure("txtVOC", AmountKey::VOC, "VOC"), UnitHint(form, tr("per %1")), beside.voc);
  row(tr("&HAP"), figure("txtHAP", AmountKey::HAP, "HAP"), UnitHint(form, tr("per %1")), beside.hap);
  Relabel();
}

QLabel* FigureFields::UnitHint(Form& form, const QString& words) {
  return unitHints_.emplace_back(form.Hint({}), words).first;
}

void FigureFields::Relabel() {
  for (const auto& [label, words] : unitHints_) label->setText(words.arg(Q(UnitName(host_.session.UMI))));
}

}  // namespace vellumark::desktop
