#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "core/exchange/formula_table.h"
#include "core/session/session.h"

namespace vellumark {

enum class FormulaDate : std::uint8_t { Entered, Modified };

/// Which formulas of a Database are to go out: by name, or all whose date lies in a range, its last day to the end.
struct FormulaSelection {
  std::string database{};            ///< empty: the current one
  std::vector<std::string> names{};  ///< as a person calls formulas; empty: all of the range
  std::optional<DateTime> from{};
  std::optional<DateTime> to{};
  FormulaDate by = FormulaDate::Entered;
};

/// The names that a range gives, in order. Refused: no such Database, a range that ends before it begins.
Result<std::vector<std::string>> FormulasOfRange(const Session& session, const FormulaSelection& selection);

struct FormulaExport {
  int formulas = 0;
  /// Formulas that the format cannot carry, each with the reason; they are not in the file.
  std::vector<std::pair<std::string, std::string>> left;
  std::vector<std::string> lost;  ///< a sentence for each thing that the format has no place for
};

/// Writes formulas into a file of one of the eight formats, which is replaced in one step; those of the range in name
/// order, those called by name in the order of the names. Lines that weigh nothing are left out. Refused: no formula, a
/// name that is none, a "#" in a name that goes into a ".rez" file, more cells than a file with a column for each Basic
/// Color may have. Throws Failure for a Data File, which is never written over.
Result<FormulaExport> ExportFormulas(Session& session, FormulaFormat format, const FormulaSelection& selection,
                                     const std::filesystem::path& path);

/// "Formulas have been exported to the file:" and what is not in it.
inline constexpr std::string_view kExportCompleteTitle = "Export Complete";
std::string ExportCompleteText(const FormulaExport& report, const std::filesystem::path& path);

}  // namespace vellumark
