#include "desktop/kit/grid_source.h"

#include "core/base/number.h"

namespace vellumark::desktop {

double GridSource::Number(int row, int column) const {
  return ParseNumber(Text(row, column)).value_or(kNoNumber);
}

double TableSource::Number(int row, int column) const {
  const Cell& cell = Find(row, column);
  return std::isnan(cell.number) ? ParseNumber(cell.text).value_or(kNoNumber) : cell.number;
}

const TableSource::Cell& TableSource::Find(int row, int column) const {
  static const Cell none;
  const Row& cells = rows_[static_cast<std::size_t>(row)];
  return static_cast<std::size_t>(column) < cells.size() ? cells[static_cast<std::size_t>(column)] : none;
}

}  // namespace vellumark::desktop
