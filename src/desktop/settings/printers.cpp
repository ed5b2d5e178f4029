#include "desktop/settings/printers.h"

#include <QCoreApplication>
#include <QPrinterInfo>

#include "desktop/kit/text.h"

namespace vellumark::desktop {

SystemPrinters PrintersOfSystem() {
  SystemPrinters system;
  for (const QPrinterInfo& printer : QPrinterInfo::availablePrinters()) {
    const QString name = printer.description().isEmpty() ? printer.printerName() : printer.description();
    system.printers.push_back({U8(name), U8(printer.printerName())});
  }
  system.defaultDevice = U8(QPrinterInfo::defaultPrinterName());
  return system;
}

void ShowPrinters(ComboField& field, const SystemPrinters& system, std::string_view device) {
  field.clear();
  for (const PrinterNames& printer : PrintersOffered(system.printers)) {
    field.addItem(Q(printer.name), Q(printer.device));
  }
  int chosen = device.empty() ? -1 : field.findData(Q(device));
  if (chosen < 0) chosen = field.findData(Q(system.defaultDevice));
  field.setCurrentIndex(chosen);
  const bool any = field.count() > 0;
  field.setEnabled(any);
  field.setPlaceholderText(any ? QCoreApplication::translate("Printers", "Select a printer")
                               : QCoreApplication::translate("Printers", "No printer is set up on this computer"));
  field.setMinimumWidth(280);
}

std::string ChosenDevice(const ComboField& field) {
  return U8(field.currentData().toString());
}

}  // namespace vellumark::desktop
