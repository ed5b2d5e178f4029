#include "desktop/jobs/jobs_out_form.h"

#include <algorithm>

#include "core/jobs/job_tables.h"
#include "desktop/kit/icons.h"
#include "desktop/kit/print_sheet.h"
#include "desktop/kit/record_source.h"
#include "desktop/kit/row_menu.h"
#include "desktop/kit/text.h"
#include "desktop/reports/open_row.h"

namespace vellumark::desktop {

class OutRows : public RecordRows<OutOnJob>, public RowTargets {
 public:
  using RecordRows::RecordRows;
  std::vector<RowTarget> Targets(int row) const override {
    return {{.kind = RowTarget::Kind::Job, .name = At(row).JobNumber}};
  }
};

JobsOutForm::JobsOutForm(WindowList& windowList)
    : Window(windowList, "JobsOutForm", tr("Out on Jobs")), rows_(std::make_shared<OutRows>(OutColumns(session))) {
  setWindowIcon(Icon("Job"));
  Form form(*this);
  form.Wide(count_ = form.Label("lblCount"));
  list_ = form.Table("fgOut");
  list_->ShowFilter(tr("Filter"));
  list_->setAccessibleName(tr("Out on Jobs"));
  list_->SetColumns(rows_->Columns());
  list_->SetSource(rows_);
  list_->SetEmptyText(tr("No open Job has anything out"));
  form.Wide(list_, 1);
  form.ButtonsWithoutDefault({form.Button("cmdClose", tr("Close")), print_ = form.Button("cmdPrint", tr("&Print")),
                              open_ = form.Button("cmdOpen", tr("&Open the Job"))});
  connect(list_, &Grid::RowActivated, this, [this] { cmdOpen_Click(); });
  connect(list_, &Grid::CurrentRowChanged, this, [this] { Changed(); });
  ListLines();
  list_->setFocus();
}

void JobsOutForm::OnChanges(const std::vector<Change>& changes) {
  if (session.DataFileDB && std::ranges::any_of(changes, [](const Change& change) {
        return change.kind == Change::Kind::Job || change.kind == Change::Kind::DatabaseList;
      }))
    ListLines();
}

void JobsOutForm::ListLines() {
  rows_->rows = ReadOut(session);
  list_->Refresh();
  count_->setText(rows_->Rows() == 1
                      ? tr("1 container is still out on an open Job")
                      : tr("%1 containers are still out on open Jobs, the oldest first").arg(rows_->Rows()));
  if (list_->CurrentRow() < 0 && !list_->ShownRows().empty()) list_->SetCurrentRow(list_->ShownRows().front());
  Changed();
}

void JobsOutForm::UpdateEnabled() {
  if (print_ == nullptr) return;
  print_->setEnabled(CanPrint(windows) && rows_->Rows() > 0);
  open_->setEnabled(list_->CurrentRow() >= 0);
}

void JobsOutForm::cmdOpen_Click() {
  const int row = list_->CurrentRow();
  if (row >= 0) OpenRow(windows, rows_->Targets(row).front());
}

void JobsOutForm::cmdPrint_Click() {
  PrintSheet(windows, Sheet::Of(U8(tr("Out on Jobs")), ListJobsOut(session)));
}

}  // namespace vellumark::desktop
