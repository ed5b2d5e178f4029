#include "desktop/batch/cost_inf_form.h"

#include <QLayout>

#include "core/batch/cost.h"
#include "core/batch/cost_model.h"
#include "core/session/rights.h"
#include "core/session/settings.h"
#include "desktop/kit/text.h"

namespace vellumark::desktop {
namespace {

constexpr double kSubtotal = 1.2;
constexpr double kTotal = 1.4;
constexpr int kWidestAmount = 144;

}  // namespace

CostInfForm::CostInfForm(WindowList& windowList, QWidget* owner)
    : Dialog(windowList, owner, "CostInfForm", tr("Cost of Batch")) {
  Form form(*this);
  blocked_ = form.Label("lblPriceBlocked", tr("User Permissions - Price Blocked"));
  form.Wide(blocked_);
  AddLine(form, "lblCostOfBasics");
  AddLine(form, "lblCostOfMixes");
  AddLine(form, "lblIngredientCost", kSubtotal);
  form.Space();
  AddLine(form, "lblFixedCostOfBatch");
  AddLine(form, "lblFixedCostPerUnit");
  AddLine(form, "lblMarkup");
  AddLine(form, "lblAdditionalCost", kSubtotal);
  form.Space();
  AddLine(form, "lblTotalCost", kTotal);
  AddLine(form, "lblUnitCost");
  form.Space();
  form.Wide(print_ = form.Check("chkPrintCost", tr("&Print with Batch")));
  print_->DoNotTrack();
  model_ = form.Button("cmdCostModel", tr("Cost &Model"), Qt::Key_F4);
  model_->setToolTip(tr("Click to view/modify the Cost Model for this Batch"));
  form.Buttons({form.Button("cmdClose", tr("Close")), model_});
  layout()->setSizeConstraint(QLayout::SetFixedSize);
  print_->setChecked(GetSetting(session, setting::PrintCostOption));
}

void CostInfForm::AddLine(Form& form, const QString& name, double scale) {
  ValueField* amount = form.Value(name, scale);
  amount->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
  amount->setFixedWidth(kWidestAmount);
  QLabel* caption = form.Row(QString(), amount);
  // Captions carry names and "&" of their own, which are no mnemonics.
  caption->setBuddy(nullptr);
  caption->setTextFormat(Qt::PlainText);
  lines_.emplace(U8(name), Line{caption, amount});
}

void CostInfForm::OnOpen(const Arguments& arguments) {
  record_ = arguments.Get<BatchRecord*>("Record");
  ShowCosts();
}

void CostInfForm::ShowCosts() {
  const bool shown = RightsInForce(session).Edit_Costs > 0;
  blocked_->setVisible(!shown);
  for (auto& [name, line] : lines_) {
    line.caption->hide();
    line.amount->hide();
  }
  if (!shown) return;
  const auto show = [&](const char* name, const std::string& caption, const std::string& amount) {
    Line& line = lines_.at(name);
    line.caption->setText(Q(caption));
    line.amount->SetText(amount);
    line.amount->setAccessibleName(Q(caption));
    line.caption->show();
    line.amount->show();
  };
  const BatchWork& work = record_->work;
  for (const CostLine& line : CostDetail(session, work))
    show(line.name, line.caption, line.amount.Fixed(session.DecimalPlaces));
  show("lblUnitCost", UnitCostCaption(work), work.figures.UnitCost.Fixed(UnitCostDecimals(session, work)));
}

void CostInfForm::UpdateEnabled() {
  model_->setEnabled(Allows(session, CommandRight::Costs));
}

bool CostInfForm::MayClose() {
  if (const bool prints = print_->isChecked(); prints != GetSetting(session, setting::PrintCostOption))
    StoreSettings(session, {setting::PrintCostOption.To(prints)});
  return true;
}

void CostInfForm::cmdCostModel_Click() {
  if (windows.RunDialog("CostModelForm", {{"Record", record_}})) ShowCosts();
}

}  // namespace vellumark::desktop
