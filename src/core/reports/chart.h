#pragma once

#include <string>
#include <vector>

#include "core/reports/build.h"

namespace vellumark {

/// What a bar or slice of a chart stands for.
enum class ChartGroup { Day, Week, Month, Quarter, Color, Database };
std::string_view ChartGroupName(ChartGroup group);

/// A chart of names has no more slices; what is beyond is one of them.
constexpr std::size_t kMostChartSlices = 12;
/// Periods without a row between the first and the last are there too, up to so many.
constexpr std::size_t kMostChartPeriods = 400;

struct ChartSlice {
  std::string name;
  double value = 0;
};

/// A figure of a report by a group: sums as the totals are, and of a percent the sums that it is made of. Periods
/// follow the calendar, names their value, the largest first.
struct ReportChart {
  std::string title;   ///< that of the report, which tells when it is not whole
  std::string figure;  ///< caption of the column
  ChartGroup group = ChartGroup::Day;
  TableColumn column{};  ///< how its values are written
  std::vector<ChartSlice> slices{};
};

/// The groups that a report has columns for, and the columns that can be drawn. No groups or no columns: no chart.
std::vector<ChartGroup> ChartGroupsOf(const BuiltReport& report);
std::vector<std::size_t> ChartFiguresOf(const BuiltReport& report);
/// What is drawn unless something else is chosen: places in those lists. By month where there are dates, and a quantity
/// rather than a number of Batches.
std::size_t UsualChartGroup(const std::vector<ChartGroup>& groups);
std::size_t UsualChartFigure(const BuiltReport& report, const std::vector<std::size_t>& figures);
/// Over the rows that are shown. The group and the column are of those above.
ReportChart ChartOf(const BuiltReport& report, ChartGroup group, std::size_t column);

}  // namespace vellumark
