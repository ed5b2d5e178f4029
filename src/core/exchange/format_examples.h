#pragma once

#include <string>
#include <vector>

#include "core/exchange/formula_table.h"

namespace vellumark {

/// A format as a person gets to know it: what stands where, and a file of it with formulas of the sample ink room.
struct FormatExample {
  std::string option;              ///< ".mfe (Vellumark - Text / Tab File)"
  std::vector<std::string> words;  ///< a sentence each
  std::string text;                ///< a whole file, as an export writes it
  std::vector<std::vector<std::string>> cells;
};
FormatExample ExampleOf(FormulaFormat format);

/// The formulas of the examples, and the Basic Colors in them.
const FormulaTable& ExampleFormulas();

}  // namespace vellumark
