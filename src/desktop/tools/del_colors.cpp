#include "desktop/tools/del_colors.h"

#include "core/base/number.h"
#include "core/base/text.h"
#include "core/base/units.h"
#include "core/colors/amounts.h"
#include "core/colors/basics.h"
#include "core/colors/bulk_delete.h"
#include "core/colors/formulas.h"
#include "core/inventory/lots.h"
#include "desktop/kit/record_fields.h"
#include "desktop/kit/swatch_view.h"
#include "desktop/kit/text.h"
#include "desktop/tools/color_selection.h"
#include "desktop/tools/tool_parts.h"

namespace vellumark::desktop {
DBDelColors::DBDelColors(WindowList& windowList) : Window(windowList, "DBDelColors", tr(" Delete Master Formulas")) {
  Form form(*this);
  TwoSides sides = Sides(*this, form);
  databases_ = sides.left.Combo("cmbDBList_Formulas");
  databases_->SetItems(session.databaseList);
  databases_->SetText(session.CurrentDatabase);
  databases_->DoNotTrack();
  sides.left.Row(tr("Data&base"), databases_);
  colors_ = new ColorSelection(*this, sides.left, "lstMixes");
  BuildFormula(sides.right);
  ToolButtons(*this, form, {delete_ = form.Button("cmdDelete", tr("&Delete")), form.Button("cmdClose", tr("Close"))});

  connect(databases_, &QComboBox::currentTextChanged, this, [this] {
    colors_->Load(ColorKind::Mix, databases_->Text());
    ShowFormula();
  });
  connect(colors_, &ColorSelection::ChosenChanged, this, [this] { Changed(); });
  connect(colors_, &ColorSelection::CurrentChanged, this, &DBDelColors::ShowFormula);
  colors_->Load(ColorKind::Mix, databases_->Text());
  ShowFormula();
}

void DBDelColors::BuildFormula(Form& form) {
  form.Heading(tr("Master Formula"));
  form.Wide(form.Hint(tr("Click on a Color Name to view Master Formula details"), "lblHint"));
  frame_ = new QWidget;
  frame_->setObjectName("FormulaFrame");
  Form part(*this, *frame_);
  part.Row(tr("Color"), name_ = part.Value("lblColor"));
  part.Row(tr("Additive Set"), set_ = part.Label("lblAddSetName"));
  part.Row(tr("Inventory"), {inventory_ = part.Value("lblInventory", 1), part.Hint(Q(UnitName(session.UMI)))});
  part.Row(tr("Date Last Produced"), produced_ = part.Label("lblLastProduced"));
  recipe_ = part.Table("fgFormula");
  recipe_->setAccessibleName(tr("Formula"));
  recipe_->SetColumns({GridColumn::Text(tr("Ingredient"), 280), GridColumn::Amount(tr("Parts of 100"))});
  part.Wide(recipe_, 1);
  form.Wide(frame_, 1);
}

void DBDelColors::OnOpen(const Arguments&) {
  colors_->TakeFocus();
}

void DBDelColors::UpdateEnabled() {
  delete_->setEnabled(!colors_->Chosen().empty());
}

void DBDelColors::OnChanges(const std::vector<Change>& changes) {
  for (const Change& change : changes) {
    if (change.kind != Change::Kind::Mix || !EqualNoCase(change.database, databases_->Text())) continue;
    colors_->Load(ColorKind::Mix, databases_->Text());
    ShowFormula();
    return;
  }
}

void DBDelColors::ShowFormula() {
  const std::string database = databases_->Text();
  const std::string name = colors_->Current();
  const auto mix = name.empty() ? std::nullopt : ReadMix(session, name, database);
  auto source = std::make_shared<TableSource>();
  name_->SetText(mix ? mix->Color_Name : "");
  set_->setText(mix ? Q(mix->AddSetName) : QString());
  inventory_->SetText(
      mix ? AmountText(session, AmountKey::AdjInv, TotalStock(session, ColorKind::Mix, mix->Color_Name, database))
          : "");
  produced_->setText(mix ? DateText(mix->LastProduced) : QString());
  double total = 0;
  if (mix) {
    const Recipe recipe = mix->Ingredients();
    total = TotalOf(recipe);
    for (const Ingredient& line : recipe) {
      TableSource::Cell ingredient(line.name);
      if (const auto basic = ReadBasic(session, line.name, database)) ingredient.swatch = ColorOf(InkOf(basic->book));
      source->Add({ingredient, {Fixed(line.amount, 3), line.amount}});
    }
  }
  recipe_->SetSource(source);
  recipe_->SetTotals(mix ? std::vector<std::string>{U8(tr("Total")), Fixed(total, 3)} : std::vector<std::string>{});
}

void DBDelColors::cmdDelete_Click() {
  {
    const auto wait = Wait(WaitKind::WaitingForm, tr("Deleting Master Formulas"));
    const Result<bool> deleted = DeleteFormulas(session, colors_->Chosen(), databases_->Text());
    if (!Accepted(deleted) || !*deleted) return;
  }
  colors_->Load(ColorKind::Mix, databases_->Text());
  ShowFormula();
  colors_->TakeFocus();
}

}  // namespace vellumark::desktop
