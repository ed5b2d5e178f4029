#include "desktop/reports/report_source.h"

#include <QFontMetrics>

#include "desktop/kit/look.h"
#include "desktop/kit/record_source.h"
#include "desktop/kit/text.h"

namespace vellumark::desktop {
namespace {

bool IsSortedAsNumber(Format format) {
  return format != Format::Text && format != Format::Notes && format != Format::YesNo && format != Format::Flag &&
         format != Format::Mark;
}

}  // namespace

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

std::string ReportSource::Text(int row, int column) const {
  const TableValue& value = At(row, column);
  if (std::holds_alternative<std::monostate>(value)) return {};
  return CellTextInWindow(report_->columns[static_cast<std::size_t>(column)], value);
}

double ReportSource::Number(int row, int column) const {
  return CellNumber(At(row, column));
}

bool ReportSource::IsEditable(int row, int column) const {
  return editing_.may && editing_.may(row, column);
}

Result<void> ReportSource::Edit(int row, int column, const std::string& typed) {
  return editing_.take(row, column, typed);
}

}  // namespace vellumark::desktop
