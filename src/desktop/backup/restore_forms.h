#pragma once

#include <vector>

#include "core/backup/backup_days.h"
#include "core/backup/restore.h"
#include "core/shell/startup.h"
#include "desktop/datafile/file_choice.h"
#include "desktop/kit/window.h"

class QLabel;
class QTreeWidget;

namespace vellumark::desktop {

/// What both restores share: the warning, and the way to the restored file.
class RestoreForm : public Dialog {
  Q_OBJECT

 protected:
  RestoreForm(WindowList& windowList, QWidget* owner, const std::string& name, StartupWindows& startup);
  void Warn(Form& form);
  void Restore(const std::filesystem::path& source, RestoreFrom from);

 private:
  StartupWindows& startup_;
};

/// Restore from a Data File that is chosen behind Continue.
class RestoreFileLocationForm : public RestoreForm {
  Q_OBJECT

 public:
  RestoreFileLocationForm(WindowList& windowList, QWidget* owner, StartupWindows& startup, FileChooser choose);

 public Q_SLOTS:
  void cmdContinue_Click();

 private:
  FileChooser choose_;
};

/// Restore of one of the days that one can go back to, the latest first, with what each holds and where it is kept.
class RestoreAutomaticForm : public RestoreForm {
  Q_OBJECT

 public:
  RestoreAutomaticForm(WindowList& windowList, QWidget* owner, StartupWindows& startup);
  void UpdateEnabled() override;

 public Q_SLOTS:
  void cmdContinue_Click();
  /// Reads the chosen backup again, all of it.
  void cmdVerify_Click();
  /// What it holds that is not here, to be taken back singly.
  void cmdLook_Click();
  /// Asks the Cloud account what it has.
  void cmdCloud_Click();

 private:
  void ListDays();
  const BackupDay* Chosen() const;

  std::vector<BackupDay> days_;
  QTreeWidget* list_;
  QLabel* notes_;
  CommandButton* continue_;
  CommandButton* verify_;
  CommandButton* look_;
};

/// Asks for one Support File of a backup; those of its folder are restored. There is nothing else to be seen.
class RestoreSupportFilesChoice : public Dialog {
  Q_OBJECT

 public:
  RestoreSupportFilesChoice(WindowList& windowList, QWidget* owner, const std::string& name, bool automatic,
                            FileChooser choose);
  int exec() override;

 private:
  bool automatic_;
  FileChooser choose_;
};

}  // namespace vellumark::desktop
