#include "desktop/exchange/compare_import_form.h"

#include "core/base/number.h"
#include "desktop/kit/look.h"
#include "desktop/kit/text.h"

namespace vellumark::desktop {

ImportCompareFormulasForm::ImportCompareFormulasForm(WindowList& windowList, QWidget* owner, const QString& name)
    : Dialog(windowList, owner, name, tr("Formula Comparison")),
      rows_(std::make_shared<TableSource>()) {
  Form form(*this);
  // On one line: the rows below are what is looked at.
  form.Row(tr("Color"), {name_ = form.Value("lblColor"), form.Hint(tr("ModType")), mod_ = form.Label("lblModType"),
                         form.Hint(tr("In Database")), inDatabase_ = form.Label("lblInDatabase")});
  lines_ = form.Table("fgCompare");
  lines_->setAccessibleName(tr("Formula Comparison"));
  lines_->SetColumns({GridColumn::Text(tr("Ingredient"), 264), GridColumn::Number(tr("In Database"), 112),
                      GridColumn::Number(tr("Mod1"), 112), GridColumn{tr("Change"), 112, GridColumn::Sort::Text, true}});
  lines_->SetSource(rows_);
  lines_->setMinimumHeight(8 * space::kRowHeight);
  form.Wide(lines_, 1);
  remark_ = form.Hint({}, "lblRemark");
  remark_->setWordWrap(true);
  form.Wide(remark_);
  form.Wide(take_ = form.Check("chkTake", tr("&Import this formula")));
  form.Buttons({form.Button("cmdOK", tr("OK")), form.Button("cmdCancel", tr("Cancel"))});
  resize(704, 520);
}

void ImportCompareFormulasForm::OnOpen(const Arguments& arguments) {
  const auto plan = arguments.Get<std::shared_ptr<const MergePlan>>("Plan");
  const auto place = static_cast<std::size_t>(arguments.Number("Place"));
  const MergeChoice& choice = plan->choices.at(place);
  name_->setText(Q(plan->table.formulas[place].name));
  mod_->setText(Q(MergeModText(choice.mod)));
  inDatabase_->setText(choice.key == 0 ? tr("No") : tr("Yes"));
  rows_->Clear();
  double here = 0;
  double there = 0;
  for (const MergeLine& line : CompareLines(session, *plan, place)) {
    const auto amount = [](bool is, double value) {
      return is ? TableSource::Cell(Fixed(value, 3), value) : TableSource::Cell();
    };
    rows_->Add({line.name, amount(line.isHere, line.here), amount(line.isThere, line.there), line.change});
    here += line.here;
    there += line.there;
  }
  lines_->Refresh();
  lines_->SetTotals({U8(tr("Total")), choice.key == 0 ? "" : Fixed(here, 3), Fixed(there, 3), ""});
  remark_->setText(Q(ChangesText(session, *plan, place)));
  const bool free = choice.mod == MergeMod::New || choice.mod == MergeMod::Different;
  take_->setChecked(choice.take);
  take_->setEnabled(free);
  take_->DoNotTrack();
}

void ImportCompareFormulasForm::cmdOK_Click() {
  if (take_->isEnabled()) result.Set("Take", take_->isChecked());
  accept();
}

}  // namespace vellumark::desktop
