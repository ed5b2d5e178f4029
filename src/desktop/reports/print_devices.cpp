#include "desktop/reports/print_devices.h"

#include <QPrinterInfo>

#include "core/base/refusal.h"
#include "desktop/kit/text.h"

namespace vellumark::desktop {
namespace {

std::unique_ptr<QPrinter> OpenPrinter(const std::string& device) {
  if (QPrinterInfo::printerInfo(Q(device)).isNull()) throw Failure(device, "This printer is no longer there.");
  auto printer = std::make_unique<QPrinter>(QPrinter::HighResolution);
  printer->setPrinterName(Q(device));
  return printer;
}

}  // namespace

PrintDevices PrintDevices::OfSystem() {
  return {.printers = PrintersOfSystem, .open = OpenPrinter, .chooseFile = ChooseFile};
}

}  // namespace vellumark::desktop
