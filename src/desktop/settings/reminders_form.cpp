#include "desktop/settings/reminders_form.h"

#include <QDir>
#include <QFileDialog>
#include <QLayout>

#include "core/session/options.h"
#include "desktop/kit/text.h"

namespace vellumark::desktop {
namespace {


QStringList DayNumbers() {
  QStringList days;
  for (int day = 1; day <= kLongestReminder; ++day) days += QString::number(day);
  return days;
}

}  // namespace

RemindersForm::RemindersForm(WindowList& windowList, QWidget* owner)
    : Dialog(windowList, owner, "RemindersForm", tr("Reminders")) {
  Form form(*this);
  form.Heading(tr("Shutdown Backup"));
  form.Row(tr("Reminder"),
           onOff_ = form.Radio("OptOnOff", {{"OptOn", tr("O&n")}, {"OptOff", tr("O&ff")}}, Qt::Horizontal));
  form.Row(tr("&Days to remind"), days_ = form.Combo("cmbDays", DayNumbers()));
  folder_.emplace(form, QDir::homePath(), [this](const QString& from) {
    return QFileDialog::getExistingDirectory(this, tr("Backup folder"), from);
  });
  form.Heading(tr("Inventory Report - Lotted Inventory"));
  form.Row(report_ = form.Check("chkInvLot_InvReportReminder",
                                tr("Activate Lotted Inventory Notification - Inventory Report")));
  form.Heading(tr("Batch Window - Lot Numbering"));
  form.Row(lotNumbers_ = form.Check("chkBatchLotNumReminder", tr("Activate assigning Lot Numbers to Batches.")));
  form.Buttons({form.Button("cmdOK", tr("OK")), form.Button("cmdCancel", tr("Cancel"))});
  layout()->setSizeConstraint(QLayout::SetFixedSize);

  const Reminders reminders = ReadReminders(session);
  onOff_->Choose(reminders.shutdownBackup ? 0 : 1);
  days_->setCurrentIndex(reminders.DaysToRemindBackup - 1);
  report_->setChecked(reminders.LottedInvReminder);
  lotNumbers_->setChecked(reminders.BatchLotNumReminder);
  folder_->Want(Q(reminders.BackupFileLocation));
}

void RemindersForm::UpdateEnabled() {
  const bool on = onOff_->Chosen() == 0;
  days_->setEnabled(on);
  folder_->SetEnabled(on);
}

void RemindersForm::cmdOK_Click() {
  Reminders reminders;
  reminders.shutdownBackup = onOff_->Chosen() == 0;
  reminders.DaysToRemindBackup = days_->currentIndex() + 1;
  reminders.BackupFileLocation = folder_->Field().Text();
  reminders.LottedInvReminder = report_->isChecked();
  reminders.BatchLotNumReminder = lotNumbers_->isChecked();
  if (Accepted(SaveReminders(session, reminders))) accept();
}

}  // namespace vellumark::desktop
