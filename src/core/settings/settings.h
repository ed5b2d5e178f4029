#pragma once

#include "core/settings/setting.h"

/// Every setting: key, type, what a new file holds, meaning, range. Reading and writing, the new file, the version
/// ladder, the command line and the windows take them from here. A new one is a line here and its place in the lists of
/// catalogue.cpp.
namespace vellumark::setting {

inline constexpr double kMostMoney = 99999;

// ---- Units, stock and names

inline constexpr Setting<int> UMI{"UMI", "1", "unit of the inventory: 1 lb., 2 kg., 3 g., 4 oz.", {1, 4}};
inline constexpr Setting<int> UMF{"UMF", "1", "unit of a new Batch, numbered as UMI", {1, 4}};
inline constexpr Setting<bool> AllowNegInv{"AllowNegInv", "0", "Unlotted Inventory of Basic Colors may be negative"};
inline constexpr Setting<float> InvCutoff{"InvCutoff", "0.5",
                                          "what is left under it counts as nothing, in the inventory unit"};
inline constexpr Setting<bool> InvLotTracking{"InvLotTracking", "1", "Lotted Inventory is in use"};
inline constexpr Setting<bool> InvRecordMethod{"InvRecordMethod", "0", "lots are entered as unit weight and count"};
inline constexpr Setting<bool> LottedInvReminder{"LottedInvReminder", "1", "the reminder of Lotted Inventory is shown"};
inline constexpr Setting<bool> AutoFillText{"AutoFillText", "1", "names are completed while they are typed"};
inline constexpr Setting<int> UDCNameCCodeLen{"UDCNameCCodeLen", "30", "longest name and code", {10, 30}};

// ---- Costs and emissions

inline constexpr Setting<int> DecimalPlaces{"DecimalPlaces", "2", "decimals of unit costs and prices", {2, 4}};
inline constexpr Setting<int> CostModelType{"CostModelType", "0", "0 costs by ingredients, 1 by the formula", {0, 1}};
inline constexpr Setting<int> MixCostOption{
    "MixCostOption", "0", "cost of recycled ink: 0 of its basics, 1 of the formula, 2 none", {0, 2}};
inline constexpr Setting<int> VOCModelType{
    "VOCModelType", "0", "VOC of recycled ink: 0 of its basics, 1 of the formula, 2 none", {0, 2}};
inline constexpr Setting<int> HAPModelType{"HAPModelType", "0", "HAP of recycled ink, as VOCModelType", {0, 2}};
inline constexpr Setting<float> FixedCostOfBatch{"FixedCostOfBatch", "0", "added to each Batch", {0, kMostMoney}};
inline constexpr Setting<float> FixedCostPerUnit{"FixedCostPerUnit", "0", "added to each unit made", {0, kMostMoney}};
inline constexpr Setting<float> MarkupPercent{"MarkupPercent", "0", "mark-up on the ingredients", {0, 100}};

// ---- Batches

inline constexpr Setting<bool> BatchActionButton{"BatchActionButton", "1", "Enter means Mix; 0 Recycle"};
inline constexpr Setting<bool> IngSortOrder{
    "IngSortOrder", "0", "Basic Colors in the user's own order; 0 by amount", {.other = "1"}};
inline constexpr Setting<bool> ReturnToInventory{"ReturnToInventory", "1", "what is made goes to stock"};
inline constexpr Setting<bool> ShowBatchGraphic{"ShowBatchGraphic", "1", "the graphic of recycling is shown"};
inline constexpr Setting<bool> Overpour{"Overpour", "0", "Basic Colors can be adjusted to correct for overpour"};
inline constexpr Setting<bool> BatchComplete{"BatchComplete", "0", "Batches are marked as Complete"};
inline constexpr Setting<bool> BatchDefaultLotNumberValue{"BatchDefaultLotNumberValue", "0",
                                                          "a Batch's number is its lot's"};
inline constexpr Setting<bool> BatchLotNumReminder{"BatchLotNumReminder", "1", "lots not chosen are told at the save"};
inline constexpr Setting<bool> ShowQuickInfoOption{"ShowQuickInfoOption", "1", "quick information is shown on screen"};
inline constexpr SettingGroup<bool> QuickInfoField{"QuickInfoField", 10, "1", "the lines of quick information"};
inline constexpr SettingGroup<std::string> BatchCustomTextLabelCaption{
    "BatchCustomTextLabelCaption", 6, "Text Lbl1|Text Lbl2|Text Lbl3|Text Lbl4|Text Lbl5|Text Lbl6",
    "captions of a Batch's own texts"};
inline constexpr SettingGroup<std::string> BatchCustomNumericLabelCaption{
    "BatchCustomNumericLabelCaption", 6, "Num Lbl1|Num Lbl2|Num Lbl3|Num Lbl4|Num Lbl5|Num Lbl6",
    "captions of a Batch's own numbers"};
inline constexpr SettingGroup<bool> BatchUDTxtDefault{"BatchUDTxtDefault", 6, "0", "a new Batch starts with the text"};
inline constexpr SettingGroup<std::string> BatchUDTxtValue{"BatchUDTxtValue", 6, "", "the text it starts with"};
inline constexpr SettingGroup<bool> BatchUDTxtRequired{"BatchUDTxtRequired", 6, "0", "no Batch without the text"};
inline constexpr SettingGroup<int> Batches_UDNum_Format{
    "Batches_UDNum_Format", 6, "3", "decimals of a Batch's own numbers", {0, 6}};

// ---- What is printed with a Batch

inline constexpr Setting<bool> PrintBatchHistoryOption{"PrintBatchHistoryOption", "1", "prior Batch, prior job"};
inline constexpr Setting<bool> PrintBatchInfoOption{"PrintBatchInfoOption", "1", "lot, job, note and quantity used"};
inline constexpr SettingGroup<bool> PrintBatchNotes{"PrintBatchNotes", 4, "0",
                                                    "notes: of the Batch, other Batches, the ingredients, the formula"};
inline constexpr Setting<bool> PrintCostOption{"PrintCostOption", "1", "cost, VOC and HAP"};
inline constexpr Setting<bool> PrintExtraBatchDetails{"PrintExtraBatchDetails", "1", "extra details"};
inline constexpr Setting<bool> PrintLABBatchDetails{"PrintLABBatchDetails", "1", "L-a-b delta values"};
inline constexpr Setting<bool> PrintIngInvConsumption{"PrintIngInvConsumption", "0", "consumption by lot"};
inline constexpr Setting<bool> PrintQuickInfoOption{"PrintQuickInfoOption", "0", "quick information of each line"};
inline constexpr Setting<bool> PrintRecListPercent{"PrintRecListPercent", "0", "not all of the Recycle List"};
inline constexpr Setting<int> PrintRecListPercentValue{
    "PrintRecListPercentValue", "50", "but what is recyclable by more than so many percent", {0, 100}};
inline constexpr SettingGroup<bool> PrintMixNotes{
    "PrintMixNotes", 3, "0", "notes with a Master Formula besides its own: 1 of its ingredients, 2 of its Batches"};
inline constexpr SettingGroup<bool> BC_PrintItem_{"BC_PrintItem_", 11, "1|1|1|1|1|1|1|1|1|1|0",
                                                  "what is printed with a Basic Color"};
inline constexpr SettingGroup<bool> MC_PrintItem_{"MC_PrintItem_", 19, "1|1|1|1|1|1|1|1|1|1|1|1|1|1|1|0",
                                                  "what is printed with a Master Formula"};

// ---- Jobs, Designs and the estimator

inline constexpr Setting<int> JobMixCostOption{
    "JobMixCostOption", "1", "cost of a formula in a job: 0 of the lot, 1 purchase cost, 2 basic cost, 3 none", {0, 3}};
inline constexpr Setting<int> JobMixVOC_Option{
    "JobMixVOC_Option", "0", "VOC of a formula in a job: 0 its own, 1 of its basics, 2 none", {0, 2}};
inline constexpr Setting<int> JobMixHAP_Option{"JobMixHAP_Option", "0", "HAP, as JobMixVOC_Option", {0, 2}};
inline constexpr SettingGroup<std::string> JobCustomTextLabelCaption{
    "JobCustomTextLabelCaption", 6, BatchCustomTextLabelCaption.initial, "captions of a job's own texts"};
inline constexpr SettingGroup<std::string> JobCustomNumericLabelCaption{
    "JobCustomNumericLabelCaption", 6, BatchCustomNumericLabelCaption.initial, "captions of a job's own numbers"};
inline constexpr SettingGroup<bool> JobUDTxtDefault{"JobUDTxtDefault", 6, "0", "a new item starts with the text"};
inline constexpr SettingGroup<std::string> JobUDTxtValue{"JobUDTxtValue", 6, "", "the text it starts with"};
inline constexpr SettingGroup<bool> JobUDTxtRequired{"JobUDTxtRequired", 6, "0", "no item without the text"};
inline constexpr SettingGroup<int> Jobs_UDNum_Format{
    "Jobs_UDNum_Format", 6, "3", "decimals of a job's own numbers", {0, 6}};
inline constexpr Setting<int> DesignsCostModelIndex{"DesignsCostModelIndex", "0", "how Designs are costed"};
inline constexpr Setting<std::string> InkEstUOM{"InkEstUOM", "in.", "unit of length of the estimator: in. or mm."};
inline constexpr SettingGroup<int> InkEstD{"InkEstD",
                                           32,
                                           "300000|375000|400000|400000|275000|350000|375000|375000|"
                                           "275000|350000|375000|375000|225000|275000|300000|300000|"
                                           "125000|150000|175000|175000|200000|250000|275000|275000|"
                                           "125000|150000|150000|150000|325000|400000|450000|425000",
                                           "square inches that a pound prints, by ink type and stock, as delivered",
                                           {.perRow = 4}};
inline constexpr SettingGroup<int> InkEstA{"InkEstA", 32, InkEstD.initial, "the same, as in force", {.perRow = 4}};
inline constexpr SettingGroup<float> Anilox{
    "Anilox", 4, ".5|1|1.5|3", "volumes of the anilox choices", {0, kMostMoney}};

// ---- Files, reminders and printers

inline constexpr Setting<std::string> DbFileName50{"dbFileName50", "", "the default Data File"};
inline constexpr Setting<std::string> DbFileName40{"dbFileName40", "", "the same, of the previous version"};
inline constexpr Setting<bool> AutoBackup{"AutoBackup", "1", "a backup is made at the end"};
inline constexpr Setting<int> AutoBackupCount{"AutoBackupCount", "5", "not read"};
inline constexpr Setting<std::string> BackupFileLocation{"BackupFileLocation", "", "folder of the reminded backup"};
inline constexpr Setting<std::string> BackupRestoreFileLocation{"BackupRestoreFileLocation", "",
                                                                "folder of the last backup or restore"};
inline constexpr Setting<bool> RemindBackup{
    "RemindBackup", "1", "no reminder of the backup; 0 reminds at closing", {.other = "0"}};
inline constexpr Setting<int> MonthsToRemindArchive{"MonthsToRemindArchive", "66", "not read"};
inline constexpr SettingGroup<std::string> EmailRecipient{"EmailRecipient", 10, "", "recipients of mail"};
inline constexpr Setting<std::string> PrinterDevice{"PrinterDevice", "", "device name of the default printer"};
inline constexpr Setting<std::string> PrinterFont{"PrinterFont", "Arial", "font of reports and labels"};
inline constexpr Setting<std::string> ReportPrinter{"ReportPrinter", "", "printer of reports"};
inline constexpr Setting<std::string> SetupWizard{"SetupWizard", "Completed", "not read"};
inline constexpr Setting<std::string> ShowHelpMsg{"ShowHelpMsg", "Yes", "Yes, or another text"};
inline constexpr Setting<int> HistoryType{"HistoryType", "0", "kind of history shown"};

// ---- Labels and versions

inline constexpr Setting<std::string> LabelLayoutList{
    "LabelLayoutList", "Default Label|", "label layouts", {.form = TextForm::LayoutList}};
inline constexpr Setting<std::string> GH_LabelLayoutList{
    "GH_LabelLayoutList", "Default Label|", "hazard label layouts", {.form = TextForm::LayoutList}};
inline constexpr Setting<std::string> Formula_LabelLayoutList{
    "Formula_LabelLayoutList", "Default Label|", "formula label layouts", {.form = TextForm::LayoutList}};
inline constexpr Setting<std::string> LPFire{"LPFire", "", "fire rating of a label"};
inline constexpr Setting<std::string> LPHealth{"LPHealth", "", "health rating of a label"};
inline constexpr Setting<std::string> LPReactivity{"LPReactivity", "", "reactivity rating of a label"};
inline constexpr Setting<bool> BC_Label_Prefix_Identifier{"BC_Label_Prefix_Identifier", "1",
                                                          "bar codes say which datum they hold"};
inline constexpr Setting<int> StartupVar_FileVersion{"StartupVar_FileVersion", "1", "version of the settings"};
inline constexpr Setting<int> LabelTemplate_Version{"LabelTemplate_Version", "1", "version of the labels"};
inline constexpr Setting<int> GH_LabelTemplate_Version{"GH_LabelTemplate_Version", "1", "version of the hazard labels"};
inline constexpr Setting<int> Formula_LabelTemplate_Version{"Formula_LabelTemplate_Version", "1",
                                                            "version of the formula labels"};

// ---- Reports and lists together

inline constexpr Setting<bool> PControl_IncludeHeadings{
    "PControl_IncludeHeadings", "1", "captions are printed", {.emptyIsInitial = true}};
inline constexpr Setting<bool> PControl_IncludeData{
    "PControl_IncludeData", "1", "rows are printed", {.emptyIsInitial = true}};
inline constexpr Setting<bool> PControl_IncludeTotals{
    "PControl_IncludeTotals", "1", "totals are printed", {.emptyIsInitial = true}};
inline constexpr Setting<bool> PControl_Lines{
    "PControl_Lines", "0", "guide lines are printed", {.emptyIsInitial = true}};
inline constexpr Setting<bool> PControl_FitToPage{
    "PControl_FitToPage", "1", "a report is one page wide", {.emptyIsInitial = true}};
inline constexpr Setting<bool> PControl_Orientation{
    "PControl_Orientation", "0", "pages are Landscape", {.emptyIsInitial = true}};
inline constexpr Setting<int> RecListType{"RecListType", "0", "which way the Recycle List looks"};
inline constexpr SettingGroup<std::string> SavedReport{"SavedReport", 100, "", "a report as it was saved under a name"};
inline constexpr Setting<std::string> CustomDateRanges{
    "CustomDateRanges", "", "periods under names, \"|Spring=2026-03-01..2026-05-31|\"", {.form = TextForm::ColumnSet}};
inline constexpr Setting<std::string> ReportExportForm_DefaultExportLocation{"ReportExportForm_DefaultExportLocation",
                                                                             "", "folder that reports are written to"};

// ---- The scale, in a file of its own: vk50scaledf.dat

inline constexpr Setting<std::string> CommPort{"CommPort", "", "port of the scale; empty: it was never set up"};
inline constexpr Setting<int> BaudRate{"BaudRate", "300", "300, 600, 1200, 2400, 4800 or 9600", {300, 9600}};
inline constexpr Setting<std::string> Parity{"Parity", "Odd", "Odd, Even or None"};
inline constexpr Setting<int> WordLen{"WordLen", "7", "bits of a character, 7 or 8", {7, 8}};
inline constexpr Setting<int> StopBit{"StopBit", "1", "stop bits, 1 or 2", {1, 2}};
inline constexpr Setting<int> Echo{"Echo", "0", "passed to the scale", {0, 9}};
inline constexpr Setting<int> NetID{"NetID", "", "passed to the scale", {0, 255}};
inline constexpr Setting<std::string> Handshaking{"Handshaking", "comXOnXoff",
                                                  "comNone, comXOnXoff, comRTS or comRTSXOnXOff"};
inline constexpr Setting<int> ScaleUnit{
    "ScaleUnit", "0", "unit that the scale shows, numbered as UMI; 0 the unit of the Batch", {0, 4}};
inline constexpr Setting<float> ScaleCapacity{"ScaleCapacity", "0",
                                              "heaviest load of the scale in its unit; 0 none that matters"};
inline constexpr Setting<float> WeighTolerance{"WeighTolerance", "0", "what counts as on target; 0 nothing but the target"};
inline constexpr Setting<bool> WeighToleranceInPercent{"WeighToleranceInPercent", "0",
                                                       "the tolerance is a percentage of the target; 0 grams"};
inline constexpr Setting<bool> WeighHeaviestFirst{"WeighHeaviestFirst", "0",
                                                  "weighing goes from the heaviest row on; 0 in the order of the rows"};
inline constexpr Setting<std::string> ScaleIsOn{"ScaleIsOn", "", "port and line settings of a scale that was left on"};

// ---- Of each list window or report, behind its prefix

inline constexpr WindowSetting<std::string> Columns{
    "Columns", "", "columns chosen, each title between bars", {.form = TextForm::ColumnSet}};
inline constexpr WindowSetting<bool> SortOrder{"SortOrder", "0", "descending"};
inline constexpr WindowSetting<int> SortCol{"SortCol", "0", "column sorted by"};
inline constexpr WindowSetting<bool> SecondSortOrder{"SecondSortOrder", "0", "second sort descending"};
inline constexpr WindowSetting<int> SecondSortCol{
    "SecondSortCol", "-1", "column of the second sort; -1 none", {.least = -1}};
inline constexpr WindowSetting<int> ColWidth{"ColWidth", "0", "width of a column in twips; 0 hidden"};
inline constexpr WindowSetting<int> DateRange{
    "DateRange", "6", "period by its place in the list, 0 All Dates to 13 Last Year", {0, 13}};
inline constexpr WindowSetting<int> DateQuery{"_DateQuery", "0", "date that the period looks at"};
inline constexpr WindowSetting<bool> ShowBasics{"ShowBasics", "1", "Basic Colors are listed"};
inline constexpr WindowSetting<bool> ShowMixes{"ShowMixes", "1", "Master Formulas are listed"};
inline constexpr WindowSetting<bool> Additions{"Additions", "0", "Batches with additions only"};
inline constexpr WindowSetting<bool> NotesOnly{"NotesOnly", "0", "colors with notes only"};
inline constexpr WindowSetting<bool> CustomOnly{"CustomOnly", "0", "custom colors only"};
inline constexpr WindowSetting<bool> ModifiedOnly{"ModifiedOnly", "0", "modified colors only"};
inline constexpr WindowSetting<bool> InvOnly{"InvOnly", "0", "colors in stock only"};
inline constexpr WindowSetting<bool> RecyclableOnly{"RecyclableOnly", "0", "recyclable colors only"};
inline constexpr WindowSetting<bool> PointsOnly{"PointsOnly", "0", "colors with a reorder point only"};
inline constexpr WindowSetting<bool> ReorderOnly{"ReorderOnly", "0", "colors to be reordered only"};
inline constexpr WindowSetting<bool> MixCost{"MixCost", "0", "which cost a formula is listed with"};
inline constexpr WindowSetting<bool> OptConsignment{"OptConsignment", "0", "stock on consignment"};
inline constexpr WindowSetting<int> FileFormat{"_FileFormat", "0", "0 text, 1 .mdb, 2 spreadsheet"};
inline constexpr WindowSetting<bool> IncHeading{"_IncHeading", "1", "captions are exported"};
inline constexpr WindowSetting<bool> IncData{"_IncData", "1", "rows are exported"};
inline constexpr WindowSetting<bool> IncTotals{"_IncTotals", "1", "totals are exported"};
inline constexpr WindowSetting<bool> UDH_Setting{"_UDH_Setting", "0", "exported in the user's own order of columns"};
inline constexpr WindowSetting<std::string> UDHeader{"_UDHeader", "", "that order, each title between bars"};
inline constexpr WindowSetting<std::string> DefaultFileName{"_DefaultFileName", "", "name that an export is offered"};
inline constexpr WindowSetting<std::string> DefaultDir{"_DefaultDir", "", "folder of the viewer's files"};

}  // namespace vellumark::setting
