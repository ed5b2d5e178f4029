#include "core/reports/build.h"

#include <fmt/format.h>

#include <algorithm>
#include <memory>
#include <new>
#include <numeric>

#include "core/base/number.h"
#include "core/base/progress_run.h"
#include "core/base/text.h"
#include "core/base/units.h"
#include "core/colors/rollup.h"
#include "core/datafile/stock_history.h"
#include "core/reports/find_color.h"

namespace vellumark {
namespace {

constexpr std::string_view kMoneySign = "$";
constexpr int kNameWidth = 2860;
constexpr int kTextWidth = 1940;
constexpr int kWidth = 1500;
constexpr int kCallsBetweenLooks = 64;

int DefaultWidth(const TableColumn& column) {
  const std::string& caption = column.caption;
  if (caption == "Color Name" || caption == "Ing Name" || caption == "Design Desc") return kNameWidth;
  return column.format == Format::Text ? kTextWidth : kWidth;
}

/// A row of a built report.
class BuiltRow final : public TableRow {
 public:
  BuiltRow(const BuiltReport& report, std::size_t row, const std::vector<std::size_t>& columns)
      : report_(report), row_(row), columns_(columns) {}
  TableValue Cell(std::size_t column) const override { return report_.Cell(row_, columns_[column]); }
  RowTarget Target() const override { return report_.targets[row_]; }

 private:
  const BuiltReport& report_;
  std::size_t row_;
  const std::vector<std::size_t>& columns_;
};

// The rows in which each of the words stands.
std::vector<std::size_t> RowsWith(const BuiltReport& report, std::string_view text) {
  std::vector<std::string_view> words = Split(text, ' ');
  std::erase(words, std::string_view());
  std::vector<std::size_t> rows;
  std::string line;
  for (std::size_t row = 0; row < report.Rows(); ++row) {
    if (!words.empty()) {
      line.clear();
      for (const std::size_t column : report.shown)
        line += CellText(report.columns[column], report.Cell(row, column)) + '\n';
    }
    if (std::ranges::all_of(words, [&](std::string_view word) { return FindNoCase(line, word) != std::string::npos; }))
      rows.push_back(row);
  }
  return rows;
}

void ReadRows(const ReportContext& context, const ListTable& table, BuiltReport& report) {
  const bool hidesCosts = context.session.Perm_Costs == 0;
  const auto stop = [&](std::string title, std::string text) {
    report.cells.resize(report.Rows() * report.columns.size());
    report.complete = false;
    report.warningTitle = std::move(title);
    report.warning = std::move(text);
  };
  const auto take = [&](const TableRow& row) {
    // The captions are a row too.
    if ((report.Rows() + 1) * report.columns.size() > kMostReportCells) {
      stop("Incomplete Report",
           "The data was about to exceed the maximum number of viewable cels.\n\nThis report was stopped before "
           "completion.\n\nChoose a smaller date range to improve the creation of the report.");
      return false;
    }
    for (std::size_t i = 0; i < report.columns.size(); ++i) {
      const bool hidden = hidesCosts && report.columns[i].format == Format::Money;
      report.cells.push_back(hidden ? TableValue() : row.Cell(i));
    }
    report.targets.push_back(row.Target());
    return !context.watch.Cancelled();
  };
  // What was read stays, whatever comes.
  try {
    table.read(take);
  } catch (const std::bad_alloc&) {
    stop("",
         "This Report is incomplete because your computer is out of memory.\nAdding more RAM memory to your computer "
         "may "
         "allow you to run this report.");
  } catch (const Failure& failure) {
    stop("Unexpected Error",
         fmt::format("The following unexpected error occurred:\n\n{}\n\nPlease report this error to "
                     "Orravane technical support at 000-555-0100.",
                     failure.what()));
  }
  context.watch.LookAgain();
  if (context.watch.Cancelled()) stop("Incomplete Data", "Because you decided to cancel, this data is incomplete.");
  report.count = context.watch.Count().value_or(static_cast<std::int64_t>(report.Rows()));
  for (TableColumn& column : report.columns) {
    if (const auto told = context.watch.Totals().find(column.key); told != context.watch.Totals().end())
      column.totalIs = told->second;
    if (!hidesCosts || column.format != Format::Money) continue;
    column.total = false;
    column.totalIs.reset();
  }
}

// What the report is about: a colour, a Job, a Database, all of them.
std::string SubjectOf(const ReportContext& context) {
  const ReportDefinition& report = context.report;
  const bool all = report.scope == ReportScope::All;
  if (report.scope == ReportScope::Chosen) return "Detail for Selected Databases";
  if (report.subject == ReportSubject::Job || report.subject == ReportSubject::Design) return context.name;
  if (context.options.contains("DateQuery")) return {};
  if (context.name.empty()) return all ? " Summary of all Databases" : context.session.CurrentDatabase + " Database";
  return all ? context.name + "  -   Summary of all Databases" : context.name;
}

std::string TitleOf(const ReportContext& context) {
  const ReportDefinition& report = context.report;
  std::string title = fmt::format("{}   - {}", context.session.clock.Today().DateText(), report.name);
  if (const auto by = context.options.find("DateQuery"); by != context.options.end())
    title += by->second == 1 ? " - Date Completed" : " - Date Entered";
  if (const std::string subject = SubjectOf(context); !subject.empty()) title += "  -  " + subject;
  // Two titles have their dates otherwise than the rest.
  const bool near = title.ends_with("Date Entered");
  const bool joined = report.key.starts_with("AllColors");
  if (report.asOf)
    title += fmt::format("  -  As of {}", context.dates.to.DateText());
  else if (!report.dateRangeKey.empty())
    title += fmt::format("{} From {} To {}",
                         joined ? " -"
                         : near ? " - "
                                : "  - ",
                         context.dates.from.DateText(), context.dates.to.DateText());
  return title;
}

Result<DateRange> DatesOf(const Session& session, const ReportDefinition& report, const ReportRequest& request) {
  const bool custom = request.from || request.to || request.range == kCustomRange;
  if (!custom && !request.range && !request.rangeName.empty()) return RangeNamed(session, request.rangeName);
  if (!custom) return RangeOf(request.range.value_or(ReadDateRange(session, report)), ReportToday(session));
  if (!request.from || !request.to)
    return Refuse("Custom Date Range", "A custom range needs a From and a To date.",
                  request.from ? "CalTo" : "CalFrom");
  DateRange dates{request.from->Midnight(), request.to->Midnight()};
  if (dates.to < dates.from) std::swap(dates.from, dates.to);
  return dates;
}

Result<std::vector<std::string>> DatabasesOf(const Session& session, const ReportDefinition& report,
                                             const ReportRequest& request) {
  if (report.scope == ReportScope::Current) return std::vector{session.CurrentDatabase};
  if (report.scope == ReportScope::All || request.databases.empty()) return session.databaseList;
  return NamedDatabases(session, request.databases, "lstDatabases");
}

// What the history can tell of: nothing in a file that was made before there was one, and no day before it began.
Result<void> RequireHistory(const Session& session, const DateRange& dates) {
  Database& file = session.File();
  if (!HasStockHistory(file)) return Refuse("Stock History", "This Data File has no stock history.");
  const auto began = file.Scalar(fmt::format("SELECT MIN(Moment) FROM {}", kStockHistoryTable)).Date();
  if (began && dates.to < began->Midnight())
    return Refuse("Stock History", fmt::format("The stock history of this Data File begins on {}.", began->DateText()),
                  "CalTo");
  return {};
}

Result<void> TakeOptions(ReportContext& context, const ReportRequest& request) {
  for (const ReportOption& option : context.report.options)
    context.options[option.name] = ReadReportOption(context.session, context.report, option);
  for (const auto& [name, text] : request.options) {
    const auto option = std::ranges::find_if(context.report.options,
                                             [&](const ReportOption& known) { return EqualNoCase(known.name, name); });
    if (option == context.report.options.end()) {
      std::string known;
      for (const ReportOption& one : context.report.options) known += (known.empty() ? "" : ", ") + one.name;
      return Refuse("Report Option",
                    fmt::format("{} is no option of this report, which has {}.", name, known.empty() ? "none" : known),
                    name);
    }
    const auto value = ParseNumber(text);
    if (!value || *value < 0 || *value >= option->choices || *value != static_cast<int>(*value))
      return Refuse("Report Option",
                    fmt::format("{} is 0 to {}: {}.", option->name, option->choices - 1, option->meaning),
                    option->name);
    context.options[option->name] = static_cast<int>(*value);
  }
  return {};
}

}  // namespace

Result<std::vector<std::string>> NamedDatabases(const Session& session, const std::vector<std::string>& names,
                                                const std::string& field) {
  std::vector<std::string> databases;
  for (const std::string& typed : names) {
    const std::string name = Trim(typed);
    const std::string* found = name.empty() ? nullptr : session.FindDatabase(name);
    if (found == nullptr)
      return Refuse("Database Not Found", fmt::format("There is no Database {} in this Data File.", typed), field);
    databases.push_back(*found);
  }
  return databases;
}

bool ReportWatch::GoOn(double percent) {
  if (++calls_ % kCallsBetweenLooks != 0) return !cancelled_;
  progress_.Percent(percent);
  cancelled_ = cancelled_ || progress_.Cancelled();
  return !cancelled_;
}

void ReportWatch::LookAgain() {
  cancelled_ = cancelled_ || progress_.Cancelled();
}

std::string ReportContext::InUnit(std::string_view caption) const {
  return fmt::format("{} ({})", caption, UnitName(session.UMI));
}

std::string ReportContext::InMoney(std::string_view caption) const {
  return fmt::format("{} {}", caption, kMoneySign);
}

std::string BuiltReport::FullTitle() const {
  return complete ? title : title + "  -  INCOMPLETE";
}

ListTable BuiltReport::Table() const {
  ListTable table;
  for (const std::size_t column : shown) table.columns.push_back(columns[column]);
  const std::vector<TableValue> sums = Totals();
  for (std::size_t i = 0; i < shown.size(); ++i) {
    TableColumn& column = table.columns[i];
    if (column.HasTotal()) column.totalIs = sums[shown[i]];
    column.ratio.reset();
  }
  table.totals = totals;
  table.read = [this](const TableSink& take) {
    for (const std::size_t row : order)
      if (!take(BuiltRow(*this, row, shown))) return;
  };
  return table;
}

std::vector<TableValue> BuiltReport::Totals() const {
  ListTable all{columns, {}, totals, {}};
  TableTotals sums(all);
  std::vector<std::size_t> every(columns.size());
  std::iota(every.begin(), every.end(), std::size_t{0});
  const bool filtered = order.size() != Rows();
  if (filtered)
    for (TableColumn& column : all.columns)
      if (column.totalIs) column.totalIs = TableValue();
  for (const std::size_t row : order) sums.Add(BuiltRow(*this, row, every));
  std::vector<TableValue> values;
  for (std::size_t i = 0; i < columns.size(); ++i) values.push_back(totals.empty() ? TableValue() : sums.Of(i));
  return values;
}

Result<void> RequireReport(const Session& session, const ReportDefinition& report, bool batchInEdit) {
  if (report.edits && batchInEdit)
    return Refuse("Batch Window - Formula in State of Edit.",
                  "The Batch Window is open and has a recipe on screen.\nAny attempt to change data using this Report "
                  "can impact the Batch Window.\nSave && Clear the information on the Batch Window before using this "
                  "Report.",
                  "BatchForm");
  if (report.usesLots && session.InvLotTracking != 1)
    return Refuse("Lotted Inv. Deactivated", "Lotted Inv must be turned on\n\nto create this report.");
  return {};
}

Result<ReportContext> PrepareReport(Session& session, const ReportDefinition& report, const ReportRequest& request,
                                    ReportWatch& watch) {
  if (const auto may = RequireReport(session, report); !may) return std::unexpected(may.error());
  ReportContext context{.session = session, .report = report, .watch = watch};
  const auto dates = DatesOf(session, report, request);
  if (!dates) return std::unexpected(dates.error());
  context.dates = *dates;
  if (report.usesHistory)
    if (const auto told = RequireHistory(session, context.dates); !told) return std::unexpected(told.error());
  auto databases = DatabasesOf(session, report, request);
  if (!databases) return std::unexpected(databases.error());
  context.databases = *std::move(databases);
  context.user = Upper(Trim(request.user));
  if (const auto taken = TakeOptions(context, request); !taken) return std::unexpected(taken.error());
  switch (report.subject) {
    case ReportSubject::None:
      break;
    case ReportSubject::Formula:
    case ReportSubject::Color: {
      const auto color = FindReportColor(context, request.color, request.kind);
      if (!color) return std::unexpected(color.error());
      context.name = color->first;
      context.kind = color->second;
      break;
    }
    case ReportSubject::Design:
      context.name = Trim(request.design);
      if (context.name.empty()) return Refuse("Design Not Found", "Name the Design.", "cmbDesignID");
      break;
    case ReportSubject::Job:
      context.name = Trim(request.job);
      if (context.name.empty()) return Refuse("Job Number Not Found", "Name the Job Number.", "cmbJobNumber");
      break;
  }
  return context;
}

std::vector<TableColumn> ReportColumns(const ReportContext& context) {
  std::vector<TableColumn> columns = context.report.table(context).columns;
  for (TableColumn& column : columns)
    if (column.width == 0) column.width = DefaultWidth(column);
  ReadColumnWidths(context.session, context.report, columns);
  return columns;
}

BuiltReport BuildReport(const ReportContext& context) {
  RunPendingPassesOrTell(context.session);
  BuiltReport report;
  const ProgressRun run(context.session.progress, "Building Report ...");
  const ListTable table = context.report.table(context);
  report.title = TitleOf(context);
  report.noun = context.report.noun;
  report.columns = ReportColumns(context);
  if (std::ranges::any_of(report.columns, &TableColumn::HasTotal)) report.totals = "Totals";
  report.shown = ReadShownColumns(context.session, context.report, report.columns);
  if (const auto lost = LostColumns(context.session, context.report, report.columns); !lost.empty())
    report.notice = LostColumnsText(context.report.caption, lost);
  ReadRows(context, table, report);
  SortReport(report, ReadReportSort(context.session, context.report, report.columns.size()));
  return report;
}

void SortReport(BuiltReport& report, const ReportSort& sort) {
  report.sort = sort;
  report.order = RowsWith(report, report.filter);
  const auto compare = [&](std::size_t a, std::size_t b, std::size_t column, bool descending) {
    const int order = CompareCells(report.Cell(a, column), report.Cell(b, column), TextOrder::ExactCase);
    return descending ? -order : order;
  };
  std::ranges::stable_sort(report.order, [&](std::size_t a, std::size_t b) {
    int order = compare(a, b, sort.column, sort.descending);
    if (order == 0 && sort.second) order = compare(a, b, *sort.second, sort.secondDescending);
    return order < 0;
  });
}

}  // namespace vellumark
