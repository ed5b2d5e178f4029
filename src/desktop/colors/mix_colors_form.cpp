#include "desktop/colors/mix_colors_form.h"

#include <QTabWidget>

#include "core/base/text.h"
#include "core/colors/guide_formulas.h"
#include "core/colors/rollup.h"
#include "desktop/colors/additive_set_panel.h"
#include "desktop/colors/ingredients_panel.h"
#include "desktop/colors/measurements_panel.h"
#include "desktop/colors/mix_details_panel.h"
#include "desktop/colors/mix_notes_panel.h"
#include "desktop/colors/new_additive_set_panel.h"
#include "desktop/inventory/inventory_panel.h"
#include "desktop/kit/discard.h"
#include "desktop/kit/icons.h"
#include "desktop/kit/look.h"
#include "desktop/kit/record_fields.h"
#include "desktop/kit/text.h"

namespace vellumark::desktop {
namespace {

QHBoxLayout* Across(QWidget* box) {
  auto* across = new QHBoxLayout(box);
  across->setContentsMargins(0, 0, 0, 0);
  across->setSpacing(space::kUnit);
  return across;
}

}  // namespace

MixColorsForm::MixColorsForm(WindowList& windowList)
    : ColorForm(windowList, "MixColorsForm", tr("Master Formulas"), ColorKind::Mix,
                tr("Master Formula Window - Inventory Low")),
      bound_(MixFields(), ColorFigures(*this, [this] { return work_.has_value(); })) {
  setWindowIcon(Icon("Color"));
  Form form(*this);
  BuildHead(form);
  TabSet tabs = form.Tabs("TabMix");
  tabs_ = tabs.Widget();
  BuildFormulaPage(tabs.Page(tr("Formula"), kFormulaPage));
  details_ = new MixDetailsPanel(*this, tabs.Page(tr("Details"), kDetailsPage), bound_, *ink_);
  inventory_ = new InventoryPanel(*this, tabs);
  measurements_ = new MeasurementsPanel(*this, tabs, ColorKind::Mix);
  notes_ = new MixNotesPanel(*this, tabs, bound_, [this] {
    std::vector<std::string> names;
    for (const FormulaWork::Row& row : ReadFields().grid)
      if (!row.BC.empty()) names.push_back(row.BC);
    for (const std::string& name : sets_->Ingredients()) names.push_back(name);
    return names;
  });
  BuildButtons(form);
  Listen();
  Clear();
}

void MixColorsForm::BuildHead(Form& form) {
  BuildName(form);
  hasNotes_ = form.Hint(tr("(Formula Has Notes)"), "lblHasNotes");
  hasNotes_->hide();
  label_ = form.Button("cmdPrintLabel", tr("Label"), Qt::CTRL | Qt::Key_L);
  form.Row(tr("&Name"), {name_, ink_, state_, low_, hasNotes_, multiple_, label_});
}

void MixColorsForm::BuildFormulaPage(Form page) {
  auto* body = new QWidget;
  page.Wide(body, 1);
  QHBoxLayout* sides = Across(body);
  sides->setSpacing(2 * space::kGap);
  auto* column = new QVBoxLayout;
  column->setSpacing(0);
  sides->addLayout(column, 1);
  auto* tools = new QWidget;
  auto* left = new QWidget;
  auto* right = new QWidget;
  left->setProperty("flush", true);
  right->setProperty("flush", true);
  column->addWidget(tools);
  column->addSpacing(space::kUnit);
  column->addWidget(left, 1);
  sides->addWidget(right);

  QHBoxLayout* across = Across(tools);
  allowEditing_ = page.Check("AllowEditing", tr("&Edit Formula"));
  allowEditing_->DoNotTrack();
  clearBatch_ = page.Hint(tr("Clear Batch to allow editing"), "lblClearBatch");
  adjust_ = page.Button("cmdAutoAdjust", tr("Adjust Ing. by Percent"), Qt::Key_F9);
  modified_ = page.Button("cmdModified", tr("Modified Formula"));
  print_ = page.Button("cmdPrint", tr("Print"));
  across->addWidget(allowEditing_);
  across->addWidget(clearBatch_);
  across->addStretch(1);
  across->addWidget(adjust_);
  across->addWidget(modified_);
  across->addWidget(print_);
  clearBatch_->hide();
  ingredients_ = new IngredientsPanel(*this, Form(*this, *left));
  sets_ = new AdditiveSetPanel(*this, Form(*this, *right));
}

void MixColorsForm::BuildButtons(Form& form) {
  save_ = form.Button("cmdSave", tr("&Save"));
  cancel_ = form.Button("cmdCancel", tr("Cancel"));
  rename_ = form.Button("cmdRename", tr("Rename"), Qt::Key_F6);
  whereUsed_ = form.Button("cmdWhereUsed", tr("Where used"), Qt::Key_F7);
  duplicate_ = form.Button("cmdDuplicate", tr("Duplicate"), Qt::Key_F8);
  delete_ = form.Button("cmdDelete", tr("Delete"));
  form.Buttons({save_, cancel_, form.Button("cmdPrevious", tr("Previous"), Qt::Key_PageUp),
                form.Button("cmdNext", tr("Next"), Qt::Key_PageDown), FindButton(form), rename_, whereUsed_, duplicate_,
                delete_});
}

void MixColorsForm::Listen() {
  ColorForm::Listen();
  connect(allowEditing_, &QCheckBox::clicked, this, &MixColorsForm::AllowEditingClicked);
  connect(ingredients_, &IngredientsPanel::Changed, this, [this] { details_->ShowTotals(ingredients_->Totals()); });
  connect(sets_, &AdditiveSetPanel::Picked, this, &MixColorsForm::SetPicked);
  connect(&sets_->New(), &NewAdditiveSetPanel::SaveClicked, this, &MixColorsForm::SaveNewSet);
  connect(&sets_->New(), &NewAdditiveSetPanel::CancelClicked, this, [this] {
    sets_->New().Empty();
    sets_->ShowChosen();
    FocusSets();
  });
  connect(tabs_, &QTabWidget::currentChanged, this, [this] {
    if (work_ && work_->key == 0)
      inventory_->TakeCosts(TypedText(ReadFields().typed, "PurchaseCost"), ingredients_->Totals().BasicCost);
  });
  OnActivation(*this, [this] { Activated(); });
}

// ---- State

bool MixColorsForm::RecipeChanged() const {
  return ingredients_->IsChanged() || sets_->IsChanged();
}

bool MixColorsForm::InEdit() const {
  return work_ && (work_->key == 0 || IsDirty() || sets_->IsChanged() || PanelsChanged());
}

std::optional<MixColorsForm::Shown> MixColorsForm::OnScreen() const {
  if (!work_) return std::nullopt;
  return Shown{work_->Color_Name, work_->key != 0};
}

bool MixColorsForm::MayEdit() const {
  return session.Perm_MasterFormula == 1 && !batchUses_;
}

void MixColorsForm::UpdateEnabled() {
  const bool stored = work_ && work_->key != 0;
  EnableCommands(details_->IsBelowReorder());
  allowEditing_->setEnabled(MayEdit());
  clearBatch_->setVisible(batchUses_);
  ingredients_->SetEditable(work_ && allowEditing_->isChecked());
  sets_->SetEditable(work_.has_value(), work_ && allowEditing_->isChecked());
  adjust_->setEnabled(stored && MayEdit() && windows.Knows("AdjustFormulaForm"));
  modified_->setEnabled(stored && isModified_ && windows.Knows("CompareFormulasForm"));
  duplicate_->setEnabled(stored && windows.Knows("DuplicateFormulaForm"));
  hasNotes_->setVisible(work_ && notes_->HasNotes());
}

void MixColorsForm::Activated() {
  batchUses_ = work_ && windows.IsFormulaInUse(work_->Color_Name);
  if (batchUses_ && !RecipeChanged()) allowEditing_->setChecked(false);
  Changed();
  if (StandBackForBatch(*this, tr("Changing data on this window can impact the Batch Window."))) return;
  if (session.CostChanged || session.VOCChanged || session.HAPChanged) {
    const auto wait = Wait(WaitKind::WaitingForm_NoCancel, tr("Updating Master Formulas ..."));
    RunPendingPasses(session);
  }
  sets_->Refresh();
  Changed();
}

Result<NameEntry> MixColorsForm::Enter(const std::string& typed) {
  return EnterMixName(session, typed);
}

// ---- Showing

void MixColorsForm::Clear() {
  work_.reset();
  isModified_ = false;
  batchUses_ = false;
  name_->SetText("");
  allowEditing_->setChecked(false);
  ingredients_->Clear();
  sets_->Show({});
  sets_->New().Empty();
  sets_->ShowChosen();
  bound_.Clear();
  details_->Clear();
  inventory_->Reset();
  measurements_->Clear();
  notes_->Show({});
  MarkClean();
}

void MixColorsForm::ShowColor(const std::string& name) {
  const auto mix = ReadMix(session, name);
  Clear();
  if (!mix) return;
  Show(*mix, LoadFormulaWork(session, *mix), false);
  inventory_->Load(ColorKind::Mix, mix->Color_Name);
  measurements_->Load(mix->Color_Name);
  MarkClean();
}

void MixColorsForm::ShowNew(const std::string& name) {
  Clear();
  MixColor mix;
  mix.Color_Name = name;
  mix.Date_Entered = session.clock.Today();
  mix.LastModified = mix.Date_Entered;
  mix.book = BookDataOfMix(session, name);
  Show(mix, NewFormulaWork(session, name), false);
  allowEditing_->setChecked(true);
  inventory_->Begin(ColorKind::Mix, name);
  measurements_->Load(name);
  MarkClean();
  FocusField("BC0");
}

void MixColorsForm::Show(const MixColor& mix, FormulaWork work, bool keepTyped) {
  const bool keepRecipe = keepTyped && RecipeChanged();
  work_ = std::move(work);
  if (name_->Text() != mix.Color_Name) name_->SetText(mix.Color_Name);
  ingredients_->Show(*work_, keepRecipe);
  if (!keepRecipe) sets_->Show(work_->AddSetName);
  bound_.Put(*work_, keepTyped);
  details_->Show(mix, keepTyped);
  if (!keepRecipe && mix.key != 0) ingredients_->ShowStored(StoredTotals(session, mix));
  notes_->Show(mix.Color_Name);
  isModified_ = mix.key != 0 && IsFormulaModified(session, mix.Color_Name);
  batchUses_ = mix.key != 0 && windows.IsFormulaInUse(mix.Color_Name);
}

void MixColorsForm::Reload() {
  const auto mix = ReadMix(session, work_->Color_Name);
  const bool keepTyped = InEdit();
  if (mix) {
    Show(*mix, LoadFormulaWork(session, *mix), keepTyped);
    inventory_->Refresh(mix->Color_Name);
    if (keepTyped) {
      measurements_->Refresh(mix->Color_Name);
    } else {
      measurements_->Load(mix->Color_Name);
    }
  } else if (keepTyped) {
    // Deleted under the operator's hands: what was typed can be saved as a new formula.
    work_->key = 0;
    inventory_->Detach();
  } else {
    ClearBehind();
  }
  Changed();
}

// ---- Changes made elsewhere

void MixColorsForm::OnChanges(const std::vector<Change>& changes) {
  bool mine = false;
  bool sets = false;
  bool batches = false;
  for (const Change& change : changes) {
    if (change.kind == Change::Kind::Settings) {
      ingredients_->Relabel();
      details_->Relabel();
      inventory_->Relabel();
      mine = work_ && work_->key != 0;
    }
    if (!EqualNoCase(change.database, session.CurrentDatabase)) continue;
    if (change.kind == Change::Kind::AdditiveSet) {
      if (change.what == Change::What::Renamed) sets_->RenameSet(change.name, change.newName);
      sets = true;
    }
    if (!work_) continue;
    if (change.kind == Change::Kind::Basic) TakeBasicChange(change);
    batches = batches || change.kind == Change::Kind::Batch;
    if (change.kind != Change::Kind::Mix || work_->key == 0) continue;
    const bool isShown = EqualNoCase(change.name, work_->Color_Name);
    if (isShown && change.what == Change::What::Renamed) work_->Color_Name = change.newName;
    mine = mine || isShown || change.what == Change::What::All;
  }
  if (sets) {
    sets_->Refresh();
    if (work_) ingredients_->UseSet(sets_->Chosen());
  }
  if (batches) ExternalUpdateBatchNotes();
  if (mine) Reload();
}

void MixColorsForm::TakeBasicChange(const Change& change) {
  if (change.what == Change::What::Renamed) ingredients_->RenameIngredient(change.name, change.newName);
  if (change.what == Change::What::All) {
    ingredients_->RefreshFigures();
    notes_->IngredientsChanged();
    return;
  }
  const std::string& name = change.what == Change::What::Renamed ? change.newName : change.name;
  const IngredientFigures figures = ReadIngredientFigures(session, name);
  ExternalUpdateBasicColor(name, "Cost", figures.Cost);
  ExternalUpdateBasicColor(name, "VOC", figures.VOC);
  ExternalUpdateBasicColor(name, "HAP", figures.HAP);
}

void MixColorsForm::ExternalUpdateBasicColor(const std::string& name, const std::string& kind, float value) {
  if (!work_) return;
  ingredients_->TakeFigure(name, kind, value);
  notes_->IngredientsChanged();
}

void MixColorsForm::ExternalUpdateMixColor(const std::string& name) {
  if (work_ && !InEdit() && EqualNoCase(name, work_->Color_Name)) Reload();
}

void MixColorsForm::ExternalUpdateBatchNotes() {
  notes_->BatchesChanged();
}

// ---- The recipe

FormulaWork MixColorsForm::ReadFields() const {
  FormulaWork work = work_.value_or(FormulaWork{});
  ingredients_->ReadInto(work);
  bound_.Take(work);
  work.AddSetName = sets_->Chosen();
  work.AllowEditing = allowEditing_->isChecked();
  return work;
}

void MixColorsForm::AllowEditingClicked(bool checked) {
  if (!work_) {
    allowEditing_->setChecked(false);
    name_->TakeFocus();
    return;
  }
  if (!checked && !StopEditing()) allowEditing_->setChecked(true);
  if (checked && !Accepted(RequireWritable(session))) allowEditing_->setChecked(false);
  Changed();
}

// Without the box a stored recipe is not written, so that what was typed into it must be given up knowingly.
bool MixColorsForm::StopEditing() {
  if (!Accepted(ValidateFormula(session, ReadFields()))) return false;
  if (work_->key == 0 || !RecipeChanged()) return true;
  if (!MayDiscard(session)) return false;
  ingredients_->Show(*work_, false);
  sets_->Show(work_->AddSetName);
  return true;
}

void MixColorsForm::SetPicked(const std::string& setName) {
  FormulaWork work = ReadFields();
  if (!Accepted(ChooseAdditiveSet(session, work, setName))) return;
  sets_->Choose(work.AddSetName);
  ingredients_->UseSet(work.AddSetName);
  notes_->IngredientsChanged();
  Changed();
}

void MixColorsForm::Reset_Adds() {
  sets_->Choose({});
  ingredients_->UseSet({});
  Changed();
}

void MixColorsForm::SaveNewSet() {
  if (!work_ || !Accepted(ValidateFormula(session, ReadFields()))) return;
  std::string setName;
  if (!sets_->New().Create(setName)) return;
  sets_->Refresh();
  sets_->ShowChosen();
  if (allowEditing_->isChecked()) SetPicked(setName);
  FocusSets();
}

// The list of sets is closed while the formula is only read.
void MixColorsForm::FocusSets() {
  FocusField(allowEditing_->isChecked() ? "lstAdditiveSets" : "AllowEditing");
}

// A set that was filled in and not saved. False: the operator goes on with it.
bool MixColorsForm::SettleNewSet() {
  if (!sets_->New().IsFilled()) return true;
  if (session.prompt.Ask(U8(tr("Unfinished Add Set Creation")), U8(tr("Complete and Save the current Add Set?")))) {
    sets_->ShowNew();
    sets_->New().FocusName();
    return false;
  }
  sets_->New().Empty();
  sets_->ShowChosen();
  return true;
}

}  // namespace vellumark::desktop
