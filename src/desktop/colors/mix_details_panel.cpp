#include "desktop/colors/mix_details_panel.h"

#include <utility>

#include "core/inventory/color_stock.h"
#include "desktop/kit/record_fields.h"
#include "desktop/kit/text.h"
#include "desktop/kit/window_list.h"

namespace vellumark::desktop {
MixDetailsPanel::MixDetailsPanel(FormHost& host, Form form, BoundFields& bound, SwatchView& ink)
    : QObject(&host.Self()), host_(host) {
  std::vector<Form> columns = form.Columns(2);
  BuildFigures(columns[0], bound);
  BuildRecord(columns[1], ink);
}

void MixDetailsPanel::BuildFigures(Form& form, BoundFields& bound) {
  basicCost_ = form.Hint({}, "lblDetailBasicCost");
  basicVOC_ = form.Hint({}, "lblDetailVOCBasics");
  basicHAP_ = form.Hint({}, "lblDetailHAPBasics");
  figures_ = new FigureFields(host_, form, bound, "Recycle", form.Check("chkRecycle", tr("Rec&yclable")),
                              {basicCost_, basicVOC_, basicHAP_});
  if (host_.windows.Knows("UnitCostAccuracyForm"))
    form.Row(form.Link("cmdUnitCostAccuracy", tr("Decimals of costs ..."),
                       [this] { host_.windows.RunDialog("UnitCostAccuracyForm"); }));
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

void MixDetailsPanel::Show(const MixColor& mix, bool keepTyped) {
  swatch_->Show(mix.book, keepTyped);
  const QString none = DateText(std::nullopt);
  const QString guide = Q(GuideCaption(mix.Color_Name, mix.book));
  guide_->setText(guide.isEmpty() ? none : guide);
  page_->setText(guide.isEmpty() ? none : Q(mix.book.Page));
  row_->setText(guide.isEmpty() ? none : QString::number(mix.book.Row));
  isLow_ = mix.key != 0 && vellumark::IsBelowReorder(host_.session, ColorKind::Mix, mix.Color_Name);
  entered_->setText(DateText(mix.Date_Entered));
  modified_->setText(DateText(mix.LastModified));
  produced_->setText(DateText(mix.LastProduced));
}

void MixDetailsPanel::Clear() {
  swatch_->Clear();
  for (QLabel* label : {guide_, page_, row_, entered_, modified_, produced_, basicCost_, basicVOC_, basicHAP_})
    label->clear();
  isLow_ = false;
}

void MixDetailsPanel::ShowTotals(const LiveTotals& totals) {
  const auto show = [](QLabel& label, const std::string& value) { label.setText(tr("ingredients: %1").arg(Q(value))); };
  show(*basicCost_, totals.BasicCost);
  show(*basicVOC_, totals.VOCBasics);
  show(*basicHAP_, totals.HAPBasics);
  swatch_->Estimate(totals.ink);
}

}  // namespace vellumark::desktop
