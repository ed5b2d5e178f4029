#include "core/settings/setting_values.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <optional>
#include <string>

#include "core/base/number.h"
#include "core/settings/support_records.h"

namespace vellumark {
namespace {

constexpr double kNoLimit = std::numeric_limits<double>::infinity();
constexpr double kLargestWhole = std::numeric_limits<int>::max();
constexpr double kLargestMoney = 99999;
constexpr int kPeriods = 11;

struct Range {
  double least = 0;
  double most = kNoLimit;
  bool whole = true;
};

constexpr Range kSwitch{0, 1};
constexpr Range kWhole{0, kLargestWhole};

struct Rule {
  std::string_view key;
  Range range;
};

constexpr std::array kKeys{
    Rule{"UMI", {1, 4}},
    Rule{"UMF", {1, 4}},
    Rule{"DecimalPlaces", {2, 4}},
    Rule{"UDCNameCCodeLen", {10, 30}},
    Rule{"InvCutoff", {0, kLargestMoney, false}},
    Rule{"CostModelType", kSwitch},
    Rule{"MixCostOption", {0, 2}},
    Rule{"VOCModelType", {0, 2}},
    Rule{"HAPModelType", {0, 2}},
    Rule{"FixedCostOfBatch", {0, kLargestMoney, false}},
    Rule{"FixedCostPerUnit", {0, kLargestMoney, false}},
    Rule{"MarkupPercent", {0, 100, false}},
    Rule{"PrintRecListPercentValue", {0, 100, false}},
    Rule{"JobMixCostOption", kWhole},
    Rule{"JobMixVOC_Option", kWhole},
    Rule{"JobMixHAP_Option", kWhole},
    Rule{"DesignsCostModelIndex", kWhole},
    Rule{"HistoryType", kWhole},
    Rule{"RecListType", kWhole},
    Rule{"MonthsToRemindArchive", kWhole},
    Rule{"AutoBackupCount", kWhole},
    Rule{"StartupVar_FileVersion", kWhole},
    Rule{"LabelTemplate_Version", kWhole},
    Rule{"GH_LabelTemplate_Version", kWhole},
    Rule{"Formula_LabelTemplate_Version", kWhole},
};

constexpr std::array<std::string_view, 37> kSwitches{
    "AllowNegInv",
    "AutoBackup",
    "AutoFillText",
    "BatchActionButton",
    "BatchComplete",
    "BatchDefaultLotNumberValue",
    "BatchListAdditions",
    "BatchListDBAdditions",
    "BatchLotNumReminder",
    "ColorListCustomOnly",
    "ColorListModifiedOnly",
    "ColorListNotesOnly",
    "IngSortOrder",
    "InvLotTracking",
    "InvRecordMethod",
    "InventoryDetailSelectedInvOnly",
    "InventoryDetailSelectedMixCost",
    "InventoryInvOnly",
    "InventoryMixCost",
    "LottedInvReminder",
    "Overpour",
    "PrintBatchHistoryOption",
    "PrintBatchInfoOption",
    "PrintCostOption",
    "PrintExtraBatchDetails",
    "PrintIngInvConsumption",
    "PrintLABBatchDetails",
    "PrintQuickInfoOption",
    "RecListInvOnly",
    "RecListRecyclableOnly",
    "RemindBackup",
    "ReorderMixCost",
    "ReorderPointsOnly",
    "ReorderReorderOnly",
    "ReturnToInventory",
    "ShowBatchGraphic",
    "ShowQuickInfoOption",
};

// Keys that a number follows.
constexpr std::array kGroups{
    Rule{"PrintBatchNotes", kSwitch},
    Rule{"PrintMixNotes", kSwitch},
    Rule{"QuickInfoField", kSwitch},
    Rule{"BC_PrintItem_", kSwitch},
    Rule{"MC_PrintItem_", kSwitch},
    Rule{"BatchUDTxtDefault", kSwitch},
    Rule{"BatchUDTxtRequired", kSwitch},
    Rule{"JobUDTxtDefault", kSwitch},
    Rule{"JobUDTxtRequired", kSwitch},
    Rule{"Batches_UDNum_Format", {0, 4}},
    Rule{"Jobs_UDNum_Format", {0, 4}},
    Rule{"InkEstD", kWhole},
    Rule{"InkEstA", kWhole},
    Rule{"Anilox", {0, kLargestMoney, false}},
};

// The keys of the list windows, by their ends; the longer one stands first.
constexpr std::array kFamilyEnds{
    Rule{"SortOrder", kSwitch}, Rule{"SecondSortCol", {-1, kLargestWhole}},
    Rule{"SortCol", kWhole},    Rule{"DateRange", {0, kPeriods - 1}},
    Rule{"DateQuery", kWhole},  Rule{"ShowBasics", kSwitch},
    Rule{"ShowMixes", kSwitch},
};

std::string_view WithoutNumber(std::string_view key) {
  while (!key.empty() && key.back() >= '0' && key.back() <= '9') key.remove_suffix(1);
  return key;
}

std::optional<Range> RangeOf(std::string_view key) {
  for (const Rule& rule : kKeys)
    if (rule.key == key) return rule.range;
  if (std::ranges::find(kSwitches, key) != kSwitches.end()) return kSwitch;
  const std::string_view word = WithoutNumber(key);
  if (word != key) {
    for (const Rule& rule : kGroups)
      if (rule.key == word) return rule.range;
    if (word.ends_with("ColWidth")) return kWhole;
  }
  for (const Rule& rule : kFamilyEnds)
    if (key.ends_with(rule.key)) return rule.range;
  return std::nullopt;
}

bool IsInRange(std::string_view value, const Range& range) {
  const auto number = ParseNumber(value);
  if (!number || *number < range.least || *number > range.most) return false;
  return !range.whole || *number == std::floor(*number);
}

std::string RangeText(const Range& range) {
  if (range.least == kSwitch.least && range.most == kSwitch.most && range.whole) return "0 or 1";
  std::string text = range.whole ? "a whole number" : "a number";
  if (range.most >= kLargestWhole) return fmt::format("{} of {} or more", text, range.least);
  return fmt::format("{} from {} to {}", text, range.least, range.most);
}

// "|A||B|", each title between bars of its own, or nothing.
bool IsColumnSet(std::string_view value) {
  while (!value.empty()) {
    const std::size_t end = value.starts_with('|') ? value.find('|', 1) : std::string_view::npos;
    if (end == std::string_view::npos || end == 1) return false;
    value.remove_prefix(end + 1);
  }
  return true;
}

}  // namespace

Result<void> CheckSettingValue(std::string_view key, std::string_view value) {
  const auto refused = [&](std::string_view meaning) {
    return Refuse("Settings", fmt::format("{} is {}, not \"{}\".", key, meaning, value), "VALUE");
  };
  if (HoldsForeignName(key)) return {};
  if (value.find_first_of("\"\r\n") != std::string_view::npos)
    return Refuse("Settings", "A value cannot hold a double quote or a line end.", "VALUE");
  if (key.ends_with("Columns") && !IsColumnSet(value))
    return refused("a list of column titles, each between bars as in \"|Color Code||Reorder|\"");
  if (key.ends_with("LayoutList") && !value.ends_with('|'))
    return refused("a list of layouts, each closed by a bar as in \"Default Label|\"");
  if (const auto range = RangeOf(key); range && !IsInRange(value, *range)) return refused(RangeText(*range));
  return {};
}

}  // namespace vellumark
