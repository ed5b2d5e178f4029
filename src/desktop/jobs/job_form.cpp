#include "desktop/jobs/job_form.h"

#include <QApplication>
#include <QMenu>
#include <QTimer>
#include <algorithm>

#include "core/base/number.h"
#include "core/base/text.h"
#include "core/base/units.h"
#include "core/jobs/job_numbers.h"
#include "core/jobs/job_stock.h"
#include "core/labels/job_returns.h"
#include "core/session/rights.h"
#include "desktop/jobs/job_layout.h"
#include "desktop/jobs/open_forms.h"
#include "desktop/kit/job_box.h"
#include "desktop/kit/print_sheet.h"
#include "desktop/kit/record_fields.h"
#include "desktop/kit/text.h"
#include "desktop/reports/open_row.h"

namespace vellumark::desktop {

// ---- Which Job

void JobForm::OnOpen(const Arguments& arguments) {
  if (arguments.Has("JobNumber")) Show(arguments.Text("JobNumber"));
  if (!open_) number_->setFocus();
}

void JobForm::Show(const std::string& number) {
  open_ = !number.empty();
  job_ = open_ ? LoadJob(session, number) : Job{};
  rows_->ShowNext(job_.items);
  list_->SetEmptyText(open_ ? tr("No items yet: press Add Item, or make a Batch with this Job Number")
                            : tr("Type a Job Number, or a new one"));
  list_->Refresh();
  if (list_->CurrentRow() < 0 && !rows_->rows.empty()) {
    const std::vector<int>& shown = list_->ShownRows();
    if (!shown.empty()) list_->SetCurrentRow(shown.front());
  }
  number_->SetText(job_.JobNumber);
  ShowFigures();
}

// True when the box names the Job that is shown.
bool JobForm::EnterNumber() {
  const std::string number = number_->Number();
  if (open_ && EqualNoCase(number, job_.JobNumber)) {
    number_->SetText(job_.JobNumber);
    return true;
  }
  if (number.empty()) {
    number_->SetText(job_.JobNumber);
    return open_;
  }
  if (!JobIsThere(session, number)) {
    const auto free = CheckNewJobNumber(session, number);
    const auto writable = RequireWritable(session);
    if (!free || !writable || !AskForNewJob(session, number)) {
      number_->SetText(job_.JobNumber);
      number_->selectAll();
      if (!free) ShowRefusal(free.error());
      if (free && !writable) ShowRefusal(writable.error());
      return false;
    }
  }
  Show(number);
  return true;
}

void JobForm::Walk(bool forward) {
  const std::string next =
      forward ? NextJobNumber(session, job_.JobNumber) : PreviousJobNumber(session, job_.JobNumber);
  if (next.empty()) return QApplication::beep();
  Show(next);
}

void JobForm::cmdNew_Click() {
  if (const auto made = windows.RunDialog("NewJobNumberForm")) Show(made->Text("JobNumber"));
}

void JobForm::cmdRename_Click() {
  if (!MayChange()) return;
  if (const auto made = windows.RunDialog("NewJobNumberForm", {{"JobNumber", job_.JobNumber}}))
    Show(made->Text("JobNumber"));
}

// ---- What is shown

void JobForm::OnChanges(const std::vector<Change>& changes) {
  bool settings = false;
  for (const Change& change : changes) {
    settings = settings || change.kind == Change::Kind::Settings;
    if (change.kind == Change::Kind::Job && change.what == Change::What::Renamed &&
        EqualNoCase(change.name, job_.JobNumber))
      job_.JobNumber = change.newName;
  }
  if (settings && !InEdit()) {
    rows_->Define(JobColumns(session));
    if (JobLayoutDiffers(session, *list_)) LayOutJobs(session, *list_, *rows_);
    usedCaption_->setText(tr("Total Qty Used (%1)").arg(Q(UnitName(session.UMI))));
  }
  ExternalUpdateJob(job_.JobNumber);
}

void JobForm::ExternalUpdateJob(const std::string& number) {
  if (open_ && EqualNoCase(number, job_.JobNumber)) Reload();
}

void JobForm::Reload() {
  if (!session.DataFileDB || !open_) return;
  std::vector<JobRecord> items = JobItems(session, job_.JobNumber);
  if (InEdit() && !std::ranges::equal(items, rows_->rows, {}, &JobRecord::row, &JobRecord::row)) {
    // A row that goes would take the one that is typed into with it.
    reload_->start();
    return;
  }
  if (!InEdit()) {
    const QString typed = number_->text();
    const bool keeps = number_->hasFocus();
    Show(job_.JobNumber);
    if (keeps) number_->SetText(U8(typed));
    return;
  }
  job_ = LoadJob(session, job_.JobNumber);
  rows_->rows = job_.items;
  list_->View().viewport()->update();
  ShowFigures();
}

void JobForm::ShowFigures() {
  const bool there = !job_.items.empty();
  used_->SetText(there ? Fixed(job_.totals.QtyUsed, 3) : "");
  const bool prices = SeenBy(session).prices;
  cost_->setWordWrap(!prices);
  cost_->SetText(!prices ? "User Permissions - Price Blocked"
                 : there ? Fixed(job_.totals.Cost, session.DecimalPlaces)
                         : "");
  VOCs_->SetText(there ? Fixed(job_.totals.VOC, 3) : "");
  HAPs_->SetText(there ? Fixed(job_.totals.HAP, 3) : "");
  const JobRecord* item = CurrentItem();
  entered_->setText(item != nullptr ? MomentText(item->Date_Entered) : QString());
  completed_->setText(job_.Date_Completed ? DateText(job_.Date_Completed) : there ? tr("open") : QString());
  state_->setText(!open_                  ? QString()
                  : !there                ? tr("New Job")
                  : job_.items.size() == 1 ? tr("1 item")
                                          : tr("%1 items").arg(job_.items.size()));
  Changed();
}

void JobForm::UpdateEnabled() {
  if (addItem_ == nullptr) return;
  const bool there = !job_.items.empty();
  const bool writable = !session.ArchiveView;
  for (CommandButton* button : ofJob_) button->setEnabled(there && (writable || button == usage_));
  for (CommandButton* button : ofItem_) button->setEnabled(writable && CurrentItem() != nullptr);
  addItem_->setEnabled(open_ && writable);
  closeJob_->setVisible(!job_.Date_Completed);
  closeJob_->setEnabled(there && writable);
  reopen_->setVisible(job_.Date_Completed.has_value());
  reopen_->setEnabled(writable);
  print_->setEnabled(there && CanPrint(windows));
  codes_->setEnabled(print_->isEnabled());
}

bool JobForm::InEdit() const {
  const auto* editor = list_ == nullptr ? nullptr : list_->View().viewport()->findChild<TextField*>("txtEdit");
  return editor != nullptr && editor->isVisible();
}

bool JobForm::MayClose() {
  KeepJobLayout(session, *list_);
  return true;
}

const JobRecord* JobForm::CurrentItem() const {
  const int row = list_ == nullptr ? -1 : list_->CurrentRow();
  return row < 0 || row >= rows_->Rows() ? nullptr : &rows_->At(row);
}

std::vector<std::int64_t> JobForm::ChosenRows() const {
  std::vector<std::int64_t> rows;
  for (const int row : list_->SelectedRows()) rows.push_back(rows_->At(row).row);
  if (const JobRecord* item = CurrentItem(); rows.empty() && item != nullptr) rows.push_back(item->row);
  return rows;
}

bool JobForm::MayChange() {
  return EnterNumber() && Accepted(CheckInterlocks(OpenFormsOf(windows), "JobForm"));
}

// ---- Items

void JobForm::cmdAddItem_Click() {
  if (!MayChange()) return;
  const JobRecord* item = CurrentItem();
  windows.RunDialog("AddJobItemForm",
                    {{"JobNumber", job_.JobNumber}, {"DesignID", item == nullptr ? std::string() : item->DesignID}});
  windows.DeliverChanges();
}

void JobForm::cmdDeleteItem_Click() {
  if (!MayChange()) return;
  const JobRecord* item = CurrentItem();
  if (item == nullptr) return;
  static_cast<void>(Accepted(DeleteJobItem(session, item->row)));
  windows.DeliverChanges();
}

// After the editor has gone, since a question may come up.
void JobForm::TakeQtyUsed() {
  const auto [key, typed] = std::exchange(typed_, {});
  if (key == 0 || !session.DataFileDB) return;
  const auto allowed = CheckInterlocks(OpenFormsOf(windows), "JobForm");
  const auto set = allowed ? SetQtyUsed(session, key, typed) : Result<void>(std::unexpected(allowed.error()));
  if (set) {
    windows.DeliverChanges();
    return;
  }
  if (!set.error().declined) ShowRefusal(set.error());
  const int row = rows_->RowOf(key);
  if (row < 0) return;
  list_->SetCurrentRow(row);
  const QModelIndex index = list_->View().currentIndex().siblingAtColumn(static_cast<int>(JobColumn::QtyUsed));
  list_->View().setFocus();
  list_->View().setCurrentIndex(index);
  list_->View().edit(index);
}

void JobForm::OpenCell(int row, int column) {
  if (row < 0 || row >= rows_->Rows() || column < 0) return;
  const JobRecord item = rows_->At(row);
  constexpr int kTexts = static_cast<int>(JobColumn::UD_Text);
  constexpr int kNumbers = static_cast<int>(JobColumn::UD_Numeric);
  if (column >= kNumbers) return ChangeField(JobField::UserNumber, column - kNumbers);
  if (column >= kTexts) return ChangeField(JobField::UserText, column - kTexts);
  switch (static_cast<JobColumn>(column)) {
    case JobColumn::QtyUsed:
      return list_->View().edit(list_->View().currentIndex());
    case JobColumn::BatchNo:
      return OpenBatch(item);
    case JobColumn::Color_Name:
    case JobColumn::Color_Code:
      return OpenRow(windows, {.kind = item.Kind() == ColorKind::Mix ? RowTarget::Kind::Mix : RowTarget::Kind::Basic,
                               .database = item.Database,
                               .name = item.Color_Name});
    case JobColumn::DesignID:
    case JobColumn::DesignDesc:
      return ChangeField(JobField::DesignID, 0);
    case JobColumn::Date_Returned:
      return ChangeField(JobField::DateReturned, 0);
    case JobColumn::UnitCost:
    case JobColumn::TotalCost:
      return ChangeField(JobField::UnitCost, 0);
    case JobColumn::VOC:
    case JobColumn::TotalVOCs:
      return ChangeField(JobField::VOC, 0);
    case JobColumn::HAP:
    case JobColumn::TotalHAPs:
      return ChangeField(JobField::HAP, 0);
    default:
      QApplication::beep();
  }
}

void JobForm::OpenBatch(const JobRecord& item) {
  if (!item.IsOfBatch()) return QApplication::beep();
  OpenRow(windows, {.kind = RowTarget::Kind::Batch, .database = item.Database, .BatchNo = item.BatchNo});
}

void JobForm::ChangeField(JobField field, int number) {
  static constexpr std::pair<JobField, const char*> kDialogs[] = {
      {JobField::UnitCost, "UpdateJobCostModel"}, {JobField::VOC, "UpdateJobVOCModel"},
      {JobField::HAP, "UpdateJobHAPModel"},       {JobField::DesignID, "UpdateJobDesignID"},
      {JobField::UserText, "UpdateJobUDText"},    {JobField::UserNumber, "UpdateJobUDText"},
      {JobField::DateReturned, "JobsNewReturnDate"}};
  const auto* row = std::ranges::find(kDialogs, field, &std::pair<JobField, const char*>::first);
  ChangeField(row->second, field, {{"Number", number}, {"IsNumber", field == JobField::UserNumber}});
}

void JobForm::ChangeField(const char* dialog, JobField field, Arguments arguments) {
  const std::vector<std::int64_t> rows = ChosenRows();
  if (rows.empty() || !MayChange() || !Accepted(OpenJobChange(session, rows, field))) return;
  arguments.Set("Rows", rows).Set("JobNumber", job_.JobNumber);
  windows.RunDialog(dialog, arguments);
  windows.DeliverChanges();
}

// The column that the cursor stands in; a column that nothing is changed in asks for the rest.
void JobForm::cmdChange_Click() {
  if (CurrentItem() == nullptr) return;
  list_->setFocus();
  OpenCell(list_->CurrentRow(), list_->View().currentIndex().column());
}

void JobForm::AddToRowMenu(QMenu& menu) {
  const JobRecord* item = CurrentItem();
  if (item == nullptr) return;
  const auto add = [&](const QString& text, JobColumn column, bool enabled = true) {
    QAction* action = menu.addAction(text);
    action->setEnabled(enabled);
    connect(action, &QAction::triggered, this, [this, column] { OpenCell(list_->CurrentRow(), static_cast<int>(column)); });
  };
  const bool writable = !session.ArchiveView;
  add(tr("Open the Batch"), JobColumn::BatchNo, item->IsOfBatch());
  add(tr("Open the color"), JobColumn::Color_Name);
  QAction* design = menu.addAction(tr("Open the Design"));
  design->setEnabled(!item->DesignID.empty());
  connect(design, &QAction::triggered, this,
          [this, id = item->DesignID] { OpenRow(windows, {.kind = RowTarget::Kind::Design, .name = id}); });
  menu.addSeparator();
  add(tr("Change the Design ID"), JobColumn::DesignID, writable);
  add(tr("Change the Unit Cost"), JobColumn::UnitCost, writable);
  add(tr("Change the VOC"), JobColumn::VOC, writable);
  add(tr("Change the HAP"), JobColumn::HAP, writable);
  add(tr("Change the Date Returned"), JobColumn::Date_Returned, writable);
  QMenu* own = menu.addMenu(tr("Change the job's own texts and numbers"));
  own->setEnabled(writable);
  const std::vector<TableColumn> titles = JobTitles(session);
  for (int i = static_cast<int>(JobColumn::UD_Text); i < static_cast<int>(titles.size()); ++i)
    connect(own->addAction(Q(titles[static_cast<std::size_t>(i)].caption).replace('&', "&&")), &QAction::triggered,
            this, [this, i] { OpenCell(list_->CurrentRow(), i); });
}

// ---- The Job as a whole

void JobForm::cmdCloseJob_Click() {
  if (!MayChange()) return;
  windows.RunDialog("JobClosingDate", {{"JobNumber", job_.JobNumber}});
  windows.DeliverChanges();
}

void JobForm::cmdReopen_Click() {
  if (!MayChange()) return;
  static_cast<void>(Accepted(ReopenJob(session, job_.JobNumber)));
  windows.DeliverChanges();
}

void JobForm::cmdUndo_Click() {
  if (!MayChange()) return;
  windows.RunDialog("JobBookingsForm", {{"JobNumber", job_.JobNumber}});
  windows.DeliverChanges();
}

void JobForm::cmdUsage_Click() {
  windows.OpenForm("DetailedSpecificJobUsageForm", {{"JobNumber", job_.JobNumber}});
}

void JobForm::cmdOptions_Click() {
  KeepJobLayout(session, *list_);
  windows.RunDialog("Job_Options");
  windows.DeliverChanges();
}

void JobForm::cmdPrint_Click() {
  PrintSheet(windows, JobSheet(session, job_));
}

void JobForm::cmdBC_Report_Click() {
  const auto sheet = JobReturnsSheet(session, job_.JobNumber);
  if (Accepted(sheet)) PrintSheet(windows, *sheet);
}

}  // namespace vellumark::desktop
