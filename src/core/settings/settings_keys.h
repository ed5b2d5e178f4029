#pragma once

#include <string>
#include <string_view>

namespace vellumark::keys {

// Keys of the settings file that are named in more than one place.

inline constexpr std::string_view UMI = "UMI";
inline constexpr std::string_view UMF = "UMF";
inline constexpr std::string_view AllowNegInv = "AllowNegInv";
inline constexpr std::string_view AutoBackup = "AutoBackup";
inline constexpr std::string_view AutoFillText = "AutoFillText";
inline constexpr std::string_view BackupFileLocation = "BackupFileLocation";
inline constexpr std::string_view BackupRestoreFileLocation = "BackupRestoreFileLocation";
inline constexpr std::string_view BatchComplete = "BatchComplete";
inline constexpr std::string_view BatchDefaultLotNumberValue = "BatchDefaultLotNumberValue";
inline constexpr std::string_view BatchLotNumReminder = "BatchLotNumReminder";
inline constexpr std::string_view CostModelType = "CostModelType";
inline constexpr std::string_view DbFileName40 = "dbFileName40";
inline constexpr std::string_view DbFileName50 = "dbFileName50";
inline constexpr std::string_view DecimalPlaces = "DecimalPlaces";
inline constexpr std::string_view DesignsCostModelIndex = "DesignsCostModelIndex";
inline constexpr std::string_view FixedCostOfBatch = "FixedCostOfBatch";
inline constexpr std::string_view FixedCostPerUnit = "FixedCostPerUnit";
inline constexpr std::string_view HAPModelType = "HAPModelType";
inline constexpr std::string_view InvCutoff = "InvCutoff";
inline constexpr std::string_view InvLotTracking = "InvLotTracking";
inline constexpr std::string_view InvRecordMethod = "InvRecordMethod";
inline constexpr std::string_view JobMixCostOption = "JobMixCostOption";
inline constexpr std::string_view LottedInvReminder = "LottedInvReminder";
inline constexpr std::string_view MarkupPercent = "MarkupPercent";
inline constexpr std::string_view MixCostOption = "MixCostOption";
inline constexpr std::string_view MonthsToRemindArchive = "MonthsToRemindArchive";
inline constexpr std::string_view Overpour = "Overpour";
inline constexpr std::string_view PrinterDevice = "PrinterDevice";
inline constexpr std::string_view PrinterFont = "PrinterFont";
inline constexpr std::string_view RemindBackup = "RemindBackup";
inline constexpr std::string_view ReportPrinter = "ReportPrinter";
inline constexpr std::string_view ReturnToInventory = "ReturnToInventory";
inline constexpr std::string_view UDCNameCCodeLen = "UDCNameCCodeLen";
inline constexpr std::string_view VOCModelType = "VOCModelType";

inline constexpr std::string_view StartupVar_FileVersion = "StartupVar_FileVersion";
inline constexpr std::string_view LabelTemplate_Version = "LabelTemplate_Version";
inline constexpr std::string_view GH_LabelTemplate_Version = "GH_LabelTemplate_Version";
inline constexpr std::string_view Formula_LabelTemplate_Version = "Formula_LabelTemplate_Version";
inline constexpr std::string_view LabelLayoutList = "LabelLayoutList";
inline constexpr std::string_view GH_LabelLayoutList = "GH_LabelLayoutList";
inline constexpr std::string_view Formula_LabelLayoutList = "Formula_LabelLayoutList";

/// A key of a numbered group or of a window's family: its name with the number behind it.
inline std::string Numbered(std::string_view name, int number) {
  return std::string(name) + std::to_string(number);
}

}  // namespace vellumark::keys
