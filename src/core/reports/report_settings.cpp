#include "core/reports/report_settings.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <set>
#include <utility>

#include "core/base/number.h"
#include "core/base/text.h"
#include "core/session/settings.h"

namespace vellumark {
namespace {

// Names that column sets on file use for columns which are called otherwise by now.
constexpr std::array kAliases{std::pair{std::string_view("Unlotted Inventory"), std::string_view("Inventory")},
                              std::pair{std::string_view("Unlotted Inv."), std::string_view("Inventory")},
                              std::pair{std::string_view("Ing. Name"), std::string_view("Ing Name")},
                              std::pair{std::string_view("Formula"), std::string_view("Ingredients")},
                              std::pair{std::string_view("VOC Basic"), std::string_view("VOC Basics")},
                              std::pair{std::string_view("HAP Basic"), std::string_view("HAP Basics")},
                              std::pair{std::string_view("Batch Number"), std::string_view("Batch/Item")}};

// The last one that a caption holds is what it is cut to: the money sign goes with the rest.
constexpr std::array<std::string_view, 14> kCosts{
    "Purchase Cost", "Basic Cost",          "Unit Cost",         "Cost of Mixes",    "Cost of Basics",
    "Fixed Costs",   "Markup Costs",        "Cost of Batch",     "Total Cost",       "Cost of Batches",
    "Lot Price",     "Basic Purchase Cost", "Mix Purchase Cost", "Lot Purchase Cost"};

// The reading and writing of settings, all of it, for this room: what stands behind a report's prefix, as a text.
constexpr WindowSetting<std::string> kKept{"", "", "of a report"};

std::string Text(const Session& session, std::string_view key) {
  return GetSetting(session, kKept.Of(key));
}

int Whole(const Session& session, std::string_view key, int otherwise) {
  const std::string text = Text(session, key);
  return text.empty() ? otherwise : LeadingInteger(text);
}

void Write(Session& session, std::string_view key, std::string_view value) {
  StoreSettings(session, {kKept.Of(key).To(std::string(value))});
}

std::string Key(const ReportDefinition& report, std::string_view word) {
  return report.prefix + std::string(word);
}

// Two series on file slipped by one key each.
std::string WidthKey(const ReportDefinition& report, std::size_t column) {
  if (report.prefix == "ColorListDB" && column == 16) return "ColorListColWidth16";
  if (report.prefix == "SumConsumption" && column == 155) return "SumConsumptionColWidth15";
  return fmt::format("{}ColWidth{}", report.prefix, column);
}

// Of the summaries of all Databases: that of the report about one colour.
std::string OrderKey(const ReportDefinition& report) {
  std::string window = report.window;
  if (window == "ProductionSummaryForm") window = "ProductionColorNameSummaryForm";
  if (window == "ConsumptionSummaryForm") window = "ConsumptionColorNameSummaryForm";
  return window + "_UDHeader";
}

// One name for all columns of the recipe.
bool MeansRecipe(std::string_view name) {
  return EqualNoCase(name, "Formula");
}

std::optional<std::size_t> FindExactly(const std::vector<TableColumn>& columns, std::string_view name) {
  const std::string plain = PlainCaption(name);
  for (std::size_t i = 0; i < columns.size(); ++i)
    if (EqualNoCase(PlainCaption(columns[i].Caption()), plain) || EqualNoCase(columns[i].Caption(), name)) return i;
  for (std::size_t i = 0; i < columns.size(); ++i)
    if (EqualNoCase(columns[i].key, name)) return i;
  return std::nullopt;
}

std::string OptionKey(const ReportDefinition& report, const ReportOption& option) {
  return option.key.empty() ? Key(report, option.name) : option.key;
}

}  // namespace

void ClickCaption(ReportSort& sort, std::size_t column, bool shift, std::size_t columns) {
  if (column >= columns) return;
  if (shift && column != sort.column) {
    sort.secondDescending = sort.second == column && !sort.secondDescending;
    sort.second = column;
    return;
  }
  sort.second.reset();
  sort.secondDescending = false;
  sort.descending = sort.column == column && !sort.descending;
  sort.column = column;
}

std::string PlainCaption(std::string_view caption) {
  std::string_view cost;
  for (const std::string_view name : kCosts)
    if (caption.find(name) != std::string_view::npos) cost = name;
  if (!cost.empty()) return std::string(cost);
  if (caption.find('[') != std::string_view::npos) {
    std::string plain(caption);
    std::erase_if(plain, [](char c) { return c == '[' || c == ']'; });
    return Trim(plain.substr(0, plain.find('.')));
  }
  return Trim(caption.substr(0, caption.find('(')));
}

std::optional<std::size_t> FindReportColumn(const std::vector<TableColumn>& columns, std::string_view name) {
  if (const auto found = FindExactly(columns, name)) return found;
  for (const auto& [old, present] : kAliases)
    if (EqualNoCase(old, name))
      if (const auto found = FindExactly(columns, present)) return found;
  return std::nullopt;
}

std::vector<std::size_t> FindReportColumns(const std::vector<TableColumn>& columns, std::string_view name) {
  if (const auto found = FindReportColumn(columns, name)) return {*found};
  std::vector<std::size_t> recipe;
  for (std::size_t i = 0; MeansRecipe(name) && i < columns.size(); ++i)
    if (columns[i].key.starts_with("BC") || columns[i].key.starts_with("BQ")) recipe.push_back(i);
  return recipe;
}

std::vector<std::string> SplitColumnSet(std::string_view set) {
  std::vector<std::string> names;
  for (const std::string_view name : Split(set, '|'))
    if (!TrimView(name).empty()) names.push_back(Trim(name));
  return names;
}

std::string JoinColumnSet(const std::vector<std::string>& names) {
  std::string set;
  for (const std::string& name : names) set += "|" + name + "|";
  return set;
}

std::vector<std::size_t> ReadShownColumns(const Session& session, const ReportDefinition& report,
                                          const std::vector<TableColumn>& columns) {
  // Where nobody chose yet, all of them.
  const std::string set = Text(session, Key(report, "Columns"));
  std::vector<bool> chosen(columns.size(), set.empty());
  if (!columns.empty()) chosen[0] = true;
  for (const std::string& name : SplitColumnSet(set))
    for (const std::size_t column : FindReportColumns(columns, name)) chosen[column] = true;
  std::vector<std::size_t> shown;
  for (std::size_t i = 0; i < columns.size(); ++i)
    if (chosen[i]) shown.push_back(i);
  return shown;
}

std::vector<std::string> LostColumns(const Session& session, const ReportDefinition& report,
                                     const std::vector<TableColumn>& columns) {
  std::vector<std::string> lost;
  for (const std::string& name : SplitColumnSet(Text(session, Key(report, "Columns"))))
    if (!MeansRecipe(name) && !FindReportColumn(columns, name)) lost.push_back(name);
  return lost;
}

std::string LostColumnsText(std::string_view set, const std::vector<std::string>& names) {
  std::string all;
  for (const std::string& name : names) all += (all.empty() ? "" : ", ") + name;
  return fmt::format("The columns that are saved for {} name what it does not have: {}.", set, all);
}

void SaveShownColumns(Session& session, const ReportDefinition& report, const std::vector<TableColumn>& columns,
                      const std::vector<std::size_t>& shown) {
  std::vector<std::string> names;
  for (const std::size_t column : shown)
    if (column != 0) names.push_back(columns[column].key);
  if (names.empty() && !columns.empty()) names.push_back(columns.front().key);
  Write(session, Key(report, "Columns"), JoinColumnSet(names));
}

ReportSort ReadReportSort(const Session& session, const ReportDefinition& report, std::size_t columns) {
  const auto place = [&](std::string_view word, int otherwise) {
    const int value = Whole(session, Key(report, word), otherwise);
    return value >= 0 && static_cast<std::size_t>(value) < columns
               ? std::optional<std::size_t>(static_cast<std::size_t>(value))
               : std::nullopt;
  };
  ReportSort sort;
  sort.column = place("SortCol", 0).value_or(0);
  sort.descending = Whole(session, Key(report, "SortOrder"), 0) == 1;
  sort.second = place("SecondSortCol", -1);
  if (sort.second == sort.column) sort.second.reset();
  sort.secondDescending = sort.second && Whole(session, Key(report, "SecondSortOrder"), 0) == 1;
  return sort;
}

void SaveReportSort(Session& session, const ReportDefinition& report, const ReportSort& sort) {
  Write(session, Key(report, "SortCol"), std::to_string(sort.column));
  Write(session, Key(report, "SortOrder"), sort.descending ? "1" : "0");
  Write(session, Key(report, "SecondSortCol"), sort.second ? std::to_string(*sort.second) : "-1");
  Write(session, Key(report, "SecondSortOrder"), sort.secondDescending ? "1" : "0");
}

void ReadColumnWidths(const Session& session, const ReportDefinition& report, std::vector<TableColumn>& columns) {
  constexpr int kOfDatabase = 1935;  // in new settings, which cuts a column that tells more than the name of one
  constexpr int kWidest = 2865;      // of all that do not tell their own width
  for (std::size_t i = 0; i < columns.size(); ++i) {
    const int width = Whole(session, WidthKey(report, i), 0);
    const bool cuts = width == kOfDatabase && columns[i].width > kWidest;
    if (width > 0 && columns[i].width > 0 && !cuts) columns[i].width = width;
  }
}

void SaveColumnWidths(Session& session, const ReportDefinition& report, const std::vector<TableColumn>& columns,
                      const std::vector<std::size_t>& shown) {
  std::vector<SettingText> widths;
  for (const std::size_t column : shown)
    widths.push_back(kKept.Of(WidthKey(report, column)).To(std::to_string(columns[column].width)));
  StoreSettings(session, widths);
}

int ReadDateRange(const Session& session, const ReportDefinition& report) {
  if (report.dateRangeKey.empty()) return 0;
  const int place = Whole(session, report.dateRangeKey, 6);
  return place >= 0 && place < static_cast<int>(DateRangeNames().size()) ? place : 0;
}

void SaveDateRange(Session& session, const ReportDefinition& report, int place) {
  if (place != kCustomRange) Write(session, report.dateRangeKey, std::to_string(place));
}

int ReadReportOption(const Session& session, const ReportDefinition& report, const ReportOption& option) {
  const int value = Whole(session, OptionKey(report, option), option.byDefault);
  return value >= 0 && value < option.choices ? value : option.byDefault;
}

void SaveReportOption(Session& session, const ReportDefinition& report, const ReportOption& option, int value) {
  Write(session, OptionKey(report, option), std::to_string(value));
}

ExportOptions ReadExportOptions(const Session& session, const ReportDefinition& report) {
  const std::string& window = report.window;
  ExportOptions options;
  options.headings = Whole(session, window + "_IncHeading", 1) != 0;
  options.data = Whole(session, window + "_IncData", 1) != 0;
  options.totals = Whole(session, window + "_IncTotals", 1) != 0;
  if (Whole(session, window + "_UDH_Setting", 0) == 1) options.order = ReadExportOrder(session, report);
  const int format = Whole(session, window + "_FileFormat", 0);
  if (format == 1 || format == 2) options.format = static_cast<ExportFormat>(format);
  options.fileName = Text(session, window + "_DefaultFileName");
  return options;
}

void SaveExportOptions(Session& session, const ReportDefinition& report, const ExportOptions& options, bool userOrder) {
  const std::string& window = report.window;
  StoreSettings(session,
                {setting::IncHeading.Of(window).To(options.headings), setting::IncData.Of(window).To(options.data),
                 setting::IncTotals.Of(window).To(options.totals), setting::UDH_Setting.Of(window).To(userOrder),
                 setting::FileFormat.Of(window).To(static_cast<int>(options.format)),
                 setting::DefaultFileName.Of(window).To(options.fileName)});
}

std::vector<std::string> ReadExportOrder(const Session& session, const ReportDefinition& report) {
  return SplitColumnSet(Text(session, OrderKey(report)));
}

void SaveExportOrder(Session& session, const ReportDefinition& report, const std::vector<std::string>& names) {
  Write(session, OrderKey(report), JoinColumnSet(names));
}

void KeepExportOrder(Session& session, const ReportDefinition& report, const std::vector<TableColumn>& columns,
                     const std::vector<std::size_t>& shown) {
  std::set<std::size_t> kept;
  for (const std::string& name : ReadExportOrder(session, report)) {
    const std::vector<std::size_t> named = FindReportColumns(columns, name);
    if (named.empty()) kept.insert(columns.size());
    for (const std::size_t column : named)
      if (!kept.insert(column).second) kept.insert(columns.size());
  }
  if (kept == std::set(shown.begin(), shown.end())) return;
  std::vector<std::string> names;
  for (const std::size_t column : shown) names.push_back(PlainCaption(columns[column].Caption()));
  SaveExportOrder(session, report, names);
}

}  // namespace vellumark
