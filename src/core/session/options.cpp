#include "core/session/options.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <utility>

#include "core/base/number.h"
#include "core/base/text.h"
#include "core/base/units.h"
#include "core/datafile/databases.h"
#include "core/session/rights.h"
#include "core/settings/settings_keys.h"
#include "core/settings/support_files.h"

namespace vellumark {
namespace {

constexpr std::string_view kNoPaper = "Rendering Subsystem";
constexpr int kShortestNameLimit = 10;
constexpr int kLongestNameLimit = 30;
constexpr int kLongestReminder = 30;

using KeyValues = std::vector<std::pair<std::string_view, std::string>>;

std::string Flag(bool on) {
  return on ? "1" : "0";
}

bool IsOn(const Session& session, std::string_view key) {
  return LeadingInteger(GetSupportValue(session, key)) == 1;
}

bool IsUnit(int unit) {
  return unit >= 1 && unit <= 4;
}

Refusal UnknownUnit(std::string_view field) {
  return {"Options", "Select a unit from the list.", std::string(field)};
}

// All of them or none, then the session, then whoever shows them.
void Store(Session& session, const KeyValues& values) {
  session.support->settings.Change([&](SupportRecords& records) {
    for (const auto& [key, value] : values) records.Set(key, value);
  });
  ReadSettings(session);
  session.changes.Tell({{Change::Kind::Settings, "", "", Change::What::All, ""}});
}

}  // namespace

Result<float> ReadInvCutoff(std::string_view typed) {
  const auto amount = ParseNumber(typed);
  if (amount && *amount >= 0 && std::isfinite(static_cast<float>(*amount))) return static_cast<float>(*amount);
  return Refuse("Invalid Inventory Cutoff", "You must enter an amount greater than or equal to zero.", "txtCutoff");
}

Result<int> ReadNameLength(std::string_view typed) {
  const auto length = ParseNumber(typed);
  if (length && *length >= kShortestNameLimit && *length <= kLongestNameLimit && *length == std::floor(*length))
    return static_cast<int>(*length);
  return Refuse("Invalid Name Length",
                fmt::format("You must enter a whole number between {} and {}.", kShortestNameLimit, kLongestNameLimit),
                "txtNameLength");
}

void TellNewUnit(Session& session, std::string_view key, int before, int after) {
  if (before == after || !IsUnit(before) || !IsUnit(after)) return;
  const std::string text =
      key == keys::UMI
          ? fmt::format(
                "Nothing is converted: stock, lots, reorder points, the cutoff and unit costs on file keep their "
                "figures, which stood for {} and stand for {} from now on.",
                UnitName(before), UnitName(after))
          : fmt::format("Batches on file keep their unit; new ones are measured in {}", UnitName(after));
  session.prompt.Tell(key == keys::UMI ? "Inventory Unit" : "Batch Unit", text, Icon::Information);
}

InventorySettings ReadInventorySettings(const Session& session) {
  return {session.UMI, GetSupportValue(session, keys::InvCutoff), IsOn(session, keys::AllowNegInv),
          session.InvLotTracking == 1, IsOn(session, keys::InvRecordMethod) ? 1 : 0};
}

Result<void> SaveInventorySettings(Session& session, const InventorySettings& settings) {
  if (auto allowed = RequireCommandRight(session, CommandRight::Options); !allowed) return allowed;
  if (!IsUnit(settings.UMI)) return std::unexpected(UnknownUnit("cmbUMI"));
  const auto cutoff = ReadInvCutoff(settings.InvCutoff);
  if (!cutoff) return std::unexpected(cutoff.error());
  if (settings.InvRecordMethod != 0 && settings.InvRecordMethod != 1)
    return Refuse("Options", "Select how lots are recorded.", "InvRecordMethod");
  const int before = session.UMI;
  Store(session, {{keys::UMI, std::to_string(settings.UMI)},
                  {keys::InvCutoff, ShortestText(*cutoff)},
                  {keys::AllowNegInv, Flag(settings.AllowNegInv)},
                  {keys::InvLotTracking, Flag(settings.InvLotTracking)},
                  {keys::InvRecordMethod, std::to_string(settings.InvRecordMethod)}});
  TellNewUnit(session, keys::UMI, before, settings.UMI);
  return {};
}

Result<void> SaveNameLength(Session& session, std::string_view typed) {
  if (auto allowed = RequireCommandRight(session, CommandRight::Options); !allowed) return allowed;
  const auto length = ReadNameLength(typed);
  if (!length) return std::unexpected(length.error());
  Store(session, {{keys::UDCNameCCodeLen, std::to_string(*length)}});
  return {};
}

Result<void> SaveAutofill(Session& session, bool on) {
  if (auto allowed = RequireCommandRight(session, CommandRight::Options); !allowed) return allowed;
  Store(session, {{keys::AutoFillText, Flag(on)}});
  return {};
}

Reminders ReadReminders(const Session& session) {
  Reminders reminders;
  reminders.shutdownBackup = LeadingInteger(GetSupportValue(session, keys::RemindBackup)) == 0;
  if (session.DataFileDB) {
    const std::int64_t days = session.File().Scalar("SELECT DaysToRemindBackup FROM FileInfo").Whole();
    reminders.DaysToRemindBackup = static_cast<int>(std::clamp<std::int64_t>(days, 1, kLongestReminder));
  }
  reminders.BackupFileLocation = GetSupportValue(session, keys::BackupFileLocation);
  reminders.LottedInvReminder = IsOn(session, keys::LottedInvReminder);
  reminders.BatchLotNumReminder = IsOn(session, keys::BatchLotNumReminder);
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
  Store(session, {{keys::BackupFileLocation, on ? reminders.BackupFileLocation : ""},
                  {keys::RemindBackup, on ? "0" : "1"},
                  {keys::LottedInvReminder, Flag(reminders.LottedInvReminder)},
                  {keys::BatchLotNumReminder, Flag(reminders.BatchLotNumReminder)}});
  return {};
}

std::vector<PrinterNames> PrintersOffered(std::vector<PrinterNames> printers) {
  std::erase_if(printers, [](const PrinterNames& printer) { return printer.name == kNoPaper; });
  return printers;
}

Result<void> SaveDefaultPrinter(Session& session, std::string_view device, std::string_view font) {
  if (auto allowed = RequireCommandRight(session, CommandRight::Options); !allowed) return allowed;
  Store(session, {{keys::PrinterDevice, std::string(device)}, {keys::PrinterFont, std::string(font)}});
  return {};
}

Result<void> SaveNewSetup(Session& session, int inventoryUnit, int batchUnit, std::string_view printerDevice) {
  if (!IsUnit(inventoryUnit + 1)) return std::unexpected(UnknownUnit("cmbUMI"));
  if (!IsUnit(batchUnit + 1)) return std::unexpected(UnknownUnit("cmbUMF"));
  Store(session, {{keys::UMF, std::to_string(batchUnit + 1)},
                  {keys::UMI, std::to_string(inventoryUnit + 1)},
                  {keys::PrinterDevice, std::string(printerDevice)}});
  return {};
}

}  // namespace vellumark
