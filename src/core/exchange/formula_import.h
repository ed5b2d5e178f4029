#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "core/exchange/formula_merge.h"

namespace vellumark {

/// How formulas are to come in where nobody looks at a plan.
struct ImportWish {
  MergeTarget target{};
  MergeOptions options{};
  /// Nothing: the new ones, and those that differ when the question about them is answered with Yes.
  std::optional<TakeWhat> take{};
  std::vector<std::string> names{};  ///< these alone; none: all
  bool skipRefused = false;          ///< lines that are no formula are left out; otherwise they stop the import
};

/// A formula file, in the format that its content shows unless one is given; it may be one of Basic Colors alone.
Result<FormulaTable> ReadFormulas(const Session& session, const std::filesystem::path& path,
                                  std::optional<FormulaFormat> format = {});

/// A new Database of that name; asks, when the file has one already, whether the formulas are to go into it.
Result<MergeTarget> AskTarget(Session& session, std::string_view typedName);

/// Asks, where a source does not name the unit of its figures and no unit was chosen, whether it is the one in use here.
Result<void> AskUnit(Session& session, const FormulaTable& table, const MergeOptions& options);

/// Plans a merge, asks what is to be asked, and carries it out: all of it or nothing. The refusal tells every line that
/// is no formula by number and content.
Result<MergeReport> ImportTable(Session& session, FormulaTable table, const ImportWish& wish = {});
/// The same of a formula file.
Result<MergeReport> ImportFormulas(Session& session, const std::filesystem::path& path, const ImportWish& wish = {});

}  // namespace vellumark
