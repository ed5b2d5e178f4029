#include "desktop/backup/look_into_form.h"

#include <QLabel>

#include "desktop/datafile/file_windows.h"
#include "desktop/kit/text.h"

namespace vellumark::desktop {

LookIntoSetForm::LookIntoSetForm(WindowList& windowList, QWidget* owner)
    : Dialog(windowList, owner, "LookIntoSetForm", tr("Look into a Backup")) {
  Form form(*this);
  about_ = Paragraph(form, {}, "lblAbout");
  nothing_ = QuietParagraph(form, tr("All formulas and Batches of the backup are here as they are there."));
  nothing_->setObjectName("lblNothing");
  grid_ = form.Table("fg");
  rows_ = std::make_shared<RecordRows<LookRow>>(LookColumns());
  grid_->SetColumns(rows_->Columns());
  grid_->SetSource(rows_);
  grid_->ShowFilter(tr("Filter"));
  form.Wide(grid_, 1);
  form.Buttons({take_ = form.Button("cmdTake", tr("&Take Back")), form.Button("cmdClose", tr("Close"))});
  connect(grid_, &Grid::CurrentRowChanged, this, [this] { Changed(); });
  resize(760, 480);
}

void LookIntoSetForm::OnOpen(const Arguments& arguments) {
  dataFile_ = arguments.Text("Set");
  about_->setText(tr("What the backup of %1 holds of %2 that is not here, or not as it is there:")
                      .arg(Q(arguments.Text("Made")), Q(session.CurrentDatabase)));
  Show();
}

void LookIntoSetForm::Show() {
  rows_->rows.clear();
  if (dataFile_.empty()) return;
  WithFiles(*this, tr("Look into a Backup"), [&] {
    auto found = LookInto(session, dataFile_);
    if (FormHost::Accepted(found)) rows_->rows = *std::move(found);
  });
  grid_->SetSource(rows_);
  nothing_->setVisible(rows_->rows.empty());
  if (!rows_->rows.empty()) grid_->SetCurrentRow(0);
  grid_->setFocus();
  Changed();
}

const LookRow* LookIntoSetForm::Chosen() const {
  const int row = grid_->CurrentRow();
  return row < 0 || row >= rows_->Rows() ? nullptr : &rows_->rows[static_cast<std::size_t>(row)];
}

void LookIntoSetForm::UpdateEnabled() {
  take_->setEnabled(Chosen() != nullptr);
}

void LookIntoSetForm::cmdTake_Click() {
  const LookRow* chosen = Chosen();
  if (chosen == nullptr) return;
  bool taken = false;
  WithFiles(*this, tr("Look into a Backup"), [&] {
    if (chosen->Kind == "Batch") {
      const auto back = CompareBatch(session, dataFile_, static_cast<std::int32_t>(std::stol(chosen->Name)));
      taken = FormHost::Accepted(back) && FormHost::Accepted(TakeBatchBack(session, *back));
    } else {
      const auto back = CompareFormula(session, dataFile_, chosen->Name);
      taken = FormHost::Accepted(back) && FormHost::Accepted(TakeFormulaBack(session, *back));
    }
  });
  if (taken) Show();
}

}  // namespace vellumark::desktop
