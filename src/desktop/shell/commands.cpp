#include "desktop/shell/commands.h"

#include <algorithm>
#include <array>
#include <utility>

namespace vellumark::desktop {

std::string_view DialogOfMenuItem(std::string_view item) {
  using Pair = std::pair<std::string_view, std::string_view>;
  static constexpr std::array kDialogs{
      Pair{"menu_AboutVK", "AboutForm"},
      Pair{"menuCloud_About", "CloudAbout"},
      Pair{"menuCloud_Settings", "CloudAccountSettings"},
      Pair{"menuCloudUser_Reports", "CloudManageReportFileList"},
      Pair{"menuCloudUtilities_Reports", "CloudUtilityReportViewer"},
      Pair{"menuCloudUtilities_DataFile", "CloudUtilityDataFileManager"},
      Pair{"menuCloudUtilities_Upload", "CloudUtilitiesDataFileUpload_SelectUsers"},
      Pair{"menuDFDFile", "OpenCloudAdminDefault_DF"},
      Pair{"menuCloudUser_Backups", "CloudManageBackupFileList"},
      Pair{"menuDFBackup_Cloud", "CloudBackup"},
      Pair{"menuDFBackup_Location", "BackupFileLocationForm"},
      Pair{"menuDFRestore_Cloud", "CloudRestoreFileList"},
      Pair{"menuDFRestore_Location", "RestoreFileLocationForm"},
      Pair{"menuDFRestore_AutoBU", "RestoreAutomaticForm"},
      Pair{"menuDFArchive", "ArchiveForm"},
      Pair{"menuDFCheck", "CheckForm"},
      Pair{"menuDFRepair", "RepairForm"},
      Pair{"menuDFExport_Batches", "ExportBatchesForm"},
      Pair{"menuDFExport_Jobs", "ExportJobRecords"},
      Pair{"menuDFAdvanced_RestoreBU_SupportFiles_Cloud", "RestoreSupportFiles_Cloud"},
      Pair{"menuDFAdvanced_RestoreBU_SupportFiles_FLoc", "RestoreSupportFiles_FLoc"},
      Pair{"menuDFAdvanced_RestoreBU_SupportFiles_AutoBackup", "RestoreSupportFiles_AutoBackup"},
      Pair{"menuDFOptions_Autofill", "AutofillForm"},
      Pair{"menuDFOptions_Reminders", "RemindersForm"},
      Pair{"menuDFOptions_DefaultPrinter", "Default_Printer"},
      Pair{"menuDFOptions_InventorySettings", "UMSettingForm"},
      Pair{"menuDFOptions_UnitCostAccuracy", "UnitCostAccuracyForm"},
      Pair{"menuDFOptions_NameLength", "OptionMaxNameLen"},
      Pair{"menuDFAdvanced_FileNew", "NewFileExplorerForm"},
      Pair{"menuDFAdvanced_FileOpen", "FileExplorerForm"},
      Pair{"menuDFAdvanced_Search", "VKD_File_ListingForm"},
      Pair{"menuDFAdvanced_FileRename", "RenameDataFileForm"},
      Pair{"menuDFUsers_Create", "NewAdminForm"},
      Pair{"menuDFUsers_Login", "LoginForm"},
      Pair{"menuDFUsers_ChangePassword", "ChangePasswordForm"},
      Pair{"menuDFUsers_Permissions", "ViewPermissionsForm"},
      Pair{"menuDFUsers_AdminOptions", "AdminOptionsForm"},
      Pair{"menuDB_NewDB", "NewDBForm"},
      Pair{"menuDB_RenameDB", "RenameDBForm"},
      Pair{"menuDB_DeleteDB", "DeleteDBForm"},
      Pair{"menuDB_BatchOptions_Cost", "DefaultCostModelForm"},
      Pair{"menuDB_BatchOptions_VOCHAP", "VOC_HAP_OptMenu"},
      Pair{"menuHelp_Barcode", "ScanningHelpForm"},
      Pair{"menu_Pantone_Disclaimer", "ProductSplashFormPantone"},
  };
  const auto* found = std::ranges::find(kDialogs, item, &Pair::first);
  return found == kDialogs.end() ? std::string_view{} : found->second;
}

bool OnlyShows(std::string_view item) {
  return item == "menu_AboutVK" || item == "menuCloud_About" || item == "menuHelp_Barcode" || item == "menu_Pantone_Disclaimer";
}

bool OpensForm(std::string_view item) {
  return item.starts_with("menuDFExport_");
}

bool AsksFirst(std::string_view dialog) {
  return dialog == "RepairForm";
}

}  // namespace vellumark::desktop
