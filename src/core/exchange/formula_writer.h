#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "core/exchange/formula_table.h"

namespace vellumark {

/// The text of a formula file in one of the eight formats, grown formula by formula. Amounts have three decimals, five
/// in a ".rez" file. A tab, a line end and a backslash in a text are escaped; a cell that begins with a quotation mark
/// stands in such marks.
class FormulaFileText {
 public:
  /// `basics`: the columns of a file that has one for each Basic Color, in their order.
  FormulaFileText(FormulaFormat format, std::string_view database, const std::vector<SourceColor>& basics);

  /// Adds a formula with at least one ingredient. What the format cannot carry of it leaves it out: the reason, or
  /// empty.
  std::string Add(std::string_view name, std::string_view code, const Recipe& recipe);
  const std::string& Text() const { return text_; }

 private:
  void AddMfe(std::string_view name, const Recipe& recipe);
  void AddRez(std::string_view name, const Recipe& recipe);
  void AddIngredients(std::string_view first, std::string_view second, std::string_view between, const Recipe& recipe);
  std::string AddHeader(std::string_view name, std::string_view code, const Recipe& recipe);
  void Cell(std::string_view text);

  FormulaFormat format_;
  std::string text_;
  std::unordered_map<std::string, std::size_t> columns_;
  std::vector<float> amounts_;  // of a row, by column
};

/// The names of a table that the format cannot hold: those with the mark that parts the fields of a ".rez" file.
bool CanHoldName(FormulaFormat format, std::string_view name);

/// A sentence for each thing that a file of the format has no place for.
std::vector<std::string> WhatIsLost(FormulaFormat format);

/// The pieces of a grid of colours, from its heading on.
struct WorkFileText {
  std::string heading;
  std::string basics;
  std::string formulas;
};
WorkFileText WorkTextOf(const FormulaTable& table);

/// What was read of a foreign file, as a grid of colours that a person can look at and that reads back as the same:
/// under the name of the source. Where it stands. Throws Failure in the words for each part that cannot be written.
std::filesystem::path WriteWorkFile(const std::filesystem::path& folder, const FormulaTable& table);

}  // namespace vellumark
