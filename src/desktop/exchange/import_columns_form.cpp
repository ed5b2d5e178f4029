#include "desktop/exchange/import_columns_form.h"

#include <algorithm>

#include "desktop/kit/text.h"

namespace vellumark::desktop {
namespace {

constexpr int kCaptionWidth = 200;
constexpr int kFieldWidth = 160;
constexpr int kSampleWidth = 320;

}  // namespace

ImportColumnsForm::ImportColumnsForm(WindowList& windowList, QWidget* owner)
    : Dialog(windowList, owner, "ImportColumnsForm", tr("Columns of a File")),
      fields_(SourceFieldNames()),
      rows_(std::make_shared<TableSource>()) {
  Form form(*this);
  QLabel* hint = form.Hint(
      tr("Choose for each column of the file what it holds. A file with a row for each ingredient has one column "
         "Ingredient and one Parts; a column Basic Color has the parts of the color that is its caption."),
      "lblHint");
  hint->setWordWrap(true);
  form.Wide(hint);
  columns_ = form.Table("fgColumns");
  columns_->setAccessibleName(tr("Columns of the file"));
  columns_->SetColumns({GridColumn::Text(tr("Column"), kCaptionWidth), GridColumn::Text(tr("Field"), kFieldWidth),
                        GridColumn::Text(tr("First Rows"), kSampleWidth)});
  columns_->SetSource(rows_);
  columns_->SetEmptyText(tr("The file has no columns"));
  form.Wide(columns_, 1);
  field_ = form.Combo("cmbField");
  field_->SetItems(fields_);
  field_->setMinimumWidth(kFieldWidth);
  form.Row(tr("&Field"), field_);
  form.Buttons({save_ = form.Button("cmdSave", tr("&Save")), form.Button("cmdCancel", tr("Cancel"))});
  connect(columns_, &Grid::CurrentRowChanged, this, [this] { ShowField(); });
  field_->OnChosen([this](int index) { SetField(index); });
  field_->DoNotTrack();
  setMinimumSize(720, 480);
}

void ImportColumnsForm::OnOpen(const Arguments& arguments) {
  if (arguments.Has("File")) head_ = ReadGridHead(arguments.Text("File"), RememberedColumns(session));
  ShowColumns();
  if (!head_.columns.empty()) columns_->SetCurrentRow(0);
  ShowField();
}

void ImportColumnsForm::ShowColumns() {
  rows_->Clear();
  for (std::size_t n = 0; n < head_.columns.size(); ++n) {
    std::string sample;
    for (const std::vector<std::string>& row : head_.rows)
      if (n < row.size() && !row[n].empty()) sample += (sample.empty() ? "" : "; ") + row[n];
    rows_->Add({head_.columns[n].caption, FieldText(head_.columns[n]), sample});
  }
  columns_->Refresh();
}

void ImportColumnsForm::ShowField() {
  const int row = columns_->CurrentRow();
  field_->SetText(row < 0 ? std::string() : FieldText(head_.columns.at(static_cast<std::size_t>(row))));
  Changed();
}

void ImportColumnsForm::SetField(int index) {
  const int row = columns_->CurrentRow();
  if (row < 0 || index < 0) return;
  TakeFieldText(head_.columns.at(static_cast<std::size_t>(row)), fields_.at(static_cast<std::size_t>(index)));
  ShowColumns();
  columns_->SetCurrentRow(row);
}

void ImportColumnsForm::UpdateEnabled() {
  if (save_ == nullptr) return;
  field_->setEnabled(columns_->CurrentRow() >= 0);
  save_->setEnabled(!head_.columns.empty());
}

void ImportColumnsForm::cmdSave_Click() {
  ColumnMapping mapping = RememberedColumns(session);
  for (const SourceColumn& column : head_.columns) {
    if (column.field == SourceField::NoField && !CanBeTold(column.caption)) continue;
    if (!Accepted(TakeMapping(mapping, column.caption + "=" + FieldText(column)))) return;
  }
  RememberColumns(session, mapping);
  result.Set("Told", true);
  accept();
}

}  // namespace vellumark::desktop
