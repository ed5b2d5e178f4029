#include "desktop/backup/repair_form.h"

#include <optional>

#include "core/shell/repairs.h"
#include "desktop/datafile/file_windows.h"
#include "desktop/kit/text.h"

namespace vellumark::desktop {

RepairForm::RepairForm(WindowList& windowList, QWidget* owner, StartupWindows& startup)
    : Dialog(windowList, owner, "RepairForm", tr("Repair Data File")),
      startup_(startup),
      lines_(std::make_shared<RecordRows<StepLineOf>>(StepColumns())) {}

int RepairForm::exec() {
  std::optional<RepairReport> report;
  WithFiles(*this, tr("Repair Data File"), [&] {
    const auto wait = Wait(WaitKind::WaitingForm_NoCancel, tr("Repair Data File"));
    auto repaired = RepairDataFile(session, startup_, [this] { return windows.CloseChildWindows(); });
    if (FormHost::Accepted(repaired)) report = *std::move(repaired);
  });
  if (!report) return QDialog::Rejected;
  lines_->rows = LinesOf(*report);
  if (lines_->rows.empty()) return QDialog::Accepted;
  Build(*report);
  return Dialog::exec();
}

void RepairForm::Build(const RepairReport& report) {
  Form form(*this);
  Paragraph(form,
            report.lost.empty() ? tr("Everything that the file held could be saved.")
                                : tr("Not all of the file could be saved: what is lost comes first."),
            "lblOutcome");
  QuietParagraph(
      form,
      tr("The file as it was, photos that no Design names and this report are in\n%1").arg(Q(report.kept.string())),
      "lblKept");
  Grid* grid = form.Table("fgRepair");
  grid->SetColumns(lines_->Columns());
  grid->ShowFilter(tr("Filter"));
  form.Wide(grid, 1);
  grid->SetSource(lines_);
  form.Buttons({form.Button("cmdClose", tr("Close"))});
  resize(960, 520);
}

}  // namespace vellumark::desktop
