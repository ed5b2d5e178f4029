#include "desktop/backup/check_form.h"

#include <QLabel>

#include "core/session/acts.h"
#include "core/shell/repairs.h"
#include "desktop/datafile/file_windows.h"
#include "desktop/kit/text.h"

namespace vellumark::desktop {

CheckForm::CheckForm(WindowList& windowList, QWidget* owner)
    : Dialog(windowList, owner, "CheckForm", tr("Check Data File")),
      lines_(std::make_shared<RecordRows<CheckFault>>(FaultColumns())) {}

int CheckForm::exec() {
  bool looked = false;
  WithFiles(*this, windowTitle(), [&] {
    const auto wait = Wait(WaitKind::WaitingForm, tr("Checking the Data File"));
    found_ = CheckOpenDataFile(session);
    looked = true;
  });
  if (!looked || found_.Sound()) return QDialog::Rejected;
  Build();
  const int answer = Dialog::exec();
  if (repair_)
    if (const auto repaired = windows.RunDialog("RepairForm"); repaired && repaired->Has("exit")) result.Set("exit", true);
  return answer;
}

void CheckForm::Build() {
  Form form(*this);
  outcome_ = Paragraph(form, {}, "lblOutcome");
  QuietParagraph(form, tr("Repair mends what can be mended, and keeps the file as it was in a folder beside it. Accept takes rows "
                          "that somebody changed on purpose with another program as they stand."),
                 "lblWays");
  grid_ = form.Table("fgFaults");
  grid_->SetColumns(lines_->Columns());
  grid_->ShowFilter(tr("Filter"));
  form.Wide(grid_, 1);
  // Whoever presses Enter without reading changes nothing.
  form.ButtonsWithoutDefault({mend_ = form.Button("cmdRepair", tr("&Repair")),
                              accept_ = form.Button("cmdAccept", tr("&Accept changes")),
                              form.Button("cmdClose", tr("&Close"))});
  resize(960, 520);
  Show();
}

void CheckForm::Show() {
  outcome_->setText(found_.complete ? tr("%1 is not sound:").arg(Q(session.DataFileName))
                                    : tr("The check was stopped. What it found until then:"));
  lines_->rows = found_.faults;
  grid_->SetSource(lines_);
  Changed();
}

void CheckForm::UpdateEnabled() {
  if (grid_ == nullptr) return;
  const bool writable = !session.ArchiveView;
  accept_->setEnabled(writable && found_.complete && HasHandEdits(found_) && MayDo(session, Act::DataFiles));
  mend_->setEnabled(writable && MayDo(session, Act::Work) && windows.Knows("RepairForm"));
}

void CheckForm::cmdAccept_Click() {
  WithFiles(*this, windowTitle(), [&] {
    const auto wait = Wait(WaitKind::WaitingForm, tr("Checking the Data File"));
    auto accepted = AcceptHandEdits(session);
    if (!FormHost::Accepted(accepted)) return;
    found_ = std::move(accepted->rest);
    if (found_.Sound() && found_.complete) return Dialog::accept();
    Show();
  });
}

// The repair closes the windows and asks; this one is out of its way by then.
void CheckForm::cmdRepair_Click() {
  repair_ = true;
  accept();
}

}  // namespace vellumark::desktop
