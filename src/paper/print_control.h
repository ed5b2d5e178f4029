#pragma once

#include <string>

#include "core/session/settings.h"
#include "paper/page_options.h"

namespace vellumark::paper {

/// The choices of the print window that are settings.
struct PrintSwitch {
  const Setting<bool>& setting;
  bool PageOptions::*field;
};
inline constexpr PrintSwitch kPrintSwitches[] = {
    {setting::PControl_IncludeHeadings, &PageOptions::headings},
    {setting::PControl_IncludeData, &PageOptions::data},
    {setting::PControl_IncludeTotals, &PageOptions::totals},
    {setting::PControl_Lines, &PageOptions::guideLines},
    {setting::PControl_FitToPage, &PageOptions::fitToPage},
    {setting::PControl_Orientation, &PageOptions::landscape},
};

/// The pages of the session as these settings say.
PageOptions ReadPrintControl(const Session& session);

/// The device that reports are printed on: their own, or the default one.
std::string ReportPrinter(const Session& session);

}  // namespace vellumark::paper
