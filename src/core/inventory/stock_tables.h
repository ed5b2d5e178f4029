#pragma once

#include <optional>
#include <string>

#include "core/base/table.h"
#include "core/inventory/adjust.h"
#include "core/inventory/stock_history.h"
#include "core/inventory/stock_list.h"

namespace vellumark {

// Stock as people and programs see it. The session must outlive what is made here.

/// "Basic" or "Formula".
std::string KindText(ColorKind kind);

TableOf<LotRow> LotColumns(const Session& session);
/// The rows of an inventory list, under the captions of lots.
TableOf<InventoryRow> InventoryColumns(const Session& session);
/// A colour with its figures and its lots, for programs.
TableOf<ColorStock> StockColumns(const Session& session);

/// The stock of the colours that are meant (see ForEachStock), a row for each.
ListTable ListColorStock(const Session& session, const std::optional<std::string>& name, std::optional<ColorKind> kind);
/// The same for people: a line for Unlotted Inventory, one for each lot and, where there are lots, one for the total.
ListTable ListStockLines(const Session& session, const std::optional<std::string>& name, std::optional<ColorKind> kind);
TableOf<LowStock> LowStockColumns(const Session& session);
ListTable ListLowStock(const Session& session);
TableOf<StockLine> HistoryColumns(const Session& session);
/// What a line of the history leads to: the Batch or the Job that moved the stock, and its colour.
std::vector<RowTarget> TargetsOf(const StockLine& line);
/// In the order of writing.
ListTable ListHistory(const Session& session, const StockHistoryFilter& filter);

}  // namespace vellumark
