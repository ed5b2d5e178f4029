#include "core/settings/catalogue.h"

#include <fmt/format.h>

#include <array>
#include <span>
#include <utility>

#include "core/settings/settings_keys.h"

namespace vellumark {
namespace {

using keys::Numbered;

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

struct SingleKey {
  std::string_view key;
  std::string_view value;
  int count = 0;         // above 0: a group, the key followed by 0 to count - 1
  bool counted = false;  // the value is followed by the number, from 1
};

constexpr auto kKeysBeforeMileages = std::to_array<SingleKey>({
    {"UMI", "1"},
    {"UMF", "1"},
    {"AllowNegInv", "0"},
    {"AutoBackup", "1"},
    {"AutoBackupCount", "5"},
    {"AutoFillText", "1"},
    {"BackupRestoreFileLocation", ""},
    {"BatchActionButton", "1"},
    {"BatchLotNumReminder", "1"},
    {"BatchListAdditions", "0"},
    {"BatchListDBAdditions", "0"},
    {"ColorListShowBasics", "1"},
    {"ColorListShowMixes", "1"},
    {"ColorListNotesOnly", "0"},
    {"ColorListCustomOnly", "0"},
    {"ColorListModifiedOnly", "0"},
    {"ConsumptionDateRange", "6"},
    {"CostModelType", "0"},
    {"dbFileName50", ""},
    {"DecimalPlaces", "2"},
    {"DetailedUsageDateRange", "6"},
    {"EmailRecipient", "", 10},
    {"FixedCostOfBatch", "0"},
    {"FixedCostPerUnit", "0"},
    {"HistoryType", "0"},
    {"IngSortOrder", "0"},
    {"HAPModelType", "0"},
    {"InkEstUOM", "in."},
});

constexpr auto kKeysAfterMileages = std::to_array<SingleKey>({
    {"InvCutoff", "0.5"},
    {"InventoryMixCost", "0"},
    {"InventoryInvOnly", "0"},
    {"InventoryShowBasics", "1"},
    {"InventoryShowMixes", "1"},
    {"InventoryDetailSelectedMixCost", "0"},
    {"InventoryDetailSelectedInvOnly", "0"},
    {"InventoryDetailSelectedShowBasics", "1"},
    {"InventoryDetailSelectedShowMixes", "1"},
    {"JobMixCostOption", "1"},
    {"JobMixVOC_Option", "0"},
    {"JobMixHAP_Option", "0"},
    {"JobUsageDateRange", "6"},
    {"LabelLayoutList", "Default Label|"},
    {"LPFire", ""},
    {"LPHealth", ""},
    {"LPReactivity", ""},
    {"LottedInvReminder", "1"},
    {"MarkupPercent", "0"},
    {"MixCostOption", "0"},
    {"MonthsToRemindArchive", "66"},
    {"Overpour", "0"},
    {"PrintBatchHistoryOption", "1"},
    {"PrintBatchInfoOption", "1"},
    {"PrintBatchNotes", "0", 4},
    {"PrintCostOption", "1"},
    {"PrinterDevice", ""},
    {"PrinterFont", "Arial"},
    {"PrintMixNotes", "0", 3},
    {"PrintExtraBatchDetails", "1"},
    {"PrintIngInvConsumption", "0"},
    {"PrintQuickInfoOption", "0"},
    {"ProductionDateRange", "6"},
    {"QuickInfoField", "1", 10},
    {"RecListType", "0"},
    {"RecListInvOnly", "0"},
    {"RecListRecyclableOnly", "0"},
    {"RemindBackup", "1"},
    {"ReorderMixCost", "0"},
    {"ReorderPointsOnly", "0"},
    {"ReorderReorderOnly", "0"},
    {"ReorderShowBasics", "1"},
    {"ReorderShowMixes", "1"},
    {"ReportPrinter", ""},
    {"ReturnToInventory", "1"},
    {"SetupWizard", "Completed"},
    {"ShowBatchGraphic", "1"},
    {"ShowHelpMsg", "Yes"},
    {"ShowQuickInfoOption", "1"},
    {"SumConsumptionShowBasics", "1"},
    {"SumConsumptionShowMixes", "1"},
    {"SumJobUsageShowBasics", "1"},
    {"SumJobUsageShowMixes", "1"},
    {"VOCModelType", "0"},
    {"InvLotTracking", "1"},
    {"BatchCustomTextLabelCaption", "Text Lbl", 6, true},
    {"BatchCustomNumericLabelCaption", "Num Lbl", 6, true},
    {"JobCustomTextLabelCaption", "Text Lbl", 6, true},
    {"JobCustomNumericLabelCaption", "Num Lbl", 6, true},
});

// Square inches that a pound of ink prints, by ink type and stock.
constexpr std::array<std::array<int, 4>, 8> kMileages{{
    {300000, 375000, 400000, 400000},
    {275000, 350000, 375000, 375000},
    {275000, 350000, 375000, 375000},
    {225000, 275000, 300000, 300000},
    {125000, 150000, 175000, 175000},
    {200000, 250000, 275000, 275000},
    {125000, 150000, 150000, 150000},
    {325000, 400000, 450000, 425000},
}};

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
  return fmt::format("{}ColWidth{}", prefix, number);
}

void AddSingles(std::vector<SupportRecord>& records, std::span<const SingleKey> singles) {
  for (const auto& [key, value, count, counted] : singles) {
    if (count == 0) records.push_back({{}, std::string(key), std::string(value)});
    for (int i = 0; i < count; ++i)
      records.push_back({{}, Numbered(key, i), counted ? Numbered(value, i + 1) : std::string(value)});
  }
}

void AddMileages(std::vector<SupportRecord>& records, std::string_view table) {
  for (std::size_t ink = 0; ink < kMileages.size(); ++ink)
    for (std::size_t stock = 0; stock < kMileages[ink].size(); ++stock)
      records.push_back({{}, fmt::format("{}{}{}", table, ink, stock), std::to_string(kMileages[ink][stock])});
}

}  // namespace

std::vector<SupportRecord> FamilyRecords(const ColumnFamily& family) {
  std::vector<SupportRecord> records;
  const auto add = [&](std::string_view name, std::string_view value) {
    records.push_back({{}, fmt::format("{}{}", family.prefix, name), std::string(value)});
  };
  add("Columns", family.columns);
  if (!family.sortOrder.empty()) {
    add("SortOrder", family.sortOrder);
    add("SortCol", family.sortCol);
    add("SecondSortOrder", "0");
    add("SecondSortCol", "-1");
  }
  const std::vector<int> shown = ShownWidths(family.columns);
  for (int i = 0; i < family.widths; ++i) {
    const int width = i < static_cast<int>(shown.size()) ? shown[static_cast<std::size_t>(i)] : 0;
    records.push_back({{}, WidthKey(family.prefix, i), std::to_string(width)});
  }
  if (!family.dateRange.empty()) add("DateRange", family.dateRange);
  return records;
}

SupportRecords DefaultSettings() {
  std::vector<SupportRecord> records;
  for (const ColumnFamily& family : kFamilies)
    for (SupportRecord& record : FamilyRecords(family)) records.push_back(std::move(record));
  AddSingles(records, kKeysBeforeMileages);
  AddMileages(records, "InkEstD");
  AddMileages(records, "InkEstA");
  AddSingles(records, kKeysAfterMileages);
  return {RecordShape::KeyValue, std::move(records)};
}

}  // namespace vellumark
