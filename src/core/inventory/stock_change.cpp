#include "core/inventory/stock_change.h"

#include <fmt/format.h>

#include "core/base/number.h"
#include "core/datafile/stock_history.h"
#include "core/datafile/writer.h"
#include "core/inventory/gone_lots.h"
#include "core/session/stock_lines.h"

namespace vellumark {
namespace {

void AddLot(Session& session, const StockChange& change, const std::string& table, float quantity) {
  LotRow lot = change.lot;
  lot.LotQty = quantity;
  lot.LotPrice = RoundSingle(lot.LotPrice, session.DecimalPlaces);
  std::vector<Cell> cells = LotFields().Cells(lot, kNewRowUses);
  cells.emplace_back("LotCName", change.name);
  InsertRow(session.File(), LotTable(change.kind), table, cells);
}

StockEvent EventOf(PostingSource source) {
  switch (source) {
    case PostingSource::BatchTakes:
      return StockEvent::BatchTakes;
    case PostingSource::BatchTakesAgain:
      return StockEvent::BatchTakesAgain;
    case PostingSource::BatchRestores:
      return StockEvent::BatchRestores;
    case PostingSource::BatchReturns:
      return StockEvent::BatchReturns;
    case PostingSource::BatchMakes:
      return StockEvent::BatchMakes;
    case PostingSource::BatchUnmakes:
      return StockEvent::BatchUnmakes;
    case PostingSource::JobRecord:
      return StockEvent::JobRecord;
    case PostingSource::ManualAdjust:
      break;
    case PostingSource::ScanReturn:
      return StockEvent::ScanReturn;
    case PostingSource::Reset:
      return StockEvent::Reset;
  }
  return StockEvent::ManualAdjust;
}

void WriteHistory(Session& session, const StockChange& change, float quantity) {
  const bool gone = change.action == StockChange::Action::DeleteLot;
  StockLine line = NewStockLine(session, EventOf(change.source), change.kind, change.database, change.name);
  if (change.action != StockChange::Action::SetUnlotted) {
    line.LotRefID = change.lot.LotRefID;
    line.LotNumber = change.lot.LotNumber;
  }
  line.result = gone ? 0 : quantity;
  line.change = StockDifference(change.before, line.result);
  line.document = change.document;
  line.reason = change.reason;
  // A Batch that was merely looked at leaves no trace.
  if (change.source == PostingSource::BatchRestores && TakeBackOpening(session.File(), line)) return;
  AddStockLine(session.File(), line);
}

}  // namespace

void WriteStockChange(Session& session, const StockChange& change) {
  Transaction transaction(session.File());
  const std::string colors = session.Table(ColorTable(change.kind), change.database);
  const std::string lots = session.Table(LotTable(change.kind), change.database);
  // What was on file before may come from elsewhere and have more decimals; it must come back as it was.
  const float quantity = change.source == PostingSource::BatchRestores ? change.after : RoundSingle(change.after, 3);
  switch (change.action) {
    case StockChange::Action::SetUnlotted:
      session.File()
          .Prepare(fmt::format("UPDATE {} SET Inventory = ?1 WHERE RowKey = ?2", Quoted(colors)))
          .Bind(1, quantity)
          .Bind(2, change.row)
          .Run();
      break;
    case StockChange::Action::SetLot:
      session.File()
          .Prepare(fmt::format("UPDATE {} SET LotQty = ?1 WHERE RowKey = ?2", Quoted(lots)))
          .Bind(1, quantity)
          .Bind(2, change.row)
          .Run();
      break;
    case StockChange::Action::AddLot:
      AddLot(session, change, lots, quantity);
      break;
    case StockChange::Action::DeleteLot:
      KeepPriceOfGoneLot(session, change);
      session.File().Prepare(fmt::format("DELETE FROM {} WHERE RowKey = ?1", Quoted(lots))).Bind(1, change.row).Run();
      break;
  }
  const std::string& database = change.database.empty() ? session.CurrentDatabase : change.database;
  WriteHistory(session, change, quantity);
  transaction.Note({ChangeKind(change.kind), database, change.name, Change::What::Updated, {}});
  transaction.Commit();
}

}  // namespace vellumark
