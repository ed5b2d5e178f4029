#include "desktop/batch/figures_panel.h"

#include "core/base/number.h"
#include "core/batch/cost.h"
#include "desktop/kit/text.h"
#include "desktop/kit/window_list.h"

namespace vellumark::desktop {

FiguresPanel::FiguresPanel(FormHost& host) : host_(host) {
  setObjectName("FiguresPanel");
  Form form(host, *this);
  blocked_ = form.Hint(tr("User Permissions - Price Blocked"), "lblPriceBlocked");
  form.Wide(blocked_);
  std::vector<Form> columns = form.Columns(2);
  basics_ = AddFigure(columns[0], "lblCostOfBasics", tr("Cost of Basics"), 1);
  mixes_ = AddFigure(columns[0], "lblCostOfMixes", tr("Cost of Mixes"), 1);
  markup_ = AddFigure(columns[0], "lblMarkup", tr("Markup"), 1);
  total_ = AddFigure(columns[0], "lblCostOfBatch", tr("Cost of Batch"), 1.4);
  unitCost_ = AddFigure(columns[1], "lblUnitCostOfBatch", tr("Cost per unit"), 1);
  voc_ = AddFigure(columns[1], "lblVOC", tr("VOC"), 1);
  hap_ = AddFigure(columns[1], "lblHAP", tr("HAP"), 1);
  costs_ = form.Button("cmdCostInf", tr("Costs ..."), [this] { Q_EMIT CostsClicked(); });
  emissions_ = form.Button("cmdVOC_HAP", tr("VOC / HAP ..."), [this] { Q_EMIT EmissionsClicked(); });
  form.Row({costs_, emissions_});
}

FiguresPanel::Figure FiguresPanel::AddFigure(Form& form, const char* name, const QString& caption, double scale) {
  Figure figure;
  figure.value = form.Value(name, scale);
  figure.caption = form.Row(caption, figure.value);
  return figure;
}

void FiguresPanel::Show(const BatchRecord& record) {
  const Session& session = host_.session;
  const BatchFigures& figures = record.work.figures;
  const bool rows = !record.work.Rows.empty();
  const bool prices = session.Perm_Costs != 0;
  blocked_->setVisible(!prices);
  const auto put = [&](const Figure& figure, const std::string& text, bool visible = true) {
    figure.value->SetText(rows ? text : std::string());
    figure.caption->setVisible(visible);
    figure.value->setVisible(visible);
  };
  const auto money = [&](Currency amount) { return amount.Fixed(session.DecimalPlaces); };
  put(basics_, money(figures.CostOfBasics), prices);
  put(mixes_, money(figures.CostOfMixes), prices);
  put(markup_, money(figures.Markup), prices);
  put(total_, money(figures.TotalCost), prices);
  put(unitCost_, figures.UnitCost.Fixed(UnitCostDecimals(session, record.work)), prices);
  unitCost_.caption->setText(Q(UnitCostCaption(record.work)));
  put(voc_, Fixed(figures.VOC, 3));
  put(hap_, Fixed(figures.HAP, 3));
  costs_->setVisible(prices);
  costs_->setEnabled(rows && host_.windows.Knows("CostInfForm"));
  emissions_->setEnabled(rows && host_.windows.Knows("VOC_HAP_CalcForm"));
}

}  // namespace vellumark::desktop
