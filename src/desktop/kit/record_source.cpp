#include "desktop/kit/record_source.h"

#include <QCoreApplication>

#include "desktop/kit/grid.h"
#include "desktop/kit/record_fields.h"
#include "desktop/kit/text.h"

namespace vellumark::desktop {
namespace {

constexpr std::size_t kMinutesEnd = 16;  // of "2026-05-01 10:00:00"

bool IsDate(Format format) {
  return format == Format::Date || format == Format::Moment || format == Format::When;
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
  if (date == nullptr) return CellText(column, value);
  if (column.format == Format::Date) return U8(DateText(*date));
  if (column.format == Format::Moment) return date->ToText().substr(0, kMinutesEnd);
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
