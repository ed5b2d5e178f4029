#pragma once

#include <fmt/format.h>

#include <string>
#include <vector>

#include "core/datafile/color_kind.h"
#include "support/ink_room.h"

namespace vellumark::test {

/// An ink room with colours of either kind that hold stock.
struct StockRoom : InkRoom {
  /// Its formulas have a cost and no recipe that would give it.
  StockRoom() { Breaks("RollUps"); }

  void Color(ColorKind kind, const std::string& name, float inventory, std::vector<Cell> cells = {}) {
    cells.insert(cells.begin(),
                 {{"Color_Name", name}, {"Inventory", inventory}, {"LotRefID", 0}, {"PurchaseCost", 4.0F}});
    if (kind == ColorKind::Mix) cells.insert(cells.begin(), {"BasicCost", 3.0F});
    AddRow(ColorTable(kind), std::move(cells));
  }

  void Lot(ColorKind kind, const std::string& name, std::int32_t ref, float quantity, std::vector<Cell> cells = {}) {
    cells.insert(cells.begin(), {{"LotRefID", ref},
                                 {"LotCName", name},
                                 {"LotNumber", "L" + std::to_string(ref)},
                                 {"LotLoc", ""},
                                 {"LotContID", ""},
                                 {"LotDate", DateTime{2026, 1, 15}},
                                 {"LotQty", quantity},
                                 {"LotPrice", 1.0F},
                                 {"LotConsignment", false}});
    AddRow(LotTable(kind), std::move(cells));
  }

  /// Lots with the references 1 to `count`, a unit in each.
  void FillLots(ColorKind kind, const std::string& name, std::int64_t count) {
    session.File()
        .Prepare(fmt::format("INSERT INTO {} (LotRefID, LotCName, LotNumber, LotQty) WITH RECURSIVE n(i) AS (SELECT 1 "
                             "UNION ALL SELECT i + 1 FROM n WHERE i < ?1) SELECT i, ?2, 'L', 1.0 FROM n",
                             session.QuotedTable(LotTable(kind))))
        .Bind(1, count)
        .Bind(2, name)
        .Run();
    session.File()
        .Prepare(fmt::format("INSERT INTO MSysStockHistory (Source, Kind, Database, Color_Name, LotRefID, LotNumber, "
                             "Change, Result) SELECT {}, {}, 'INK', LotCName, LotRefID, LotNumber, LotQty, LotQty FROM "
                             "{} WHERE LotCName = ?1",
                             static_cast<int>(StockEvent::Opening), static_cast<int>(kind),
                             session.QuotedTable(LotTable(kind))))
        .Bind(1, name)
        .Run();
  }

  Value Inventory(ColorKind kind, const std::string& name) {
    return Scalar(fmt::format("SELECT Inventory FROM {} WHERE Color_Name = ?1", session.QuotedTable(ColorTable(kind))),
                  {name});
  }
  /// Null when the lot is not there.
  Value LotQty(ColorKind kind, const std::string& name, std::int32_t ref) {
    return Scalar(
        fmt::format("SELECT LotQty FROM {} WHERE LotCName = ?1 AND LotRefID = ?2", session.QuotedTable(LotTable(kind))),
        {name, ref});
  }
};

}  // namespace vellumark::test
