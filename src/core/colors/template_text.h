#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "core/colors/template_rules.h"
#include "core/datafile/schema.h"

namespace vellumark {

/// Reads one table's text file: a heading with field names, then a row a line, the cells apart by tabs; UTF-8 or
/// CP1252. A formula's ingredients stand in BC0, BQ0 and so on, or in one cell of the heading "Ingredients" as
/// "NAME=AMOUNT; NAME=AMOUNT". Cells that are empty, and fields without a column, get the value of a new row. Every
/// line that cannot be read is added to `faults`; nothing comes back when the heading is one of them. Throws Failure
/// for a file that cannot be read.
std::optional<std::vector<TemplateRow>> ReadTemplateText(const std::filesystem::path& file, const Table& shape,
                                                         std::vector<std::string>& faults);

}  // namespace vellumark
