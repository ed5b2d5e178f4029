#include "desktop/backup/register.h"

#include "desktop/backup/archive_form.h"
#include "desktop/backup/backup_forms.h"
#include "desktop/backup/check_form.h"
#include "desktop/backup/look_into_form.h"
#include "desktop/backup/repair_form.h"
#include "desktop/backup/restore_forms.h"
#include "desktop/kit/window_list.h"

namespace vellumark::desktop {

void RegisterBackupWindows(WindowList& windows, StartupWindows& startup, const FileChooser& choose) {
  windows.RegisterDialog("BackupFileLocationForm", [choose](WindowList& list, QWidget* owner) -> Dialog* {
    return new BackupFileLocationForm(list, owner, choose);
  });
  windows.RegisterDialog("BackupRemovableForm", [choose](WindowList& list, QWidget* owner) -> Dialog* {
    return new BackupRemovableForm(list, owner, choose);
  });
  windows.RegisterDialog<BackupReminderForm>("BackupReminderForm");
  windows.RegisterDialog<ArchiveForm>("ArchiveForm");
  windows.RegisterDialog<LookIntoSetForm>("LookIntoSetForm");
  windows.RegisterDialog("RestoreFileLocationForm", [&startup, choose](WindowList& list, QWidget* owner) -> Dialog* {
    return new RestoreFileLocationForm(list, owner, startup, choose);
  });
  windows.RegisterDialog("RestoreAutomaticForm", [&startup](WindowList& list, QWidget* owner) -> Dialog* {
    return new RestoreAutomaticForm(list, owner, startup);
  });
  windows.RegisterDialog<CheckForm>("CheckForm");
  windows.RegisterDialog("RepairForm", [&startup](WindowList& list, QWidget* owner) -> Dialog* {
    return new RepairForm(list, owner, startup);
  });
  for (const bool automatic : {false, true}) {
    const char* name = automatic ? "RestoreSupportFiles_AutoBackup" : "RestoreSupportFiles_FLoc";
    windows.RegisterDialog(name, [automatic, name, choose](WindowList& list, QWidget* owner) -> Dialog* {
      return new RestoreSupportFilesChoice(list, owner, name, automatic, choose);
    });
  }
}

}  // namespace vellumark::desktop
