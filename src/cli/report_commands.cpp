#include <fmt/format.h>

#include <memory>

#include "cli/frame.h"
#include "core/base/files.h"
#include "core/base/text.h"
#include "core/reports/build.h"
#include "core/reports/catalogue.h"
#include "core/reports/report_text.h"

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
  std::string out;
};

Result<Json> ListReports(Context& context) {
  using Row = ReportDefinition;
  return context.Answer(TableOf<Row>()
                            .Add("Key", &Row::key)
                            .Add("Group", &Row::group)
                            .Add("Caption", &Row::caption)
                            .Add("Window", &Row::window)
                            .Add("Prefix", &Row::prefix)
                            .Add("Description", &Row::description)
                            .Show({"Key", "Group", "Caption"})
                            .Of(ReportCatalogue()));
}

std::string ReportNames() {
  std::string names;
  for (const ReportDefinition& report : ReportCatalogue()) names += (names.empty() ? "" : ", ") + report.key;
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
  if (!options.range.empty()) {
    request.range = FindDateRange(options.range);
    if (!request.range) {
      std::string names;
      for (const std::string_view name : DateRangeNames()) names += (names.empty() ? "" : ", ") + std::string(name);
      return Refuse("Date Range", fmt::format("{} is no range of dates, which are {}.", options.range, names),
                    "cmbDateRange");
    }
  }
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
              {"Totals", std::move(totals)}, {"Count", report.count},         {"Complete", report.complete}};
  if (!report.complete) answer["Warning"] = report.warning;
  return answer;
}

std::string ReportLines(const BuiltReport& report) {
  std::string text =
      report.FullTitle() + "\n\n" + TableText(report.Table()) + fmt::format("\n{} {}\n", report.count, report.noun);
  if (!report.complete) text += "INCOMPLETE: " + report.warning + "\n";
  return text;
}

bool EndsWith(const std::string& name, std::string_view extension) {
  return name.size() > extension.size() &&
         EqualNoCase(std::string_view(name).substr(name.size() - extension.size()), extension);
}

Json WriteReport(Context& context, const ReportDefinition& definition, const BuiltReport& report,
                 const std::string& out) {
  const std::string path = fs::absolute(out).string();
  if (EndsWith(out, ".pdf")) {
    const Sheet sheet = Sheet::Of(report.FullTitle(), report.Table());
    const int pages = paper::PrintToFile(context.session, sheet, {}, out);
    return {{"File", path}, {"Pages", pages}, {"Complete", report.complete}};
  }
  ReplaceFile(path, ReportText(report, ReadExportOptions(context.session, definition)));
  return {{"File", path}, {"Count", report.count}, {"Complete", report.complete}};
}

Result<Json> RunReport(Context& context, const RunOptions& options) {
  const ReportDefinition* definition = FindReport(options.key);
  if (definition == nullptr)
    return Refuse("Report Not Found", fmt::format("There is no report {}. There are {}.", options.key, ReportNames()),
                  "Key");
  const auto request = RequestOf(options);
  if (!request) return std::unexpected(request.error());
  ReportWatch watch(context.session.progress);
  const auto prepared = PrepareReport(context.session, *definition, *request, watch);
  if (!prepared) return std::unexpected(prepared.error());
  const auto wish = WishOf(options, ReportColumns(*prepared));
  if (!wish) return std::unexpected(wish.error());
  BuiltReport report = BuildReport(*prepared);
  if (!wish->shown.empty()) report.shown = wish->shown;
  if (wish->sort) SortReport(report, *wish->sort);
  if (!report.complete) context.exitStatus = ExitFailed;
  if (!options.out.empty()) return WriteReport(context, *definition, report, options.out);
  if (context.json) return ReportJson(report);
  context.text = ReportLines(report);
  return Json();
}

std::string IsReportFile(const std::string& name) {
  return EndsWith(name, ".txt") || EndsWith(name, ".pdf") ? "" : name + " does not end with .txt or .pdf";
}

void AddRun(CLI::App* noun, Commands& commands) {
  auto options = std::make_shared<RunOptions>();
  CLI::App* run = noun->add_subcommand("run", "A report of the list, with its totals");
  run->add_option("KEY", options->key, "Its key or window")->required()->check(NotEmpty);
  run->add_option("--range", options->range, "Range of dates by name, \"Month To Date\"")
      ->type_name("NAME")
      ->check(NotEmpty);
  run->add_option("--from", options->from, "First day")->type_name("DATE")->check(NotEmpty);
  run->add_option("--to", options->to, "Last day")->type_name("DATE")->check(NotEmpty);
  run->add_option("--color", options->color, "The color it is about")->type_name("NAME")->check(NotEmpty);
  run->add_option("--kind", options->kind, "Which one of that name")->check(CLI::IsMember({"basic", "formula"}));
  run->add_option("--design", options->design, "The Design it is about")->type_name("ID")->check(NotEmpty);
  run->add_option("--job", options->job, "The Job it is about")->type_name("NO")->check(NotEmpty);
  run->add_option("--made-by", options->user, "Only Batches of this user")->type_name("NAME")->check(NotEmpty);
  OneEachTime(run->add_option("--databases", options->databases, "A Database to read, where they can be chosen"))
      ->type_name("NAME")
      ->check(NotEmpty);
  OneEachTime(run->add_option("--set", options->options, "An option of the report"))->type_name("OPTION=VALUE");
  run->add_option("--columns", options->columns, "Columns by caption, or \"all\"")
      ->type_name("CAPTION")
      ->check(NotEmpty);
  auto* sort = run->add_option("--sort", options->sort, "Sorted by this column")->type_name("CAPTION")->check(NotEmpty);
  run->add_option("--then", options->then, "By this one where the first is equal")
      ->type_name("CAPTION")
      ->check(NotEmpty)
      ->needs(sort);
  run->add_flag("--desc", options->descending, "The largest first")->needs(sort);
  run->add_option("--out", options->out, "Write it into this file, as tabbed text or on pages")
      ->type_name("FILE.txt, .pdf")
      ->check(IsReportFile);
  commands.Add(run, Needs::File, [options](Context& context) { return RunReport(context, *options); });
}

}  // namespace

void AddReportCommands(CLI::App& app, Commands& commands) {
  CLI::App* noun = AddNoun(app, "report", "What was made, used, issued and stocked");
  commands.AddList(noun->add_subcommand("list", "The reports there are"), Needs::Nothing, "Reports", ListReports);
  AddRun(noun, commands);
}

}  // namespace vellumark::cli
