#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "core/session/session.h"

namespace vellumark {

// What the Options windows and the first setup store. Each refuses a user who may not change Options, checks first,
// writes the settings in one step and takes the values into the session at once.

/// Says what another unit means for what is on file: of UMI (stock) or UMF (Batches), each 1 to 4. Nothing when it is
/// the same.
void TellNewUnit(Session& session, std::string_view key, int before, int after);

/// `UMSettingForm`.
struct InventorySettings {
  int UMI = 1;            ///< 1 to 4
  std::string InvCutoff;  ///< as typed, in the inventory unit
  bool AllowNegInv = false;
  bool InvLotTracking = true;
  int InvRecordMethod = 0;  ///< 0 lots without container and count, 1 with them
};
InventorySettings ReadInventorySettings(const Session& session);
Result<void> SaveInventorySettings(Session& session, const InventorySettings& settings);

/// `OptionMaxNameLen`.
Result<void> SaveNameLength(Session& session, std::string_view typed);

/// `AutofillForm`.
Result<void> SaveAutofill(Session& session, bool on);

inline constexpr int kLongestReminder = 30;  ///< days
/// `RemindersForm`.
struct Reminders {
  bool shutdownBackup = false;
  int DaysToRemindBackup = 1;      ///< 1 to 30; kept in the Data File
  std::string BackupFileLocation;  ///< folder; forgotten when the reminder is switched off
  bool LottedInvReminder = true;
  bool BatchLotNumReminder = true;
};
Reminders ReadReminders(const Session& session);
/// The days are stored only with the reminder on, and only then is the Data File written.
Result<void> SaveReminders(Session& session, const Reminders& reminders);

/// A printer of the system: the name that people choose by, and the one that is stored.
struct PrinterNames {
  std::string name;
  std::string device;
};
/// Those that the setup offers: all but the "Rendering Subsystem", which no paper comes out of.
std::vector<PrinterNames> PrintersOffered(std::vector<PrinterNames> printers);

/// `Default_Printer`: the device's name and the font for reports and labels.
Result<void> SaveDefaultPrinter(Session& session, std::string_view device, std::string_view font);

/// `NewSetupForm`: the units are positions in the lists of unit names, from 0. No user is asked for: it comes at the
/// first start, and with new Support Files.
Result<void> SaveNewSetup(Session& session, int inventoryUnit, int batchUnit, std::string_view printerDevice);

}  // namespace vellumark
