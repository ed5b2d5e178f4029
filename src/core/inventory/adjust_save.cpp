#include <fmt/format.h>

#include "core/datafile/writer.h"
#include "core/inventory/adjust.h"
#include "core/inventory/lot_copies.h"
#include "core/inventory/stock_change.h"
#include "core/session/stock_lines.h"

namespace vellumark {
namespace {

// Writes one working copy; lives for the length of its transaction.
class InventorySave {
 public:
  InventorySave(Session& session, const InventoryWork& work, Transaction& transaction)
      : session_(session), work_(work), transaction_(transaction) {}

  // The number of new lots that got no reference.
  int Run() {
    WriteUnlotted();
    if (session_.InvLotTracking != 1) return 0;
    int leftOut = 0;
    for (std::size_t i = 1; i < work_.rows.size(); ++i) {
      const InventoryRow& row = work_.rows[i];
      if (!row.key) {
        if (!AddLot(row.now)) ++leftOut;
      } else if (row.now != row.onFile) {
        RewriteLot(*row.key, row);
      }
    }
    for (const RemovedLot& lot : work_.removed) DeleteLot(lot);
    return leftOut;
  }

 private:
  StockChange ChangeTo(StockChange::Action action, std::int64_t row, float before, float after) const {
    StockChange change;
    change.action = action;
    change.kind = work_.kind;
    change.name = work_.name;
    change.database = work_.database;
    change.row = row;
    change.before = before;
    change.after = after;
    change.document = work_.document;
    change.reason = work_.reason;
    return change;
  }

  void WriteUnlotted() {
    const InventoryRow& row = work_.rows.front();
    if (row.now.qty == row.onFile.qty) return;
    Statement color = session_.File().Prepare(
        fmt::format("SELECT rowid, Inventory FROM {} WHERE Color_Name = ?1 ORDER BY rowid LIMIT 1",
                    Quoted(session_.Table(ColorTable(work_.kind), work_.database))));
    color.Bind(1, work_.name);
    if (!color.Step()) return;
    WriteStockChange(session_,
                     ChangeTo(StockChange::Action::SetUnlotted, color.Whole(0), color.Single(1), row.now.qty));
  }

  bool AddLot(const InventoryValues& values) {
    StockChange change = ChangeTo(StockChange::Action::AddLot, 0, 0, values.qty);
    change.lot.LotRefID = NextLotRefID(session_, work_.kind, work_.name, work_.database);
    if (change.lot.LotRefID == -1) return false;
    change.lot.LotNumber = values.lotNumber;
    change.lot.LotLoc = values.location;
    change.lot.LotContID = values.contID;
    change.lot.LotDate = values.date;
    change.lot.LotPrice = values.price;
    change.lot.LotConsignment = values.consignment;
    WriteStockChange(session_, change);
    return true;
  }

  void RewriteLot(std::int32_t ref, const InventoryRow& row) {
    const auto lot = FindLot(session_, work_.kind, work_.name, work_.database, ref);
    if (!lot) return;
    const InventoryValues& now = row.now;
    if (now.lotNumber != lot->LotNumber) TellNewNumber(*lot, now.lotNumber);
    UpdateRow(session_.File(), LotTable(work_.kind), session_.Table(LotTable(work_.kind), work_.database), lot->row,
              {{"LotNumber", now.lotNumber},
               {"LotLoc", now.location},
               {"LotContID", now.contID},
               {"LotDate", now.date},
               {"LotPrice", now.price},
               {"LotConsignment", now.consignment}});
    if (now.qty != row.onFile.qty) {
      StockChange change = ChangeTo(StockChange::Action::SetLot, lot->row, lot->LotQty, now.qty);
      change.lot = *lot;
      change.lot.LotNumber = now.lotNumber;
      WriteStockChange(session_, change);
    } else {
      transaction_.Note({ChangeKind(work_.kind), work_.database, work_.name, Change::What::Updated, {}});
    }
    UpdateLotCopies(session_, work_.kind, work_.name, work_.database, ref,
                    {now.lotNumber, now.location, now.contID, now.date});
  }

  // The history finds a lot under each of its numbers.
  void TellNewNumber(const LotRow& lot, const std::string& number) {
    StockLine line = NewStockLine(session_, StockEvent::ManualAdjust, work_.kind, work_.database, work_.name);
    line.LotRefID = lot.LotRefID;
    line.LotNumber = number;
    line.result = lot.LotQty;
    line.reason = "Lot number was " + lot.LotNumber;
    AddStockLine(session_.File(), line);
  }

  // By number as well as by reference: a lot that was given another number meanwhile stays.
  void DeleteLot(const RemovedLot& removed) {
    Statement lots = session_.File().Prepare(fmt::format(
        "SELECT rowid, LotQty FROM {} WHERE LotCName = ?1 AND LotRefID = ?2 AND COALESCE(LotNumber, '') = ?3",
        Quoted(session_.Table(LotTable(work_.kind), work_.database))));
    lots.Bind(1, work_.name).Bind(2, removed.LotRefID).Bind(3, removed.LotNumber);
    std::vector<StockChange> changes;
    while (lots.Step()) {
      StockChange change = ChangeTo(StockChange::Action::DeleteLot, lots.Whole(0), lots.Single(1), 0);
      change.lot.LotRefID = removed.LotRefID;
      change.lot.LotNumber = removed.LotNumber;
      changes.push_back(std::move(change));
    }
    for (const StockChange& change : changes) WriteStockChange(session_, change);
  }

  Session& session_;
  const InventoryWork& work_;
  Transaction& transaction_;
};

}  // namespace

int WriteInventory(Session& session, const InventoryWork& work) {
  Transaction transaction(session.File());
  const int leftOut = InventorySave(session, work, transaction).Run();
  transaction.Commit();
  return leftOut;
}

Result<int> SaveInventory(Session& session, const InventoryWork& work) {
  if (const auto writable = RequireWritable(session); !writable) return std::unexpected(writable.error());
  if (!ColorIsThere(session, work.kind, work.name, work.database))
    return std::unexpected(InventoryColorNotFound(session));
  const int leftOut = WriteInventory(session, work);
  if (leftOut > 0) ShowMaxLotUsage(session);
  return leftOut;
}

}  // namespace vellumark
