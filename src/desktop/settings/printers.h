#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "core/session/options.h"
#include "desktop/kit/fields.h"

namespace vellumark::desktop {

/// The printers of the system, and the device name of its default one (empty when there is none).
struct SystemPrinters {
  std::vector<PrinterNames> printers;
  std::string defaultDevice;
};
using PrinterSource = std::function<SystemPrinters()>;

SystemPrinters PrintersOfSystem();

/// Fills a list with the printers that are offered and chooses the one of that device, or the system's default when
/// there is no such printer. Without any printer the list says so and is off.
void ShowPrinters(ComboField& field, const SystemPrinters& system, std::string_view device);
/// The device name of the chosen printer; empty when none is chosen.
std::string ChosenDevice(const ComboField& field);

}  // namespace vellumark::desktop
