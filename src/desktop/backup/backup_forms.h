#pragma once

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
  void cmdCancel_Click() { reject(); }

 private:
  FileChooser choose_;
};

/// Backup to the folder of the reminder, which can be changed here.
class BackupRemovableForm : public Dialog {
  Q_OBJECT

 public:
  BackupRemovableForm(WindowList& windowList, QWidget* owner, FileChooser choose);

 public Q_SLOTS:
  void cmdBrowse_Click();
  void cmdContinue_Click();
  void cmdCancel_Click() { reject(); }

 private:
  FileChooser choose_;
  TextField* folder_;
};

/// Whether the Data File is to be backed up now, asked when the program closes.
class BackupReminderForm : public Dialog {
  Q_OBJECT

 public:
  BackupReminderForm(WindowList& windowList, QWidget* owner);
  void UpdateEnabled() override;
  void OnOpen(const Arguments& arguments) override;

 public Q_SLOTS:
  void cmdOK_Click();

 private:
  QLabel* last_;
  ComboField* days_;
  RadioField* now_;
  CheckField* dontShow_;
};

}  // namespace vellumark::desktop
