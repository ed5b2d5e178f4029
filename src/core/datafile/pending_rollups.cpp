#include "core/datafile/pending_rollups.h"

#include "core/base/text.h"

namespace vellumark {
namespace {

constexpr std::string_view kTable = "MSysPendingRollUps";

}  // namespace

void MarkPendingRollUps(Database& file, std::string_view database, RollUpWanted stale) {
  if (!stale.Any()) return;
  Transaction transaction(file);
  file.Execute(
      "CREATE TABLE IF NOT EXISTS MSysPendingRollUps (DatabaseName TEXT COLLATE NOCASE PRIMARY KEY, Cost INTEGER NOT "
      "NULL, VOC INTEGER NOT NULL, HAP INTEGER NOT NULL)");
  file.Prepare(
          "INSERT INTO MSysPendingRollUps VALUES (?1, ?2, ?3, ?4) ON CONFLICT (DatabaseName) DO UPDATE SET Cost = Cost "
          "OR ?2, VOC = VOC OR ?3, HAP = HAP OR ?4")
      .Bind(1, database)
      .Bind(2, stale.cost ? 1 : 0)
      .Bind(3, stale.voc ? 1 : 0)
      .Bind(4, stale.hap ? 1 : 0)
      .Run();
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
          "UPDATE MSysPendingRollUps SET Cost = Cost AND NOT ?2, VOC = VOC AND NOT ?3, HAP = HAP AND NOT ?4 WHERE "
          "DatabaseName = ?1")
      .Bind(1, database)
      .Bind(2, renewed.cost ? 1 : 0)
      .Bind(3, renewed.voc ? 1 : 0)
      .Bind(4, renewed.hap ? 1 : 0)
      .Run();
  file.Execute("DELETE FROM MSysPendingRollUps WHERE NOT (Cost OR VOC OR HAP)");
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
