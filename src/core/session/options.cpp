#include "core/session/options.h"

#include <fmt/format.h>

#include <algorithm>

#include "core/base/number.h"
#include "core/base/text.h"
#include "core/base/units.h"
#include "core/datafile/databases.h"
#include "core/session/rights.h"
#include "core/session/settings.h"

namespace vellumark {
namespace {

constexpr std::string_view kNoPaper = "Rendering Subsystem";

bool IsUnit(int unit) {
  return !UnitName(unit).empty();
}

Refusal UnknownUnit(std::string_view field) {
  return {"Options", "Select a unit from the list.", std::string(field)};
}

Result<float> ReadInvCutoff(std::string_view typed) {
  if (CheckSettingText(&setting::InvCutoff, setting::InvCutoff.key, typed)) return setting::InvCutoff.Named().Of(typed);
  return Refuse("Invalid Inventory Cutoff", "You must enter an amount greater than or equal to zero.", "txtCutoff");
}

Result<int> ReadNameLength(std::string_view typed) {
  const auto& length = setting::UDCNameCCodeLen;
  if (CheckSettingText(&length, length.key, typed)) return length.Named().Of(typed);
  return Refuse(
      "Invalid Name Length",
      fmt::format("You must enter a whole number between {} and {}.", length.limits.least, length.limits.most),
      "txtNameLength");
}

}  // namespace

void TellNewUnit(Session& session, std::string_view key, int before, int after) {
  if (before == after || !IsUnit(before) || !IsUnit(after)) return;
  const std::string text =
      key == setting::UMI.key
          ? fmt::format(
                "Nothing is converted: stock, lots, reorder points, the cutoff and unit costs on file keep their "
                "figures, which stood for {} and stand for {} from now on.",
                UnitName(before), UnitName(after))
          : fmt::format("Batches on file keep their unit; new ones are measured in {}", UnitName(after));
  session.prompt.Tell(key == setting::UMI.key ? "Inventory Unit" : "Batch Unit", text, Icon::Information);
}

InventorySettings ReadInventorySettings(const Session& session) {
  return {session.UMI, ShortestText(InvCutoffInForce(session)), GetSetting(session, setting::AllowNegInv),
          session.InvLotTracking == 1, GetSetting(session, setting::InvRecordMethod) ? 1 : 0};
}

Result<void> SaveInventorySettings(Session& session, const InventorySettings& settings) {
  if (auto allowed = RequireCommandRight(session, CommandRight::Options); !allowed) return allowed;
  if (!IsUnit(settings.UMI)) return std::unexpected(UnknownUnit("cmbUMI"));
  const auto cutoff = ReadInvCutoff(settings.InvCutoff);
  if (!cutoff) return std::unexpected(cutoff.error());
  if (settings.InvRecordMethod != 0 && settings.InvRecordMethod != 1)
    return Refuse("Options", "Select how lots are recorded.", "InvRecordMethod");
  const int before = session.UMI;
  StoreSettings(session,
                {setting::UMI.To(settings.UMI), setting::InvCutoff.To(*cutoff),
                 setting::AllowNegInv.To(settings.AllowNegInv), setting::InvLotTracking.To(settings.InvLotTracking),
                 setting::InvRecordMethod.To(settings.InvRecordMethod == 1)});
  TellNewUnit(session, setting::UMI.key, before, settings.UMI);
  return {};
}

Result<void> SaveNameLength(Session& session, std::string_view typed) {
  if (auto allowed = RequireCommandRight(session, CommandRight::Options); !allowed) return allowed;
  const auto length = ReadNameLength(typed);
  if (!length) return std::unexpected(length.error());
  StoreSettings(session, {setting::UDCNameCCodeLen.To(*length)});
  return {};
}

Result<void> SaveAutofill(Session& session, bool on) {
  if (auto allowed = RequireCommandRight(session, CommandRight::Options); !allowed) return allowed;
  StoreSettings(session, {setting::AutoFillText.To(on)});
  return {};
}

Reminders ReadReminders(const Session& session) {
  Reminders reminders;
  reminders.shutdownBackup = !GetSetting(session, setting::RemindBackup);
  if (session.DataFileDB) {
    const std::int64_t days = session.File().Scalar("SELECT DaysToRemindBackup FROM FileInfo").Whole();
    reminders.DaysToRemindBackup = static_cast<int>(std::clamp<std::int64_t>(days, 1, kLongestReminder));
  }
  reminders.BackupFileLocation = GetSetting(session, setting::BackupFileLocation);
  reminders.LottedInvReminder = GetSetting(session, setting::LottedInvReminder);
  reminders.BatchLotNumReminder = GetSetting(session, setting::BatchLotNumReminder);
  return reminders;
}

Result<void> SaveReminders(Session& session, const Reminders& reminders) {
  if (auto allowed = RequireCommandRight(session, CommandRight::Options); !allowed) return allowed;
  if (auto writable = RequireWritable(session); !writable) return writable;
  const bool on = reminders.shutdownBackup;
  if (on) {
    if (reminders.DaysToRemindBackup < 1 || reminders.DaysToRemindBackup > kLongestReminder)
      return Refuse("Reminders", fmt::format("Select a number of days between 1 and {}.", kLongestReminder), "cmbDays");
    if (session.DataFileDB) StoreDaysToRemindBackup(session.File(), reminders.DaysToRemindBackup);
  }
  StoreSettings(session, {setting::BackupFileLocation.To(on ? reminders.BackupFileLocation : ""),
                          setting::RemindBackup.To(!on), setting::LottedInvReminder.To(reminders.LottedInvReminder),
                          setting::BatchLotNumReminder.To(reminders.BatchLotNumReminder)});
  return {};
}

std::vector<PrinterNames> PrintersOffered(std::vector<PrinterNames> printers) {
  std::erase_if(printers, [](const PrinterNames& printer) { return printer.name == kNoPaper; });
  return printers;
}

Result<void> SaveDefaultPrinter(Session& session, std::string_view device, std::string_view font) {
  if (auto allowed = RequireCommandRight(session, CommandRight::Options); !allowed) return allowed;
  StoreSettings(session, {setting::PrinterDevice.To(std::string(device)), setting::PrinterFont.To(std::string(font))});
  return {};
}

Result<void> SaveNewSetup(Session& session, int inventoryUnit, int batchUnit, std::string_view printerDevice) {
  if (!IsUnit(inventoryUnit + 1)) return std::unexpected(UnknownUnit("cmbUMI"));
  if (!IsUnit(batchUnit + 1)) return std::unexpected(UnknownUnit("cmbUMF"));
  StoreSettings(session, {setting::UMF.To(batchUnit + 1), setting::UMI.To(inventoryUnit + 1),
                          setting::PrinterDevice.To(std::string(printerDevice))});
  return {};
}

}  // namespace vellumark
