#pragma once

#include <filesystem>

#include "core/reports/report_text.h"

namespace vellumark {

/// Writes what is shown of a report as a spreadsheet (.xlsx), row after row in constant memory: numbers and dates as
/// such with the formats in which they are printed, captions in bold that stay in sight and filter, widths, and totals
/// as formulas over the rows that a filter leaves. Throws Failure naming the file.
void WriteSpreadsheet(const BuiltReport& report, const ExportOptions& options, const std::filesystem::path& file);

}  // namespace vellumark
