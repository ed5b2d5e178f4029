#pragma once

#include <string>
#include <vector>

#include "core/datafile/value.h"

namespace vellumark {

/// A row for one of the template's tables.
struct TemplateRow {
  std::string where;          ///< file and line, or table and name, for whoever has to mend it
  std::string content;        ///< the line as it was written; empty for a row of a finished template
  std::vector<Value> values;  ///< in the order of the shape's fields
  bool broken = false;        ///< a field could not be read; its name still counts, the rest is not looked at
};

/// One line about a row: where, what, and the row's content.
std::string TemplateFault(const TemplateRow& row, const std::string& what);

/// The rules of one guide, Basic Colors and formulas together: names with their prefix, in capitals and once; formulas
/// of 1 to 15 ingredients that the guide has, each once, with amounts of three decimals that total 100.000.
void CheckGuideRows(const std::vector<TemplateRow>& basics, const std::vector<TemplateRow>& formulas,
                    std::vector<std::string>& faults);

/// One row, with a long name and the name of the template.
void CheckInfoRows(const std::vector<TemplateRow>& rows, std::vector<std::string>& faults);

}  // namespace vellumark
