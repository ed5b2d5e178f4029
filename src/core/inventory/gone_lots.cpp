#include "core/inventory/gone_lots.h"

#include <fmt/format.h>

#include "core/datafile/kept_rows.h"
#include "core/datafile/writer.h"

namespace vellumark {
namespace {

// Every type but 2 is a Basic Color's.
std::string OfLot(ColorKind kind) {
  return fmt::format("Color_Name = ?1 AND Database = ?2 AND LotRefID = ?3 AND LotNumber = ?4 AND ItemType {} 2",
                     kind == ColorKind::Mix ? "=" : "IS DISTINCT FROM");
}

}  // namespace

void KeepPriceOfGoneLot(Session& session, const StockChange& change) {
  Database& file = session.File();
  const std::string& database = change.database.empty() ? session.CurrentDatabase : change.database;
  const auto lot = FindLot(session, change.kind, change.name, database, change.lot.LotRefID);
  if (!lot || lot->row != change.row) return;
  const std::string ofLot = OfLot(change.kind);
  if (file.Scalar(fmt::format("SELECT 1 FROM JobRecords WHERE {} LIMIT 1", ofLot),
                  {change.name, database, lot->LotRefID, lot->LotNumber})
          .IsNull())
    return;
  const Table& gone = GoneLots();
  if (!file.TableExists(gone.name)) file.CreateTable(gone.name, gone);
  Statement update = file.Prepare(fmt::format("UPDATE {} SET LotPrice = ?5 WHERE {}", Quoted(gone.name), ofLot));
  update.Bind(1, change.name).Bind(2, database).Bind(3, lot->LotRefID).Bind(4, lot->LotNumber).Bind(5, lot->LotPrice);
  if (update.Run() > 0) return;
  InsertRow(file, gone, gone.name,
            {{"Database", database},
             {"Color_Name", change.name},
             {"ItemType", static_cast<int>(change.kind)},
             {"LotRefID", lot->LotRefID},
             {"LotNumber", lot->LotNumber},
             {"LotPrice", lot->LotPrice}});
}

std::optional<float> PriceOfGoneLot(const Session& session, const Posting& posting) {
  if (!session.File().TableExists(GoneLots().name)) return std::nullopt;
  const std::string& database = posting.database.empty() ? session.CurrentDatabase : posting.database;
  const Value price = session.File().Scalar(
      fmt::format("SELECT LotPrice FROM {} WHERE {} LIMIT 1", Quoted(GoneLots().name), OfLot(posting.kind)),
      {posting.name, database, posting.place.LotRefID, posting.place.LotNumber});
  return price.IsNull() ? std::nullopt : std::optional(price.Single());
}

}  // namespace vellumark
