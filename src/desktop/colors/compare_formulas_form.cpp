#include "desktop/colors/compare_formulas_form.h"

#include <QDate>
#include <QLocale>

#include "core/base/number.h"
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

Grid* Rows(Form& form, const QString& name) {
  Grid* grid = form.Table(name);
  grid->SetColumns({GridColumn::Text(CompareFormulasForm::tr("Ingredient"), 288),
                    GridColumn::Number(CompareFormulasForm::tr("Parts"), 104)});
  form.Wide(grid, 1);
  return grid;
}

std::shared_ptr<TableSource> Lines(const Recipe& recipe) {
  auto rows = std::make_shared<TableSource>();
  for (const Ingredient& line : recipe) rows->Add({line.name, Fixed(line.amount, 3)});
  return rows;
}

}  // namespace

CompareFormulasForm::CompareFormulasForm(WindowList& windowList, QWidget* owner)
    : Dialog(windowList, owner, "CompareFormulasForm", tr(" Modified Formula")) {
  Form form(*this);
  std::vector<Form> sides = form.Columns(2);
  original_ = Headline(sides[0], "lblOriginal");
  originalRows_ = Rows(sides[0], "fgOriginal");
  modified_ = Headline(sides[1], "lblModified");
  modifiedRows_ = Rows(sides[1], "fgModified");
  sides[1].Row(tr("Date Modified"), date_ = form.Label("lblDateModified"));
  form.Buttons({form.Button("cmdClose", tr("Close")),
                revert_ = form.Button("cmdRevert", tr("Revert Back To Original Formula"))});
  resize(960, 600);
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
  originalRows_->SetSource(Lines(shown_.original));
  modifiedRows_->SetSource(Lines(shown_.modified));
  if (const auto& entered = shown_.Date_Entered)
    date_->setText(QLocale().toString(QDate(entered->year, entered->month, entered->day), QLocale::ShortFormat));
}

void CompareFormulasForm::UpdateEnabled() {
  revert_->setEnabled(mayRevert_ && shown_.canRevert);
}

void CompareFormulasForm::cmdRevert_Click() {
  const Result<bool> agreed = AskRevertToGuide(session, shown_.Color_Name);
  if (!Accepted(agreed) || !*agreed) return;
  result.Set("Revert", true);
  accept();
}

}  // namespace vellumark::desktop
