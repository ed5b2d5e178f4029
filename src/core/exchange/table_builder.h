#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>

#include "core/exchange/formula_columns.h"
#include "core/exchange/formula_table.h"
#include "core/exchange/text_rows.h"

namespace vellumark {

// What the readers of formula files share. For the procedures of this room.

inline constexpr std::string_view kImportFormulasTitle = "Import Formulas";
inline constexpr std::string_view kCorruptMfe = "Couldn't read .mfe file correctly. The file may be corrupt.";

/// Gathers the formulas of one file and tells what is wrong with its lines.
class TableBuilder {
 public:
  TableBuilder(FormulaTable& table, NumberStyle& numbers, int nameLength)
      : table_(table), numbers_(numbers), nameLength_(nameLength) {}

  void Bad(int line, std::string_view content, std::string why);

  /// The cell as a name; what is wrong with it, or empty. `whose` as in "the formula".
  std::string TakeName(std::string_view cell, std::string_view whose, std::string& name) const;
  /// One line more of the recipe; what is wrong with it, or empty.
  std::string TakePart(std::string_view nameCell, std::string_view amountCell, Recipe& recipe) const;
  /// An amount from 0 on of an ingredient; what is wrong with it is told in `fault`.
  double TakeAmount(std::string_view cell, std::string_view ingredient, std::string& fault) const;
  /// The figure of a cell; nothing for a blank one. What is wrong with it is told in `fault`.
  std::optional<double> TakeFigure(std::string_view cell, std::string_view caption, std::string& fault) const;
  /// The cell as a code, with what was escaped in it; what is wrong with it, or empty.
  std::string TakeCode(std::string_view cell, std::optional<std::string>& code) const;
  /// A whole formula or Basic Color, unless its name stands among those of the file already. A formula without a recipe
  /// is a bad line.
  void TakeFormula(SourceColor formula, std::string_view content);
  void TakeBasic(SourceColor basic, std::string_view content);

  FormulaTable& Table() { return table_; }
  bool Learning() const { return numbers_.Learning(); }

 private:
  void Take(std::vector<SourceColor>& colors, std::unordered_map<std::string, int>& lines, SourceColor color,
            std::string_view content, std::string_view what);

  FormulaTable& table_;
  NumberStyle& numbers_;
  int nameLength_;
  struct TextHash : std::hash<std::string_view> {
    using is_transparent = void;
  };
  // A file names the same few ingredients over and over: their cells, each as the name that it is.
  mutable std::unordered_map<std::string, std::string, TextHash, std::equal_to<>> ingredients_;
  std::unordered_map<std::string, int> lineOfFormula_;
  std::unordered_map<std::string, int> lineOfBasic_;
};

/// Whether the last row of a file without a line end was cut off in the middle. Where the formulas before total 100 the
/// last one has to; rows that a hand wrote come to anything and may just lack the line end; a single formula shows
/// whose it is by the decimals of its amounts, of which the last may be cut.
bool LooksCut(const FormulaTable& table, const Recipe& last, const std::vector<std::string_view>& amounts,
              std::size_t decimals = 3);

inline constexpr std::string_view kCutText = "the file ends in the middle of this row";

/// The first row of the files that begin with one, but for the names of Basic Colors.
const std::vector<std::string_view>& HeadingOf(FormulaFormat format);

/// What makes a file one of its format is missing: the words for that, and why. Empty when the rows could be read; what
/// was wrong with single ones stands in the table.
struct FormatFault {
  std::string text{};
  std::string why{};
};

// A reader of one format goes through the rows of its text.
FormatFault ReadMfeRows(RowCutter& rows, TableBuilder& builder);
/// The format is one of those with a row for each ingredient.
FormatFault ReadIngredientRows(FormulaFormat format, RowCutter& rows, TableBuilder& builder);
FormatFault ReadHeaderRows(RowCutter& rows, TableBuilder& builder);
FormatFault ReadGridRows(RowCutter& rows, TableBuilder& builder, const ColumnMapping& mapping);

}  // namespace vellumark
