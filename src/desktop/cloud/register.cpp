#include "desktop/cloud/register.h"

#include "desktop/cloud/account_settings_form.h"
#include "desktop/cloud/admin_data_files.h"
#include "desktop/cloud/cloud_about.h"
#include "desktop/cloud/get_put_data_form.h"
#include "desktop/cloud/manage_file_list.h"
#include "desktop/cloud/report_viewer.h"
#include "desktop/cloud/restore_file_list.h"
#include "desktop/cloud/retrieve_splash.h"
#include "desktop/kit/window_list.h"

namespace vellumark::desktop {
namespace {

ManagedFiles Backups() {
  return {"CloudManageBackupFileList",
          "CloudRetrieveBackupListSplashForm",
          CloudTask::CloudManageBackupFileList,
          Dialog::tr("Manage Cloud Backups"),
          Dialog::tr("An account keeps up to 30 backups. What belongs to a backup goes with it."),
          Dialog::tr("1 backup"),
          Dialog::tr("%1 backups"),
          Dialog::tr("Proof"),
          ListBackups,
          DeleteBackups,
          Dialog::tr("the Cloud account")};
}

ManagedFiles Reports() {
  return {"CloudManageReportFileList",
          "CloudRetrieveReportListSplashForm",
          CloudTask::CloudManageReportFileList,
          Dialog::tr("Manage Cloud Reports"),
          Dialog::tr("The reports that went up from this account, as the administrator of the accounts reads them."),
          Dialog::tr("1 report"),
          Dialog::tr("%1 reports"),
          {},
          ListReports,
          DeleteReports,
          Dialog::tr("the Cloud account")};
}

ManagedFiles ReportsOfUsers() {
  return {"CloudUtilityReport_DeleteFiles",
          "CloudRetrieveReportListSplashForm",
          CloudTask::CloudUtilityReport_DeleteFiles,
          Dialog::tr("Reports in User Accounts"),
          Dialog::tr("The reports that stand at the host, of all accounts in the list. What was fetched of them stays here."),
          Dialog::tr("1 report"),
          Dialog::tr("%1 reports"),
          Dialog::tr("Account"),
          ListReportsOfUsers,
          DeleteReportsOfUsers,
          Dialog::tr("the accounts of the users")};
}

void RegisterAdminWindows(WindowList& windows, StartupWindows& startup, const CloudParts& parts) {
  windows.RegisterDialog<CloudUtilityReportViewer>("CloudUtilityReportViewer");
  windows.RegisterDialog("CloudReportViewer_ExportLocation", [parts](WindowList& list, QWidget* owner) -> Dialog* {
    return new CloudReportViewer_ExportLocation(list, owner, parts.choose);
  });
  windows.RegisterDialog("CloudUtilityDataFileManager", [&startup](WindowList& list, QWidget* owner) -> Dialog* {
    return new CloudUtilityDataFileManager(list, owner, startup);
  });
  windows.RegisterDialog("CloudUtilitiesDataFileUpload_SelectUsers", [parts](WindowList& list, QWidget* owner) -> Dialog* {
    return new CloudUtilitiesDataFileUpload_SelectUsers(list, owner, parts.choose);
  });
  windows.RegisterDialog("OpenCloudAdminDefault_DF", [&startup](WindowList& list, QWidget* owner) -> Dialog* {
    return new OpenCloudAdminDefault_DF(list, owner, startup);
  });
}

}  // namespace

void RegisterCloudWindows(WindowList& windows, StartupWindows& startup, const CloudParts& parts) {
  windows.RegisterDialog<CloudAbout>("CloudAbout");
  windows.RegisterDialog("CloudAccountSettings", [parts](WindowList& list, QWidget* owner) -> Dialog* {
    return new CloudAccountSettings(list, owner, parts);
  });
  windows.RegisterDialog("Cloud_GetPutData_Form", [parts](WindowList& list, QWidget* owner) -> Dialog* {
    return new Cloud_GetPutData_Form(list, owner, parts);
  });
  // The one task that begins in a menu.
  windows.RegisterDialog("CloudBackup", [parts](WindowList& list, QWidget* owner) -> Dialog* {
    return new Cloud_GetPutData_Form(list, owner, parts, "CloudBackup", CloudTask::CloudBackup);
  });
  windows.RegisterDialog("CloudReportUploadForm", [parts](WindowList& list, QWidget* owner) -> Dialog* {
    return new Cloud_GetPutData_Form(list, owner, parts, "CloudReportUploadForm");
  });
  RegisterAdminWindows(windows, startup, parts);
  using Splash = std::pair<const char*, QString>;
  for (const auto& [name, text] : {Splash{"CloudRetrieveBackupListSplashForm", Dialog::tr("Retrieving Backup List")},
                                   Splash{"CloudRetrieveReportListSplashForm", Dialog::tr("Retrieving Report List")}})
    windows.RegisterDialog(name, [parts, name, text](WindowList& list, QWidget* owner) -> Dialog* {
      return new CloudRetrieveSplash(list, owner, name, text, parts);
    });
  for (const ManagedFiles& managed : {Backups(), Reports(), ReportsOfUsers()})
    windows.RegisterDialog(managed.window, [managed](WindowList& list, QWidget* owner) -> Dialog* {
      return new CloudManageFileList(list, owner, managed);
    });
  using Restore = std::pair<const char*, CloudTask>;
  for (const auto& [name, task] : {Restore{"CloudRestoreFileList", CloudTask::RestoreDataFile},
                                   Restore{"RestoreSupportFiles_Cloud", CloudTask::RestoreSUVFiles}})
    windows.RegisterDialog(name, [name, task, &startup](WindowList& list, QWidget* owner) -> Dialog* {
      return new CloudRestoreFileList(list, owner, name, task, startup);
    });
}

}  // namespace vellumark::desktop
