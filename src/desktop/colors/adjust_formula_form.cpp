#include "desktop/colors/adjust_formula_form.h"

#include <array>

#include "desktop/kit/text.h"

namespace vellumark::desktop {
namespace {

// In the order of the choices.
constexpr std::array kAdjustments{FormulaAdjustment::Increase, FormulaAdjustment::Decrease, FormulaAdjustment::Add};
constexpr int kPercentDecimals = 2;
constexpr int kComboWidth = 320;

}  // namespace

AdjustFormulaForm::AdjustFormulaForm(WindowList& windowList, QWidget* owner)
    : Dialog(windowList, owner, "AdjustFormulaForm", tr("Adjust Ing. by Percent")) {
  Form form(*this);
  form.Row(tr("Master Formula"), name_ = form.Value("lblColorName", 1));
  adjustment_ = form.Radio("OptAdjust", {{"OptIncrease", tr("&Increase Basic Color")},
                                         {"OptDecrease", tr("&Decrease Basic Color")},
                                         {"OptAdd", tr("&Add Basic Color To Formula")}});
  form.Row(tr("Adjustment"), adjustment_);
  form.Row(tr("In&gredient"), ingredient_ = form.Combo("cmbBasics"));
  ingredient_->setMinimumWidth(kComboWidth);
  percent_ = form.Number("txtPercent", kPercentDecimals, tr("above 0 and below 100"), 6);
  form.Row(tr("&Percentage"), {percent_, form.Hint("%"), amount_ = form.Hint({}, "lblAmount")});
  modifier_ = form.Link("cmdDFM", tr("Adjust several formulas or ingredients at the same time ..."));
  modifier_->setToolTip(
      tr("A large range of formula modifications can be performed using this window.\n"
         "Use the Database Formula Modifier Window to adjust more than one\n"
         "ingredient at the same time."));
  form.Row(modifier_);
  form.Buttons({form.Button("cmdOK", tr("OK")), form.Button("cmdCancel", tr("Cancel"))});
  setMinimumWidth(560);
  connect(adjustment_, &RadioField::ChosenChanged, this, [this](int) { ShowChoices(); });
  connect(percent_, &TextField::Left, this, &AdjustFormulaForm::PercentLeft);
}

void AdjustFormulaForm::OnOpen(const Arguments& arguments) {
  work_ = arguments.Get<FormulaWork>("Work");
  name_->SetText(work_.Color_Name);
  ShowChoices();
}

void AdjustFormulaForm::UpdateEnabled() {
  QString amount;
  if (Adjustment() != FormulaAdjustment::Add && ingredient_->currentIndex() >= 0)
    for (const FormulaWork::Row& row : work_.grid)
      if (row.BC == ingredient_->Text()) amount = tr("of %1 parts").arg(Q(row.BQ));
  amount_->setText(amount);
  modifier_->setEnabled(windows.Knows("DBFormulaModifierForm"));
}

FormulaAdjustment AdjustFormulaForm::Adjustment() const {
  return kAdjustments.at(static_cast<std::size_t>(adjustment_->Chosen()));
}

void AdjustFormulaForm::ShowChoices() {
  ingredient_->SetItems(AdjustChoices(session, work_, Adjustment()));
  ingredient_->setCurrentIndex(ingredient_->count() > 0 ? 0 : -1);
  Changed();
}

void AdjustFormulaForm::PercentLeft(QWidget* to) {
  if (to == nullptr || !isAncestorOf(to) || percent_->Text().empty()) return;
  const Result<std::string> percent = EnterAdjustPercent(percent_->Text());
  if (percent) return percent_->SetText(*percent);
  // A command checks by itself, or needs no percentage.
  if (qobject_cast<QPushButton*>(to) == nullptr) ShowRefusal(percent.error());
}

void AdjustFormulaForm::cmdOK_Click() {
  if (!Accepted(AdjustFormula(session, work_, Adjustment(), ingredient_->Text(), percent_->Text()))) return;
  result.Set("Work", work_);
  accept();
}

void AdjustFormulaForm::cmdDFM_Click() {
  reject();
  windows.OpenForm("DBFormulaModifierForm");
}

}  // namespace vellumark::desktop
