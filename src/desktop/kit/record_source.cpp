#include "desktop/kit/record_source.h"

#include <QCoreApplication>
#include <QLocale>

#include "core/base/number.h"
#include "desktop/kit/grid.h"
#include "desktop/kit/record_fields.h"
#include "desktop/kit/text.h"

namespace vellumark::desktop {
namespace {

constexpr int kPercentDecimals = 2;

bool IsDate(Format format) {
  return format == Format::Date || format == Format::Moment || format == Format::When;
}

// Grouped and pointed as the locale has it.
std::string FigureText(const TableColumn& column, double number) {
  if (column.format == Format::Percent)
    return U8(QLocale().toString(RoundTo(number * 100, kPercentDecimals), 'f', kPercentDecimals) + "%");
  return U8(QLocale().toString(RoundTo(number, column.decimals), 'f', column.decimals));
}

}  // namespace

GridColumn ColumnOf(const TableColumn& column) {
  const QString heading = QCoreApplication::translate("Table", column.Heading().c_str());
  const bool isFigure = column.RightAligned() && column.format != Format::Number;
  GridColumn shown = column.large ? GridColumn::Amount(heading)
                     : isFigure   ? GridColumn::Number(heading)
                                  : GridColumn::Text(heading);
  if (IsDate(column.format)) shown.sort = GridColumn::Sort::Number;
  if (column.width > 0) shown.width = column.width / kTwipsPerPixel;
  return shown;
}

std::string CellTextInWindow(const TableColumn& column, const TableValue& value) {
  const auto* date = std::get_if<DateTime>(&value);
  if (date == nullptr && IsDate(column.format)) return U8(DateText(std::nullopt));
  if (date == nullptr) {
    const bool figure =
        column.format == Format::Amount || column.format == Format::Money || column.format == Format::Percent;
    // The shortest decimal of a Single is not that of its double.
    const auto* single = std::get_if<float>(&value);
    const double number = single != nullptr ? RoundTo(*single, column.decimals) : CellNumber(value);
    return figure && !std::isnan(number) ? FigureText(column, number) : CellText(column, value);
  }
  if (column.format == Format::Date) return U8(DateText(*date));
  return U8(MomentText(*date));
}

double CellNumber(const TableValue& value) {
  if (const auto* date = std::get_if<DateTime>(&value)) return static_cast<double>(date->SecondNumber());
  if (const auto* whole = std::get_if<std::int64_t>(&value)) return static_cast<double>(*whole);
  if (const auto* single = std::get_if<float>(&value)) return static_cast<double>(*single);
  if (const auto* number = std::get_if<double>(&value)) return *number;
  return kNoNumber;
}

}  // namespace vellumark::desktop
