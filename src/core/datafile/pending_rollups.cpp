#include "core/datafile/pending_rollups.h"

#include "core/base/text.h"
#include "core/datafile/schema.h"

namespace vellumark {
namespace {

constexpr std::string_view kTable = "MSysPendingRollUps";

}  // namespace

void MarkPendingRollUps(Database& file, std::string_view database, RollUpWanted stale) {
  if (!stale.Any()) return;
  Transaction transaction(file);
  if (!file.TableExists(kTable)) file.CreateTable(kTable, schema::PendingRollUps);
  const auto write = [&](std::string_view sql) {
    Statement statement = file.Prepare(sql);
    return statement.Bind(1, database)
        .Bind(2, stale.cost ? 1 : 0)
        .Bind(3, stale.voc ? 1 : 0)
        .Bind(4, stale.hap ? 1 : 0)
        .Run();
  };
  const int marked = write(
      "UPDATE MSysPendingRollUps SET Cost = CASE WHEN ?2 = 1 THEN 1 ELSE Cost END, VOC = CASE WHEN ?3 = 1 THEN 1 ELSE "
      "VOC END, HAP = CASE WHEN ?4 = 1 THEN 1 ELSE HAP END WHERE DatabaseName = ?1");
  if (marked == 0) write("INSERT INTO MSysPendingRollUps (DatabaseName, Cost, VOC, HAP) VALUES (?1, ?2, ?3, ?4)");
  transaction.Commit();
}

std::vector<PendingRollUps> ReadPendingRollUps(Database& file) {
  std::vector<PendingRollUps> pending;
  if (!file.TableExists(kTable)) return pending;
  Statement rows = file.Prepare("SELECT DatabaseName, Cost, VOC, HAP FROM MSysPendingRollUps ORDER BY DatabaseName");
  while (rows.Step()) pending.push_back({rows.Text(0), {rows.Bool(1), rows.Bool(2), rows.Bool(3)}});
  return pending;
}

void ClearPendingRollUps(Database& file, std::string_view database, RollUpWanted renewed) {
  if (!file.TableExists(kTable)) return;
  Transaction transaction(file);
  file.Prepare(
          "UPDATE MSysPendingRollUps SET Cost = CASE WHEN ?2 = 1 THEN 0 ELSE Cost END, VOC = CASE WHEN ?3 = 1 THEN 0 "
          "ELSE VOC END, HAP = CASE WHEN ?4 = 1 THEN 0 ELSE HAP END WHERE DatabaseName = ?1")
      .Bind(1, database)
      .Bind(2, renewed.cost ? 1 : 0)
      .Bind(3, renewed.voc ? 1 : 0)
      .Bind(4, renewed.hap ? 1 : 0)
      .Run();
  file.Execute("DELETE FROM MSysPendingRollUps WHERE Cost = 0 AND VOC = 0 AND HAP = 0");
  transaction.Commit();
}

void RenamePendingRollUps(Database& file, std::string_view database, std::string_view newName) {
  if (!file.TableExists(kTable)) return;
  file.Prepare("UPDATE MSysPendingRollUps SET DatabaseName = ?2 WHERE DatabaseName = ?1")
      .Bind(1, database)
      .Bind(2, newName)
      .Run();
}

void CopyPendingRollUps(Database& file, std::string_view database, std::string_view copy) {
  for (const PendingRollUps& pending : ReadPendingRollUps(file))
    if (EqualNoCase(pending.database, database)) MarkPendingRollUps(file, copy, pending.stale);
}

}  // namespace vellumark
