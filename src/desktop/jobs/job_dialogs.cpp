#include "desktop/jobs/job_dialogs.h"

#include "core/jobs/job_bookings.h"
#include "core/jobs/job_numbers.h"
#include "core/jobs/job_stock.h"
#include "desktop/jobs/hint_pages.h"
#include "desktop/kit/job_box.h"
#include "desktop/kit/text.h"

namespace vellumark::desktop {

NewJobNumberForm::NewJobNumberForm(WindowList& windowList, QWidget* owner)
    : Dialog(windowList, owner, "NewJobNumberForm", tr(" New Job Number")) {
  Form form(*this);
  oldCaption_ = form.Row(tr("Job Number"), oldNumber_ = form.Value("lblOldNumber", 1));
  number_ = form.Text("txtJobNumber", TextRule::Any(kJobNumberLength));
  number_->Means("JobNumber");
  form.Row(tr("&New Job Number"), number_);
  form.Buttons({form.Button("cmdSave", tr("&Save")), form.Button("cmdCancel", tr("Cancel"))});
  setMinimumWidth(440);
}

void NewJobNumberForm::OnOpen(const Arguments& arguments) {
  if (arguments.Has("JobNumber")) renamed_ = arguments.Text("JobNumber");
  oldCaption_->setVisible(!renamed_.empty());
  oldNumber_->setVisible(!renamed_.empty());
  if (renamed_.empty()) return;
  setWindowTitle(tr("Rename Job"));
  oldNumber_->SetText(renamed_);
  number_->SetText(renamed_);
  number_->selectAll();
}

void NewJobNumberForm::cmdSave_Click() {
  const std::string typed = number_->Text();
  if (renamed_.empty()) {
    const auto made = CheckNewJobNumber(session, typed);
    if (!Accepted(made)) return;
    result.Set("JobNumber", *made);
  } else {
    if (!Accepted(RenameJob(session, renamed_, typed))) return;
    result.Set("JobNumber", ReadJobNumber(typed));
  }
  accept();
}

JobAddItem_Help::JobAddItem_Help(WindowList& windowList, QWidget* owner)
    : Dialog(windowList, owner, "JobAddItem_Help", tr("Add Job Item - Help")) {
  const std::vector<HintPage> pages{
      {tr("&Color"), tr("1  Choose the Database and type the color: a Basic Color, an Additive or a Master Formula.\n"
                        "2  A name that is both is asked about.\n"
                        "3  Or choose a Design first: a click on a line of its colors takes that color.")},
      {tr("&Amount"),
       tr("1  Type what the Job takes and press Oldest first: the lots are marked by their date.\n"
          "2  Or mark rows by a click on their box, or with the space bar.\n"
          "3  Another amount for a row: choose it, type the amount, press Update.\n"
          "Lots on consignment belong to the supplier and are not offered.")},
      {tr("C&osts"), tr("What a Master Formula costs and emits in a Job is chosen under Costs: of its lot, its purchase "
                        "cost, the cost of its basics, or nothing. The choice stays until it is changed.\n"
                        "A Basic Color counts with its Purchase Cost, VOC and HAP.")},
      {tr("A&dding"), tr("Add Item takes the amounts from stock and writes a line of the Job for each row that is marked.\n"
                         "The window stays open for the next color.\n"
                         "What comes back later: set Qty Used of the line in the Job Window to what was really used.")},
  };
  Form form(*this);
  AddHintPages(form, "tabHelp", pages);
  form.Buttons({form.Button("cmdClose", tr("Close"))});
  resize(680, 320);
}

JobBookingsForm::JobBookingsForm(WindowList& windowList, QWidget* owner)
    : Dialog(windowList, owner, "JobBookingsForm", tr("Bookings of the Job")),
      rows_(std::make_shared<RecordRows<StockLine>>(JobBookingColumns(session))) {
  Form form(*this);
  form.Wide(title_ = form.Label("lblTitle"));
  list_ = form.Table("fgBookings");
  list_->setAccessibleName(tr("Bookings of the Job"));
  list_->SetColumns(rows_->Columns());
  list_->SetSource(rows_);
  list_->SetEmptyText(tr("Nothing was booked"));
  form.Wide(list_, 1);
  form.ButtonsWithoutDefault(
      {form.Button("cmdClose", tr("Close")), undo_ = form.Button("cmdUndo", tr("&Take back"))});
  connect(list_, &Grid::CurrentRowChanged, this, [this] { Changed(); });
  resize(1016, 480);
}

void JobBookingsForm::OnOpen(const Arguments& arguments) {
  job_ = arguments.Text("JobNumber");
  title_->setText(tr("What Job %1 took from stock and gave back, the latest first").arg(Q(job_)));
  ListLines();
  list_->setFocus();
}

void JobBookingsForm::ListLines() {
  list_->SetCurrentRow(-1);
  rows_->rows = JobBookings(session, job_);
  list_->Refresh();
  if (!rows_->rows.empty()) list_->SetCurrentRow(0);
  Changed();
}

void JobBookingsForm::UpdateEnabled() {
  if (undo_ != nullptr) undo_->setEnabled(list_->CurrentRow() >= 0 && !session.ArchiveView);
}

void JobBookingsForm::cmdUndo_Click() {
  const int row = list_->CurrentRow();
  if (row < 0) return;
  const StockLine& line = rows_->rows.at(static_cast<std::size_t>(row));
  const QString text = tr("Take this booking back?\n\n%1  %2\n%3").arg(Q(line.Color_Name), Q(line.LotNumber), Q(line.reason));
  if (!session.prompt.Ask("Job Booking", U8(text), Answer::No)) return;
  if (Accepted(UndoJobBooking(session, line.id))) ListLines();
}

}  // namespace vellumark::desktop
