#include "core/session/acts.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <stdexcept>

namespace vellumark {
namespace {

using enum CommandRight;

const std::array kRows{
    ActRow{Act::Look, false, {}},
    ActRow{Act::Work, true, {}},
    ActRow{Act::AddBasics, true, {MasterFormula}, false, true},
    ActRow{Act::EditFormulas, true, {MasterFormula}, false, true},
    ActRow{Act::EditCosts, true, {Costs}},
    ActRow{Act::EditEmissions, true, {VOCHAP}, false, true},
    ActRow{Act::AdditiveSets, true, {DBTools}},
    ActRow{Act::FormulaTools, true, {DBTools}},
    ActRow{Act::BulkFormulas, true, {DBTools, MasterFormula}},
    ActRow{Act::ResetCosts, true, {DBTools, Costs}},
    ActRow{Act::ResetEmissions, true, {DBTools, VOCHAP}},
    ActRow{Act::ExportFormulas, false, {DBTools, Export}},
    ActRow{Act::ImportFormulas, true, {DBTools, MasterFormula}},
    ActRow{Act::Databases, true, {CommandRight::Databases}},
    ActRow{Act::GuideTemplate, false, {CommandRight::Databases}},
    ActRow{Act::Options, false, {CommandRight::Options}},
    ActRow{Act::DataFiles, false, {Advanced}},
    ActRow{Act::BackUp, false, {BackupRestore}},
    ActRow{Act::ExportDataFile, false, {Export}},
    ActRow{Act::Users, true, {}, true},
};

constexpr WayIn kCommands[] = {
    {"file create", Act::DataFiles},
    {"file info", Act::Look},
    {"file check", Act::Look},
    {"file compact", Act::Work},
    {"file repair", Act::Work},
    {"file upgrade", Act::DataFiles},
    {"settings get", Act::Look},
    {"settings set", Act::Options},
    {"settings list", Act::Look},
    {"db list", Act::Look},
    {"db use", Act::Work},
    {"db create", Act::Databases},
    {"db rename", Act::Databases},
    {"db delete", Act::Databases},
    {"template build", Act::GuideTemplate},
    {"template check", Act::Look},
    {"color list", Act::Look},
    {"color show", Act::Look},
    {"color add", Act::AddBasics},
    {"color set", Act::Work},
    {"color rename", Act::Work},
    {"color delete", Act::Work},
    {"formula list", Act::Look},
    {"formula show", Act::Look},
    {"formula add", Act::EditFormulas},
    {"formula edit", Act::Work},
    {"formula rename", Act::EditFormulas},
    {"formula delete", Act::EditFormulas},
    {"formula duplicate", Act::EditFormulas},
    {"formula compare", Act::Look},
    {"formula revert", Act::EditFormulas},
    {"formula import", Act::ImportFormulas},
    {"formula compare-file", Act::Look},
    {"formula imports", Act::Look},
    {"formula undo", Act::ImportFormulas},
    {"formula export", Act::ExportFormulas},
    {"formula columns", Act::ImportFormulas},
    {"formula passes", Act::Work},
    {"addset list", Act::Look},
    {"addset show", Act::Look},
    {"addset add", Act::AdditiveSets},
    {"addset edit", Act::AdditiveSets},
    {"addset rename", Act::AdditiveSets},
    {"addset delete", Act::AdditiveSets},
    {"addset apply", Act::AdditiveSets},
    {"addset remove", Act::AdditiveSets},
    {"tools modify", Act::FormulaTools},
    {"tools rename", Act::FormulaTools},
    {"tools delete", Act::BulkFormulas},
    {"stock show", Act::Look},
    {"stock lots", Act::Look},
    {"stock low", Act::Look},
    {"stock history", Act::Look},
    {"stock scan", Act::Work},
    {"stock undo", Act::Work},
    {"stock adjust", Act::Work},
    {"stock reset inventory", Act::Work},
    {"stock reset date", Act::Work},
    {"stock reset price", Act::EditCosts},
    {"stock reorder", Act::Work},
    {"stock reset-reorder", Act::Work},
    {"batch calc", Act::Look},
    {"batch show", Act::Look},
    {"batch list", Act::Look},
    {"batch ticket", Act::Look},
    {"batch recycles", Act::Look},
    {"batch save", Act::Work},
    {"batch edit", Act::Work},
    {"batch delete", Act::Work},
    {"batch complete", Act::Work},
    {"job list", Act::Look},
    {"job out", Act::Look},
    {"job show", Act::Look},
    {"job returns", Act::Look},
    {"job create", Act::Work},
    {"job add-item", Act::Work},
    {"job set-used", Act::Work},
    {"job delete-item", Act::Work},
    {"job undo", Act::Work},
    {"job rename", Act::Work},
    {"job close", Act::Work},
    {"job reopen", Act::Work},
    {"job export", Act::ExportDataFile},
    {"batch weigh", Act::Work},
    {"batch dispense", Act::Look},
    {"dispenser list", Act::Look},
    {"dispenser add", Act::Work},
    {"dispenser remove", Act::Work},
    {"scale ports", Act::Look},
    {"scale settings", Act::Look},
    {"scale on", Act::Look},
    {"scale off", Act::Look},
    {"scale read", Act::Look},
    {"scale tare", Act::Look},
    {"scale watch", Act::Look},
    {"batch export", Act::ExportDataFile},
    {"design list", Act::Look},
    {"design show", Act::Look},
    {"design add", Act::Work},
    {"design edit", Act::Work},
    {"design rename", Act::Work},
    {"design copy", Act::Work},
    {"design delete", Act::Work},
    {"design photo", Act::Work},
    {"design photos", Act::Look},
    {"design export", Act::Look},
    {"design import", Act::Work},
    {"design bench", Act::Look},
    {"estimate sheetfed", Act::Look},
    {"estimate flexo", Act::Look},
    {"report list", Act::Look},
    {"report run", Act::Look},
    {"report export", Act::Look},
    {"report save", Act::Look},
    {"report delete", Act::Look},
    {"report rename", Act::Look},
    {"report chart", Act::Look},
    {"report ranges", Act::Look},
    {"report range", Act::Look},
    {"find basic", Act::Look},
    {"find mix", Act::Look},
    {"find batch", Act::Look},
    {"find job", Act::Look},
    {"find design", Act::Look},
    {"archive preview", Act::Look},
    {"archive run", Act::BackUp},
    {"backup make", Act::BackUp},
    {"backup list", Act::Look},
    {"backup verify", Act::Look},
    {"backup restore", Act::BackUp},
    {"backup look", Act::Look},
    {"backup take-formula", Act::ImportFormulas},
    {"backup take-batch", Act::Work},
    {"backup restore-settings", Act::DataFiles},
    {"cloud settings", Act::Options},
    {"cloud settings-import", Act::Options},
    {"cloud test", Act::Options},
    {"cloud accounts", Act::Look},
    {"cloud accounts-import", Act::Options},
    {"cloud backup", Act::BackUp},
    {"cloud share", Act::BackUp},
    {"cloud list", Act::Look},
    {"cloud restore", Act::BackUp},
    {"cloud restore-settings", Act::DataFiles},
    {"cloud delete", Act::BackUp},
    {"cloud fetch", Act::Look},
    {"cloud inventory", Act::Look},
    {"cloud reports", Act::Look},
    {"cloud delete-report", Act::BackUp},
    {"cloud report-upload", Act::Look},
    {"cloud admin reports", Act::BackUp},
    {"cloud admin report-list", Act::BackUp},
    {"cloud admin delete-report", Act::BackUp},
    {"cloud admin data-file", Act::BackUp},
    {"cloud admin send", Act::BackUp},
    {"cloud admin default-file", Act::Options},
    {"label layouts", Act::Look},
    {"label show", Act::Look},
    {"label set", Act::Options},
    {"label copy", Act::Options},
    {"label delete", Act::Options},
    {"label print", Act::Look},
    {"label encode", Act::Look},
    {"undo list", Act::Look},
    {"undo take", Act::Work},
    {"users list", Act::Look},
    {"users enable", Act::Work},
    {"users disable", Act::Users},
    {"users add", Act::Users},
    {"users modify", Act::Users},
    {"users delete", Act::Users},
    {"users passwd", Act::Work},
};

constexpr WayIn kWindows[] = {
    // The bulk tools.
    {"DBToolsMenu", Act::FormulaTools},
    {"DBAdditiveControl", Act::AdditiveSets},
    {"NewAdditiveNameForm", Act::AdditiveSets},
    {"DBFormulaModifierForm", Act::FormulaTools},
    {"DBRenameColors", Act::FormulaTools},
    {"DBDelColors", Act::BulkFormulas},
    {"ResetBasicCostForm", Act::ResetCosts},
    {"ResetMixCostForm", Act::ResetCosts},
    {"ResetBasic_VOC_HAP_Form", Act::ResetEmissions},
    {"ResetMixColor_VOC_HAP", Act::ResetEmissions},
    // Taking back asks for the right of what was done.
    {"UndoForm", Act::Look},
    // Formulas out and in.
    {"DBExport_Formulas", Act::ExportFormulas},
    {"ExportImportFileExamples", Act::Look},
    {"ImportColumnsForm", Act::ImportFormulas},
    {"DBImport_Formulas", Act::ImportFormulas},
    {"ImportCompareFormulasForm", Act::Look},
    {"ImportCompareCloudFormulas", Act::Look},
    // Databases and Data Files.
    {"NewDBForm", Act::Databases},
    {"RenameDBForm", Act::Databases},
    {"DeleteDBForm", Act::Databases},
    {"OtherDatabasesForm", Act::Look},
    {"FileExplorerForm", Act::DataFiles},
    {"NewFileExplorerForm", Act::DataFiles},
    {"RenameDataFileForm", Act::DataFiles},
    {"VKD_File_ListingForm", Act::DataFiles},
    {"NewDataFileForm", Act::Look},
    {"UpdateDataFileForm", Act::Look},
    // Backups. The reminder asks whoever closes the program.
    {"BackupFileLocationForm", Act::BackUp},
    {"BackupRemovableForm", Act::BackUp},
    {"BackupReminderForm", Act::Look},
    {"ArchiveForm", Act::BackUp},
    {"RestoreFileLocationForm", Act::BackUp},
    {"RestoreAutomaticForm", Act::BackUp},
    {"LookIntoSetForm", Act::BackUp},
    {"CheckForm", Act::Look},  // accepting what it shows asks for more
    {"RepairForm", Act::Work},
    {"RestoreSupportFiles_FLoc", Act::DataFiles},
    {"RestoreSupportFiles_AutoBackup", Act::DataFiles},
    // The cloud.
    {"CloudAbout", Act::Look},
    {"CloudAccountSettings", Act::Options},
    {"Cloud_GetPutData_Form", Act::Look},  // what may be done is asked by who opens it
    {"CloudBackup", Act::BackUp},
    {"CloudRestoreFileList", Act::BackUp},
    {"RestoreSupportFiles_Cloud", Act::DataFiles},
    {"CloudManageBackupFileList", Act::BackUp},
    {"CloudManageReportFileList", Act::BackUp},
    {"CloudReportUploadForm", Act::Look},
    {"CloudInvReport", Act::Look},
    {"CloudInvReport_SpecificColor", Act::Look},
    {"CloudUtilityReportViewer", Act::BackUp},
    {"CloudUtilityReport_DeleteFiles", Act::BackUp},
    {"CloudReportViewer_ExportLocation", Act::Look},
    {"CloudUtilityDataFileManager", Act::BackUp},
    {"CloudUtilitiesDataFileUpload_SelectUsers", Act::BackUp},
    {"OpenCloudAdminDefault_DF", Act::DataFiles},
    {"CloudRetrieveBackupListSplashForm", Act::Look},
    {"CloudRetrieveReportListSplashForm", Act::Look},
    // Options. Two of them are looked at by everybody.
    {"AutofillForm", Act::Options},
    {"RemindersForm", Act::Options},
    {"Default_Printer", Act::Options},
    {"UMSettingForm", Act::Options},
    {"UnitCostAccuracyForm", Act::Options},
    {"OptionMaxNameLen", Act::Options},
    {"DefaultCostModelForm", Act::EditCosts},
    {"VOC_HAP_OptMenu", Act::EditEmissions},
    {"NewSetupForm", Act::Look},
    // Users.
    {"AdminOptionsForm", Act::Users},
    {"NewUserForm", Act::Users},
    {"ModifyUserForm", Act::Users},
    {"DeleteUserForm", Act::Users},
    {"NewAdminForm", Act::Work},
    {"LoginForm", Act::Look},
    {"PasswordForm", Act::Look},
    {"ChangePasswordForm", Act::Work},
    {"ViewPermissionsForm", Act::Look},
    // Colours and formulas. They are looked at by everybody; changing asks for more behind the door.
    {"ColorsMenu", Act::Look},
    {"BasicColorsForm", Act::Look},
    {"NewBasicNameForm", Act::Look},
    {"BasicColorUsedInMixForm", Act::Look},
    {"MixColorsForm", Act::Look},
    {"NewMixNameForm", Act::EditFormulas},
    {"AdjustFormulaForm", Act::EditFormulas},
    {"DuplicateFormulaForm", Act::EditFormulas},
    {"CompareFormulasForm", Act::Look},
    {"WhereUsedForm", Act::Look},
    // Stock.
    {"AdjustInventoryForm", Act::Look},
    {"AdjustReorderForm", Act::Look},
    {"ResetInvForm", Act::Look},
    {"ResetReorderForm", Act::Look},
    {"StockHistoryForm", Act::Look},
    {"BatchLotInvSelector", Act::Look},
    {"InvLotInstructions", Act::Look},
    {"ScanningHelpForm", Act::Look},
    {"CalendarForm", Act::Look},
    // Batches.
    {"BatchForm", Act::Look},
    {"ViewBatchForm", Act::Look},
    {"RecentBatchesForm", Act::Look},
    {"AddAdditionForm", Act::Look},
    {"AdjustAdditionForm", Act::Look},
    {"AdjustBasicForm", Act::Look},
    {"AdjustMixForm", Act::Look},
    {"BatchFormLotNumReminder", Act::Look},
    {"BatchSettingsForm", Act::Look},
    {"CostInfForm", Act::Look},
    {"CostModelForm", Act::Look},
    {"VOC_HAP_CalcForm", Act::Look},
    {"JobItemsForm", Act::Look},
    {"MoreDataForm", Act::Look},
    {"SaveModifiedBatch", Act::Look},
    // Jobs. They are looked at by everybody; a figure that is changed asks for its right behind the door.
    {"JobMenu", Act::Look},
    {"JobForm", Act::Look},
    {"JobsOutForm", Act::Look},
    {"AddJobItemForm", Act::Work},
    {"NewJobNumberForm", Act::Work},
    {"JobAddItem_Help", Act::Look},
    {"JobBookingsForm", Act::Look},
    {"Job_Options", Act::Look},
    {"UpdateJobCostModel", Act::EditCosts},
    {"UpdateJobVOCModel", Act::EditEmissions},
    {"UpdateJobHAPModel", Act::EditEmissions},
    {"UpdateJobDesignID", Act::Work},
    {"UpdateJobUDText", Act::Work},
    {"JobsNewReturnDate", Act::Work},
    {"JobClosingDate", Act::Work},
    // The scale.
    {"BatchScaleWeighForm", Act::Look},
    {"DispenserSelector", Act::Look},
    {"ScaleSettings", Act::Look},
    {"WaitForm_ScaleBoot", Act::Look},
    // Designs and the estimator, and the files of records.
    {"JobDesigns", Act::Look},
    {"JobDesign_Rename", Act::Work},
    {"JobDesign_PhotoRename", Act::Work},
    {"JobDesigns_Hints", Act::Look},
    {"DesignBenchForm", Act::Look},
    {"InkEstForm", Act::Look},
    {"InkEstMileageForm", Act::Look},
    {"InkEstAniloxValueForm", Act::Look},
    {"DB_ImportExport_Designs", Act::Look},
    {"ImportExamineLocalFileDesign", Act::Look},
    {"ImportExamineCloudDesign", Act::Look},
    {"ExportBatchesForm", Act::ExportDataFile},
    {"ExportJobRecords", Act::ExportDataFile},
    // Labels. Their layouts are settings.
    {"LabelMenu", Act::Look},
    {"LabelLayoutForm", Act::Options},
    {"GH_LabelLayoutForm", Act::Options},
    {"Formula_LabelLayoutForm", Act::Options},
    {"LabelForm", Act::Look},
    {"GH_LabelForm", Act::Look},
    {"Formula_LabelForm", Act::Look},
    {"LabelDataSelection", Act::Look},
    {"SaveLabelLayoutForm", Act::Options},
    {"GH_LabelSaveForm", Act::Options},
    {"Formula_LabelSaveForm", Act::Options},
    // What is printed and reported.
    {"PrintBoxForm", Act::Look},
    {"ViewRecordForm", Act::Look},
    {"ReportsForm", Act::Look},
    {"ReportExportForm", Act::Look},
    {"ReportNameForm", Act::Look},
    {"ReportNotesForm", Act::Look},
    {"FindMenu", Act::Look},
    {"FindBasic", Act::Look},
    {"FindMix", Act::Look},
    {"FindBatch", Act::Look},
    {"FindJob", Act::Look},
    {"FindDesign", Act::Look},
    {"QuickFindForm", Act::Look},
    {"BasicsListForm", Act::Look},
    {"FormulasListForm", Act::Look},
    {"BatchesListForm", Act::Look},
    {"JobsListForm", Act::Look},
    {"ColorListForm", Act::Look},
    {"ColorListDBForm", Act::Look},
    {"BasicCostListForm", Act::Look},
    {"BasicColors_VOC_HAP_ListForm", Act::Look},
    {"MixCostListForm", Act::Look},
    {"MixColors_VOC_HAP_ListForm", Act::Look},
    {"InventoryForm", Act::Look},
    {"InventorySummaryForm", Act::Look},
    {"InventoryReportsForm", Act::Look},
    {"InventoryAsOfForm", Act::Look},
    {"StockMovementForm", Act::Look},
    {"ReorderForm", Act::Look},
    {"RecycleListForm", Act::Look},
    {"ProductionForm", Act::Look},
    {"ProductionColorNameSummaryForm", Act::Look},
    {"SummarizedProductionForm", Act::Look},
    {"ProductionSummaryForm", Act::Look},
    {"ConsumptionForm", Act::Look},
    {"ConsumptionColorNameSummaryForm", Act::Look},
    {"SummarizedConsumptionForm", Act::Look},
    {"ConsumptionSummaryForm", Act::Look},
    {"BatchAdditionForm", Act::Look},
    {"SummarizedBatchAdditionsForm", Act::Look},
    {"BatchListForm", Act::Look},
    {"BatchListForm_MultipleRows", Act::Look},
    {"BatchListDBForm", Act::Look},
    {"BatchLottedInvReport", Act::Look},
    {"JobUsageForm", Act::Look},
    {"SummarizedJobUsageForm", Act::Look},
    {"JobUsageSummaryForm", Act::Look},
    {"DetailedSpecificJobUsageForm", Act::Look},
    {"DetailedJobUsageForm", Act::Look},
    {"JobListForm", Act::Look},
    {"DesignUsageForm", Act::Look},
    {"DesignAllJobsUsageForm", Act::Look},
    // The program.
    {"AboutForm", Act::Look},
    {"HelpForm", Act::Look},
    {"ProductSplashFormPantone", Act::Look},
};

std::optional<Act> Find(std::span<const WayIn> ways, std::string_view name) {
  const auto found = std::ranges::find(ways, name, &WayIn::name);
  if (found == ways.end()) return std::nullopt;
  return found->act;
}

bool IsAdministrator(const Session& session) {
  return session.CurrentUser.empty() || session.IsAdminUser;
}

Result<void> RequireRights(const Session& session, const ActRow& row) {
  for (const CommandRight right : row.rights)
    if (auto allowed = RequireCommandRight(session, right); !allowed) return allowed;
  if (!row.administrator || IsAdministrator(session)) return {};
  return Refuse("Permission Denied",
                fmt::format("{}, you do not have permission to change Users.", session.CurrentUser));
}

}  // namespace

std::span<const ActRow> ActRows() {
  return kRows;
}

const ActRow& RowOf(Act act) {
  const auto found = std::ranges::find(kRows, act, &ActRow::act);
  if (found == kRows.end()) throw std::logic_error("an act without a row");
  return *found;
}

bool MayDo(const Session& session, Act act) {
  const ActRow& row = RowOf(act);
  return (!row.administrator || IsAdministrator(session)) &&
         std::ranges::all_of(row.rights, [&](CommandRight right) { return Allows(session, right); });
}

Result<void> RequireAct(const Session& session, Act act) {
  if (RowOf(act).writes)
    if (auto writable = RequireWritable(session); !writable) return writable;
  return RequireRights(session, RowOf(act));
}

Result<void> RequireAtDoor(const Session& session, Act act) {
  const ActRow& row = RowOf(act);
  return row.ownWords ? Result<void>{} : RequireRights(session, row);
}

std::span<const WayIn> CommandWays() {
  return kCommands;
}

std::span<const WayIn> WindowWays() {
  return kWindows;
}

std::optional<Act> ActOfCommand(std::string_view command) {
  return Find(kCommands, command);
}

std::optional<Act> ActOfWindow(std::string_view window) {
  return Find(kWindows, window);
}

}  // namespace vellumark
