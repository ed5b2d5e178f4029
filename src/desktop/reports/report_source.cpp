#include "desktop/reports/report_source.h"

#include <QFontMetrics>
#include <QLocale>

#include "desktop/kit/look.h"
#include "desktop/kit/text.h"

namespace vellumark::desktop {
namespace {

constexpr int kPercentDecimals = 2;

bool IsSortedAsNumber(Format format) {
  return format != Format::Text && format != Format::Notes && format != Format::YesNo && format != Format::Flag &&
         format != Format::Mark;
}

}  // namespace

std::string ShownCell(const TableColumn& column, const TableValue& value) {
  const bool grouped =
      column.format == Format::Amount || column.format == Format::Money || column.format == Format::Percent;
  double number = SortNumber(value);
  if (!grouped || std::isnan(number)) return CellText(column, value);
  if (column.format == Format::Percent) return U8(QLocale().toString(number * 100, 'f', kPercentDecimals) + "%");
  return U8(QLocale().toString(number, 'f', column.decimals));
}

GridColumn ShownColumn(const TableColumn& column, bool first) {
  GridColumn shown;
  shown.caption = Q(column.Caption()).trimmed();
  // A caption can be read whole, with the mark of its sort behind it.
  constexpr int kBesideCaption = 36;
  const int caption = QFontMetrics(Look::Base()).horizontalAdvance(shown.caption) + kBesideCaption;
  shown.width = std::max(column.width / kTwipsPerPixel, caption);
  shown.right = column.RightAligned();
  shown.sort = IsSortedAsNumber(column.format) ? GridColumn::Sort::Number : GridColumn::Sort::Text;
  shown.choosable = !first;
  shown.name = shown.caption;
  return shown;
}

double SortNumber(const TableValue& value) {
  if (const auto* number = std::get_if<double>(&value)) return *number;
  if (const auto* single = std::get_if<float>(&value)) return static_cast<double>(*single);
  if (const auto* whole = std::get_if<std::int64_t>(&value)) return static_cast<double>(*whole);
  if (const auto* date = std::get_if<DateTime>(&value)) {
    constexpr double kSecondsOfDay = 86400;
    return static_cast<double>(date->DayNumber()) +
           (date->hour * 3600 + date->minute * 60 + date->second) / kSecondsOfDay;
  }
  return kNoNumber;
}

std::string ReportSource::Text(int row, int column) const {
  return ShownCell(report_->columns[static_cast<std::size_t>(column)], At(row, column));
}

double ReportSource::Number(int row, int column) const {
  return SortNumber(At(row, column));
}

bool ReportSource::IsEditable(int row, int column) const {
  return editing_.may && editing_.may(row, column);
}

Result<void> ReportSource::Edit(int row, int column, const std::string& typed) {
  return editing_.take(row, column, typed);
}

}  // namespace vellumark::desktop
