#include "desktop/cloud/restore_file_list.h"

#include "core/shell/backups.h"
#include "core/shell/settings_restore.h"
#include "desktop/datafile/file_windows.h"
#include "desktop/kit/text.h"
#include "desktop/kit/wait_progress.h"

namespace vellumark::desktop {

CloudRestoreFileList::CloudRestoreFileList(WindowList& windowList, QWidget* owner, const QString& name, CloudTask task,
                                           StartupWindows& startup)
    : Dialog(windowList, owner, name, Q(RowOf(task).title)),
      task_(task),
      startup_(startup),
      rows_(std::make_shared<FileChoiceRows>()) {
  const bool dataFile = task == CloudTask::RestoreDataFile;
  Form form(*this);
  Paragraph(form, dataFile ? tr("Choose the backup that is to take the place of the current Data File.")
                           : tr("Choose the backup whose settings and label layouts are to be used on this computer."));
  if (dataFile) {
    Paragraph(form, tr("WARNING: All information in the current file will be lost!"), "lblWarning");
    QuietParagraph(form, tr("A copy of the current file and its photos is kept in a folder beside it."));
  }
  grid_ = form.Table("fgFiles");
  grid_->setAccessibleName(tr("Backups"));
  grid_->SetColumns(FileRows::Columns(tr("Proof")));
  grid_->SetSource(rows_);
  grid_->SetEmptyText(tr("No Cloud Backup on file."));
  form.Wide(grid_, 1);
  form.Buttons({continue_ = form.Button("cmdContinue", tr("C&ontinue")), form.Button("cmdCancel", tr("Cancel"))});
  connect(grid_, &Grid::CurrentRowChanged, this, [this] { Changed(); });
  connect(grid_, &Grid::RowActivated, this, [this] { cmdContinue_Click(); });
  resize(800, 520);
}

void CloudRestoreFileList::OnOpen(const Arguments& arguments) {
  if (arguments.Has("Name")) name_ = arguments.Text("Name");
}

int CloudRestoreFileList::exec() {
  if (!name_.empty()) return Restore(name_) ? QDialog::Accepted : QDialog::Rejected;
  bool may = false;
  WithFiles(*this, windowTitle(), [&] { may = FormHost::Accepted(RequireCloud(session)); });
  if (!may || !windows.RunDialog("CloudRetrieveBackupListSplashForm", {{"Work", ListBackups(rows_->files)}})) return Rejected;
  grid_->Refresh();
  if (rows_->Rows() > 0) grid_->SetCurrentRow(0);
  grid_->View().setFocus();
  return Dialog::exec();
}

void CloudRestoreFileList::UpdateEnabled() {
  continue_->setEnabled(grid_->CurrentRow() >= 0);
}

void CloudRestoreFileList::cmdContinue_Click() {
  if (grid_->CurrentRow() < 0) return;
  if (Restore(rows_->files->at(static_cast<std::size_t>(grid_->CurrentRow())).name)) accept();
}

bool CloudRestoreFileList::Restore(const std::string& name) {
  const auto fetched = std::make_shared<Fetched>();
  const bool dataFile = task_ == CloudTask::RestoreDataFile;
  const CloudWork work = dataFile ? FetchBackup(name, fetched) : FetchSupportFiles(name, fetched);
  if (!windows.RunDialog("Cloud_GetPutData_Form", {{"Task", task_}, {"Work", work}})) return false;
  bool restored = false;
  const WaitProgress::OfKind kind(windows.Wait(), WaitKind::Wait_RestoreData);
  WithFiles(*this, windowTitle(), [&] {
    restored = dataFile
                   ? FormHost::Accepted(RestoreDataFile(session, fetched->dataFile, RestoreFrom::Cloud, startup_))
                   : FormHost::Accepted(RestoreSupportFiles(session, fetched->supportFolder, RestoreFrom::Cloud));
  });
  return restored;
}

}  // namespace vellumark::desktop
