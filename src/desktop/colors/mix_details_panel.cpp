#include "desktop/colors/mix_details_panel.h"

#include <utility>

#include "core/base/units.h"
#include "core/colors/amounts.h"
#include "core/inventory/color_stock.h"
#include "desktop/kit/amount_field.h"
#include "desktop/kit/record_fields.h"
#include "desktop/kit/text.h"
#include "desktop/kit/window_list.h"

namespace vellumark::desktop {
namespace {

constexpr int kCostChars = 9;

}  // namespace

MixDetailsPanel::MixDetailsPanel(FormHost& host, Form form, SwatchView& ink, std::function<bool()> shown)
    : QObject(&host.Self()), host_(host) {
  std::vector<Form> columns = form.Columns(2);
  BuildFigures(columns[0], shown);
  BuildRecord(columns[1], ink);
}

void MixDetailsPanel::BuildFigures(Form& form, const std::function<bool()>& shown) {
  const auto figure = [&](const char* name, AmountKey key, const char* column, int chars) {
    NumberField* field = form.Number(name, DecimalsOf(host_.session, key), tr("0 to 99999"), chars);
    MakeAmountField(host_, *field, key, column, shown);
    return field;
  };
  const auto hint = [&](const QString& words) {
    QLabel* label = form.Hint({});
    unitHints_.emplace_back(label, words);
    return label;
  };
  form.Row(tr("Color &code"), code_ = form.Text("txtColorCode", TextRule::Any(host_.session.NameLength)));
  code_->Means("Color_Code");
  form.Row(recycle_ = form.Check("chkRecycle", tr("May be rec&ycled")));
  recycle_->Means("Recycle");
  reorder_ = figure("txtReorder", AmountKey::Reorder, "Reorder", 10);
  form.Row(tr("&Reorder point"), {reorder_, hint("%1")});
  cost_ = figure("txtPurchaseCost", AmountKey::Currency, "PurchaseCost", kCostChars);
  const bool priceBlocked = host_.session.Perm_Costs == 0;
  cost_->setVisible(!priceBlocked);
  QLabel* behindCost = priceBlocked ? form.Hint(tr("User Permissions - Price Blocked")) : hint(tr("per %1"));
  behindCost->setObjectName("lblPriceBlocked");
  basicCost_ = form.Hint({}, "lblDetailBasicCost");
  basicCost_->setVisible(!priceBlocked);
  form.Row(tr("&Purchase cost"), {cost_, behindCost, basicCost_});
  voc_ = figure("txtVOC", AmountKey::VOC, "VOC", 10);
  form.Row(tr("&VOC"), {voc_, hint(tr("per %1")), basicVOC_ = form.Hint({}, "lblDetailVOCBasics")});
  hap_ = figure("txtHAP", AmountKey::HAP, "HAP", 10);
  form.Row(tr("&HAP"), {hap_, hint(tr("per %1")), basicHAP_ = form.Hint({}, "lblDetailHAPBasics")});
  if (host_.windows.Knows("UnitCostAccuracyForm"))
    form.Row(form.Link("cmdUnitCostAccuracy", tr("Decimals of costs ..."),
                       [this] { host_.windows.RunDialog("UnitCostAccuracyForm"); }));
  Relabel();
}

void MixDetailsPanel::Relabel() {
  for (const auto& [label, words] : unitHints_) label->setText(words.arg(Q(UnitName(host_.session.UMI))));
}

void MixDetailsPanel::BuildRecord(Form& form, SwatchView& ink) {
  swatch_ = new SwatchFields(host_, form, ink);
  form.Row(tr("Color guide"), guide_ = form.Label("lblGuide"));
  form.Row(tr("Page"), page_ = form.Label("lblPageCaption"));
  form.Row(tr("Row"), row_ = form.Label("lblRowCaption"));
  form.Row(tr("Entered"), entered_ = form.Label("lblDateEntered"));
  form.Row(tr("Last modified"), modified_ = form.Label("lblLastModified"));
  form.Row(tr("Last produced"), produced_ = form.Label("lblLastProduced"));
}

void MixDetailsPanel::Show(const FormulaWork& work, const MixColor& mix, bool keepTyped) {
  Put(*code_, work.Color_Code, keepTyped);
  Put(*recycle_, work.Recycle, keepTyped);
  Put(*reorder_, work.Reorder, keepTyped);
  Put(*cost_, work.PurchaseCost, keepTyped);
  Put(*voc_, work.VOC, keepTyped);
  Put(*hap_, work.HAP, keepTyped);
  swatch_->Show(mix.book, keepTyped);
  const QString none = DateText(std::nullopt);
  const QString guide = Q(GuideCaption(mix.Color_Name, mix.book));
  guide_->setText(guide.isEmpty() ? none : guide);
  page_->setText(guide.isEmpty() ? none : Q(mix.book.Page));
  row_->setText(guide.isEmpty() ? none : QString::number(mix.book.Row));
  isLow_ = mix.rowId != 0 && vellumark::IsBelowReorder(host_.session, ColorKind::Mix, mix.Color_Name);
  entered_->setText(DateText(mix.Date_Entered));
  modified_->setText(DateText(mix.LastModified));
  produced_->setText(DateText(mix.LastProduced));
}

void MixDetailsPanel::Clear() {
  for (TextField* field : {static_cast<TextField*>(reorder_), static_cast<TextField*>(cost_),
                           static_cast<TextField*>(voc_), static_cast<TextField*>(hap_), code_})
    Put(*field, "", false);
  Put(*recycle_, false, false);
  swatch_->Clear();
  for (QLabel* label : {guide_, page_, row_, entered_, modified_, produced_, basicCost_, basicVOC_, basicHAP_})
    label->clear();
  isLow_ = false;
}

void MixDetailsPanel::ReadInto(FormulaWork& work) const {
  work.Color_Code = code_->Text();
  work.Recycle = recycle_->isChecked();
  work.Reorder = reorder_->Text();
  work.PurchaseCost = cost_->Text();
  work.VOC = voc_->Text();
  work.HAP = hap_->Text();
}

void MixDetailsPanel::ShowTotals(const LiveTotals& totals) {
  const auto show = [](QLabel& label, const std::string& value) { label.setText(tr("ingredients: %1").arg(Q(value))); };
  show(*basicCost_, totals.BasicCost);
  show(*basicVOC_, totals.VOCBasics);
  show(*basicHAP_, totals.HAPBasics);
}

}  // namespace vellumark::desktop
