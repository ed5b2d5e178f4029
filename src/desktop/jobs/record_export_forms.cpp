#include "desktop/jobs/record_export_forms.h"

#include <algorithm>

#include "desktop/kit/icons.h"
#include "desktop/kit/job_box.h"
#include "desktop/kit/text.h"

namespace vellumark::desktop {
namespace {

constexpr int kColumnWidth = 160;

}  // namespace

class RecordExportForm::Source : public GridSource {
 public:
  RecordGrid grid;
  int Rows() const override { return static_cast<int>(grid.rows.size() - grid.captions); }
  std::string Text(int row, int column) const override {
    const auto& cells = grid.rows.at(static_cast<std::size_t>(row) + grid.captions);
    return static_cast<std::size_t>(column) < cells.size() ? cells[static_cast<std::size_t>(column)] : std::string();
  }
};

RecordExportForm::RecordExportForm(WindowList& windowList, ExportedRecords records, FileChooser choose)
    : Window(windowList, records == ExportedRecords::Jobs ? "ExportJobRecords" : "ExportBatchesForm",
             records == ExportedRecords::Jobs ? tr("Export Job Records") : tr("Export Batch Records")),
      records_(records),
      choose_(std::move(choose)),
      rows_(std::make_shared<Source>()) {
  setWindowIcon(Icon("Report"));
  Form form(*this);
  way_ = form.Radio("optRange", {{"optNumber", tr("By number")}, {"optDate", tr("By date")}}, Qt::Horizontal);
  form.Row(tr("&Range"), way_);
  first_ = form.Text("txtFirst", TextRule::Any(kJobNumberLength));
  last_ = form.Text("txtLast", TextRule::Any(kJobNumberLength));
  first_->Means("First");
  last_->Means("Last");
  last_->setAccessibleName(tr("Last number"));
  form.Row(records == ExportedRecords::Jobs ? tr("&Job numbers") : tr("&Batch numbers"), {first_, form.Hint(tr("to")), last_});
  from_ = form.Date("dtFrom");
  to_ = form.Date("dtTo");
  from_->Means("From");
  to_->Means("To");
  to_->setAccessibleName(tr("Last day"));
  form.Row(tr("&Date entered"), {from_, form.Hint(tr("to")), to_, form.Button("cmdGather", tr("&Gather"))});
  for (Field* field : std::initializer_list<Field*>{way_, first_, last_, from_, to_}) field->DoNotTrack();
  list_ = form.Table("fgRecords");
  list_->setAccessibleName(tr("Records for export"));
  list_->SetSource(rows_);
  list_->SetEmptyText(tr("Choose a range and press Gather"));
  form.Wide(list_, 1);
  form.Wide(count_ = form.Hint({}, "lblCount"));
  form.ButtonsWithoutDefault(
      {form.Button("cmdClose", tr("Close")), create_ = form.Button("cmdCreateFile", tr("Create &File"))});
  connect(way_, &RadioField::ChosenChanged, this, [this] { Changed(); });
}

RecordRange RecordExportForm::Range() const {
  if (way_->Chosen() == 0) {
    // Without a number nothing is meant, and that is no range of dates.
    const std::string first = first_->Text();
    return {first.empty() ? " " : first, last_->Text().empty() ? " " : last_->Text(), {}, {}};
  }
  return {{}, {}, from_->Date(), to_->Date()};
}

void RecordExportForm::UpdateEnabled() {
  if (create_ == nullptr) return;
  const bool numbers = way_->Chosen() == 0;
  for (QWidget* field : {first_, last_}) field->setEnabled(numbers);
  for (QWidget* field : {from_, to_}) field->setEnabled(!numbers);
  create_->setEnabled(rows_->grid.records > 0 && rows_->grid.complete);
}

void RecordExportForm::cmdGather_Click() {
  const RecordRange range = Range();
  auto grid = records_ == ExportedRecords::Jobs ? GatherJobRecords(session, range) : GatherBatchRecords(session, range);
  if (!Accepted(grid)) return;
  gathered_ = range;
  ShowGrid(*std::move(grid));
}

void RecordExportForm::ShowGrid(RecordGrid grid) {
  std::size_t width = 0;
  for (const auto& row : grid.rows) width = std::max(width, row.size());
  std::vector<GridColumn> columns;
  for (std::size_t i = 0; i < width; ++i) {
    const bool captioned = grid.captions > 0 && i < grid.rows.front().size();
    columns.push_back(GridColumn::Text(captioned ? Q(grid.rows.front()[i]) : QString(" "), kColumnWidth));
    columns.back().sortable = false;  // the order is that of the file
  }
  const QString count = grid.records == 1 ? tr("1 record") : tr("%1 records").arg(grid.records);
  count_->setText(grid.complete ? count : tr("%1, incomplete").arg(count));
  rows_->grid = std::move(grid);
  list_->SetColumns(std::move(columns));
  list_->Refresh();
  Changed();
}

void RecordExportForm::cmdCreateFile_Click() {
  const QString folder = QString::fromStdString(std::filesystem::path(session.DataFileName).parent_path().string());
  const std::string name = records_ == ExportedRecords::Jobs ? JobExportName(gathered_) : BatchExportName(gathered_);
  const QString path = choose_({windowTitle(), tr("Text file (*.txt)"), ".txt", folder + "/" + Q(name), true}, this);
  if (!path.isEmpty()) Accepted(SaveRecordFile(session, rows_->grid, std::filesystem::path(U8(path))));
}

}  // namespace vellumark::desktop
