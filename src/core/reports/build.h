#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/reports/definition.h"
#include "core/reports/report_settings.h"

namespace vellumark {

/// No report holds more cells.
constexpr std::size_t kMostReportCells = 349500;

/// What is asked of a report. What is not told comes from its settings.
struct ReportRequest {
  std::optional<int> range{};
  std::string rangeName{};         ///< of the list or a saved one, where `range` is not told
  std::optional<DateTime> from{};  ///< with `to`: the range "Custom"
  std::optional<DateTime> to{};
  std::string color{};
  std::optional<ColorKind> kind{};
  std::string design{};
  std::string job{};
  std::vector<std::string> databases{};
  std::string user{};
  std::vector<std::pair<std::string, std::string>> options{};
};

/// A report with its rows, sorted and totalled.
struct BuiltReport {
  std::string title;
  std::string noun;
  std::vector<TableColumn> columns;
  std::vector<std::size_t> shown;
  std::vector<TableValue> cells;   ///< row by row
  std::vector<RowTarget> targets;  ///< of each row
  std::vector<std::size_t> order;  ///< of the rows that are shown
  std::int64_t count = 0;          ///< of what the noun says: rows, unless a Batch may stand in several
  std::string totals;              ///< caption of the row of totals; empty: there is none
  ReportSort sort;
  bool complete = true;
  std::string warningTitle;  ///< why it is not
  std::string warning;
  std::string filter;  ///< words of which each stands somewhere in what is shown of a row
  std::string notice;  ///< what of its saved columns there is no more; empty mostly

  std::size_t Rows() const { return targets.size(); }
  const TableValue& Cell(std::size_t row, std::size_t column) const { return cells[row * columns.size() + column]; }
  /// The title, which tells when the report is not whole.
  std::string FullTitle() const;
  /// Of the columns that are shown, in the order of the sort. The report must outlive it.
  ListTable Table() const;
  /// The total of each column over the rows that are shown; nothing where it has none, and where rows are filtered away
  /// that a total counts which the rows do not tell.
  std::vector<TableValue> Totals() const;
};

/// The Databases of those names as they are called in the Data File. Refuses the first that is not there, with `field`.
Result<std::vector<std::string>> NamedDatabases(const Session& session, const std::vector<std::string>& names,
                                                const std::string& field);

/// What stands in the way of a report before anything is asked: Lotted Inventory that is off; for one that edits, a
/// Batch Window with a recipe in edit (`batchInEdit`), which is then to be shown.
Result<void> RequireReport(const Session& session, const ReportDefinition& report, bool batchInEdit = false);

/// The request with its colour found and its dates and options settled. Asks which kind is meant of a name that both
/// kinds bear.
Result<ReportContext> PrepareReport(Session& session, const ReportDefinition& report, const ReportRequest& request,
                                    ReportWatch& watch);

/// The columns that the report would have, with widths.
std::vector<TableColumn> ReportColumns(const ReportContext& context);

/// Reads, sorts and totals, once what formulas cost is up to date. What was read before a cancel or the limit stays.
BuiltReport BuildReport(const ReportContext& context);

/// Puts the rows that hold all words of the filter, in any case, into that order.
void SortReport(BuiltReport& report, const ReportSort& sort);

}  // namespace vellumark
