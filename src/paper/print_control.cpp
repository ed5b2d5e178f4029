#include "paper/print_control.h"

#include "paper/print_options.h"

namespace vellumark::paper {

PageOptions ReadPrintControl(const Session& session) {
  PageOptions options = OptionsOf(session);
  for (const PrintSwitch& choice : kPrintSwitches) options.*choice.field = GetSetting(session, choice.setting);
  return options;
}

std::string ReportPrinter(const Session& session) {
  std::string device = GetSetting(session, setting::ReportPrinter);
  return device.empty() ? GetSetting(session, setting::PrinterDevice) : device;
}

}  // namespace vellumark::paper
