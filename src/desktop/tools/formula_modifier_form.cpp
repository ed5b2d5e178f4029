#include "desktop/tools/formula_modifier_form.h"

#include <fmt/format.h>

#include <QGridLayout>

#include "core/base/number.h"
#include "core/base/text.h"
#include "core/colors/name_search.h"
#include "core/colors/rollup.h"
#include "desktop/kit/look.h"
#include "desktop/kit/text.h"
#include "desktop/tools/color_selection.h"
#include "desktop/tools/preview_lists.h"
#include "desktop/tools/tool_parts.h"

namespace vellumark::desktop {
namespace {

constexpr int kPercentDecimals = 2;
constexpr int kPercentChars = 8;

PreviewRow RowOf(const ModifierPreviewRow& row) {
  const std::string modified = RecipeText(row.modified);
  const std::string total = row.modable ? Fixed(TotalOf(row.modified), 3) : std::string();
  std::string detail = fmt::format("{}: {}", row.Color_Name, RecipeText(row.present));
  if (row.modable) detail += fmt::format("\n→ {}  (total {})", modified, total);
  return {row.Color_Name,
          {ReasonsText(row), row.AddSetName, row.modable ? "Modable" : "Un Modable", modified, total},
          row.modable,
          row.toModify,
          std::move(detail)};
}

}  // namespace

DBFormulaModifierForm::DBFormulaModifierForm(WindowList& windowList)
    : Window(windowList, "DBFormulaModifierForm", tr(" Database Formula Modifier")) {
  Form form(*this);
  TwoSides sides = Sides(*this, form);
  sides.left.Heading(tr("Step 1: Select colors"));
  colors_ = new ColorSelection(*this, sides.left, "lstMixes");

  sides.right.Heading(tr("Step 2: Select modifications"));
  auto* lines = new QWidget;
  auto* layout = new QGridLayout(lines);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setHorizontalSpacing(space::kUnit);
  layout->setVerticalSpacing(space::kTight);
  layout->setColumnStretch(5, 1);
  for (std::size_t number = 0; number < kModifierLines; ++number)
    BuildLine(lines, sides.right, static_cast<int>(number));
  CommandButton* previewButton = sides.right.Button("cmdPreview", tr("&Preview"), Qt::Key_F5);
  layout->addWidget(previewButton, static_cast<int>(kModifierLines) - 1, 5, Qt::AlignRight);
  sides.right.Wide(lines);
  preview_ = new PreviewLists(
      *this, sides.right, {tr("Colors to be Modified:"), tr("Colors Excluded from Modification:")},
      {GridColumn::Text(tr("Info"), 136), GridColumn::Text(tr("Current Set Name"), 128).Choosable(),
       GridColumn::Text(tr("Mod Type"), 96).Choosable(false), GridColumn::Text(tr("New formula"), 320).Choosable(),
       GridColumn::Number(tr("Total")).Choosable()});
  ToolButtons(*this, form, {save_ = form.Button("cmdSave", tr("&Save")), form.Button("cmdClose", tr("Close"))});
  SetDefaultButton(previewButton);

  connect(colors_, &ColorSelection::ChosenChanged, this, [this] {
    ForgetPreview();
    Changed();
  });
  connect(preview_, &PreviewLists::TakenChanged, this, [this] { Changed(); });
  colors_->Load(ColorKind::Mix);
}

void DBFormulaModifierForm::BuildLine(QWidget* sheet, Form& form, int number) {
  LineFields& line = lines_.at(static_cast<std::size_t>(number));
  const auto named = [&](const char* word) { return Q(schema::Numbered(word, number)); };
  line.chosen = form.Check(named("chkSel"), tr("Line &%1").arg(number + 1));
  QStringList methods;
  for (const std::string_view text : kModMethodTexts) methods += Q(text);
  line.method = form.Combo(named("cmbIncDec"), methods);
  line.method->setAccessibleName(tr("Method"));
  line.ingredient = form.Name(
      named("cmbBasics"), {[this](std::string_view typed) { return CompleteName(session, NameKind::Basics, typed); },
                           [this](std::string_view typed, std::size_t limit) {
                             return NamesFrom(session, NameKind::Basics, typed, limit);
                           }});
  line.ingredient->setAccessibleName(tr("Ingredient"));
  line.percent = form.Number(named("txtPercent"), kPercentDecimals, tr("Percent"), kPercentChars);
  line.percent->setAccessibleName(tr("Percent"));
  auto* layout = qobject_cast<QGridLayout*>(sheet->layout());
  layout->addWidget(line.chosen, number, 0);
  layout->addWidget(line.method, number, 1);
  layout->addWidget(line.ingredient, number, 2);
  layout->addWidget(line.percent, number, 3);
  layout->addWidget(form.Hint("%"), number, 4);
  connect(line.percent, &TextField::Left, this,
          [this, number](QWidget* to) { PercentLeft(static_cast<std::size_t>(number), to); });
  for (QLineEdit* field : {static_cast<QLineEdit*>(line.ingredient), static_cast<QLineEdit*>(line.percent)})
    connect(field, &QLineEdit::textChanged, this, &DBFormulaModifierForm::ForgetPreview);
  connect(line.chosen, &QCheckBox::toggled, this, &DBFormulaModifierForm::ForgetPreview);
  connect(line.method, &QComboBox::currentIndexChanged, this, &DBFormulaModifierForm::ForgetPreview);
}

void DBFormulaModifierForm::OnOpen(const Arguments&) {
  if (!Accepted(RequireFormulasToModify(session))) {
    Leave();
    return;
  }
  colors_->TakeFocus();
}

void DBFormulaModifierForm::UpdateEnabled() {
  for (const LineFields& line : lines_)
    for (QWidget* field : {static_cast<QWidget*>(line.method), static_cast<QWidget*>(line.ingredient),
                           static_cast<QWidget*>(line.percent)})
      field->setEnabled(line.chosen->isChecked());
  save_->setEnabled(!preview_->Taken().empty());
}

void DBFormulaModifierForm::OnChanges(const std::vector<Change>& changes) {
  for (const Change& change : changes) {
    if (change.kind != Change::Kind::Mix || !EqualNoCase(change.database, session.CurrentDatabase)) continue;
    colors_->Load(ColorKind::Mix);
    return;
  }
}

// ---- The lines

ModifierLine DBFormulaModifierForm::LineAt(std::size_t number) const {
  const LineFields& line = lines_.at(number);
  return {line.chosen->isChecked(), static_cast<ModMethod>(line.method->currentIndex()), line.ingredient->Name(),
          line.percent->Text()};
}

std::vector<ModifierLine> DBFormulaModifierForm::Lines() const {
  std::vector<ModifierLine> lines;
  for (std::size_t number = 0; number < lines_.size(); ++number) lines.push_back(LineAt(number));
  return lines;
}

void DBFormulaModifierForm::PercentLeft(std::size_t number, QWidget* to) {
  // A button that the focus went to checks by itself, and another field of the line may be what has to change.
  const LineFields& line = lines_.at(number);
  NumberField* field = line.percent;
  if (Trim(field->Text()).empty() || qobject_cast<QPushButton*>(to) != nullptr) return;
  if (to == line.chosen || to == line.method || to == line.ingredient) return;
  if (const auto percent = ReadModifierPercent(LineAt(number), number); Accepted(percent))
    field->SetText(Fixed(*percent, kPercentDecimals));
}

void DBFormulaModifierForm::ForgetPreview() {
  if (!preview_->IsEmpty()) preview_->Clear();
}

void DBFormulaModifierForm::EmptyLines() {
  for (const LineFields& line : lines_) {
    line.chosen->setChecked(false);
    line.method->setCurrentIndex(0);
    line.ingredient->SetText("");
    line.percent->SetText("");
  }
}

// ---- Commands

void DBFormulaModifierForm::cmdPreview_Click() {
  const auto wait = Wait(WaitKind::WaitingForm, tr("Preparing Preview Results ..."));
  const auto rows = PreviewModifier(session, Lines(), colors_->Chosen());
  if (!Accepted(rows)) return;
  std::vector<PreviewRow> shown;
  shown.reserve(rows->size());
  for (const ModifierPreviewRow& row : *rows) shown.push_back(RowOf(row));
  preview_->Show(std::move(shown));
  preview_->TakeFocus();
}

void DBFormulaModifierForm::cmdSave_Click() {
  bool applied = false;
  {
    const auto wait = Wait(WaitKind::WaitingForm, tr("Modifing Formulas ..."));
    const Result<bool> result = ApplyModifier(session, Lines(), preview_->Taken());
    if (!Accepted(result)) return;
    applied = *result;
  }
  if (!applied) return;
  preview_->Clear();
  EmptyLines();
  colors_->ChooseNone();
  colors_->TakeFocus();
}

bool DBFormulaModifierForm::MayClose() {
  const auto wait = Wait(WaitKind::WaitingForm_NoCancel, tr("Updating Master Formulas ..."));
  RunPendingPasses(session);
  return true;
}

}  // namespace vellumark::desktop
