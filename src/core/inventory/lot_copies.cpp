#include "core/inventory/lot_copies.h"

#include <fmt/format.h>

namespace vellumark {
namespace {

constexpr std::string_view kSet = "SET LotNumber = ?1, LotLoc = ?2, LotContID = ?3, LotDate = ?4";

void BindLot(Statement& statement, std::string_view name, std::int32_t ref, const LotParticulars& lot) {
  statement.Bind(1, lot.LotNumber).Bind(2, lot.LotLoc).Bind(3, lot.LotContID).Bind(4, Value(lot.LotDate));
  statement.Bind(5, name).Bind(6, ref);
}

}  // namespace

void UpdateLotCopies(Session& session, ColorKind kind, std::string_view name, const std::string& database,
                     std::int32_t ref, const LotParticulars& lot) {
  Database& file = session.File();
  const bool mix = kind == ColorKind::Mix;
  if (mix) {
    file.Prepare(fmt::format("UPDATE {} SET LotNumber = ?1 WHERE Color_Name = ?2 AND LotRefID = ?3",
                             Quoted(session.Table(schema::Batch, database))))
        .Bind(1, lot.LotNumber)
        .Bind(2, name)
        .Bind(3, ref)
        .Run();
  }
  // A Batch line that is not a formula's is a Basic Color's, an addition included.
  Statement lines =
      file.Prepare(fmt::format("UPDATE {} {} WHERE IngName = ?5 AND LotRefID = ?6 AND IngType {} 2",
                               Quoted(session.Table(schema::BatchLotInv, database)), kSet, mix ? "=" : "<>"));
  BindLot(lines, name, ref, lot);
  lines.Run();
  Statement jobs = file.Prepare(
      fmt::format("UPDATE {} {} WHERE Color_Name = ?5 AND LotRefID = ?6 AND Database = ?7 AND ItemType = ?8",
                  Quoted(schema::JobRecords.name), kSet));
  BindLot(jobs, name, ref, lot);
  jobs.Bind(7, database.empty() ? session.CurrentDatabase : database).Bind(8, static_cast<int>(kind)).Run();
}

}  // namespace vellumark
