#include "desktop/jobs/table_rows.h"

#include "desktop/kit/record_source.h"
#include "desktop/kit/row_menu.h"

namespace vellumark::desktop {

std::vector<GridColumn> ColumnsOf(const ListTable& table, const std::vector<int>& widths) {
  std::vector<GridColumn> columns;
  for (const std::size_t place : table.Shown()) {
    const TableColumn& column = table.columns[place];
    const int width = columns.size() < widths.size() ? widths[columns.size()] : 120;
    columns.push_back(ColumnOf(column));
    columns.back().width = width;
  }
  return columns;
}

void FillRows(LeadingTable& source, const ListTable& table) {
  source.Clear();
  table.read([&](const TableRow& row) {
    TableSource::Row cells;
    for (const std::size_t place : table.Shown()) {
      const TableValue value = row.Cell(place);
      cells.emplace_back(CellTextInWindow(table.columns[place], value), CellNumber(value));
    }
    const RowTarget target = row.Target();
    source.Add(std::move(cells), {target});
    return true;
  });
}

}  // namespace vellumark::desktop
