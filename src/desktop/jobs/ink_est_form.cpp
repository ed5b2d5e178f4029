#include "desktop/jobs/ink_est_form.h"

#include <QTabWidget>

#include "core/base/number.h"
#include "core/base/text.h"
#include "desktop/kit/icons.h"
#include "desktop/kit/print_sheet.h"
#include "desktop/kit/text.h"

namespace vellumark::desktop {
namespace {

QStringList Names(std::span<const std::string_view> names) {
  QStringList list;
  for (const std::string_view name : names) list << Q(name);
  return list;
}

}  // namespace

InkEstForm::InkEstForm(WindowList& windowList) : Window(windowList, "InkEstForm", tr("Ink Estimator")) {
  setWindowIcon(Icon("InkEst"));
  Form form(*this);
  unit_ = form.Radio("optEstUOM", {{"optInch", tr("in.")}, {"optMillimetre", tr("mm.")}}, Qt::Horizontal);
  unit_->DoNotTrack();
  unit_->Choose(EstimatorUnit(session) == LengthUnit::Inch ? 0 : 1);
  form.Row(tr("Unit of length"), {unit_, color_ = form.Hint({}, "lblColor")});
  TabSet tabs = form.Tabs("tabEstimator");
  BuildSheetfed(tabs.Page(tr("&Sheetfed"), "tabSheetfed"));
  BuildFlexo(tabs.Page(tr("&Flexo"), "tabFlexo"));
  form.ButtonsWithoutDefault(
      {designs_ = form.Button("cmdDesigns", tr("&Job Designs")), form.Button("cmdClose", tr("Close"))});
  connect(unit_, &RadioField::ChosenChanged, this, [this] {
    SetEstimatorUnit(session, Unit());
    ShowUnit();
  });
  ShowUnit();
}

void InkEstForm::AddSize(Form& form, AreaFields& fields, const QString& end) {
  fields.length = form.Number("txtLength" + end, 3);
  fields.width = form.Number("txtWidth" + end, 3);
  fields.sheets = form.Number("txtImpressions" + end, 0);
  QLabel* by = form.Hint(tr("&Width"));
  by->setBuddy(fields.width);
  fields.width->setAccessibleName(tr("Width"));
  form.Row(tr("&Length"), {fields.length, fields.lengthUnit = form.Hint({}), by, fields.width,
                           fields.widthUnit = form.Hint({})});
  form.Row(tr("&Number of sheets"), fields.sheets);
  Watch(fields.length, "Length");
  Watch(fields.width, "Width");
  Watch(fields.sheets, "Impressions");
}

void InkEstForm::AddResult(Form& form, AreaFields& fields, const QString& end) {
  form.Row(tr("Pounds required"), {fields.pounds = form.Value("lblPounds" + end), form.Hint(tr("Kilograms required")),
                                   fields.kilograms = form.Value("lblKilograms" + end)});
}

void InkEstForm::BuildSheetfed(Form form) {
  ink_ = form.Combo("cmbInkType", Names(kInkTypeNames));
  stock_ = form.Combo("cmbStockType", Names(kStockTypeNames));
  area_ = form.Combo("cmbAreaType", Names(kAreaTypeNames));
  form.Row(tr("&Type of ink"), ink_);
  form.Row(tr("Type of stoc&k"), stock_);
  form.Row(tr("Mileage"), {mileage_ = form.Label("lblMileage"), form.Button("cmdMileage", tr("&Edit Mileage"))});
  form.Row(form.Hint(Q(kMileageNote)));
  sheetfed_.percent = form.Number("cmbSFPercent", 0, tr("0 to 100"), 5);
  form.Row(tr("&Area type"), {area_, sheetfed_.percent, form.Hint(tr("% coverage"))});
  Watch(sheetfed_.percent, "Percent");
  AddSize(form, sheetfed_, "_SF");
  up_ = form.Combo("cmbImpUp_SF");
  for (int up = 1; up <= kMostUp; ++up) up_->addItem(QString::number(up));
  form.Row(tr("&Impressions up"), up_);
  AddResult(form, sheetfed_, "_SF");
  sheetfed_.print = form.Button("cmdPrint_SF", tr("&Print"));
  sheetfed_.transfer = form.Button("cmdTransfer_Sheetfed", tr("Add to &Design"));
  form.ButtonsWithoutDefault({sheetfed_.transfer, sheetfed_.print});
  for (ComboField* combo : {ink_, stock_, area_, up_}) combo->DoNotTrack();
}

void InkEstForm::BuildFlexo(Form form) {
  anilox_ = form.Combo("cmbAnilox", Names(kAniloxNames));
  anilox_->DoNotTrack();
  form.Row(tr("An&ilox"), anilox_);
  form.Row(tr("Factor"), {factor_ = form.Label("lblAnilox"), form.Button("cmdAnilox", tr("&Edit bcm"))});
  form.Row(form.Hint(Q(kAniloxNote)));
  flexo_.percent = form.Number("cmbFLPercent", 0, tr("0 to 100"), 5);
  form.Row(tr("C&overage per label"), {flexo_.percent, form.Hint(tr("%"))});
  Watch(flexo_.percent, "Percent");
  AddSize(form, flexo_, "_FL");
  AddResult(form, flexo_, "_FL");
  flexo_.print = form.Button("cmdPrint_FL", tr("&Print"));
  flexo_.transfer = form.Button("cmdTransfer_Flexo", tr("Add to &Design"));
  form.ButtonsWithoutDefault({flexo_.transfer, flexo_.print});
}

// What is typed is checked as it is left; an empty field waits.
void InkEstForm::Watch(NumberField* field, const char* name) {
  field->DoNotTrack();
  connect(field, &TextField::Left, this, [this, field, name](QWidget* to) {
    if (to != nullptr && to->objectName() == "cmdClose") return;
    if (Trim(field->Text()).empty()) return;
    if (auto checked = CheckAreaField(name, field->Text()); !checked) {
      Refusal refusal = checked.error();
      refusal.field = U8(field->objectName());
      ShowRefusal(refusal);
    }
  });
}

LengthUnit InkEstForm::Unit() const {
  return unit_->Chosen() == 0 ? LengthUnit::Inch : LengthUnit::Millimetre;
}

void InkEstForm::ShowUnit() {
  const QString unit = Q(LengthUnitName(Unit()));
  for (QLabel* label : {sheetfed_.lengthUnit, sheetfed_.widthUnit, flexo_.lengthUnit, flexo_.widthUnit})
    label->setText(unit);
  Changed();
}

void InkEstForm::OnOpen(const Arguments& arguments) {
  take_ = arguments.Has("Take") ? arguments.Get<TakeEstimate>("Take") : TakeEstimate();
  color_->setText(arguments.Has("Color") ? tr("for %1").arg(Q(arguments.Text("Color"))) : QString());
  if (arguments.Has("Length")) {
    unit_->Choose(arguments.Get<LengthUnit>("Unit") == LengthUnit::Inch ? 0 : 1);
    for (AreaFields* fields : {&sheetfed_, &flexo_}) {
      fields->length->SetText(arguments.Text("Length"));
      fields->width->SetText(arguments.Text("Width"));
      fields->sheets->SetText(arguments.Text("Sheets"));
      fields->percent->SetText(arguments.Text("Percent"));
    }
    if (!arguments.Text("Percent").empty()) area_->setCurrentIndex(static_cast<int>(AreaType::Coverage));
  }
  ShowUnit();
}

void InkEstForm::OnChanges(const std::vector<Change>&) {
  Changed();
}

SheetfedWork InkEstForm::Sheetfed() const {
  SheetfedWork work{
      {sheetfed_.length->Text(), sheetfed_.width->Text(), Unit(), sheetfed_.sheets->Text(), sheetfed_.percent->Text()},
      ink_->currentIndex(),
      stock_->currentIndex(),
      static_cast<AreaType>(area_->currentIndex()),
      up_->currentIndex() + 1};
  return work;
}

FlexoWork InkEstForm::Flexo() const {
  return {{flexo_.length->Text(), flexo_.width->Text(), Unit(), flexo_.sheets->Text(), flexo_.percent->Text()},
          anilox_->currentIndex()};
}

void InkEstForm::Show(AreaFields& fields, const Result<InkEstimate>& estimate) {
  fields.pounds->SetText(estimate ? estimate->PoundsText() : "");
  fields.kilograms->SetText(estimate ? estimate->KilogramsText() : "");
  fields.print->setEnabled(estimate.has_value() && CanPrint(windows));
  fields.transfer->setVisible(take_ != nullptr);
  fields.transfer->setEnabled(estimate.has_value());
}

void InkEstForm::UpdateEnabled() {
  designs_->setVisible(take_ == nullptr && windows.Knows("JobDesigns"));
  sheetfed_.percent->setEnabled(area_->currentIndex() == static_cast<int>(AreaType::Coverage));
  mileage_->setText(QString::number(Mileage(session, ink_->currentIndex(), stock_->currentIndex())));
  factor_->setText(Q(ShortestText(AniloxFactor(session, anilox_->currentIndex()))));
  Show(sheetfed_, EstimateSheetfed(session, Sheetfed()));
  Show(flexo_, EstimateFlexo(session, Flexo()));
}

void InkEstForm::cmdPrint_SF_Click() {
  const auto sheet = SheetfedSheet(session, Sheetfed());
  if (Accepted(sheet)) PrintSheet(windows, *sheet);
}

void InkEstForm::cmdPrint_FL_Click() {
  const auto sheet = FlexoSheet(session, Flexo());
  if (Accepted(sheet)) PrintSheet(windows, *sheet);
}

void InkEstForm::Transfer(const Result<InkEstimate>& estimate) {
  if (!Accepted(estimate)) return;
  if (take_ && take_(*estimate)) Leave();
}

void InkEstForm::cmdTransfer_Sheetfed_Click() {
  Transfer(EstimateSheetfed(session, Sheetfed()));
}

void InkEstForm::cmdTransfer_Flexo_Click() {
  Transfer(EstimateFlexo(session, Flexo()));
}

void InkEstForm::cmdMileage_Click() {
  windows.RunDialog("InkEstMileageForm", {{"Ink", ink_->currentIndex()}, {"Stock", stock_->currentIndex()}});
  Changed();
}

void InkEstForm::cmdAnilox_Click() {
  windows.RunDialog("InkEstAniloxValueForm");
  Changed();
}

// ---- Mileage

InkEstMileageForm::InkEstMileageForm(WindowList& windowList, QWidget* owner)
    : Dialog(windowList, owner, "InkEstMileageForm", tr("Mileage")) {
  Form form(*this);
  ink_ = form.Combo("cmbInkType", Names(kInkTypeNames));
  stock_ = form.Combo("cmbStockType", Names(kStockTypeNames));
  for (ComboField* combo : {ink_, stock_}) {
    combo->DoNotTrack();
    combo->OnChosen([this](int) { ShowMileage(); });
  }
  form.Row(tr("&Type of ink"), ink_);
  form.Row(tr("Type of stoc&k"), stock_);
  mileage_ = form.Number("txtMileage", 0);
  mileage_->Means("Mileage");
  form.Row(tr("&Mileage"), {mileage_, default_ = form.Hint({}, "lblDefault")});
  form.Wide(form.Hint(Q(kMileageNote)));
  form.Buttons({form.Button("cmdSave", tr("&Save")), form.Button("cmdDefault", tr("&Default")),
                form.Button("cmdCancel", tr("Cancel"))});
  ShowMileage();
}

void InkEstMileageForm::OnOpen(const Arguments& arguments) {
  if (arguments.Has("Ink")) {
    ink_->setCurrentIndex(static_cast<int>(arguments.Number("Ink")));
    stock_->setCurrentIndex(static_cast<int>(arguments.Number("Stock")));
  }
  ShowMileage();
}

void InkEstMileageForm::ShowMileage() {
  mileage_->SetText(std::to_string(Mileage(session, ink_->currentIndex(), stock_->currentIndex())));
  default_->setText(tr("default %1").arg(DefaultMileage(session, ink_->currentIndex(), stock_->currentIndex())));
  MarkClean();
}

void InkEstMileageForm::cmdDefault_Click() {
  mileage_->SetText(std::to_string(DefaultMileage(session, ink_->currentIndex(), stock_->currentIndex())));
}

void InkEstMileageForm::cmdSave_Click() {
  if (Accepted(SetMileage(session, ink_->currentIndex(), stock_->currentIndex(), mileage_->Text()))) accept();
}

// ---- Anilox

InkEstAniloxValueForm::InkEstAniloxValueForm(WindowList& windowList, QWidget* owner)
    : Dialog(windowList, owner, "InkEstAniloxValueForm", tr("Edit bcm")) {
  Form form(*this);
  form.Wide(form.Hint(Q(kAniloxNote)));
  for (int choice = 0; choice < kAniloxChoices; ++choice) {
    const auto place = static_cast<std::size_t>(choice);
    factors_[place] = form.Number(QString("Anilox%1").arg(choice), 3);
    factors_[place]->SetText(ShortestText(AniloxFactor(session, choice)));
    form.Row(Q(kAniloxNames[place]), factors_[place]);
  }
  form.Buttons({form.Button("cmdSave", tr("&Save")), form.Button("cmdCancel", tr("Cancel"))});
}

void InkEstAniloxValueForm::cmdSave_Click() {
  std::array<std::string, kAniloxChoices> typed;
  for (std::size_t i = 0; i < factors_.size(); ++i) typed[i] = factors_[i]->Text();
  if (Accepted(SetAniloxFactors(session, typed))) accept();
}

}  // namespace vellumark::desktop
