#include "core/reports/saved_reports.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <map>

#include "core/base/number.h"
#include "core/base/text.h"
#include "core/reports/catalogue.h"
#include "core/session/settings.h"

namespace vellumark {
namespace {

constexpr std::size_t kLongestName = 60;
constexpr std::string_view kTitle = "Saved Report";

// A saved report is a column set of items "Word=value". What such a set or the settings file cannot hold stands in a
// value as %XX.
std::string Packed(std::string_view value) {
  std::string packed;
  for (const char c : value) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte < 0x20 || byte > 0x7e || c == '"' || c == '|' || c == '%')
      packed += fmt::format("%{:02X}", byte);
    else
      packed += c;
  }
  return packed;
}

std::string Unpacked(std::string_view packed) {
  std::string value;
  for (std::size_t i = 0; i < packed.size(); ++i) {
    unsigned byte = 0;
    if (packed[i] == '%' && i + 2 < packed.size() &&
        std::from_chars(packed.data() + i + 1, packed.data() + i + 3, byte, 16).ptr == packed.data() + i + 3) {
      value += static_cast<char>(byte);
      i += 2;
    } else {
      value += packed[i];
    }
  }
  return value;
}

class Items {
 public:
  void Add(std::string_view word, std::string_view value) {
    if (!value.empty()) items_.push_back(fmt::format("{}={}", word, Packed(value)));
  }
  void Add(std::string_view word, bool flag) { Add(word, std::string_view(flag ? "1" : "")); }
  void Add(std::string_view word, const std::optional<DateTime>& date) {
    if (date) Add(word, std::string_view(date->DateText()));
  }
  void Pair(std::string_view word, std::string_view name, std::string_view value) {
    items_.push_back(fmt::format("{}={}={}", word, Packed(name), Packed(value)));
  }
  std::string Text() const { return JoinColumnSet(items_); }

 private:
  std::vector<std::string> items_;
};

std::string ToText(const SavedReport& saved) {
  const ReportRequest& request = saved.request;
  Items items;
  items.Add("Name", std::string_view(saved.name));
  items.Add("Report", std::string_view(saved.key));
  for (const std::string& column : saved.columns) items.Add("Column", std::string_view(column));
  for (const auto& [column, width] : saved.widths) items.Pair("Width", column, std::to_string(width));
  items.Add("Sort", std::string_view(saved.sort));
  items.Add("Descending", saved.descending);
  items.Add("Second", std::string_view(saved.second));
  items.Add("SecondDescending", saved.secondDescending);
  items.Add("Filter", std::string_view(saved.filter));
  items.Add("Range", std::string_view(request.rangeName));
  items.Add("From", request.from);
  items.Add("To", request.to);
  items.Add("Color", std::string_view(request.color));
  if (request.kind) items.Add("Kind", std::string_view(*request.kind == ColorKind::Mix ? "formula" : "basic"));
  items.Add("Design", std::string_view(request.design));
  items.Add("Job", std::string_view(request.job));
  items.Add("User", std::string_view(request.user));
  for (const std::string& database : request.databases) items.Add("Database", std::string_view(database));
  for (const auto& [option, value] : request.options) items.Pair("Option", option, value);
  return items.Text();
}

std::pair<std::string, std::string> PairOf(std::string_view value) {
  const std::size_t sign = value.find('=');
  if (sign == std::string_view::npos) return {Unpacked(value), {}};
  return {Unpacked(value.substr(0, sign)), Unpacked(value.substr(sign + 1))};
}

void TakeItem(SavedReport& saved, std::string_view word, std::string_view packed) {
  ReportRequest& request = saved.request;
  const std::map<std::string_view, std::string*> texts{
      {"Name", &saved.name},     {"Report", &saved.key},        {"Sort", &saved.sort},     {"Second", &saved.second},
      {"Filter", &saved.filter}, {"Range", &request.rangeName}, {"Color", &request.color}, {"Design", &request.design},
      {"Job", &request.job},     {"User", &request.user}};
  const std::string value = Unpacked(packed);
  if (const auto text = texts.find(word); text != texts.end()) *text->second = value;
  if (word == "Column") saved.columns.push_back(value);
  if (word == "Database") request.databases.push_back(value);
  if (word == "Descending") saved.descending = value == "1";
  if (word == "SecondDescending") saved.secondDescending = value == "1";
  if (word == "From") request.from = ParseDateTime(value);
  if (word == "To") request.to = ParseDateTime(value);
  if (word == "Kind") request.kind = value == "formula" ? ColorKind::Mix : ColorKind::Basic;
  if (word == "Option") request.options.push_back(PairOf(packed));
  if (word == "Width") {
    const auto [column, width] = PairOf(packed);
    if (const int twips = LeadingInteger(width); twips > 0) saved.widths.emplace_back(column, twips);
  }
}

SavedReport FromText(std::string_view text) {
  SavedReport saved;
  for (const std::string& item : SplitColumnSet(text))
    if (const std::size_t sign = item.find('='); sign != std::string::npos)
      TakeItem(saved, std::string_view(item).substr(0, sign), std::string_view(item).substr(sign + 1));
  return saved;
}

// The place of the saved report of that name; without one, the first that is free.
std::optional<int> PlaceOf(const Session& session, std::string_view name, bool orFree) {
  std::optional<int> free;
  for (int i = 0; i < setting::SavedReport.count; ++i) {
    const std::string text = GetSetting(session, setting::SavedReport[i]);
    if (text.empty()) {
      if (!free) free = i;
    } else if (EqualNoCase(FromText(text).name, TrimView(name))) {
      return i;
    }
  }
  return orFree ? free : std::nullopt;
}

std::unexpected<Refusal> RefuseSaving(std::string text) {
  return Refuse(std::string(kTitle), std::move(text), "Name");
}

Result<void> CheckName(const std::string& name) {
  if (name.empty()) return RefuseSaving("Enter a name for the report.");
  if (CharCount(name) > kLongestName)
    return RefuseSaving(fmt::format("The name of a report has at most {} letters.", kLongestName));
  return {};
}

}  // namespace

std::vector<SavedReport> ReadSavedReports(const Session& session, ReportFinder finder) {
  std::vector<SavedReport> reports;
  for (int i = 0; i < setting::SavedReport.count; ++i) {
    SavedReport saved = FromText(GetSetting(session, setting::SavedReport[i]));
    if (!saved.name.empty() && finder(saved.key) != nullptr) reports.push_back(std::move(saved));
  }
  std::ranges::sort(reports, [](const auto& a, const auto& b) { return CompareNoCase(a.name, b.name) < 0; });
  return reports;
}

std::optional<SavedReport> FindSavedReport(const Session& session, std::string_view name, ReportFinder finder) {
  for (SavedReport& saved : ReadSavedReports(session, finder))
    if (EqualNoCase(saved.name, TrimView(name))) return std::move(saved);
  return std::nullopt;
}

Result<void> SaveReport(Session& session, const SavedReport& report, ReportFinder finder) {
  SavedReport saved = report;
  saved.name = Trim(report.name);
  if (auto named = CheckName(saved.name); !named) return named;
  const ReportDefinition* definition = finder(saved.key);
  if (definition == nullptr) return RefuseSaving(fmt::format("There is no report {}.", saved.key));
  saved.key = definition->key;
  const auto place = PlaceOf(session, saved.name, true);
  if (!place)
    return RefuseSaving(fmt::format("{} reports are saved. Delete one to make room.", setting::SavedReport.count));
  StoreSettings(session, {setting::SavedReport[*place].To(ToText(saved))});
  return {};
}

Result<void> RenameSavedReport(Session& session, std::string_view name, std::string_view newName) {
  const auto place = PlaceOf(session, name, false);
  if (!place) return RefuseSaving(fmt::format("There is no saved report {}.", name));
  SavedReport saved = FromText(GetSetting(session, setting::SavedReport[*place]));
  saved.name = Trim(newName);
  if (auto named = CheckName(saved.name); !named) return named;
  if (const auto other = PlaceOf(session, saved.name, false); other && *other != *place)
    return RefuseSaving(fmt::format("{} is saved already.", saved.name));
  StoreSettings(session, {setting::SavedReport[*place].To(ToText(saved))});
  return {};
}

Result<void> DeleteSavedReport(Session& session, std::string_view name) {
  const auto place = PlaceOf(session, name, false);
  if (!place) return RefuseSaving(fmt::format("There is no saved report {}.", name));
  StoreSettings(session, {setting::SavedReport[*place].To("")});
  return {};
}

SavedReport SavedFrom(std::string name, const ReportDefinition& definition, const ReportRequest& request,
                      const BuiltReport& report) {
  SavedReport saved{.name = std::move(name), .key = definition.key, .request = request};
  if (request.range && *request.range != kCustomRange && !request.from)
    saved.request.rangeName = DateRangeNames()[static_cast<std::size_t>(*request.range)];
  saved.request.range.reset();
  for (const std::size_t column : report.shown) {
    saved.columns.push_back(report.columns[column].key);
    if (report.columns[column].width > 0)
      saved.widths.emplace_back(report.columns[column].key, report.columns[column].width);
  }
  if (report.sort.column < report.columns.size()) saved.sort = report.columns[report.sort.column].key;
  saved.descending = report.sort.descending;
  if (report.sort.second) saved.second = report.columns[*report.sort.second].key;
  saved.secondDescending = report.sort.secondDescending;
  saved.filter = report.filter;
  return saved;
}

std::vector<std::string> LostColumns(const SavedReport& saved, const std::vector<TableColumn>& columns) {
  std::vector<std::string> lost;
  const auto look = [&](const std::string& name) {
    if (!name.empty() && !FindReportColumn(columns, name) && std::ranges::find(lost, name) == lost.end())
      lost.push_back(name);
  };
  for (const std::string& name : saved.columns) look(name);
  look(saved.sort);
  look(saved.second);
  return lost;
}

void Arrange(BuiltReport& report, const SavedReport& saved) {
  if (!saved.columns.empty()) {
    report.shown.assign(1, 0);
    for (const std::string& name : saved.columns)
      if (const auto column = FindReportColumn(report.columns, name);
          column && std::ranges::find(report.shown, *column) == report.shown.end())
        report.shown.push_back(*column);
  }
  for (const auto& [name, width] : saved.widths)
    if (const auto column = FindReportColumn(report.columns, name)) report.columns[*column].width = width;
  ReportSort sort = report.sort;
  if (const auto first = FindReportColumn(report.columns, saved.sort); first && !saved.sort.empty()) {
    sort = {.column = *first, .descending = saved.descending};
    if (const auto second = FindReportColumn(report.columns, saved.second);
        second && !saved.second.empty() && *second != *first) {
      sort.second = second;
      sort.secondDescending = saved.secondDescending;
    }
  }
  report.filter = saved.filter;
  SortReport(report, sort);
}

}  // namespace vellumark
