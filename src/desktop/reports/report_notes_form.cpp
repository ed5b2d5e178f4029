#include "desktop/reports/report_notes_form.h"

#include "desktop/kit/text.h"

namespace vellumark::desktop {

ReportNotesForm::ReportNotesForm(WindowList& windowList, QWidget* owner)
    : Dialog(windowList, owner, "ReportNotesForm", tr("Notes")) {
  Form form(*this);
  notes_ = form.Note("txtNotes", 10);
  notes_->setAccessibleName(tr("Notes"));
  form.Wide(notes_, 1);
  form.Buttons({form.Button("cmdSave", tr("&Save")), form.Button("cmdCancel", tr("Cancel"))});
  resize(520, 360);
}

void ReportNotesForm::OnOpen(const Arguments& arguments) {
  setWindowTitle(Q(arguments.Text("Title")));
  notes_->SetText(arguments.Text("Notes"));
  keep_ = arguments.Get<KeepText>("Keep");
}

void ReportNotesForm::cmdSave_Click() {
  if (Accepted(keep_(notes_->Text()))) accept();
}

}  // namespace vellumark::desktop
