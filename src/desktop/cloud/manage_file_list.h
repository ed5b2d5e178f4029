#pragma once

#include "desktop/cloud/file_rows.h"
#include "desktop/kit/window.h"

namespace vellumark::desktop {

/// What a window that lists and deletes files of a folder at the host is about.
struct ManagedFiles {
  std::string window;
  std::string splash;  ///< shown while the list is retrieved
  CloudTask task;
  QString title;
  QString hint;
  QString one;   ///< "1 backup"
  QString many;  ///< "%1 backups"
  QString note;  ///< the caption of what else is known of a file; empty: nothing
  std::function<CloudWork(CloudFiles into)> list;
  std::function<CloudWork(std::vector<CloudFile> files)> remove;
  QString where;  ///< they are deleted from
};

/// The files of a folder at the host; those with a check are deleted.
class CloudManageFileList : public Dialog {
  Q_OBJECT

 public:
  CloudManageFileList(WindowList& windowList, QWidget* owner, ManagedFiles managed);
  int exec() override;
  void UpdateEnabled() override;

 public Q_SLOTS:
  void cmdDelete_Click();
  void cmdSelectAll_Click();
  void cmdRefresh_Click();

 private:
  bool Retrieve();
  void ShowFiles();
  QString Count(std::size_t files) const { return files == 1 ? managed_.one : managed_.many.arg(files); }

  ManagedFiles managed_;
  std::shared_ptr<FileRows> rows_;
  CheckedList* list_;
  QLabel* count_;
  CommandButton* delete_;
  CommandButton* selectAll_;
};

}  // namespace vellumark::desktop
