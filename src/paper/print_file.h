#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "core/base/sheet.h"
#include "core/session/session.h"

namespace vellumark::paper {

// For callers that know nothing of Qt.

/// How a sheet is wanted on paper.
struct PaperWish {
  std::string paper;  ///< "A4" or "Letter"; empty: as is the custom of the locale
  bool landscape = false;
  int fontPercent = 100;  ///< 60 to 100
};

/// Writes the sheet as a PDF; the number of its pages. Asks about a table that would be hard to read on one page width:
/// it may go over several, or nothing is printed, which is 0, as when the operator stops it. Throws Failure naming the
/// file.
int PrintToFile(Session& session, const Sheet& sheet, const PaperWish& wish, const std::filesystem::path& file);

}  // namespace vellumark::paper
