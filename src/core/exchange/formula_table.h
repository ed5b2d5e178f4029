#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/colors/guides.h"
#include "core/colors/normalise.h"
#include "core/datafile/color_kind.h"

namespace vellumark {

/// The files that formulas travel in: the eight that are written, by the number of their option, then those that are
/// only read.
enum class FormulaFormat : int {
  Mfe = 0,
  Rez = 1,
  Zg = 2,
  Ja = 3,
  Header2 = 4,     ///< a column for each Basic Color, and a row with their codes
  Header1 = 5,     ///< without that row
  Header2Xls = 6,  ///< the same text under the name of a workbook
  Header1Xls = 7,
  Work = 8,     ///< a heading "Color Name", "Color Type", "Color Code", ... "Ingredient 0", "Parts 0": a formula a row
  Columns = 9,  ///< a shop's own columns, told apart by a mapping
};

struct FormulaFormatRow {
  FormulaFormat format;
  std::string_view option;     ///< ".mfe (Vellumark - Text / Tab File)"; empty for those that are only read
  std::string_view extension;  ///< ".mfe"
  std::string_view kind;       ///< "MM", "SC", "ZG", "JA", "BHeader", "MMD"
};
/// In the order of their numbers.
const std::array<FormulaFormatRow, 10>& FormulaFormats();
inline constexpr int kWrittenFormats = 8;

// One neutral table of formulas: every file, Data File, Database and guide is read into it, what is exported is written
// from it.

/// A colour as its source tells of it. What the source has no place for is without a value, and what the Database has
/// of it stays. Figures are per unit of the table, quantities in it.
struct SourceColor {
  int line = 0;  ///< in the file, from 1; 0 where the source has no lines
  ColorKind kind = ColorKind::Mix;
  std::optional<bool> additive{};  ///< of a Basic Color
  std::string name;                ///< trimmed, upper case; a name that a new colour may have
  std::optional<std::string> code{};
  std::optional<std::string> notes{};
  std::optional<std::string> inventoryNote{};
  std::optional<double> inventory{};  ///< all there is, or what stands outside any lot
  std::optional<double> reorder{};
  std::optional<double> purchaseCost{};
  std::optional<double> VOC{};
  std::optional<double> HAP{};
  std::optional<bool> recycle{};
  std::optional<BookData> book{};
  std::string addSetName{};  ///< one of the table's sets, or empty
  Recipe recipe{};  ///< as it stands in the source, not brought to 100; no name twice, at most fifteen, amounts above 0
};

struct SourceSet {
  std::string name;
  Recipe parts;
};

/// A line of a file that is no formula: it stays out, and is told.
struct BadLine {
  int line = 0;
  std::string content;
  std::string why;
  std::string formula{};  ///< that it has no recipe for; a plan forgets it where the Database has one
};

struct FormulaTable {
  std::string source{};  ///< a path, or what else a person calls it by
  std::optional<FormulaFormat> format{};
  std::string database{};     ///< the source's name for itself; may be empty
  std::optional<int> unit{};  ///< of figures and quantities; nothing where the source does not name it
  std::vector<SourceColor> basics{};
  std::vector<SourceColor> formulas{};  ///< each name once
  std::vector<SourceSet> sets{};
  std::vector<BadLine> badLines{};   ///< by line
  bool ordered = true;               ///< false: the ingredients of a recipe stand in no order of their own
  bool hasFigures = false;           ///< some colour has a cost, an emission or a quantity, so that the unit matters
  std::vector<std::string> lacks{};  ///< a sentence for each thing that the source has no place for, or that is lost
};

}  // namespace vellumark
