#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "core/base/sheet.h"
#include "core/reports/build.h"

namespace vellumark {

/// The report as tabbed text, a line for each row: of the columns that are shown, in the order of the options. Tabs and
/// line ends within a text become `\t` and `\n`. A report that is not whole says so in a last line.
std::string ReportText(const BuiltReport& report, const ExportOptions& options);

/// The columns of an exported file: those that are shown, in the order of the options. Names that are no column any
/// more are passed over, and what the order does not name is left out.
std::vector<std::size_t> ExportColumns(const BuiltReport& report, const ExportOptions& options);

/// What is shown as a sheet for paper, in its widths.
Sheet ReportSheet(const BuiltReport& report);

/// The name of a format for programs: "@", "Qty", "Short Date".
std::string_view FormatToken(Format format);

/// The number of a cell as it is printed, a percent as a fraction of 1; nothing for what is no number.
std::optional<double> PrintedNumber(const TableColumn& column, const TableValue& value);

/// What a cell says in an exported file: notes in full.
std::string ExportCell(const TableColumn& column, const TableValue& value);

}  // namespace vellumark
