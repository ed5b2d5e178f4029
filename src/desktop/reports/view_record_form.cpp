#include "desktop/reports/view_record_form.h"

#include "core/reports/record_view.h"
#include "desktop/kit/print_sheet.h"
#include "desktop/kit/record_source.h"
#include "desktop/kit/text.h"

namespace vellumark::desktop {

ViewRecordForm::ViewRecordForm(WindowList& windowList, QWidget* owner)
    : Dialog(windowList, owner, "ViewRecordForm", tr("Record of another Database")) {
  Form form(*this);
  form.Wide(title_ = form.Label("lblMsg"));
  form.Wide(fields_ = form.Table("fg"), 1);
  fields_->SetColumns({GridColumn::Text(tr("Field"), 240), GridColumn::Text(tr("Value"), 360)});
  fields_->ShowFilter(tr("Filter"));
  fields_->setAccessibleName(tr("Fields of the record"));
  form.Buttons({form.Button("cmdClose", tr("Close")), print_ = form.Button("cmdPrint", tr("&Print"))});
  resize(680, 560);
}

void ViewRecordForm::OnOpen(const Arguments& arguments) {
  if (!arguments.Has("Target")) return;
  auto sheet = RecordSheet(session, arguments.Get<RowTarget>("Target"));
  if (!Accepted(sheet)) {
    QMetaObject::invokeMethod(this, &QDialog::reject, Qt::QueuedConnection);
    return;
  }
  sheet_ = *std::move(sheet);
  title_->setText(tr("%1  (read only)").arg(Q(sheet_.title)));
  auto source = std::make_shared<TableSource>();
  for (const SheetBlock& block : sheet_.blocks) {
    for (const SheetField& field : block.fields) source->Add({field.caption, field.value});
    if (!block.table) continue;
    block.table->read([&](const TableRow& row) {
      const auto cell = [&](std::size_t i) { return CellTextInWindow(block.table->columns[i], row.Cell(i)); };
      source->Add({cell(0) + " - " + cell(1), cell(2)});
      return true;
    });
  }
  fields_->SetSource(source);
  Changed();
}

void ViewRecordForm::UpdateEnabled() {
  print_->setEnabled(!sheet_.blocks.empty() && CanPrint(windows));
}

void ViewRecordForm::cmdPrint_Click() {
  PrintSheet(windows, sheet_);
}

}  // namespace vellumark::desktop
