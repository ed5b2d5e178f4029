#include "desktop/colors/compare_formulas_form.h"

#include <algorithm>

#include "core/base/number.h"
#include "core/colors/color_sheets.h"
#include "desktop/kit/look.h"
#include "desktop/kit/print_sheet.h"
#include "desktop/kit/record_fields.h"
#include "desktop/kit/text.h"

namespace vellumark::desktop {
namespace {

QLabel* Headline(Form& form, const QString& name) {
  QLabel* label = form.Label(name);
  QFont font = label->font();
  font.setBold(true);
  label->setFont(font);
  label->setWordWrap(true);
  form.Wide(label);
  return label;
}

Grid* Rows(Form& form, const QString& name, std::vector<GridColumn> columns) {
  Grid* grid = form.Table(name);
  grid->SetColumns(std::move(columns));
  // Every line of a formula in sight, to be compared across.
  grid->setMinimumHeight((schema::kIngredientSlots + 1) * space::kRowHeight + space::kUnit);
  form.Wide(grid, 1);
  return grid;
}

}  // namespace

CompareFormulasForm::CompareFormulasForm(WindowList& windowList, QWidget* owner)
    : Dialog(windowList, owner, "CompareFormulasForm", tr(" Modified Formula")) {
  Form form(*this);
  std::vector<Form> sides = form.Columns(2);
  original_ = Headline(sides[0], "lblOriginal");
  const GridColumn ingredient = GridColumn::Text(tr("Ingredient"), 264);
  const GridColumn parts = GridColumn::Number(tr("Parts"), 88);
  const GridColumn change{tr("Change"), 96, GridColumn::Sort::Text, true};
  originalRows_ = Rows(sides[0], "fgOriginal", {ingredient, parts, change});
  modified_ = Headline(sides[1], "lblModified");
  modifiedRows_ = Rows(sides[1], "fgModified", {ingredient, parts, change});
  sides[0].Wide(form.Label("lblBelowOriginal", " "));  // keeps both grids at one height
  sides[1].Row(tr("Date Modified"), date_ = form.Label("lblDateModified"));
  CommandButton* close = form.Button("cmdClose", tr("Close"));
  form.Buttons({close, print_ = form.Button("cmdPrint", tr("&Print")),
                revert_ = form.Button("cmdRevert", tr("Revert Back To Original Formula"))});
  setMinimumWidth(1056);
  close->setFocus();
}

void CompareFormulasForm::OnOpen(const Arguments& arguments) {
  const Result<FormulaComparison> compared = CompareFormula(session, arguments.Text("Color_Name"));
  if (!Accepted(compared)) {
    // Nothing to show: closes as soon as it runs.
    QMetaObject::invokeMethod(
        this, [this] { reject(); }, Qt::QueuedConnection);
    return;
  }
  shown_ = *compared;
  mayRevert_ = arguments.Has("MayRevert") && arguments.Get<bool>("MayRevert");
  original_->setText(tr("Original %1").arg(Q(shown_.Color_Name)));
  modified_->setText(tr("Modified %1").arg(Q(shown_.Color_Name)));
  auto original = std::make_shared<TableSource>();
  for (const Ingredient& line : shown_.original) {
    const bool isMissing = std::ranges::find(shown_.missing, line.name) != shown_.missing.end();
    original->Add({line.name, Fixed(line.amount, 3), isMissing ? U8(tr("missing")) : std::string()});
  }
  auto modified = std::make_shared<TableSource>();
  for (std::size_t n = 0; n < shown_.modified.size(); ++n)
    modified->Add({shown_.modified[n].name, Fixed(shown_.modified[n].amount, 3), shown_.changes[n]});
  originalRows_->SetSource(original);
  modifiedRows_->SetSource(modified);
  if (shown_.Date_Entered) date_->setText(DateText(shown_.Date_Entered));
}

void CompareFormulasForm::cmdPrint_Click() {
  PrintSheet(windows, CompareSheet(shown_));
}

void CompareFormulasForm::UpdateEnabled() {
  print_->setEnabled(CanPrint(windows));
  revert_->setEnabled(mayRevert_ && shown_.canRevert);
}

void CompareFormulasForm::cmdRevert_Click() {
  const Result<bool> agreed = AskRevertToGuide(session, shown_.Color_Name);
  if (!Accepted(agreed) || !*agreed) return;
  result.Set("Revert", true);
  accept();
}

}  // namespace vellumark::desktop
