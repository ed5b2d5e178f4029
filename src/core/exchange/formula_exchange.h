#pragma once

#include <filesystem>
#include <string>

#include "core/session/session.h"

namespace vellumark {

/// What an import did.
struct ImportReport {
  std::string sourceDatabase;  ///< the name in the file's first row
  int added = 0;
  int changed = 0;    ///< formulas of the Database that took the file's recipe
  int kept = 0;       ///< formulas that differ and were left as they are
  int same = 0;       ///< formulas that had that recipe already
  int newBasics = 0;  ///< ingredients that the Database lacked, made as Basic Colors with zero figures
};

/// Brings the formulas of an `.mfe` file into the current Database: all of them or, when a line is no formula or
/// anything else fails, none. The refusal tells every bad line by number and content. Recipes are normalised to 100; a
/// formula that the Database holds with another recipe is changed only when the question about them is answered with
/// Yes, and keeps its stock, costs, notes and guide data. In a Database made from guides a name without "PANTONE " that
/// the guides or the Database have with it means that colour. Costs, VOC and HAP of what was brought in are rolled up.
Result<ImportReport> ImportFormulas(Session& session, const std::filesystem::path& path);

}  // namespace vellumark
