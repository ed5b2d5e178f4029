#include "core/inventory/lot_copies.h"

#include <utility>

#include "core/datafile/references.h"
#include "core/datafile/writer.h"
#include "core/session/stock_lines.h"

namespace vellumark {
namespace {

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
  const std::string& database = edit.database.empty() ? session.CurrentDatabase : edit.database;
  RewriteLotCopies(session.File(), database, edit.kind, edit.name, {now.LotRefID, earlier.LotNumber},
                   {now.LotNumber, now.LotLoc, now.LotContID, now.LotDate});
}

}  // namespace vellumark
