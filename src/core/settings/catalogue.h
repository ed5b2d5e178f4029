#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "core/settings/setting.h"
#include "core/settings/support_records.h"

namespace vellumark {

/// The keys of one list window: `<prefix>Columns`, the two sorts, `<prefix>ColWidth<n>` for n from 0 to widths - 1 and
/// `<prefix>DateRange`.
struct ColumnFamily {
  std::string_view prefix;
  int widths = 0;
  std::string_view columns;          ///< chosen columns, each title between bars
  std::string_view sortOrder = "0";  ///< "0" ascending, "1" descending; empty: the window has no sort keys
  std::string_view sortCol = "0";
  std::string_view dateRange = {};  ///< number of a period; empty: the window has no period
};

/// The records of a family with their defaults, in the order of the file. The name column and the columns chosen get
/// the width that suits their title (2865, 1935, 1500 or 1065 twips), all others 0.
std::vector<SupportRecord> FamilyRecords(const ColumnFamily& family);

/// The whole content of a new settings file, 1,259 records: the families of the list windows, then the single keys.
/// Two column keys stand twice, as files in the field have them: `ColorListColWidth16`, the second time where
/// `ColorListDBColWidth16` would be, and `SumConsumptionColWidth15`, the second time in the place of 155.
SupportRecords DefaultSettings();

/// What is told of a key, of a group's or a list window's too; null for one that nothing here knows, which may hold
/// any text.
const SettingInfo* FindSetting(std::string_view key);

/// The whole content of a new scale file.
SupportRecords DefaultScaleSettings();
/// Every setting that the scale file can hold, those of later times too, in the order of the file.
std::vector<const SettingInfo*> ScaleFileSettings();

/// What is wrong with the values that mean nothing in their setting, one sentence each, in the order of the file.
std::vector<std::string> UnusableSettings(const SupportRecords& settings);

}  // namespace vellumark
