#include "desktop/settings/reminders_form.h"

#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QLayout>
#include <QStorageInfo>

#include "core/session/options.h"
#include "desktop/kit/text.h"

namespace vellumark::desktop {
namespace {

constexpr int kLongestReminder = 30;

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
  form.Row(tr("Dri&ve"), {drive_ = form.Combo("cmbDrive"), form.Button("cmdRefresh", tr("Drive &Refresh"))});
  form.Row(tr("&Folder"), {folder_ = form.Text("txtFolder"), form.Button("cmdBrowse", tr("&Browse ..."))});
  form.Heading(tr("Inventory Report - Lotted Inventory"));
  form.Row(report_ = form.Check("chkInvLot_InvReportReminder",
                                tr("Activate Lotted Inventory Notification - Inventory Report")));
  form.Heading(tr("Batch Window - Lot Numbering"));
  form.Row(lotNumbers_ = form.Check("chkBatchLotNumReminder", tr("Activate assigning Lot Numbers to Batches.")));
  form.Buttons({form.Button("cmdOK", tr("OK")), form.Button("cmdCancel", tr("Cancel"))});
  layout()->setSizeConstraint(QLayout::SetFixedSize);

  // Only folders that are there can be chosen, so the field is not typed into.
  folder_->setReadOnly(true);
  folder_->setMinimumWidth(320);
  folder_->Means("BackupFileLocation");
  drive_->DoNotTrack();
  drive_->setMinimumWidth(200);
  drive_->OnChosen([this](int) { ShowFolder(drive_->currentData().toString()); });

  const Reminders reminders = ReadReminders(session);
  onOff_->Choose(reminders.shutdownBackup ? 0 : 1);
  days_->setCurrentIndex(reminders.DaysToRemindBackup - 1);
  report_->setChecked(reminders.LottedInvReminder);
  lotNumbers_->setChecked(reminders.BatchLotNumReminder);
  ListDrives();
  ShowFolder(Q(reminders.BackupFileLocation));
}

void RemindersForm::UpdateEnabled() {
  const bool on = onOff_->Chosen() == 0;
  for (const char* name : {"cmbDays", "cmbDrive", "cmdRefresh", "txtFolder", "cmdBrowse"})
    findChild<QWidget*>(name)->setEnabled(on);
}

void RemindersForm::ListDrives() {
  drive_->clear();
  for (const QStorageInfo& drive : QStorageInfo::mountedVolumes()) {
    if (!drive.isValid() || !drive.isReady() || drive.isReadOnly()) continue;
    const QString path = QDir::toNativeSeparators(drive.rootPath());
    drive_->addItem(drive.name().isEmpty() ? path : QString("%1  (%2)").arg(path, drive.name()), drive.rootPath());
  }
}

void RemindersForm::ShowFolder(const QString& folder) {
  const QString shown = !folder.isEmpty() && QFileInfo(folder).isDir() ? folder : QDir::homePath();
  folder_->SetText(U8(QDir::toNativeSeparators(shown)));
  drive_->setCurrentIndex(drive_->findData(QStorageInfo(shown).rootPath()));
}

void RemindersForm::cmdBrowse_Click() {
  const QString chosen =
      QFileDialog::getExistingDirectory(this, tr("Backup folder"), QDir::fromNativeSeparators(folder_->text()));
  if (!chosen.isEmpty()) ShowFolder(chosen);
}

void RemindersForm::cmdRefresh_Click() {
  ListDrives();
  ShowFolder(QDir::fromNativeSeparators(folder_->text()));
}

void RemindersForm::cmdOK_Click() {
  Reminders reminders;
  reminders.shutdownBackup = onOff_->Chosen() == 0;
  reminders.DaysToRemindBackup = days_->currentIndex() + 1;
  reminders.BackupFileLocation = folder_->Text();
  reminders.LottedInvReminder = report_->isChecked();
  reminders.BatchLotNumReminder = lotNumbers_->isChecked();
  if (Accepted(SaveReminders(session, reminders))) accept();
}

}  // namespace vellumark::desktop
