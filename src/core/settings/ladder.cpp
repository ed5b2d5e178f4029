#include "core/settings/ladder.h"

#include <fmt/format.h>

#include <array>
#include <string>
#include <utility>

#include "core/settings/catalogue.h"
#include "core/settings/ladder_labels.h"
#include "core/settings/ladder_run.h"
#include "core/settings/settings.h"

namespace vellumark {
namespace {

using namespace setting;

constexpr auto kReportWindows = std::to_array<ReportWindow>({
    {"BasicCostListForm", "BasicCostList", "Color Name"},
    {"BasicColors_VOC_HAP_ListForm", "Basic_VOC_HAP_List", "Color Name"},
    {"BatchAdditionForm", "BatchAdditions", "Batch Number"},
    {"BatchListForm", "BatchList", "Batch Number"},
    {"BatchListDBForm", "BatchListDB", "Batch Number"},
    {"BatchLottedInvReport", "BatchLotList", "Batch Number"},
    {"ColorListForm", "ColorList", "Color Name"},
    {"ColorListDBForm", "ColorListDB", "Color Name"},
    {"DetailedJobUsageForm", "DetailedJobUsage", "Job Number"},
    {"DetailedSpecificJobUsageForm", "DetailedSpecificJobUsage", "Color Name"},
    {"ConsumptionForm", "DetConsumption", "Ing Name"},
    {"JobUsageForm", "DetJobUsage", "Job Number"},
    {"ProductionForm", "DetProduction", "Color Name"},
    {"InventoryForm", "Inventory", "Color Name"},
    {"InventoryReportsForm", "InventoryDetailSelected", "Color Name"},
    {"InventorySummaryForm", "InventorySummary", "Database"},
    {"JobListForm", "JobList", "Job Number"},
    {"MixCostListForm", "MixCostList", "Color Name"},
    {"MixColors_VOC_HAP_ListForm", "Mix_VOC_HAP_List", "Color Name"},
    {"RecycleListForm", "RecList", "Color Name"},
    {"ReorderForm", "Reorder", "Color Name"},
    {"ConsumptionColorNameSummaryForm", "Sum2Consumption", "Database"},
    {"JobUsageSummaryForm", "Sum2JobUsage", "Database"},
    {"ProductionSummaryForm", "Sum2Production", "Database"},
    {"ProductionColorNameSummaryForm", "Sum2Production", "Database"},
    {"SummarizedBatchAdditionsForm", "SumBatchAdditions", "Color Name"},
    {"SummarizedConsumptionForm", "SumConsumption", "Color Name"},
    {"SummarizedJobUsageForm", "SumJobUsage", "Color Name"},
    {"SummarizedProductionForm", "SumProduction", "Color Name"},
    {"CloudInvReport", "CloudInvDetSelected", "Color Name"},
});

// Windows whose families came later than the report keys.
constexpr ReportWindow kCloudSpecificColor{"CloudInvReport_SpecificColor", "CloudInvSpecificColor", "Color Name"};
constexpr ReportWindow kDesignUsage{"DesignUsageForm", "DesignUsageForm", "Job Number"};
constexpr ReportWindow kDesignAllJobsUsage{"DesignAllJobsUsageForm", "DesignAllJobsUsageForm", "Job Number"};
constexpr ReportWindow kConsumptionSummary{"ConsumptionSummaryForm", "Sum3Consumption", "Database"};
constexpr ReportWindow kBatchListRow{"BatchListForm_MultipleRows", "BatchListRow", "Batch Number"};

// Prefixes of the lists of stock, and the windows that show them.
constexpr auto kStockLists = std::to_array<std::pair<std::string_view, std::string_view>>({
    {"Inventory", "InventoryForm"},
    {"InventoryDetailSelected", "InventoryReportsForm"},
    {"CloudInvDetSelected", "CloudInvReport"},
    {"CloudInvSpecificColor", "CloudInvReport_SpecificColor"},
});

constexpr auto kListsWithInventory = std::to_array<std::pair<std::string_view, std::string_view>>({
    {"Inventory", "InventoryForm"},
    {"InventoryDetailSelected", "InventoryReportsForm"},
    {"ColorList", "ColorListForm"},
    {"ColorListDB", "ColorListDBForm"},
    {"DetConsumption", "ConsumptionForm"},
    {"SumConsumption", "SummarizedConsumptionForm"},
    {"CloudInvDetSelected", "CloudInvReport"},
    {"CloudInvSpecificColor", "CloudInvReport_SpecificColor"},
});

// Ten lots of three columns each: number, quantity and date.
void SetLotColumnWidths(LadderRun& run) {
  run.AddWidths("Inventory", 33, 42);
  run.AddWidths("InventoryDetailSelected", 34, 43);
  for (const auto& [prefix, last] : {std::pair{"Inventory", 42}, std::pair{"InventoryDetailSelected", 43}})
    for (int i = 6; i <= last; ++i) {
      const char* const width = i > 36 ? "0" : i == 36 ? "1500" : i % 3 == 0 ? "2865" : "1940";
      run.settings.Set(ColWidth.Of(prefix, i).key, width);
    }
}

void AddCloudInventory(LadderRun& run, std::string_view prefix) {
  run.AddFamily({prefix, 44, "|Database||Color Type||Inventory||Unit Cost||Total Cost|"});
  for (const auto* option : {&MixCost, &InvOnly, &ShowBasics, &ShowMixes}) run.Add({option->Of(prefix).Initial()});
}

void AddUserTexts(LadderRun& run) {
  for (const SettingInfo* group :
       std::initializer_list<const SettingInfo*>{&BatchUDTxtDefault, &BatchUDTxtValue, &BatchUDTxtRequired,
                                                 &JobUDTxtDefault, &JobUDTxtValue, &JobUDTxtRequired})
    run.Add(*group);
}

void AddAllReportKeys(LadderRun& run) {
  for (const ReportWindow& report : kReportWindows) run.AddReportKeys(report);
  run.Add(ReportExportForm_DefaultExportLocation);
}

void AddReportViewer(LadderRun& run) {
  constexpr std::string_view viewer = "CloudUtilityReportViewer";
  run.AddAfter(DefaultFileName.Of("CloudInvReport").key,
               {DefaultDir.Of(viewer).Initial(), FileFormat.Of(viewer).Initial(), IncHeading.Of(viewer).Initial(),
                IncData.Of(viewer).Initial(), IncTotals.Of(viewer).Initial()});
}

// Brings the code and the cost to the end of the chosen columns; what else is chosen stays in front of them.
void MendBasicCostList(LadderRun& run) {
  const std::string key = Columns.Of("BasicCostList").key;
  constexpr std::string_view tail = "|Color Code||Purchase Cost|";
  std::string columns = run.settings.Get(key);
  if (!columns.ends_with(tail)) {
    for (const std::string_view item : {"|Color Code|", "|Purchase Cost|"}) {
      const std::size_t found = columns.find(item);
      if (found != std::string::npos) columns.erase(found, item.size());
    }
    run.settings.Set(key, columns + std::string(tail));
  }
  run.settings.Set(UDHeader.Of("BasicCostListForm").key, "|Color Name||Color Code||Purchase Cost|");
}

void AddDesignUsage(LadderRun& run) {
  for (const ReportWindow& report : {kDesignUsage, kDesignAllJobsUsage}) {
    run.AddFamily(
        {report.prefix, 34, "|Design Desc||Color Name||Database||Date Entered||Qty Used||Total Cost|", "0", "0", "6"});
    run.AddReportKeys(report);
  }
}

void AddSum3Consumption(LadderRun& run) {
  run.AddWidths("JobRecord", 27, 32);
  run.AddWidths("SumConsumption", 155, 155);
  run.AddWidths("Sum2Production", 19, 19);
  for (int i = 0; i <= 24; ++i) run.Add({ColWidth.Of("BatchLotList", i).Initial()});
  run.AddFamily({"Sum3Consumption", 5, "|Batches||Qty Consumed||% Consumed|"});
  run.AddReportKeys(kConsumptionSummary);
}

void AddBatchListRow(LadderRun& run) {
  run.AddFamily({"BatchListRow", 38, "|Color Name||Date Entered||Job Number||Quantity||Ing Name||Ing Code||Ing Qty|",
                 "0", "0", "6"});
  run.Add({Additions.Of("BatchListRow").Initial()});
  run.AddReportKeys(kBatchListRow);
}

void ReplaceItem(SupportRecords& settings, const std::string& key, std::string_view item, std::string_view by) {
  std::string columns = settings.Get(key);
  const std::size_t found = columns.find(item);
  if (found == std::string::npos) return;
  settings.Set(key, columns.replace(found, item.size(), by));
}

void RenameInventoryColumn(LadderRun& run) {
  for (const auto& [prefix, window] : kListsWithInventory)
    for (const std::string& key : {Columns.Of(prefix).key, UDHeader.Of(window).key})
      ReplaceItem(run.settings, key, "|Inventory|", "|Unlotted Inventory|");
}

void AddConsignment(LadderRun& run) {
  constexpr std::string_view item = "|Consignment|";
  for (const auto& [prefix, window] : kStockLists) {
    for (const std::string& key : {Columns.Of(prefix).key, UDHeader.Of(window).key}) {
      const std::string& columns = run.settings.Get(key);
      if (columns.find(item) == std::string::npos) run.settings.Set(key, columns + std::string(item));
    }
    run.Add({OptConsignment.Of(prefix).Initial()});
  }
  run.Add({OptConsignment.Of("InventorySummary").Initial()});
}

struct Step {
  std::string_view versionKey;
  std::string_view from;
  std::string_view to;
  void (*work)(LadderRun&);
};

constexpr std::string_view kFile = StartupVar_FileVersion.key;
constexpr std::string_view kLabel = LabelTemplate_Version.key;

constexpr auto kSteps = std::to_array<Step>({
    {kLabel, "1", "2",
     [](LadderRun& run) {
       AddMiscTexts(run);
       AddBarCodes(run);
     }},
    {kFile, "1", "2", SetLotColumnWidths},
    {kLabel, "2", "3", AddCombinedBarCodes},
    {kFile, "2", "3",
     [](LadderRun& run) {
       run.Add(GH_LabelLayoutList);
       run.Add(GH_LabelTemplate_Version);
     }},
    {kFile, "3", "4", [](LadderRun& run) { run.Add(BC_Label_Prefix_Identifier); }},
    {kFile, "4", "5",
     [](LadderRun& run) {
       run.Add(InitialValues(BC_PrintItem_, 0, 9));
       run.Add(InitialValues(MC_PrintItem_, 0, 14));
     }},
    {kFile, "5", "6",
     [](LadderRun& run) {
       run.Add(PControl_IncludeHeadings);
       run.Add(PControl_IncludeData);
       run.Add(PControl_IncludeTotals);
       run.Add(PControl_Lines);
       run.Add(PControl_FitToPage);
       run.Add(PControl_Orientation);
     }},
    {kFile, "6", "7", [](LadderRun& run) { run.Add(BackupFileLocation); }},
    {kFile, "7", "8",
     [](LadderRun& run) {
       run.AddFamily({"BatchLotList", 0, "|Color Name||Job Number|Date Entered|Ing Name|", "0", "0", "6"});
     }},
    {kFile, "8", "9",
     [](LadderRun& run) {
       run.Add(Anilox);
     }},
    {kFile, "9", "10", [](LadderRun& run) { run.Add(BatchDefaultLotNumberValue); }},
    {kFile, "10", "11",
     [](LadderRun& run) {
       run.settings.Set(RemindBackup.key, "1");
       run.daysToRemindBackup = 1;
     }},
    {kFile, "11", "12",
     [](LadderRun& run) {
       run.Add({DateQuery.Of("JobListForm").Initial()});
       run.Add({DateQuery.Of("DetailedSpecJobUsage").Initial()});
       run.Add({DateQuery.Of("DetailedJobUsage").Initial()});
     }},
    {kFile, "12", "13", [](LadderRun& run) { run.MakeScaleFile(); }},
    {kFile, "13", "14", [](LadderRun& run) { run.AddHandshaking(); }},
    {kFile, "14", "15",
     [](LadderRun& run) {
       run.Add(Batches_UDNum_Format);
       run.Add(Jobs_UDNum_Format);
     }},
    {kFile, "15", "16", nullptr},
    {kFile, "16", "17", [](LadderRun& run) { AddCloudInventory(run, "CloudInvDetSelected"); }},
    {kFile, "17", "18", [](LadderRun& run) { run.CopyToBackups(); }},
    {kFile, "18", "19", AddUserTexts},
    {kFile, "19", "20",
     [](LadderRun& run) {
       run.settings.Set(Columns.Of("BatchLotList").key, "|Color Name||Job Number||Date Entered||Ing. Name|");
     }},
    {kFile, "20", "21", AddAllReportKeys},
    {kFile, "21", "22", AddReportViewer},
    {kFile, "22", "23", MendBasicCostList},
    {kFile, "23", "24",
     [](LadderRun& run) {
       AddCloudInventory(run, "CloudInvSpecificColor");
       run.AddReportKeys(kCloudSpecificColor);
     }},
    {kFile, "24", "25", AddDesignUsage},
    {kFile, "25", "26",
     [](LadderRun& run) {
       run.AddWidths("ColorListDB", 15, 16, 1940);
       run.settings.Set(ColWidth.Of("ColorListDB", 15).key, "1940");
     }},
    {kFile, "26", "27", AddSum3Consumption},
    {kFile, "27", "28", AddBatchListRow},
    {kFile, "28", "29", [](LadderRun& run) { run.Add(BatchComplete); }},
    {kFile, "29", "30", [](LadderRun& run) { run.Add(UDCNameCCodeLen); }},
    {kFile, "30", "31", RenameInventoryColumn},
    {kFile, "31", "32", [](LadderRun& run) { run.designPhotos = true; }},
    {kFile, "32", "33", AddHazardRecords},
    {kFile, "33", "34",
     [](LadderRun& run) {
       run.Add(Formula_LabelLayoutList);
       run.Add(Formula_LabelTemplate_Version);
     }},
    {kFile, "34", "35", nullptr},
    {kFile, "35", "36", AddFormulaDate},
    {kFile, "36", "37", [](LadderRun& run) { run.Add(DesignsCostModelIndex); }},
    {kFile, "37", "38", nullptr},
    {kFile, "38", "39", [](LadderRun& run) { run.AddWidths("JobRecord", 33, 33); }},
    {kFile, "39", "40",
     [](LadderRun& run) {
       run.AddAfter(MC_PrintItem_[14].key, InitialValues(MC_PrintItem_, 15, 16));
       run.AddAfter(PrinterFont.key, InitialValues(PrintMixNotes));
     }},
    {kFile, "40", "41", AddConsignment},
    {kFile, "41", "42",
     [](LadderRun& run) { run.AddAfter(PrintExtraBatchDetails.key, InitialValues(PrintLABBatchDetails)); }},
    {kFile, "42", "43",
     [](LadderRun& run) {
       run.AddWidths("DetProduction", 33, 33);
       run.AddWidths("BatchListDB", 76, 82);
       run.AddWidths("BatchList", 75, 83);
       run.AddWidths("BatchListRow", 38, 46);
     }},
    {kFile, "43", "44",
     [](LadderRun& run) {
       run.AddAfter(BC_PrintItem_[9].key, InitialValues(BC_PrintItem_, 10, 10));
       run.AddAfter(MC_PrintItem_[16].key, InitialValues(MC_PrintItem_, 17, 18));
     }},
    {kFile, "44", "45", [](LadderRun& run) { run.AddAfter(InvLotTracking.key, InitialValues(InvRecordMethod)); }},
    {kFile, "45", "46",
     [](LadderRun& run) {
       run.AddWidths("SumProduction", 20, 20);
       run.AddWidths("Sum2Production", 20, 20);
     }},
    {kFile, "46", SupportFileVersion,
     [](LadderRun& run) {
       run.AddAfter(BatchComplete.key, InitialValues(PrintRecListPercent));
       run.AddAfter(PrintRecListPercent.key, InitialValues(PrintRecListPercentValue));
     }},
    {kLabel, "3", "4", AddLotItems},
});

void SetIfEmpty(SupportRecords& settings, std::string_view key, std::string_view value) {
  if (settings.Get(key).empty() && !settings.Set(key, value)) settings.Append(key, value);
}

bool IsKnownVersion(std::string_view version) {
  for (const Step& step : kSteps)
    if (step.versionKey == kFile && step.from == version) return true;
  return version == SupportFileVersion;
}

// False when the settings are of a version that no step knows, and nothing may be touched.
bool Climb(LadderRun& run, const SupportFiles& files) {
  SupportRecords& settings = run.settings;
  SetIfEmpty(settings, ColWidth.Of("BatchList", 74).key, "0");
  if (settings.Get(kFile).empty())
    for (const std::string_view key : {kFile, kLabel}) SetIfEmpty(settings, key, "1");
  if (!IsKnownVersion(settings.Get(kFile))) return false;
  for (const Step& step : kSteps) {
    if (settings.Get(step.versionKey) != step.from) continue;
    if (step.work != nullptr) step.work(run);
    settings.Set(step.versionKey, step.to);
  }
  // The step that makes the scale file is long behind a file that was emptied or lost since.
  if (!run.HasScaleFile() && !files.scale.HoldsRecords()) {
    run.MakeScaleFile();
    run.AddHandshaking();
  }
  return true;
}

}  // namespace

bool RunLadder(SupportFiles& files, LadderDataFile* dataFile) {
  {
    LadderRun look(files, dataFile);
    if (!Climb(look, files) || !look.Changed()) return false;
  }
  const FolderLock lock(files.folder);
  LadderRun run(files, dataFile);
  if (!Climb(run, files)) return false;
  run.WriteAll(lock);
  return true;
}

}  // namespace vellumark
