#include <fmt/format.h>

#include <memory>

#include "cli/frame.h"
#include "cli/seams.h"
#include "core/base/files.h"
#include "core/base/text.h"
#include "core/base/write_over.h"
#include "core/cloud/cloud_files.h"
#include "core/cloud/cloud_reports.h"
#include "core/reports/catalogue.h"
#include "core/reports/chart.h"
#include "core/reports/export.h"
#include "core/reports/saved_reports.h"
#include "paper/chart_picture.h"

namespace vellumark::cli {
namespace {

namespace fs = std::filesystem;

struct RunOptions {
  std::string key;
  std::string from;
  std::string to;
  std::string range;
  std::string color;
  std::string kind;
  std::string design;
  std::string job;
  std::string user;
  std::vector<std::string> databases;
  std::vector<std::string> options;
  std::vector<std::string> columns;
  std::string sort;
  std::string then;
  bool descending = false;
  std::string filter;
  std::string by;  // a chart is drawn
  std::string figure;
  std::string saved;
  std::string name;  // to be saved under
  PrintWish print;
  bool noHeadings = false;
  bool noData = false;
  bool noTotals = false;
  std::vector<std::string> order;
};

// A report of the catalogue, or one that is saved: then its caption is the name that it is saved under.
struct ListedReport {
  const ReportDefinition* report = nullptr;
  std::string saved{};
};

Result<Json> ListReports(Context& context) {
  using Row = ListedReport;
  std::vector<Row> rows;
  for (const ReportDefinition* report : AllReports()) rows.push_back({report});
  for (const SavedReport& saved : ReadSavedReports(context.session, FindAnyReport))
    rows.push_back({FindAnyReport(saved.key), saved.name});
  const auto text = [](std::string ReportDefinition::*field) {
    return [field](const Row& row) { return row.report->*field; };
  };
  return context.Answer(
      TableOf<Row>()
          .Add("Key", text(&ReportDefinition::key))
          .Add("Group", [](const Row& row) { return row.saved.empty() ? row.report->group : "Saved Reports"; })
          .Add("Caption", [](const Row& row) { return row.saved.empty() ? row.report->caption : row.saved; })
          .Add("Window", text(&ReportDefinition::window))
          .Add("Prefix", text(&ReportDefinition::prefix))
          .Add("Description", text(&ReportDefinition::description))
          .Show({"Key", "Group", "Caption"})
          .Of(std::move(rows)));
}

std::string ReportNames() {
  std::string names;
  for (const ReportDefinition* report : AllReports()) names += (names.empty() ? "" : ", ") + report->key;
  return names;
}

Result<std::optional<DateTime>> DateOf(const std::string& typed, const char* field) {
  if (typed.empty()) return std::nullopt;
  const auto date = ParseDateTime(typed);
  if (!date) return Refuse("Invalid Date Value", "Invalid date value", field);
  return date;
}

Result<ReportRequest> RequestOf(const RunOptions& options) {
  ReportRequest request;
  request.rangeName = options.range;
  const auto from = DateOf(options.from, "CalFrom");
  if (!from) return std::unexpected(from.error());
  const auto to = DateOf(options.to, "CalTo");
  if (!to) return std::unexpected(to.error());
  request.from = *from;
  request.to = *to;
  request.color = options.color;
  if (!options.kind.empty()) request.kind = options.kind == "formula" ? ColorKind::Mix : ColorKind::Basic;
  request.design = options.design;
  request.job = options.job;
  request.user = options.user;
  request.databases = options.databases;
  for (const std::string& option : options.options) {
    const auto pair = SplitPair(option);
    if (!pair) return Refuse("Report Option", option + " is no OPTION=VALUE.", option);
    request.options.push_back(*pair);
  }
  return request;
}

Result<std::size_t> ColumnOf(const std::vector<TableColumn>& columns, const std::string& name) {
  if (const auto found = FindReportColumn(columns, name)) return *found;
  std::string captions;
  for (const TableColumn& column : columns) captions += (captions.empty() ? "" : ", ") + PlainCaption(column.Caption());
  return Refuse("Column Not Found", fmt::format("{} is no column of this report, which has {}.", name, captions), name);
}

// Columns and order as they were asked for, before anything is read.
struct Wish {
  std::vector<std::size_t> shown{};
  std::optional<ReportSort> sort{};
};

Result<Wish> WishOf(const RunOptions& options, const std::vector<TableColumn>& columns) {
  Wish wish;
  const bool all = options.columns.size() == 1 && EqualNoCase(options.columns.front(), "all");
  if (!options.columns.empty()) wish.shown.push_back(0);
  for (std::size_t i = 1; all && i < columns.size(); ++i) wish.shown.push_back(i);
  for (const std::string& name : options.columns) {
    if (all) break;
    const auto column = ColumnOf(columns, name);
    if (!column) return std::unexpected(column.error());
    if (std::ranges::find(wish.shown, *column) == wish.shown.end()) wish.shown.push_back(*column);
  }
  if (options.sort.empty()) return wish;
  const auto first = ColumnOf(columns, options.sort);
  if (!first) return std::unexpected(first.error());
  wish.sort = ReportSort{.column = *first, .descending = options.descending};
  if (!options.then.empty()) {
    const auto second = ColumnOf(columns, options.then);
    if (!second) return std::unexpected(second.error());
    if (*second != *first) wish.sort->second = *second;
  }
  return wish;
}

Json CellJson(const TableColumn& column, const TableValue& value) {
  if (const auto* whole = std::get_if<std::int64_t>(&value)) return *whole;
  if (const auto* number = std::get_if<double>(&value)) {
    if (*number == static_cast<double>(static_cast<std::int64_t>(*number))) return static_cast<std::int64_t>(*number);
    return *number;
  }
  std::string text = ExportCell(column, value);
  if (text.empty()) return nullptr;
  return text;
}

Json RowJson(const BuiltReport& report, const std::function<const TableValue&(std::size_t)>& cell) {
  Json row = Json::array();
  for (const std::size_t column : report.shown) row.push_back(CellJson(report.columns[column], cell(column)));
  return row;
}

// Of what the report counts, or of the rows that its filter leaves.
std::int64_t CountOf(const BuiltReport& report) {
  return report.order.size() == report.Rows() ? report.count : static_cast<std::int64_t>(report.order.size());
}

Json ReportJson(const BuiltReport& report) {
  Json columns = Json::array();
  for (const std::size_t column : report.shown)
    columns.push_back({{"Caption", report.columns[column].Caption()},
                       {"Key", report.columns[column].key},
                       {"Format", std::string(FormatToken(report.columns[column].format))}});
  Json rows = Json::array();
  for (const std::size_t row : report.order)
    rows.push_back(RowJson(report, [&](std::size_t column) -> const TableValue& { return report.Cell(row, column); }));
  Json totals = Json::array();
  if (!report.totals.empty()) {
    const std::vector<TableValue> sums = report.Totals();
    totals = RowJson(report, [&](std::size_t column) -> const TableValue& { return sums[column]; });
    if (!totals.empty() && totals.front().is_null()) totals.front() = report.totals;
  }
  Json answer{{"Title", report.FullTitle()}, {"Columns", std::move(columns)}, {"Rows", std::move(rows)},
              {"Totals", std::move(totals)}, {"Count", CountOf(report)},      {"Complete", report.complete}};
  if (!report.complete) answer["Warning"] = report.warning;
  return answer;
}

std::string ReportLines(const BuiltReport& report) {
  std::string text =
      report.FullTitle() + "\n\n" + TableText(report.Table()) + fmt::format("\n{} {}\n", CountOf(report), report.noun);
  if (!report.complete) text += "INCOMPLETE: " + report.warning + "\n";
  return text;
}

bool EndsWith(const std::string& name, std::string_view extension) {
  return name.size() > extension.size() &&
         EqualNoCase(std::string_view(name).substr(name.size() - extension.size()), extension);
}

Result<ExportOptions> ExportOptionsOf(const Session& session, const ReportDefinition& definition,
                                      const RunOptions& options, const std::vector<TableColumn>& columns) {
  ExportOptions wanted = ReadExportOptions(session, definition);
  wanted.format = EndsWith(options.print.out, ".xlsx")  ? ExportFormat::Spreadsheet
                  : EndsWith(options.print.out, ".mdb") ? ExportFormat::Jet
                                                        : ExportFormat::Text;
  wanted.headings = wanted.headings && !options.noHeadings;
  wanted.data = wanted.data && !options.noData;
  wanted.totals = wanted.totals && !options.noTotals;
  for (const std::string& name : options.order)
    if (const auto column = ColumnOf(columns, name); !column) return std::unexpected(column.error());
  if (!options.order.empty()) wanted.order = options.order;
  return wanted;
}

bool IsPicture(const std::string& name) {
  return EndsWith(name, ".png") || EndsWith(name, ".svg");
}

// What is asked of a report's chart, or the figure and the group that it has first in the window.
Result<ReportChart> DrawnChart(const BuiltReport& report, const RunOptions& options) {
  const std::vector<ChartGroup> groups = ChartGroupsOf(report);
  const std::vector<std::size_t> figures = ChartFiguresOf(report);
  if (groups.empty() || figures.empty()) return Refuse("Report Chart", "This report has nothing to draw.", "Key");
  const auto group =
      options.by.empty()
          ? groups.begin() + static_cast<std::ptrdiff_t>(UsualChartGroup(groups))
          : std::ranges::find_if(groups, [&](ChartGroup one) { return EqualNoCase(ChartGroupName(one), options.by); });
  if (group == groups.end()) {
    std::string known;
    for (const ChartGroup one : groups) known += (known.empty() ? "" : ", ") + std::string(ChartGroupName(one));
    return Refuse("Report Chart", fmt::format("This report can be drawn by {}.", known), "by");
  }
  std::size_t column = figures[UsualChartFigure(report, figures)];
  if (!options.figure.empty()) {
    const auto named = ColumnOf(report.columns, options.figure);
    if (!named) return std::unexpected(named.error());
    if (std::ranges::find(figures, *named) == figures.end())
      return Refuse("Report Chart", fmt::format("{} is no figure that adds up.", options.figure), "figure");
    column = *named;
  }
  return ChartOf(report, *group, column);
}

Json WriteChart(const ReportChart& chart, const BuiltReport& report, const std::string& out) {
  FileBeside beside(fs::absolute(out), Readers::Everybody);
  beside.Write(EndsWith(out, ".svg") ? paper::ChartSvg(chart) : paper::ChartPng(chart));
  beside.Replace();
  return Json{{"File", fs::absolute(out).string()}, {"Chart", paper::ChartTitle(chart)}, {"Complete", report.complete}};
}

Result<Json> WriteReport(Context& context, const ReportDefinition& definition, const BuiltReport& report,
                         const RunOptions& options) {
  const std::string& out = options.print.out;
  const std::string path = fs::absolute(out).string();
  if (IsPicture(out)) {
    const auto chart = DrawnChart(report, options);
    if (!chart) return std::unexpected(chart.error());
    return WriteChart(*chart, report, out);
  }
  if (EndsWith(out, ".pdf")) {
    const int pages = paper::PrintToFile(context.session, ReportSheet(report), options.print.paper, out);
    if (pages == 0) return Refuse("Print", "Nothing was printed.");
    return Json{{"File", path}, {"Pages", pages}, {"Complete", report.complete}};
  }
  const auto wanted = ExportOptionsOf(context.session, definition, options, report.columns);
  if (!wanted) return std::unexpected(wanted.error());
  ExportReport(report, *wanted, context.session.clock.Now(), path);
  return Json{{"File", path}, {"Count", CountOf(report)}, {"Complete", report.complete}};
}

// What the command line says goes before what is saved.
void TakeOver(ReportRequest& request, const ReportRequest& saved) {
  const auto text = [](std::string& mine, const std::string& theirs) {
    if (mine.empty()) mine = theirs;
  };
  if (request.rangeName.empty() && !request.from && !request.to) {
    request.rangeName = saved.rangeName;
    request.from = saved.from;
    request.to = saved.to;
  }
  if (request.color.empty()) request.kind = request.kind ? request.kind : saved.kind;
  text(request.color, saved.color);
  text(request.design, saved.design);
  text(request.job, saved.job);
  text(request.user, saved.user);
  if (request.databases.empty()) request.databases = saved.databases;
  request.options.insert(request.options.begin(), saved.options.begin(), saved.options.end());
}

// What is to be run: the report, what is asked of it, and the saved one behind it.
struct Order {
  const ReportDefinition* definition = nullptr;
  ReportRequest request{};
  std::optional<SavedReport> saved{};
};

Result<Order> OrderOf(const Context& context, const RunOptions& options) {
  Order order;
  if (!options.saved.empty()) {
    order.saved = FindSavedReport(context.session, options.saved, FindAnyReport);
    if (!order.saved) return Refuse("Saved Report", fmt::format("There is no saved report {}.", options.saved), "Name");
  }
  const std::string& key = order.saved ? order.saved->key : options.key;
  order.definition = FindAnyReport(key);
  if (order.definition == nullptr)
    return Refuse("Report Not Found", fmt::format("There is no report {}. There are {}.", key, ReportNames()), "Key");
  if (FetchTaskOf(*order.definition)) {
    if (auto ready = RequireCloud(context.session); !ready) return std::unexpected(ready.error());
    if (auto accounts = RequireSharedAccounts(context.session); !accounts) return std::unexpected(accounts.error());
  }
  auto request = RequestOf(options);
  if (!request) return std::unexpected(request.error());
  order.request = *std::move(request);
  if (order.saved) TakeOver(order.request, order.saved->request);
  return order;
}

// The report with columns, order and filter as they were saved and asked for.
Result<BuiltReport> BuildOrder(Context& context, const Order& order, const RunOptions& options) {
  ReportWatch watch(context.session.progress);
  const auto prepared = PrepareReport(context.session, *order.definition, order.request, watch);
  if (!prepared) return std::unexpected(prepared.error());
  const std::vector<TableColumn> columns = ReportColumns(*prepared);
  if (order.saved)
    if (const auto lost = LostColumns(*order.saved, columns); !lost.empty())
      return Refuse("Saved Report", LostColumnsText(order.saved->name, lost), "Columns");
  const auto wish = WishOf(options, columns);
  if (!wish) return std::unexpected(wish.error());
  BuiltReport report = BuildReport(*prepared);
  if (order.saved) Arrange(report, *order.saved);
  if (!wish->shown.empty()) report.shown = wish->shown;
  if (!options.filter.empty()) report.filter = options.filter;
  SortReport(report, wish->sort.value_or(report.sort));
  if (!report.complete) context.exitStatus = ExitFailed;
  if (!report.notice.empty() && wish->shown.empty() && !order.saved) WriteError(report.notice + "\n");
  return report;
}

Result<Json> RunReport(Context& context, const RunOptions& options) {
  const auto order = OrderOf(context, options);
  if (!order) return std::unexpected(order.error());
  const std::string& out = options.print.out;
  if (!out.empty())
    if (const auto may = MayWriteOver(context.session.prompt, out, "out"); !may) return std::unexpected(may.error());
  const auto report = BuildOrder(context, *order, options);
  if (!report) return std::unexpected(report.error());
  if (!out.empty()) return WriteReport(context, *order->definition, *report, options);
  if (context.json) return ReportJson(*report);
  context.text = ReportLines(*report);
  if (FetchTaskOf(*order->definition) && report->Rows() == 0) context.text += "No inventory found.\n";
  return Json();
}

Result<Json> StoreReport(Context& context, const RunOptions& options) {
  const auto order = OrderOf(context, options);
  if (!order) return std::unexpected(order.error());
  const auto report = BuildOrder(context, *order, options);
  if (!report) return std::unexpected(report.error());
  const SavedReport saved = SavedFrom(options.name, *order->definition, order->request, *report);
  if (const auto stored = SaveReport(context.session, saved, FindAnyReport); !stored) return std::unexpected(stored.error());
  return Json{{"Name", Trim(options.name)}, {"Report", saved.key}, {"Columns", saved.columns}};
}

// The bars of a chart: a figure of the report by what it has.
Result<Json> ReadChart(Context& context, const RunOptions& options) {
  if (!options.print.out.empty()) return RunReport(context, options);
  const auto order = OrderOf(context, options);
  if (!order) return std::unexpected(order.error());
  const auto report = BuildOrder(context, *order, options);
  if (!report) return std::unexpected(report.error());
  const auto chart = DrawnChart(*report, options);
  if (!chart) return std::unexpected(chart.error());
  const int decimals = chart->column.format == Format::Whole ? 0 : chart->column.decimals;
  return context.Answer(TableOf<ChartSlice>()
                            .Add("Name", &ChartSlice::name, std::string(ChartGroupName(chart->group)))
                            .Add("Value", &ChartSlice::value, chart->figure, chart->column.format, decimals)
                            .Of(chart->slices));
}

std::string IsReportFile(const std::string& name) {
  for (const char* extension : {".txt", ".xlsx", ".mdb", ".pdf"})
    if (EndsWith(name, extension)) return "";
  return IsPicture(name) ? "" : name + " does not end with .txt, .xlsx, .mdb, .pdf, .png or .svg";
}

std::string IsPictureFile(const std::string& name) {
  return IsPicture(name) ? "" : name + " does not end with .png or .svg";
}

void AddQuestion(CLI::App* verb, RunOptions& options) {
  verb->add_option("--range", options.range, "Range of dates by name, \"Month To Date\"")
      ->type_name("NAME")
      ->check(NotEmpty);
  verb->add_option("--from", options.from, "First day")->type_name("DATE")->check(NotEmpty);
  verb->add_option("--to", options.to, "Last day")->type_name("DATE")->check(NotEmpty);
  verb->add_option("--color", options.color, "The color it is about")->type_name("NAME")->check(NotEmpty);
  verb->add_option("--kind", options.kind, "Which one of that name")->check(CLI::IsMember({"basic", "formula"}));
  verb->add_option("--design", options.design, "The Design it is about")->type_name("ID")->check(NotEmpty);
  verb->add_option("--job", options.job, "The Job it is about")->type_name("NO")->check(NotEmpty);
  verb->add_option("--made-by", options.user, "Only Batches of this user")->type_name("NAME")->check(NotEmpty);
  OneEachTime(verb->add_option("--databases", options.databases, "A Database to read, where they can be chosen"))
      ->type_name("NAME")
      ->check(NotEmpty);
  OneEachTime(verb->add_option("--set", options.options, "An option of the report"))->type_name("OPTION=VALUE");
  verb->add_option("--columns", options.columns, "Columns by caption, or \"all\"")
      ->type_name("CAPTION")
      ->check(NotEmpty);
  auto* sort = verb->add_option("--sort", options.sort, "Sorted by this column")->type_name("CAPTION")->check(NotEmpty);
  verb->add_option("--then", options.then, "By this one where the first is equal")
      ->type_name("CAPTION")
      ->check(NotEmpty)
      ->needs(sort);
  verb->add_flag("--desc", options.descending, "The largest first")->needs(sort);
  verb->add_option("--filter", options.filter, "Only rows in which each of these words stands")->check(NotEmpty);
}

void AddSource(CLI::App* verb, RunOptions& options) {
  CLI::Option_group* which = verb->add_option_group("Report");
  which->add_option("KEY", options.key, "Its key or window")->check(NotEmpty);
  which->add_option("--saved", options.saved, "The report that is saved under this name")
      ->type_name("NAME")
      ->check(NotEmpty);
  which->require_option(1);
  AddQuestion(verb, options);
}

CLI::Option* AddFile(CLI::App* verb, RunOptions& options) {
  auto* out = verb->add_option("--out", options.print.out,
                               "Write it into this file: as tabbed text, spreadsheet, database, pages, or its chart")
                  ->type_name("FILE.txt, .xlsx, .mdb, .pdf, .png, .svg")
                  ->check(IsReportFile);
  AddPaper(verb, out, options.print);
  return out;
}

void AddRuns(CLI::App* noun, Commands& commands) {
  auto run = std::make_shared<RunOptions>();
  CLI::App* verb = noun->add_subcommand("run", "A report of the list, with its totals");
  AddSource(verb, *run);
  AddFile(verb, *run);
  commands.Add(verb, Needs::File, [run](Context& context) { return RunReport(context, *run); });

  auto file = std::make_shared<RunOptions>();
  verb = noun->add_subcommand("export", "A report as a file");
  AddSource(verb, *file);
  AddFile(verb, *file)->required();
  verb->add_flag("--no-headings", file->noHeadings, "Without the line of captions");
  verb->add_flag("--no-data", file->noData, "Without the rows");
  verb->add_flag("--no-totals", file->noTotals, "Without the totals");
  verb->add_option("--order", file->order, "Order of the columns, by caption; the others are left out")
      ->type_name("CAPTION")
      ->check(NotEmpty);
  commands.Add(verb, Needs::File, [file](Context& context) { return RunReport(context, *file); });

  auto chart = std::make_shared<RunOptions>();
  verb = noun->add_subcommand("chart", "The bars of a report's chart: sums by what it is drawn by");
  AddSource(verb, *chart);
  verb->add_option("--by", chart->by, "Day, week, month, quarter, color or database")
      ->type_name("GROUP")
      ->check(NotEmpty);
  verb->add_option("--figure", chart->figure, "The column that is drawn, by caption")
      ->type_name("CAPTION")
      ->check(NotEmpty);
  verb->add_option("--out", chart->print.out, "Draw it into this picture")
      ->type_name("FILE.png, .svg")
      ->check(IsPictureFile);
  commands.Add(verb, Needs::File, [chart](Context& context) { return ReadChart(context, *chart); });

  auto saved = std::make_shared<RunOptions>();
  verb = noun->add_subcommand("save", "Keeps a report with what is asked of it under a name");
  verb->add_option("NAME", saved->name, "To be run by with --saved")->required()->check(NotEmpty);
  verb->add_option("KEY", saved->key, "Key or window of the report")->required()->check(NotEmpty);
  AddQuestion(verb, *saved);
  commands.Add(verb, Needs::File, [saved](Context& context) { return StoreReport(context, *saved); });

  auto names = std::make_shared<std::pair<std::string, std::string>>();
  verb = noun->add_subcommand("rename", "A saved report");
  verb->add_option("NAME", names->first, "That it is saved under")->required()->check(NotEmpty);
  verb->add_option("NEW", names->second, "That it gets")->required()->check(NotEmpty);
  commands.Add(verb, Needs::Nothing, [names](Context& context) -> Result<Json> {
    const auto done = RenameSavedReport(context.session, names->first, names->second);
    if (!done) return std::unexpected(done.error());
    return Json{{"Name", Trim(names->second)}, {"Old", names->first}};
  });

  auto name = std::make_shared<std::string>();
  verb = noun->add_subcommand("delete", "A saved report");
  verb->add_option("NAME", *name, "That it is saved under")->required()->check(NotEmpty);
  commands.Add(verb, Needs::Nothing, [name](Context& context) -> Result<Json> {
    if (const auto gone = DeleteSavedReport(context.session, *name); !gone) return std::unexpected(gone.error());
    return Json{{"Deleted", *name}};
  });
}

Result<Json> ListRanges(Context& context) {
  return context.Answer(TableOf<NamedRange>()
                            .Add("Name", &NamedRange::name)
                            .Add("From", [](const NamedRange& range) { return range.dates.from; })
                            .Add("To", [](const NamedRange& range) { return range.dates.to; })
                            .Of(ReadCustomRanges(context.session)));
}

struct RangeOptions {
  std::string name;
  std::string from;
  std::string to;
  bool remove = false;
};

Result<Json> StoreRange(Context& context, const RangeOptions& options) {
  if (options.remove) {
    if (const auto gone = DeleteCustomRange(context.session, options.name); !gone) return std::unexpected(gone.error());
    return Json{{"Deleted", options.name}};
  }
  const auto from = DateOf(options.from, "CalFrom");
  const auto to = DateOf(options.to, "CalTo");
  if (!from || !to) return std::unexpected(from ? to.error() : from.error());
  if (!*from || !*to) return Refuse("Custom Date Range", "A custom range needs a From and a To date.", "CalFrom");
  if (const auto kept = SaveCustomRange(context.session, {options.name, {**from, **to}}); !kept)
    return std::unexpected(kept.error());
  return ListRanges(context);
}

void AddRanges(CLI::App* noun, Commands& commands) {
  commands.AddList(noun->add_subcommand("ranges", "The ranges of dates that are saved under names"), Needs::Nothing,
                   "Ranges of Dates", ListRanges);
  auto options = std::make_shared<RangeOptions>();
  CLI::App* verb = noun->add_subcommand("range", "Saves a range of dates under a name, or deletes one");
  verb->add_option("NAME", options->name, "To be asked for by with --range")->required()->check(NotEmpty);
  auto* remove = verb->add_flag("--delete", options->remove, "It is not wanted any more");
  verb->add_option("--from", options->from, "First day")->type_name("DATE")->check(NotEmpty)->excludes(remove);
  verb->add_option("--to", options->to, "Last day")->type_name("DATE")->check(NotEmpty)->excludes(remove);
  commands.Add(verb, Needs::Nothing, [options](Context& context) { return StoreRange(context, *options); });
}

}  // namespace

void AddReportUpload(CLI::App* cloudNoun, Commands& commands,
                     std::function<Result<Json>(Context&, const std::string&, const std::string&)> send) {
  auto options = std::make_shared<RunOptions>();
  CLI::App* verb = cloudNoun->add_subcommand("report-upload", "A report as tabbed text to the account");
  AddSource(verb, *options);
  verb->add_option("--name", options->name, "What it is called there")->check(NotEmpty);
  commands.Add(verb, Needs::File, [options, send = std::move(send)](Context& context) -> Result<Json> {
    const auto order = OrderOf(context, *options);
    if (!order) return std::unexpected(order.error());
    const ExportOptions wanted = ReadExportOptions(context.session, *order->definition);
    if (auto fits = CheckCloudFormat(wanted.format); !fits) return std::unexpected(fits.error());
    const auto report = BuildOrder(context, *order, *options);
    if (!report) return std::unexpected(report.error());
    const std::string stored = options->name.empty() ? wanted.fileName : options->name;
    return send(context, stored.empty() ? CloudReportName(context.session, report->FullTitle()) : stored,
                ReportText(*report, wanted));
  });
}

void AddReportCommands(CLI::App& app, Commands& commands) {
  CLI::App* noun = AddNoun(app, "report", "What was made, used, issued and stocked");
  commands.AddList(noun->add_subcommand("list", "The reports there are"), Needs::Nothing, "Reports", ListReports);
  AddRuns(noun, commands);
  AddRanges(noun, commands);
}

}  // namespace vellumark::cli
