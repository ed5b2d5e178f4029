#include "desktop/settings/drive_folder.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QStorageInfo>

#include "desktop/kit/form.h"
#include "desktop/kit/text.h"

namespace vellumark::desktop {
namespace {

QString tr(const char* text) {
  return QCoreApplication::translate("DriveFolder", text);
}

bool IsFolder(const QString& folder) {
  return !folder.isEmpty() && QFileInfo(folder).isDir();
}

}  // namespace

DriveFolder::DriveFolder(Form& form, QString standard, Browse browse) : standard_(std::move(standard)) {
  drive_ = form.Combo("cmbDrive");
  refresh_ = form.Button("cmdRefresh", tr("Drive &Refresh"), [this] { Refresh(); });
  form.Row(tr("Dri&ve"), {drive_, refresh_});
  folder_ = form.Text("txtFolder");
  browse_ = form.Button("cmdBrowse", tr("&Browse ..."), [this, browse = std::move(browse)] {
    const QString chosen = browse(QDir::fromNativeSeparators(folder_->text()));
    if (!chosen.isEmpty()) Want(chosen);
  });
  form.Row(tr("&Folder"), {folder_, browse_});
  // Only folders that are there can be chosen, so the field is not typed into.
  folder_->setReadOnly(true);
  folder_->setMinimumWidth(320);
  folder_->Means("BackupFileLocation");
  drive_->DoNotTrack();
  drive_->setMinimumWidth(200);
  drive_->OnChosen([this](int) { Want(drive_->currentData().toString()); });
  ListDrives();
}

void DriveFolder::ListDrives() {
  drive_->clear();
  for (const QStorageInfo& drive : QStorageInfo::mountedVolumes()) {
    if (!drive.isValid() || !drive.isReady() || drive.isReadOnly()) continue;
    const QString path = QDir::toNativeSeparators(drive.rootPath());
    drive_->addItem(drive.name().isEmpty() ? path : QString("%1  (%2)").arg(path, drive.name()), drive.rootPath());
  }
}

void DriveFolder::Show(const QString& folder) {
  const QString shown = IsFolder(folder) ? folder : standard_;
  folder_->SetText(U8(QDir::toNativeSeparators(shown)));
  drive_->setCurrentIndex(drive_->findData(QStorageInfo(shown).rootPath()));
}

void DriveFolder::Want(const QString& folder) {
  wanted_ = folder;
  Show(folder);
}

void DriveFolder::Refresh() {
  ListDrives();
  Show(IsFolder(wanted_) ? wanted_ : QDir::fromNativeSeparators(folder_->text()));
}

bool DriveFolder::IsThere() {
  if (IsFolder(QDir::fromNativeSeparators(folder_->text()))) return true;
  Refresh();
  return false;
}

void DriveFolder::SetEnabled(bool enabled) {
  drive_->setEnabled(enabled);
  refresh_->setEnabled(enabled);
  folder_->setEnabled(enabled);
  browse_->setEnabled(enabled);
}

}  // namespace vellumark::desktop
