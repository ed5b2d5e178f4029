#include "desktop/colors/basic_color_used_in_mix_form.h"

#include "core/colors/color_sheets.h"
#include "desktop/kit/print_sheet.h"
#include "desktop/kit/text.h"

namespace vellumark::desktop {

BasicColorUsedInMixForm::BasicColorUsedInMixForm(WindowList& windowList, QWidget* owner)
    : Dialog(windowList, owner, "BasicColorUsedInMixForm", {}) {
  Form form(*this);
  form.Wide(text_ = form.Label("lblMsg"));
  form.Wide(formulas_ = form.Table("fgFormulas"), 1);
  formulas_->SetColumns({GridColumn::Text(tr("Master Formula"), 448)});
  formulas_->ShowFilter(tr("Filter"));
  form.Buttons({form.Button("cmdClose", tr("Close")), print_ = form.Button("cmdPrint", tr("&Print List"))});
  connect(formulas_, &Grid::RowActivated, this, &BasicColorUsedInMixForm::View);
  resize(520, 520);
}

void BasicColorUsedInMixForm::OnOpen(const Arguments& arguments) {
  setWindowTitle(Q(arguments.Text("Title")));
  text_->setText(Q(arguments.Text("Text")));
  names_ = arguments.Get<std::vector<std::string>>("Formulas");
  auto source = std::make_shared<TableSource>();
  for (const std::string& name : names_) source->Add({name});
  formulas_->SetSource(source);
  formulas_->SetCurrentRow(0);
}

void BasicColorUsedInMixForm::UpdateEnabled() {
  print_->setEnabled(CanPrint(windows));
}

void BasicColorUsedInMixForm::cmdPrint_Click() {
  PrintSheet(windows, FormulaRequirementSheet(names_));
}

void BasicColorUsedInMixForm::View(int row) {
  if (row < 0 || !windows.Knows("MixColorsForm")) return;
  result.Set("Formula", names_.at(static_cast<std::size_t>(row)));
  accept();
}

}  // namespace vellumark::desktop
