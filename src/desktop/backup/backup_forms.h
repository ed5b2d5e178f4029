#pragma once

#include <optional>

#include "desktop/settings/drive_folder.h"
#include "desktop/datafile/file_choice.h"
#include "desktop/kit/window.h"

namespace vellumark::desktop {

/// Backup to a folder that is chosen behind Continue.
class BackupFileLocationForm : public Dialog {
  Q_OBJECT

 public:
  BackupFileLocationForm(WindowList& windowList, QWidget* owner, FileChooser choose);

 public Q_SLOTS:
  void cmdContinue_Click();

 private:
  FileChooser choose_;
};

/// Backup to the folder of the reminder, which can be changed here.
class BackupRemovableForm : public Dialog {
  Q_OBJECT

 public:
  BackupRemovableForm(WindowList& windowList, QWidget* owner, FileChooser choose);
  void OnOpen(const Arguments& arguments) override;

 public Q_SLOTS:
  void cmdContinue_Click();

 private:
  void TellNotFound(const QString& folder);

  std::optional<DriveFolder> folder_;
};

/// Whether the Data File is to be backed up now, asked when the program closes.
class BackupReminderForm : public Dialog {
  Q_OBJECT

 public:
  BackupReminderForm(WindowList& windowList, QWidget* owner);
  void UpdateEnabled() override;
  void OnOpen(const Arguments& arguments) override;
  /// Going away without an answer waits for the interval too.
  void reject() override;

 public Q_SLOTS:
  void cmdOK_Click();

 private:
  QLabel* last_;
  ComboField* days_;
  RadioField* now_;
  CheckField* dontShow_;
};

}  // namespace vellumark::desktop
