#include "desktop/backup/backup_forms.h"

#include <QDir>
#include <QFileInfo>
#include <QLabel>
#include <QStandardPaths>

#include "core/session/settings.h"
#include "core/shell/backups.h"
#include "desktop/datafile/file_windows.h"
#include "desktop/kit/text.h"

namespace vellumark::desktop {
namespace {

// Waits, and tells what went wrong; true when the set was made.
bool BackUp(Dialog& dialog, const QString& folder) {
  bool made = false;
  WithFiles(dialog, Dialog::tr("Backup"), [&] {
    made = dialog.FormHost::Accepted(BackUpToFolder(dialog.session, U8(folder)));
  });
  return made;
}

QString ExistingFolder(const std::string& folder, const QString& otherwise) {
  return !folder.empty() && QFileInfo(Q(folder)).isDir() ? Q(folder) : otherwise;
}

QStringList DayNumbers() {
  QStringList days;
  for (int day = 1; day <= 30; ++day) days += QString::number(day);
  return days;
}

}  // namespace

BackupFileLocationForm::BackupFileLocationForm(WindowList& windowList, QWidget* owner, FileChooser choose)
    : Dialog(windowList, owner, "BackupFileLocationForm", tr("Backup")), choose_(std::move(choose)) {
  Form form(*this);
  Paragraph(form, tr("Save backup to an external hard drive,  flash disk or a network drive."));
  QuietParagraph(form, tr("The backup holds the Data File, its photos, and the settings and label layouts of this computer. It is "
                          "opened and checked after it was written."));
  form.Buttons({form.Button("cmdContinue", tr("C&ontinue")), form.Button("cmdCancel", tr("Cancel"))});
  setMinimumWidth(480);
  FitHeight(*this);
}

void BackupFileLocationForm::cmdContinue_Click() {
  FileChoice choice{tr("Select Location to Save Backup"), {}, {}, {}};
  choice.onlyFolder = true;
  choice.folder = ExistingFolder(GetSetting(session, setting::BackupRestoreFileLocation), QDir::rootPath());
  const QString folder = choose_(choice, this);
  if (!folder.isEmpty() && BackUp(*this, folder)) accept();
}

BackupRemovableForm::BackupRemovableForm(WindowList& windowList, QWidget* owner, FileChooser choose)
    : Dialog(windowList, owner, "BackupRemovableForm", tr("Backup Datafile To..")) {
  Form form(*this);
  const QString documents = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
  folder_.emplace(form, QFileInfo(documents).isDir() ? documents : QDir::homePath(),
                  [this, choose = std::move(choose)](const QString& from) {
                    FileChoice choice{tr("Select Location to Save Backup"), {}, {}, from};
                    choice.onlyFolder = true;
                    return choose(choice, this);
                  });
  form.Buttons({form.Button("cmdContinue", tr("C&ontinue")), form.Button("cmdCancel", tr("Cancel"))});
  setMinimumWidth(560);
  FitHeight(*this);
}

void BackupRemovableForm::OnOpen(const Arguments&) {
  const QString stored = Q(GetSetting(session, setting::BackupFileLocation));
  folder_->Want(stored);
  if (!stored.isEmpty() && !QFileInfo(stored).isDir()) TellNotFound(stored);
}

void BackupRemovableForm::TellNotFound(const QString& folder) {
  session.prompt.Tell(U8(tr("Backup location not found")),
                      U8(tr("%1\n\n1) Insert the external storage device of this location, press Drive Refresh.\n"
                            "2) Choose another folder.\n3) Insert new external storage device, press Drive Refresh, create a "
                            "new backup location.")
                             .arg(QDir::toNativeSeparators(folder))),
                      vellumark::Icon::Exclamation);
}

void BackupRemovableForm::cmdContinue_Click() {
  // A stick that was pulled out meanwhile: its folder must not be made on the disk of the computer.
  const QString folder = QDir::fromNativeSeparators(folder_->Field().text());
  if (!folder_->IsThere()) return TellNotFound(folder);
  if (!BackUp(*this, folder)) return;
  StoreSettings(session, {setting::BackupFileLocation.To(U8(folder))});
  accept();
}

BackupReminderForm::BackupReminderForm(WindowList& windowList, QWidget* owner)
    : Dialog(windowList, owner, "BackupReminderForm", tr("Backup Reminder")) {
  Form form(*this);
  last_ = Paragraph(form, {}, "lblLastBackup");
  form.Row(tr("Backup the Data File now?"),
           now_ = form.Radio("OptNow", {{"OptYes", tr("&Yes")}, {"OptNo", tr("&No")}}, Qt::Horizontal));
  form.Row(tr("&Days to remind"), days_ = form.Combo("cmbDays", DayNumbers()));
  form.Row(dontShow_ = form.Check("chkDontShow", tr("Don't &Show Backup Reminder")));
  form.Buttons({form.Button("cmdOK", tr("OK"))});
  now_->Choose(0);
  setMinimumWidth(420);
  FitHeight(*this);
}

void BackupReminderForm::OnOpen(const Arguments&) {
  const auto due = DueBackupReminder(session);
  const auto last = due ? due->LastBackupDate : std::nullopt;
  last_->setText(last ? tr("The last backup was on ") +
                            locale().toString(QDate(last->year, last->month, last->day), QLocale::ShortFormat)
                      : tr("A backup has never been performed for this file."));
  days_->setCurrentIndex((due ? due->DaysToRemindBackup : 1) - 1);
  FitHeight(*this);
}

void BackupReminderForm::UpdateEnabled() {
  const bool remind = !dontShow_->isChecked();
  now_->setEnabled(remind);
  days_->setEnabled(remind);
}

void BackupReminderForm::cmdOK_Click() {
  const bool dontShow = dontShow_->isChecked();
  const bool backsUp = !dontShow && now_->Chosen() == 0;
  StoreReminderAnswer(session, {dontShow, backsUp, days_->currentIndex() + 1});
  if (backsUp) windows.RunDialog("BackupRemovableForm");
  accept();
}

void BackupReminderForm::reject() {
  StoreReminderAnswer(session, {false, false, days_->currentIndex() + 1});
  Dialog::reject();
}

}  // namespace vellumark::desktop
