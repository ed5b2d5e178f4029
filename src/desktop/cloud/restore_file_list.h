#pragma once

#include "core/shell/startup.h"
#include "desktop/cloud/file_rows.h"
#include "desktop/kit/window.h"

namespace vellumark::desktop {

/// The backups of the account, the latest first, of which one is restored: its Data File, or its Support Files. Opened
/// with {"Name", backup} it goes on with that one and asks for no choice.
class CloudRestoreFileList : public Dialog {
  Q_OBJECT

 public:
  CloudRestoreFileList(WindowList& windowList, QWidget* owner, const QString& name, CloudTask task, StartupWindows& startup);
  void OnOpen(const Arguments& arguments) override;
  int exec() override;
  void UpdateEnabled() override;

 public Q_SLOTS:
  void cmdContinue_Click();

 private:
  bool Restore(const std::string& name);

  CloudTask task_;
  StartupWindows& startup_;
  std::shared_ptr<FileChoiceRows> rows_;
  std::string name_;
  Grid* grid_;
  CommandButton* continue_;
};

}  // namespace vellumark::desktop
