#pragma once

#include <filesystem>

#include "core/reports/build.h"
#include "core/reports/report_settings.h"

namespace vellumark {

/// The rows of a report as the one table, "Vellumark Data", of a new Jet file (.mdb): a field for each column under its
/// plain caption, without the characters that Jet forbids. Cells are values as they are printed; empty ones are Null.
/// What the options include does not count: headings and totals never go in. A report that is not whole says so in the
/// name of its table. `made` is the time that the file gives for itself.
void WriteReportDatabase(const BuiltReport& report, const ExportOptions& options, const DateTime& made,
                         const std::filesystem::path& file);

}  // namespace vellumark
