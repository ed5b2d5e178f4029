// What the Batch Window prints.

#include "core/batch/ticket.h"
#include "core/labels/batch_containers.h"
#include "desktop/batch/batch_form.h"
#include "desktop/batch/batch_form_took.h"
#include "desktop/kit/print_label.h"
#include "desktop/kit/print_sheet.h"

namespace vellumark::desktop {

void BatchForm::cmdPrint_Click() {
  if (!FieldsEntered()) return;
  const Result<Sheet> ticket = BatchTicket(session, record_);
  if (Took(ticket)) PrintSheet(windows, *ticket);
}

void BatchForm::cmdPrintLabel_Click() {
  std::vector<LabelData> labels = LabelsOfContainers(session, LabelledBatch());
  if (!labels.empty()) OpenLabelForm(windows, std::move(labels));
}

void BatchForm::cmdPrintRecList_Click() {
  if (!FieldsEntered()) return;
  const Result<Sheet> list = RecycleListSheet(session, record_.work);
  if (Took(list)) PrintSheet(windows, *list);
}

void BatchForm::cmdPrintMultiple_Click() {
  windows.OpenForm("ReportsForm", {{"Pane", "lstBatchReports"}});
}

void BatchForm::PrintChange(const Overpour& poured) {
  if (poured.printDetail && CanPrint(windows)) PrintSheet(windows, ChangeSheet(record_, poured.changes));
}

}  // namespace vellumark::desktop
