#include "paper/print_control.h"

#include "core/base/number.h"
#include "core/settings/settings_keys.h"
#include "paper/print_options.h"

namespace vellumark::paper {

PageOptions ReadPrintControl(const Session& session) {
  PageOptions options = OptionsOf(session);
  for (const PrintSwitch& choice : kPrintSwitches)
    if (const std::string value = GetSupportValue(session, choice.key); !value.empty())
      options.*choice.field = LeadingInteger(value) == 1;
  return options;
}

void KeepPrintSwitch(Session& session, std::string_view key, bool on) {
  SetSupportValue(session, key, on ? "1" : "0");
}

std::string ReportPrinter(const Session& session) {
  std::string device = GetSupportValue(session, keys::ReportPrinter);
  return device.empty() ? GetSupportValue(session, keys::PrinterDevice) : device;
}

void KeepReportPrinter(Session& session, std::string_view device) {
  SetSupportValue(session, keys::ReportPrinter, device);
}

void KeepPrinterFont(Session& session, std::string_view family) {
  SetSupportValue(session, keys::PrinterFont, family);
  session.PrinterFont = std::string(family);
}

}  // namespace vellumark::paper
