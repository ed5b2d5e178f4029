#pragma once

#include <string>
#include <string_view>
#include <unordered_map>

#include "core/exchange/formula_table.h"
#include "core/exchange/text_rows.h"

namespace vellumark {

// What the readers of formula files share. For the procedures of this room.

inline constexpr std::string_view kImportFormulasTitle = "Import Formulas";

/// Gathers the formulas of one file and tells what is wrong with its lines.
class TableBuilder {
 public:
  TableBuilder(FormulaTable& table, const NumberStyle& numbers, int nameLength)
      : table_(table), numbers_(numbers), nameLength_(nameLength) {}

  void Bad(int line, std::string_view content, std::string why);

  /// The cell as a name; what is wrong with it, or empty. `whose` as in "the formula".
  std::string TakeName(std::string_view cell, std::string_view whose, std::string& name) const;
  /// One line more of the recipe; what is wrong with it, or empty.
  std::string TakePart(std::string_view nameCell, std::string_view amountCell, Recipe& recipe) const;
  /// The figure of a cell; nothing for a blank one. What is wrong with it is told in `fault`.
  std::optional<double> TakeFigure(std::string_view cell, std::string_view caption, std::string& fault) const;
  /// A whole formula, unless its name stands in the file already.
  void TakeFormula(SourceColor formula, std::string_view content);

  FormulaTable& Table() { return table_; }

 private:
  FormulaTable& table_;
  const NumberStyle& numbers_;
  int nameLength_;
  std::unordered_map<std::string, int> lineOfName_;
};

/// Whether the last row of a file without a line end was cut off in the middle. Where the rows before total 100 the
/// last one has to; rows that a hand wrote come to anything and may just lack the line end; a single row shows whose it
/// is by the decimals of its amounts, of which the last may be cut.
bool LooksCut(const FormulaTable& table, const Recipe& last, const std::vector<std::string_view>& amounts);

/// A reader of one format goes through the rows of its text.
void ReadMfeRows(RowCutter& rows, TableBuilder& builder);

}  // namespace vellumark
