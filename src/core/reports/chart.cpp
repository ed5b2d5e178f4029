#include "core/reports/chart.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <map>
#include <optional>

#include "core/base/number.h"
#include "core/base/text.h"

namespace vellumark {
namespace {

constexpr std::array<std::string_view, 6> kGroupNames{"Day", "Week", "Month", "Quarter", "Color", "Database"};
constexpr std::string_view kNoDate = "No date";
constexpr std::string_view kOthers = "All others";
constexpr int kFractionDecimals = 4;
constexpr int kMonths = 12;

// When the row was; when something was done last tells nothing of what the row counts.
std::optional<std::size_t> DateColumn(const BuiltReport& report) {
  for (std::size_t i = 0; i < report.columns.size(); ++i)
    if (report.columns[i].format == Format::Date && !report.columns[i].key.starts_with("Last")) return i;
  return std::nullopt;
}

std::optional<std::size_t> ColumnWithKey(const BuiltReport& report, std::string_view key) {
  for (std::size_t i = 0; i < report.columns.size(); ++i)
    if (report.columns[i].key == key) return i;
  return std::nullopt;
}

bool IsOfDates(ChartGroup group) {
  return group <= ChartGroup::Quarter;
}

std::optional<std::size_t> GroupColumn(const BuiltReport& report, ChartGroup group) {
  if (IsOfDates(group)) return DateColumn(report);
  return ColumnWithKey(report, group == ChartGroup::Color ? "Color_Name" : "Database");
}

// Periods are numbered without a gap: days and Mondays since 1970, months and quarters since the year 0.
std::int64_t PeriodOf(ChartGroup group, const DateTime& date) {
  constexpr std::int64_t kMonday = 3;  // 1 January 1970 was a Thursday
  switch (group) {
    case ChartGroup::Week: {
      const std::int64_t day = date.DayNumber() + kMonday;
      return (day >= 0 ? day : day - 6) / 7;
    }
    case ChartGroup::Month:
      return std::int64_t{date.year} * kMonths + date.month - 1;
    case ChartGroup::Quarter:
      return std::int64_t{date.year} * 4 + (date.month - 1) / 3;
    default:
      return date.DayNumber();
  }
}

std::string PeriodName(ChartGroup group, std::int64_t period) {
  switch (group) {
    case ChartGroup::Week:
      return DateTime::FromDayNumber(period * 7 - 3).DateText();
    case ChartGroup::Month:
      return fmt::format("{}-{:02}", period / kMonths, period % kMonths + 1);
    case ChartGroup::Quarter:
      return fmt::format("{} Q{}", period / 4, period % 4 + 1);
    default:
      return DateTime::FromDayNumber(period).DateText();
  }
}

int DecimalsOf(const TableColumn& column) {
  return column.format == Format::Whole ? 0 : column.decimals;
}

// Whole thousandths or the like of one column, and of the one that it is divided by.
struct Sum {
  std::int64_t part = 0;
  std::int64_t whole = 0;
  Sum& operator+=(const Sum& other) {
    part += other.part;
    whole += other.whole;
    return *this;
  }
};

class Figure {
 public:
  Figure(const BuiltReport& report, std::size_t column)
      : report_(report), ratio_(report.columns[column].ratio), column_(ratio_ ? ratio_->part : column) {}
  Sum Of(std::size_t row) const { return {Units(row, column_), ratio_ ? Units(row, ratio_->whole) : 0}; }
  double Value(const Sum& sum) const {
    const double part = OfWholeUnits(sum.part, DecimalsOf(report_.columns[column_]));
    if (!ratio_) return part;
    const double whole = OfWholeUnits(sum.whole, DecimalsOf(report_.columns[ratio_->whole]));
    return whole == 0 ? 0 : RoundTo(part / whole, kFractionDecimals);
  }

 private:
  std::int64_t Units(std::size_t row, std::size_t column) const {
    const TableValue& value = report_.Cell(row, column);
    const int decimals = DecimalsOf(report_.columns[column]);
    if (const auto* whole = std::get_if<std::int64_t>(&value)) return *whole;
    if (const auto* single = std::get_if<float>(&value)) return WholeUnits(*single, decimals);
    const auto* number = std::get_if<double>(&value);
    return number != nullptr ? WholeUnits(*number, decimals) : 0;
  }

  const BuiltReport& report_;
  std::optional<TotalRatio> ratio_;
  std::size_t column_;
};

std::vector<ChartSlice> ByPeriod(const BuiltReport& report, ChartGroup group, std::size_t dates, const Figure& figure) {
  std::map<std::int64_t, Sum> periods;
  std::optional<Sum> undated;
  for (const std::size_t row : report.order) {
    const auto* date = std::get_if<DateTime>(&report.Cell(row, dates));
    if (date == nullptr)
      undated = (undated ? *undated : Sum()) += figure.Of(row);
    else
      periods[PeriodOf(group, *date)] += figure.Of(row);
  }
  if (!periods.empty()) {
    const std::int64_t first = periods.begin()->first;
    const std::int64_t last = periods.rbegin()->first;
    for (std::int64_t at = first; at < last && last - first < static_cast<std::int64_t>(kMostChartPeriods); ++at)
      periods.try_emplace(at);
  }
  std::vector<ChartSlice> slices;
  for (const auto& [period, sum] : periods) slices.push_back({PeriodName(group, period), figure.Value(sum)});
  if (undated) slices.push_back({std::string(kNoDate), figure.Value(*undated)});
  return slices;
}

std::vector<ChartSlice> ByText(const BuiltReport& report, std::size_t names, const Figure& figure) {
  const auto before = [](const std::string& a, const std::string& b) { return CompareNoCase(a, b) < 0; };
  std::map<std::string, Sum, decltype(before)> sums(before);
  for (const std::size_t row : report.order)
    sums[CellText(report.columns[names], report.Cell(row, names))] += figure.Of(row);
  std::vector<std::pair<std::string, Sum>> order(sums.begin(), sums.end());
  std::ranges::stable_sort(
      order, [&](const auto& a, const auto& b) { return figure.Value(a.second) > figure.Value(b.second); });
  const bool tooMany = order.size() > kMostChartSlices;
  const std::size_t shown = tooMany ? kMostChartSlices - 1 : order.size();
  std::vector<ChartSlice> slices;
  Sum others;
  for (std::size_t i = 0; i < order.size(); ++i) {
    if (i < shown)
      slices.push_back({order[i].first, figure.Value(order[i].second)});
    else
      others += order[i].second;
  }
  if (tooMany) slices.push_back({std::string(kOthers), figure.Value(others)});
  return slices;
}

}  // namespace

std::string_view ChartGroupName(ChartGroup group) {
  return kGroupNames[static_cast<std::size_t>(group)];
}

std::vector<ChartGroup> ChartGroupsOf(const BuiltReport& report) {
  std::vector<ChartGroup> groups;
  for (std::size_t i = 0; i < kGroupNames.size(); ++i)
    if (const auto group = static_cast<ChartGroup>(i); GroupColumn(report, group)) groups.push_back(group);
  return groups;
}

std::vector<std::size_t> ChartFiguresOf(const BuiltReport& report) {
  std::vector<std::size_t> figures;
  for (std::size_t i = 0; i < report.columns.size(); ++i) {
    const TableColumn& column = report.columns[i];
    const bool share =
        column.ratio && report.columns[column.ratio->part].total && report.columns[column.ratio->whole].total;
    if (column.total || share) figures.push_back(i);
  }
  return figures;
}

std::size_t UsualChartGroup(const std::vector<ChartGroup>& groups) {
  const auto month = std::ranges::find(groups, ChartGroup::Month);
  return month == groups.end() ? 0 : static_cast<std::size_t>(month - groups.begin());
}

std::size_t UsualChartFigure(const BuiltReport& report, const std::vector<std::size_t>& figures) {
  const auto amount = std::ranges::find_if(
      figures, [&](std::size_t column) { return report.columns[column].format == Format::Amount; });
  return amount == figures.end() ? 0 : static_cast<std::size_t>(amount - figures.begin());
}

ReportChart ChartOf(const BuiltReport& report, ChartGroup group, std::size_t column) {
  const Figure figure(report, column);
  const std::size_t by = GroupColumn(report, group).value();
  return {.title = report.FullTitle(),
          .figure = report.columns[column].Caption(),
          .group = group,
          .column = report.columns[column],
          .slices = IsOfDates(group) ? ByPeriod(report, group, by, figure) : ByText(report, by, figure)};
}

}  // namespace vellumark
