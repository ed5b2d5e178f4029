#include "desktop/jobs/table_rows.h"

#include "core/base/number.h"
#include "desktop/kit/text.h"

namespace vellumark::desktop {

std::vector<GridColumn> ColumnsOf(const ListTable& table, const std::vector<int>& widths) {
  std::vector<GridColumn> columns;
  for (const std::size_t place : table.Shown()) {
    const TableColumn& column = table.columns[place];
    const int width = columns.size() < widths.size() ? widths[columns.size()] : 120;
    columns.push_back(column.RightAligned() ? GridColumn::Number(Q(column.Caption()), width)
                                            : GridColumn::Text(Q(column.Caption()), width));
  }
  return columns;
}

void FillRows(TableSource& source, const ListTable& table) {
  source.Clear();
  table.read([&](const TableRow& row) {
    TableSource::Row cells;
    for (const std::size_t place : table.Shown()) cells.emplace_back(CellText(table.columns[place], row.Cell(place)));
    source.Add(std::move(cells));
    return true;
  });
}

}  // namespace vellumark::desktop
