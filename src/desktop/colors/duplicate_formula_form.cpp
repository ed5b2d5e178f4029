#include "desktop/colors/duplicate_formula_form.h"

#include "core/base/number.h"
#include "core/colors/duplicate.h"
#include "desktop/kit/look.h"
#include "desktop/kit/text.h"

namespace vellumark::desktop {
namespace {

constexpr int kComboWidth = 280;

}  // namespace

DuplicateFormulaForm::DuplicateFormulaForm(WindowList& windowList, QWidget* owner)
    : Dialog(windowList, owner, "DuplicateFormulaForm", tr("Duplicate Formula")) {
  Form form(*this);
  form.Row(tr("Master Formula"), source_ = form.Value("lblSource", 1));
  form.Row(tr("&New name"), newName_ = form.Text("txtNewName", TextRule::UpperName(session.NameLength)));
  form.Row(tr("&Database"), databases_ = form.Combo("cmbDatabases"));
  form.Row(tr("&Additive Set"),
           {setNames_ = form.Combo("cmbDBAddSets"), clear_ = form.Button("cmdClear", tr("C&lear"))});
  databases_->setMinimumWidth(kComboWidth);
  setNames_->setMinimumWidth(kComboWidth);
  clear_->setAccessibleName(tr("Duplicate without an Additive Set"));
  ingredients_ = form.Table("fgAddSet");
  ingredients_->SetColumns({GridColumn::Text(tr("Additive"), 400), GridColumn::Number(tr("Percent"), 104)});
  ingredients_->SetEmptyText(tr("No Additive Set"));
  ingredients_->setMinimumHeight((schema::kSetSlots + 1) * space::kRowHeight + space::kUnit);
  form.Wide(ingredients_, 1);
  form.Buttons({form.Button("cmdDuplicate", tr("D&uplicate")), form.Button("cmdCancel", tr("Cancel"))});
  setMinimumWidth(560);
  databases_->OnChosen([this](int) { ShowSets(); });
  setNames_->OnChosen([this](int) { ShowIngredients(); });
}

void DuplicateFormulaForm::OnOpen(const Arguments& arguments) {
  work_ = arguments.Get<FormulaWork>("Work");
  source_->SetText(work_.Color_Name);
  databases_->SetItems(session.databaseList);
  databases_->SetText(session.CurrentDatabase);
  ShowSets();
}

void DuplicateFormulaForm::UpdateEnabled() {
  setNames_->setEnabled(!sets_.empty());
  clear_->setEnabled(setNames_->currentIndex() >= 0);
}

std::string DuplicateFormulaForm::ChosenSet() const {
  return setNames_->currentIndex() < 0 ? std::string() : setNames_->Text();
}

void DuplicateFormulaForm::ShowSets() {
  sets_ = ListAdditiveSets(session, databases_->Text());
  std::vector<std::string> names;
  for (const AdditiveSet& set : sets_) names.push_back(set.SetName);
  setNames_->SetItems(names);
  cmdClear_Click();
}

void DuplicateFormulaForm::ShowIngredients() {
  auto rows = std::make_shared<TableSource>();
  if (const int chosen = setNames_->currentIndex(); chosen >= 0)
    for (const Ingredient& line : sets_.at(static_cast<std::size_t>(chosen)).Rows())
      rows->Add({line.name, Fixed(line.amount, 2)});
  ingredients_->SetSource(rows);
  Changed();
}

void DuplicateFormulaForm::cmdClear_Click() {
  setNames_->setCurrentIndex(-1);
  ShowIngredients();
}

void DuplicateFormulaForm::cmdDuplicate_Click() {
  const auto made = DuplicateFormula(session, work_, newName_->Text(), databases_->Text(), ChosenSet());
  if (!Accepted(made)) return;
  if (!made->done) {
    FocusField("txtNewName");
    return;
  }
  result.Set("NewName", made->name).Set("Database", databases_->Text()).Set("Overwritten", made->overwritten);
  accept();
}

}  // namespace vellumark::desktop
