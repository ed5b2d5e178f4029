#include "core/settings/catalogue.h"

#include <array>
#include <string>
#include <utility>

#include "core/settings/settings.h"

namespace vellumark {
namespace {

using namespace setting;

constexpr auto kFamilies = std::to_array<ColumnFamily>({
    {"AdjustBatch", 10, "|Recyclable||Inventory||Color Code|", "", ""},
    {"BasicCostList", 4, "|Color Type||Color Code||Purchase Cost|"},
    {"Basic_VOC_HAP_List", 5, "|Color Code||VOC||HAP|"},
    {"BatchAdditions", 13, "|Date Entered||Job Number||Quantity||Qty Recycled|"},
    {"BatchList", 75,
     "|Color Name||Date Entered||Job Number||Quantity||Qty Recycled||% Recycled||Cost of Basics||Cost of Mixes||Fixed "
     "Costs||Markup Costs||Cost of Batch||Notes|",
     "0", "0", "6"},
    {"BatchListDB", 76,
     "|Database||Color Name||Date Entered||Job Number||Quantity||Qty Recycled||% Recycled||Cost of Basics||Cost of "
     "Mixes||Fixed Costs||Markup Costs||Cost of Batch||Notes|"},
    {"ColorList", 67,
     "|Color Type||Color Code||Reorder||Inventory||Inventory Note||Purchase Cost||Basic Cost||VOC||VOC "
     "Basics||HAP||HAP Basics||Recyclable||Date Entered||Notes||Formula|",
     "0", "0", "0"},
    {"ColorListDB", 68,
     "|Database||Color Type||Color Code||Reorder||Inventory||Inventory Note||Purchase Cost||Basic Cost||VOC||VOC "
     "Basics||HAP||HAP Basics||Recyclable||Date Entered||Notes||Formula|"},
    {"DetailedJobUsage", 26, "|Batch/Item||Date Entered||Qty Used||Unit Cost||Total Cost|", "0", "0", "6"},
    {"DetailedSpecificJobUsage", 26, "|Database||Batch/Item||Date Entered||Qty Used||Total Cost|"},
    {"DetConsumption", 109, "|Date Entered||Batch Qty||Qty Consumed||% Consumed|"},
    {"DetJobUsage", 21, "|Batch/Item||Date Entered||Qty Used||Total Cost|"},
    {"DetProduction", 33, "|Date Entered||Quantity||Qty Recycled||% Recycled||Cost of Batch|"},
    {"Inventory", 33, "|Color Type||Inventory||Unit Cost||Total Cost|"},
    {"InventoryDetailSelected", 34, "|Database||Color Type||Inventory||Unit Cost||Total Cost|"},
    {"InventorySummary", 4, "|Inventory||Total Cost|"},
    {"JobList", 12, "|Qty Used||Total Cost|", "0", "0", "0"},
    {"JobRecord", 27, "|Database||Batch Number||Unit Cost||Qty Used||Total Cost|"},
    {"MixCostList", 5, "|Color Code||Purchase Cost||Basic Cost|"},
    {"Mix_VOC_HAP_List", 7, "|Color Code||VOC||VOC Basic||HAP||HAP Basic|"},
    {"RecList", 14, "|Recycle Percent||Recyclable||Inventory|", "1", "2"},
    {"Reorder", 12, "|Color Type||Reorder||Inventory||Unit Cost|"},
    {"Sum2Consumption", 5, "|Batches||Qty Consumed||% Consumed|"},
    {"Sum2JobUsage", 14, "|Job Items||Qty Used||% Used||Total Cost|"},
    {"Sum2Production", 19, "|Batches||Quantity||Qty Recycled||% Recycled||Cost of Batches|"},
    {"SumBatchAdditions", 7, "|Batches||Quantity||Qty Recycled|", "1", "0"},
    {"SumConsumption", 158, "|Color Type||Batches||Qty Consumed||% Consumed|"},
    {"SumJobUsage", 16, "|Job Items||Qty Used||% Used||Total Cost|"},
    {"SumProduction", 20, "|Batches||Quantity||Qty Recycled||% Recycled||Cost of Batches|"},
});

// A setting, or that of a list window with its prefix.
struct Listed {
  const SettingInfo* info;
  std::string_view prefix = {};
};

// The records of a new file behind those of the families, in the order of the file.
constexpr auto kNewFile = std::to_array<Listed>({
    {&UMI},
    {&UMF},
    {&AllowNegInv},
    {&AutoBackup},
    {&AutoBackupCount},
    {&AutoFillText},
    {&BackupRestoreFileLocation},
    {&BatchActionButton},
    {&BatchLotNumReminder},
    {&Additions, "BatchList"},
    {&Additions, "BatchListDB"},
    {&ShowBasics, "ColorList"},
    {&ShowMixes, "ColorList"},
    {&NotesOnly, "ColorList"},
    {&CustomOnly, "ColorList"},
    {&ModifiedOnly, "ColorList"},
    {&DateRange, "Consumption"},
    {&CostModelType},
    {&DbFileName50},
    {&DecimalPlaces},
    {&DateRange, "DetailedUsage"},
    {&EmailRecipient},
    {&FixedCostOfBatch},
    {&FixedCostPerUnit},
    {&HistoryType},
    {&IngSortOrder},
    {&HAPModelType},
    {&InkEstUOM},
    {&InkEstD},
    {&InkEstA},
    {&InvCutoff},
    {&MixCost, "Inventory"},
    {&InvOnly, "Inventory"},
    {&ShowBasics, "Inventory"},
    {&ShowMixes, "Inventory"},
    {&MixCost, "InventoryDetailSelected"},
    {&InvOnly, "InventoryDetailSelected"},
    {&ShowBasics, "InventoryDetailSelected"},
    {&ShowMixes, "InventoryDetailSelected"},
    {&JobMixCostOption},
    {&JobMixVOC_Option},
    {&JobMixHAP_Option},
    {&DateRange, "JobUsage"},
    {&LabelLayoutList},
    {&LPFire},
    {&LPHealth},
    {&LPReactivity},
    {&LottedInvReminder},
    {&MarkupPercent},
    {&MixCostOption},
    {&MonthsToRemindArchive},
    {&Overpour},
    {&PrintBatchHistoryOption},
    {&PrintBatchInfoOption},
    {&PrintBatchNotes},
    {&PrintCostOption},
    {&PrinterDevice},
    {&PrinterFont},
    {&PrintMixNotes},
    {&PrintExtraBatchDetails},
    {&PrintIngInvConsumption},
    {&PrintQuickInfoOption},
    {&DateRange, "Production"},
    {&QuickInfoField},
    {&RecListType},
    {&InvOnly, "RecList"},
    {&RecyclableOnly, "RecList"},
    {&RemindBackup},
    {&MixCost, "Reorder"},
    {&PointsOnly, "Reorder"},
    {&ReorderOnly, "Reorder"},
    {&ShowBasics, "Reorder"},
    {&ShowMixes, "Reorder"},
    {&ReportPrinter},
    {&ReturnToInventory},
    {&SetupWizard},
    {&ShowBatchGraphic},
    {&ShowHelpMsg},
    {&ShowQuickInfoOption},
    {&ShowBasics, "SumConsumption"},
    {&ShowMixes, "SumConsumption"},
    {&ShowBasics, "SumJobUsage"},
    {&ShowMixes, "SumJobUsage"},
    {&VOCModelType},
    {&InvLotTracking},
    {&BatchCustomTextLabelCaption},
    {&BatchCustomNumericLabelCaption},
    {&JobCustomTextLabelCaption},
    {&JobCustomNumericLabelCaption},
});

// What the ladder brings, and what only the settings of the previous version hold.
constexpr auto kLater = std::to_array<const SettingInfo*>({
    &StartupVar_FileVersion,
    &LabelTemplate_Version,
    &GH_LabelTemplate_Version,
    &Formula_LabelTemplate_Version,
    &GH_LabelLayoutList,
    &Formula_LabelLayoutList,
    &BC_Label_Prefix_Identifier,
    &BC_PrintItem_,
    &MC_PrintItem_,
    &PControl_IncludeHeadings,
    &PControl_IncludeData,
    &PControl_IncludeTotals,
    &PControl_Lines,
    &PControl_FitToPage,
    &PControl_Orientation,
    &BackupFileLocation,
    &Anilox,
    &BatchDefaultLotNumberValue,
    &Batches_UDNum_Format,
    &Jobs_UDNum_Format,
    &BatchUDTxtDefault,
    &BatchUDTxtValue,
    &BatchUDTxtRequired,
    &JobUDTxtDefault,
    &JobUDTxtValue,
    &JobUDTxtRequired,
    &ReportExportForm_DefaultExportLocation,
    &SavedReport,
    &CustomDateRanges,
    &BatchComplete,
    &UDCNameCCodeLen,
    &DesignsCostModelIndex,
    &PrintLABBatchDetails,
    &InvRecordMethod,
    &PrintRecListPercent,
    &PrintRecListPercentValue,
    &DbFileName40,
});

// Of the scale's own file: what the ladder makes it with, and what comes in later.
constexpr auto kScaleFile = std::to_array<const SettingInfo*>({
    &CommPort,
    &BaudRate,
    &Parity,
    &WordLen,
    &StopBit,
    &Echo,
    &NetID,
});
constexpr auto kScaleLater = std::to_array<const SettingInfo*>({
    &Handshaking,
    &ScaleUnit,
    &ScaleCapacity,
    &WeighTolerance,
    &WeighToleranceInPercent,
    &WeighHeaviestFirst,
    &ScaleIsOn,
});

// Known by the end of a key; the longer one stands first.
constexpr auto kOfWindows = std::to_array<const SettingInfo*>({
    &SecondSortOrder, &SecondSortCol,  &SortOrder,  &SortCol,     &Columns,   &ColWidth,        &DateRange,
    &DateQuery,       &ShowBasics,     &ShowMixes,  &Additions,   &NotesOnly, &CustomOnly,      &ModifiedOnly,
    &InvOnly,         &RecyclableOnly, &PointsOnly, &ReorderOnly, &MixCost,   &OptConsignment,  &FileFormat,
    &IncHeading,      &IncData,        &IncTotals,  &UDH_Setting, &UDHeader,  &DefaultFileName, &DefaultDir,
});

constexpr std::array<std::pair<std::string_view, int>, 21> kTitleWidths{{
    {"Color Name", 2865},      {"Database", 1935},     {"Color Code", 1935},     {"Job Number", 1935},
    {"Batch/Item", 1935},      {"Batch Number", 1935}, {"Inventory Note", 1935}, {"Design Desc", 2865},
    {"Ing Name", 2865},        {"Ing. Name", 2865},    {"Ing Code", 1935},       {"Color Type", 1065},
    {"Recyclable", 1065},      {"Notes", 1065},        {"Formula", 1065},        {"Batches", 1065},
    {"Job Items", 1065},       {"% Used", 1065},       {"% Consumed", 1065},     {"% Recycled", 1065},
    {"Recycle Percent", 1065},
}};

// Quantities, dates and money are what the table does not name.
int WidthOf(std::string_view title) {
  for (const auto& [name, width] : kTitleWidths)
    if (name == title) return width;
  return 1500;
}

// The widths of the columns in front: the one that is always shown, then those of a column set "|A||B|".
std::vector<int> ShownWidths(std::string_view columns) {
  std::vector<int> widths{columns.find("|Color Name|") == std::string_view::npos ? 2865 : 1500};
  while (columns.starts_with('|')) {
    const std::size_t end = columns.find('|', 1);
    if (end == std::string_view::npos) break;
    widths.push_back(WidthOf(columns.substr(1, end - 1)));
    columns.remove_prefix(end + 1);
  }
  return widths;
}

// A key as files in the field have it: two of the series slipped.
std::string WidthKey(std::string_view prefix, int number) {
  if (prefix == "ColorListDB" && number == 16) prefix = "ColorList";
  if (prefix == "SumConsumption" && number == 155) number = 15;
  return ColWidth.Of(prefix, number).key;
}

// The number behind a key of a group or a width; nothing where none, or one written otherwise, stands there.
std::string_view WithoutNumber(std::string_view key) {
  while (!key.empty() && key.back() >= '0' && key.back() <= '9') key.remove_suffix(1);
  return key;
}

bool Names(const SettingInfo& info, std::string_view key) {
  if (info.count == 0) return info.key == key;
  if (WithoutNumber(key) != info.key) return false;
  for (int i = 0; i < info.count; ++i)
    if (MemberKey(info, i) == key) return true;
  return false;
}

}  // namespace

std::vector<SupportRecord> FamilyRecords(const ColumnFamily& family) {
  std::vector<SupportRecord> records;
  const auto add = [&](const auto& named, std::string_view value) {
    records.push_back({{}, named.key, std::string(value)});
  };
  const auto initial = [&](const auto& named) { add(named, named.initial); };
  add(Columns.Of(family.prefix), family.columns);
  if (!family.sortOrder.empty()) {
    add(SortOrder.Of(family.prefix), family.sortOrder);
    add(SortCol.Of(family.prefix), family.sortCol);
    initial(SecondSortOrder.Of(family.prefix));
    initial(SecondSortCol.Of(family.prefix));
  }
  const std::vector<int> shown = ShownWidths(family.columns);
  for (int i = 0; i < family.widths; ++i) {
    const int width = i < static_cast<int>(shown.size()) ? shown[static_cast<std::size_t>(i)] : 0;
    records.push_back({{}, WidthKey(family.prefix, i), std::to_string(width)});
  }
  if (!family.dateRange.empty()) add(DateRange.Of(family.prefix), family.dateRange);
  return records;
}

SupportRecords DefaultSettings() {
  std::vector<SupportRecord> records;
  for (const ColumnFamily& family : kFamilies)
    for (SupportRecord& record : FamilyRecords(family)) records.push_back(std::move(record));
  for (const auto& [info, prefix] : kNewFile)
    for (SettingText& text : InitialValues(*info))
      records.push_back({{}, std::string(prefix) + text.key, std::move(text.value)});
  return {RecordShape::KeyValue, std::move(records)};
}

const SettingInfo* FindSetting(std::string_view key) {
  for (const Listed& listed : kNewFile)
    if (listed.prefix.empty() && Names(*listed.info, key)) return listed.info;
  for (const SettingInfo* info : kLater)
    if (Names(*info, key)) return info;
  for (const SettingInfo* info : kOfWindows)
    if ((info == &ColWidth ? WithoutNumber(key) : key).ends_with(info->key)) return info;
  return nullptr;
}

SupportRecords DefaultScaleSettings() {
  SupportRecords records(RecordShape::KeyValue);
  for (const SettingInfo* info : kScaleFile)
    for (const SettingText& text : InitialValues(*info)) records.Append(text.key, text.value);
  return records;
}

std::vector<const SettingInfo*> ScaleFileSettings() {
  std::vector<const SettingInfo*> all(kScaleFile.begin(), kScaleFile.end());
  all.insert(all.end(), kScaleLater.begin(), kScaleLater.end());
  return all;
}

std::vector<std::string> UnusableSettings(const SupportRecords& settings) {
  std::vector<std::string> faults;
  for (const SupportRecord& record : settings.Records())
    if (const SettingInfo* info = FindSetting(record.key); info != nullptr && !IsUsable(*info, record.value))
      faults.push_back(CheckSettingText(info, record.key, record.value).error().text);
  return faults;
}

}  // namespace vellumark
