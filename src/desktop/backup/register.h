#pragma once

#include "core/shell/startup.h"
#include "desktop/datafile/file_choice.h"

namespace vellumark::desktop {

class WindowList;

/// The windows of backup and restore; each opened by its name carries out its command. `startup` is asked for whatever
/// opening a file needs. Those that restore give back {"exit", true} when the operator ended the program at the login.
///
/// BackupFileLocationForm, RestoreFileLocationForm, RestoreAutomaticForm, CheckForm, RepairForm; RestoreSupportFiles_FLoc and
/// RestoreSupportFiles_AutoBackup, which only ask for the file; BackupReminderForm, which asks when the program closes, and
/// BackupRemovableForm; ArchiveForm.
void RegisterBackupWindows(WindowList& windows, StartupWindows& startup, const FileChooser& choose = ChooseFile);

}  // namespace vellumark::desktop
