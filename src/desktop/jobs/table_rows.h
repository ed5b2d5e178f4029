#pragma once

#include <memory>

#include "core/base/table.h"
#include "desktop/kit/grid.h"
#include "desktop/kit/row_menu.h"

namespace vellumark::desktop {

/// A short table of the core in a grid: the columns that people see, and its rows.
std::vector<GridColumn> ColumnsOf(const ListTable& table, const std::vector<int>& widths);
void FillRows(LeadingTable& source, const ListTable& table);

}  // namespace vellumark::desktop
