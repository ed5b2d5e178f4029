#pragma once

#include <string>
#include <string_view>

#include "core/session/session.h"
#include "paper/page_options.h"

namespace vellumark::paper {

/// The choices of the print window that are settings, each with its key.
struct PrintSwitch {
  std::string_view key;
  bool PageOptions::*field;
};
inline constexpr PrintSwitch kPrintSwitches[] = {
    {"PControl_IncludeHeadings", &PageOptions::headings}, {"PControl_IncludeData", &PageOptions::data},
    {"PControl_IncludeTotals", &PageOptions::totals},     {"PControl_Lines", &PageOptions::guideLines},
    {"PControl_FitToPage", &PageOptions::fitToPage},      {"PControl_Orientation", &PageOptions::landscape},
};

/// The pages of the session as these settings say.
PageOptions ReadPrintControl(const Session& session);
void KeepPrintSwitch(Session& session, std::string_view key, bool on);

/// The device that reports are printed on: their own, or the default one.
std::string ReportPrinter(const Session& session);
void KeepReportPrinter(Session& session, std::string_view device);
void KeepPrinterFont(Session& session, std::string_view family);

}  // namespace vellumark::paper
