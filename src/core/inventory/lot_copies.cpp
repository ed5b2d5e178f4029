#include "core/inventory/lot_copies.h"

#include <fmt/format.h>

#include <utility>

#include "core/datafile/writer.h"
#include "core/session/stock_lines.h"

namespace vellumark {
namespace {

constexpr std::string_view kSet = "SET LotNumber = ?1, LotLoc = ?2, LotContID = ?3, LotDate = ?4";

// Of the copies with the reference, those that bear the lot's number: references repeat, and others are of another lot.
void BindLot(Statement& statement, std::string_view name, const LotRow& earlier, const LotRow& lot) {
  statement.Bind(9, earlier.LotNumber);
  statement.Bind(1, lot.LotNumber).Bind(2, lot.LotLoc).Bind(3, lot.LotContID).Bind(4, Value(lot.LotDate));
  statement.Bind(5, name).Bind(6, lot.LotRefID);
}

void UpdateLotCopies(Session& session, const LotEdit& edit, const LotRow& earlier, const LotRow& lot) {
  Database& file = session.File();
  const auto& [kind, name, database, event, document] = edit;
  const bool mix = kind == ColorKind::Mix;
  if (mix) {
    file.Prepare(fmt::format("UPDATE {} SET LotNumber = ?1 WHERE Color_Name = ?2 AND LotRefID = ?3 AND LotNumber = ?4",
                             Quoted(session.Table(schema::Batch, database))))
        .Bind(1, lot.LotNumber)
        .Bind(2, name)
        .Bind(3, lot.LotRefID)
        .Bind(4, earlier.LotNumber)
        .Run();
  }
  // A Batch line that is not a formula's is a Basic Color's, an addition included.
  Statement lines =
      file.Prepare(fmt::format("UPDATE {} {} WHERE IngName = ?5 AND LotRefID = ?6 AND IngType {} 2 AND LotNumber = ?9",
                               Quoted(session.Table(schema::BatchLotInv, database)), kSet, mix ? "=" : "<>"));
  BindLot(lines, name, earlier, lot);
  lines.Run();
  Statement jobs = file.Prepare(
      fmt::format("UPDATE {} {} WHERE Color_Name = ?5 AND LotRefID = ?6 AND Database = ?7 AND ItemType = ?8 AND LotNumber = ?9",
                  Quoted(schema::JobRecords.name), kSet));
  BindLot(jobs, name, earlier, lot);
  jobs.Bind(7, database.empty() ? session.CurrentDatabase : database).Bind(8, static_cast<int>(kind)).Run();
}

void TellLine(Session& session, const LotEdit& edit, const LotRow& lot, std::string reason) {
  StockLine line = NewStockLine(session, edit.event, edit.kind, edit.database, edit.name);
  line.LotRefID = lot.LotRefID;
  line.LotNumber = lot.LotNumber;
  line.result = lot.LotQty;
  line.document = edit.document;
  line.reason = std::move(reason);
  AddStockLine(session.File(), line);
}

}  // namespace

void RewriteLot(Session& session, const LotEdit& edit, const LotRow& earlier, const LotRow& now) {
  if (now.LotNumber != earlier.LotNumber) TellLine(session, edit, now, "Lot number was " + earlier.LotNumber);
  if (now.LotConsignment != earlier.LotConsignment)
    TellLine(session, edit, now, now.LotConsignment ? "Now on consignment" : "No longer on consignment");
  UpdateRow(session.File(), LotTable(edit.kind), session.Table(LotTable(edit.kind), edit.database), earlier.row,
            {{"LotNumber", now.LotNumber},
             {"LotLoc", now.LotLoc},
             {"LotContID", now.LotContID},
             {"LotDate", now.LotDate},
             {"LotPrice", now.LotPrice},
             {"LotConsignment", now.LotConsignment}});
  UpdateLotCopies(session, edit, earlier, now);
}

}  // namespace vellumark
