#include "desktop/batch/batch_settings_form.h"

#include "core/base/number.h"
#include "desktop/kit/tall_page.h"
#include "desktop/kit/text.h"
#include "desktop/settings/explain.h"

namespace vellumark::desktop {
namespace {

QString Numbered(const char* name, int number) {
  return QString("%1%2").arg(QLatin1String(name)).arg(number);
}

}  // namespace

BatchSettingsForm::BatchSettingsForm(WindowList& windowList, QWidget* owner)
    : Dialog(windowList, owner, "BatchSettingsForm", tr("Batch Settings")) {
  Form whole(*this);
  Form form = TallPart(*this, whole);
  TabSet tabs = form.Tabs("TabSettings");
  BuildGeneral(tabs.Page(tr("Batch Window"), "TabGeneral"));
  userFields_.BuildTexts(tabs.Page(tr("Text Fields"), "TabTexts"),
                         tr("Six texts of your own for each Batch, entered under More Data."));
  userFields_.BuildNumbers(tabs.Page(tr("Number Fields"), "TabNumbers"),
                           tr("Six numbers of your own for each Batch, entered under More Data."));
  BuildQuickInfo(tabs.Page(tr("Quick Info"), "TabQuickInfo"));
  BuildPrinting(tabs.Page(tr("Printing"), "TabPrinting"));
  whole.Buttons({form.Button("cmdSave", tr("&Save")), form.Button("cmdCancel", tr("Cancel"))});
  FitScreen(*this, {800, 640});
}

void BatchSettingsForm::BuildGeneral(Form form) {
  form.Heading(tr("Calculation"));
  form.Row(tr("&Unit of a new Batch"), unit_ = form.Combo("cmbUMF", UnitNames()));
  action_ = form.Radio("BatchActionButton", {{"optRecycle", tr("Recycle (F2)")}, {"optMix", tr("Mix (F3)")}});
  form.Row(tr("Enter after the Quantity"), action_);
  order_ = form.Radio("IngSortOrder", {{"optByAmount", tr("From the largest to the smallest amount")},
                                       {"optByUser", tr("In the user-defined order")}});
  form.Row(tr("Basic Colors are listed"), order_);
  overpour_ = form.Check("chkOverpour", tr("Allow Basic Color adjustments to correct for overpour"));
  form.Row(overpour_);
  graphic_ = form.Check("chkShowBatchGraphic", tr("Show the graphic when colors are recycled"));
  form.Row(graphic_);
  form.Heading(tr("Saving"));
  returns_ = form.Check("chkReturnToInventory", tr("Return the quantity made to inventory"));
  form.Row(returns_);
  lotNumber_ = form.Check("chkBatchDefaultLotNumberValue", tr("Use the Batch ID # for the Lot Number value"));
  form.Row(lotNumber_);
  complete_ = form.Check("chkBatchComplete", tr("Batches are marked as Complete"));
  form.Row(complete_);
  form.Row(Explain(form, tr("A Batch that is marked as Complete cannot be changed or deleted.")));
}

void BatchSettingsForm::BuildQuickInfo(Form form) {
  form.Wide(quickInfo_ = form.Check("chkShowQuickInfo", tr("Show on Screen")));
  printed_.emplace_back(form.Check("chkPrintQuickInfo", tr("Print / Export with Batch")),
                        &BatchPrintOptions::quickInfo);
  form.Wide(printed_.back().first);
  form.Wide(Explain(form, tr("Shown beside a color of the Batch while the mouse rests on its name.")));
  form.Space();
  for (int i = 0; i < kQuickInfoFields; ++i) {
    CheckField* field = form.Check(Numbered("chkQuickInfoField", i), tr(QuickInfoCaption(i)));
    quickFields_.at(static_cast<std::size_t>(i)) = field;
    form.Wide(field);
  }
}

void BatchSettingsForm::BuildPrinting(Form form) {
  const auto add = [&](const char* name, const QString& text, bool BatchPrintOptions::*option) {
    CheckField* check = form.Check(name, text);
    printed_.emplace_back(check, option);
    return check;
  };
  using Options = BatchPrintOptions;
  form.Wide(Explain(form, tr("Printed with a Batch, beside its ingredients.")));
  form.Wide(add("chkPrintBatchInfo", tr("Lot Number, Job Number, Short Note, Qty Used"), &Options::batchInfo));
  form.Wide(add("chkPrintBatchHistory", tr("Prior Batch, Prior Job Information"), &Options::history));
  form.Wide(add("chkPrintCost", tr("Cost, VOC && HAP"), &Options::cost));
  form.Wide(add("chkPrintExtraDetails", tr("Extra Batch Details"), &Options::extraDetails));
  form.Wide(add("chkPrintLAB", tr("L-a-b Delta Values"), &Options::lab));
  form.Wide(add("chkPrintIngInvConsumption", tr("Ingredient Inv. Lot Consumption (Lotted Inv. must be turned on)"),
                &Options::lotConsumption));
  const std::array<QString, 4> notes{tr("Batch Note"), tr("Other Batch Notes"), tr("Ingredient Notes"),
                                     tr("Master Formula Notes")};
  for (std::size_t i = 0; i < notes.size(); ++i)
    form.Wide(printedNotes_.at(i) = form.Check(Numbered("chkPrintNotes", static_cast<int>(i)), notes.at(i)));
  form.Heading(tr("Recycle List"));
  recListPercent_ = form.Number("txtRecListPercent", 0, tr("0 to 100"), 4);
  recListPercent_->setAccessibleName(tr("Percent that a color must be recyclable by"));
  form.Row({add("chkRecListPercent", tr("Only print colors greater than"), &Options::recListPercent), recListPercent_,
            form.Hint(tr("%  recyclable"))});
}

void BatchSettingsForm::OnOpen(const Arguments&) {
  const BatchOptions options = ReadBatchOptions(session);
  unit_->setCurrentIndex(options.UMF - 1);
  action_->Choose(options.mixByDefault ? 1 : 0);
  order_->Choose(options.userOrder ? 1 : 0);
  overpour_->setChecked(options.Overpour);
  graphic_->setChecked(options.ShowBatchGraphic);
  returns_->setChecked(options.ReturnToInventory);
  lotNumber_->setChecked(options.BatchDefaultLotNumberValue);
  complete_->setChecked(options.BatchComplete);
  userFields_.Show(options);
  quickInfo_->setChecked(options.ShowQuickInfo);
  for (std::size_t i = 0; i < quickFields_.size(); ++i) quickFields_[i]->setChecked(options.QuickInfoField.at(i));
  const BatchPrintOptions print = ReadBatchPrintOptions(session);
  for (const auto& [check, option] : printed_) check->setChecked(print.*option);
  for (std::size_t i = 0; i < printedNotes_.size(); ++i) printedNotes_.at(i)->setChecked(print.notes.at(i));
  recListPercent_->SetText(std::to_string(print.recListPercentValue));
}

void BatchSettingsForm::UpdateEnabled() {
  recListPercent_->setEnabled(FindField("chkRecListPercent")->Content().toBool());
  userFields_.UpdateEnabled();
}

BatchOptions BatchSettingsForm::Typed() const {
  BatchOptions options;
  options.UMF = unit_->currentIndex() + 1;
  options.mixByDefault = action_->Chosen() == 1;
  options.userOrder = order_->Chosen() == 1;
  options.Overpour = overpour_->isChecked();
  options.ShowBatchGraphic = graphic_->isChecked();
  options.ReturnToInventory = returns_->isChecked();
  options.BatchDefaultLotNumberValue = lotNumber_->isChecked();
  options.BatchComplete = complete_->isChecked();
  static_cast<UserFieldOptions&>(options) = userFields_.Typed();
  options.ShowQuickInfo = quickInfo_->isChecked();
  for (std::size_t i = 0; i < quickFields_.size(); ++i) options.QuickInfoField.at(i) = quickFields_[i]->isChecked();
  return options;
}

BatchPrintOptions BatchSettingsForm::TypedForPrint() const {
  BatchPrintOptions print;
  for (const auto& [check, option] : printed_) print.*option = check->isChecked();
  for (std::size_t i = 0; i < printedNotes_.size(); ++i) print.notes.at(i) = printedNotes_.at(i)->isChecked();
  const auto percent = ParseNumber(recListPercent_->Text());
  print.recListPercentValue = percent ? static_cast<int>(*percent) : -1;
  return print;
}

void BatchSettingsForm::cmdSave_Click() {
  if (Accepted(SaveBatchPrintOptions(session, TypedForPrint())) && Accepted(SaveBatchOptions(session, Typed())))
    accept();
}

}  // namespace vellumark::desktop
