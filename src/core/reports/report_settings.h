#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/base/table.h"
#include "core/reports/definition.h"

namespace vellumark {

/// How a report is sorted, by places of its columns.
struct ReportSort {
  std::size_t column = 0;
  bool descending = false;
  std::optional<std::size_t> second{};
  bool secondDescending = false;
  bool operator==(const ReportSort&) const = default;
};

/// A click on the caption of a column, with Shift held for the second sort.
void ClickCaption(ReportSort& sort, std::size_t column, bool shift, std::size_t columns);

/// A caption without its unit and money sign, as column sets and files name it.
std::string PlainCaption(std::string_view caption);
/// The column that a name of a column set, a file or a command means: its plain caption, its key, or a name that it had
/// in earlier releases.
std::optional<std::size_t> FindReportColumn(const std::vector<TableColumn>& columns, std::string_view name);
/// The columns that an item of a column set means: that one, or with "Formula" all of the recipe. Empty: none of them.
std::vector<std::size_t> FindReportColumns(const std::vector<TableColumn>& columns, std::string_view name);

/// The items of "|A||B|"; and the text again.
std::vector<std::string> SplitColumnSet(std::string_view set);
std::string JoinColumnSet(const std::vector<std::string>& names);

// What is kept under a report's prefix.

/// The columns that are shown, the first one always, in their order.
std::vector<std::size_t> ReadShownColumns(const Session& session, const ReportDefinition& report,
                                          const std::vector<TableColumn>& columns);
/// The names of the set on file that mean no column of the report any more, and the sentence that tells them.
std::vector<std::string> LostColumns(const Session& session, const ReportDefinition& report,
                                     const std::vector<TableColumn>& columns);
std::string LostColumnsText(std::string_view set, const std::vector<std::string>& names);
/// Kept by key, so that a caption may change.
void SaveShownColumns(Session& session, const ReportDefinition& report, const std::vector<TableColumn>& columns,
                      const std::vector<std::size_t>& shown);
ReportSort ReadReportSort(const Session& session, const ReportDefinition& report, std::size_t columns);
void SaveReportSort(Session& session, const ReportDefinition& report, const ReportSort& sort);
/// The widths on file where they and the default are not 0; and those of the columns that are shown, kept.
void ReadColumnWidths(const Session& session, const ReportDefinition& report, std::vector<TableColumn>& columns);
void SaveColumnWidths(Session& session, const ReportDefinition& report, const std::vector<TableColumn>& columns,
                      const std::vector<std::size_t>& shown);
int ReadDateRange(const Session& session, const ReportDefinition& report);
void SaveDateRange(Session& session, const ReportDefinition& report, int place);
int ReadReportOption(const Session& session, const ReportDefinition& report, const ReportOption& option);
void SaveReportOption(Session& session, const ReportDefinition& report, const ReportOption& option, int value);

enum class ExportFormat { Text, Jet, Spreadsheet };

/// What goes into an exported file, kept under the report's window.
struct ExportOptions {
  bool headings = true;
  bool data = true;
  bool totals = true;
  std::vector<std::string> order{};  ///< column names; empty: the report's own order
  ExportFormat format = ExportFormat::Text;
  std::string fileName{};  ///< that is offered
};
ExportOptions ReadExportOptions(const Session& session, const ReportDefinition& report);
/// All but the order; `userOrder` tells whether the order that is kept is used.
void SaveExportOptions(Session& session, const ReportDefinition& report, const ExportOptions& options, bool userOrder);

// The user's own order of columns, as plain captions. It is kept whether or not it is used; the summaries of all
// Databases have that of their sister report about one colour.

std::vector<std::string> ReadExportOrder(const Session& session, const ReportDefinition& report);
void SaveExportOrder(Session& session, const ReportDefinition& report, const std::vector<std::string>& names);
/// When a report is closed: an order that does not name just the columns that are shown is thrown away for theirs.
void KeepExportOrder(Session& session, const ReportDefinition& report, const std::vector<TableColumn>& columns,
                     const std::vector<std::size_t>& shown);

}  // namespace vellumark
