#include <fmt/format.h>

#include <algorithm>
#include <set>

#include "core/backup/deep_check.h"
#include "core/backup/repair_run.h"
#include "core/base/refusal.h"
#include "core/datafile/databases.h"
#include "core/datafile/job_links.h"
#include "core/datafile/lifecycle.h"
#include "core/datafile/stock_history.h"
#include "core/datafile/writer.h"

// The steps that mend the file as a whole: its Databases, tables, values and numbers.

namespace vellumark {
namespace {

bool HasTable(RepairRun& run, const std::string& database, const Table& table) {
  return run.file.TableExists(TableName(database, table));
}

// The Databases of which formulas, basics and texts are there, by the name of their tables.
std::vector<std::string> Families(RepairRun& run) {
  std::vector<std::string> families;
  for (const std::string& table : run.file.TableNames()) {
    const std::string& end = schema::Basic.name;
    if (table.size() <= end.size() || !EqualNoCase(std::string_view(table).substr(table.size() - end.size()), end))
      continue;
    const std::string name = table.substr(0, table.size() - end.size());
    if (HasTable(run, name, schema::Mix) && HasTable(run, name, schema::Info)) families.push_back(name);
  }
  return families;
}

bool Holds(const std::vector<std::string>& names, std::string_view name) {
  return std::ranges::any_of(names, [&](const std::string& other) { return EqualNoCase(other, name); });
}

bool IsDatabase(RepairRun& run, const std::string& name) {
  if (name.empty()) return false;
  return std::ranges::any_of(schema::PerDatabase(), [&](const Table* table) { return HasTable(run, name, *table); });
}

// One row of the present version; the numbers that it hands out are mended when all tables are.
void MendFileInfo(RepairRun& run) {
  const Table& table = schema::FileInfo;
  if (!run.file.TableExists(table.name)) {
    run.file.CreateTable(table.name, table);
    run.Changed(table.name, "the table was made");
  }
  run.file.AddMissingFields(table.name, table);
  run.Mended(table.name, FitValues(run.file, table.name, table));
  const std::int64_t rows = run.file.Scalar("SELECT COUNT(*) FROM FileInfo").Whole();
  if (rows > 1) {
    run.file.Execute("DELETE FROM FileInfo WHERE RowKey > (SELECT MIN(RowKey) FROM FileInfo)");
    run.Changed(table.name, "it had more rows than one", rows - 1);
  } else if (rows == 0) {
    run.file.Execute("INSERT INTO FileInfo (DaysToRemindBackup) VALUES (1)");
    run.Changed(table.name, "its row was made");
  }
  const int version = static_cast<int>(run.file.Scalar("SELECT FileVersion FROM FileInfo").Whole());
  if (version != kFileVersion && version != kArchiveFileVersion) {
    run.file.Prepare("UPDATE FileInfo SET FileVersion = ?").Bind(1, kFileVersion).Run();
    run.Changed(table.name, fmt::format("FileVersion was {}", version));
  }
}

}  // namespace

// A list that names what is not there, a name twice or none at all is damaged: then every Database counts of which the
// tables are there. A sound list is right, and what it does not name is stray.
void RebuildDatabaseList(RepairRun& run) {
  MendFileInfo(run);
  const FileInfoRow info = ReadFileInfo(run.file);
  const std::vector<std::string> families = Families(run);
  std::vector<std::string> names;
  for (const std::string& name : info.dbList)
    if (IsDatabase(run, name) && !Holds(names, name)) names.push_back(name);
  if (names.size() != info.dbList.size() || names.empty())
    for (const std::string& name : families)
      if (!Holds(names, name)) names.push_back(name);
  if (names != info.dbList) {
    StoreDatabaseList(run.file, names);
    std::string list;
    for (const std::string& name : names) list += (list.empty() ? "" : ", ") + name;
    run.Changed(schema::FileInfo.name, fmt::format("DBList names {} now", list.empty() ? "no Database" : list));
  }
  if (!Holds(names, info.currentDB) && (!names.empty() || !info.currentDB.empty())) {
    StoreCurrentDatabase(run.file, names.empty() ? "" : names.front());
    run.Changed(schema::FileInfo.name, fmt::format("CurrentDB was \"{}\"", info.currentDB));
  }
  run.session.databaseList = names;
  if (!Holds(names, run.session.CurrentDatabase)) run.session.CurrentDatabase = names.empty() ? "" : names.front();
}

void DropStrayTables(RepairRun& run) {
  run.Show("Examining Tables");
  for (const std::string& table : run.file.TableNames()) {
    if (StartsWithNoCase(table, "MSys") || EqualNoCase(table, schema::Users.name)) continue;
    const auto is = [&](const Table* known) { return EqualNoCase(known->name, table); };
    if (std::ranges::any_of(schema::Global(), is)) continue;
    const auto belongs = [&](const Table* known) {
      if (table.size() <= known->name.size()) return false;
      const std::string_view name = table;
      const std::size_t at = name.size() - known->name.size();
      return EqualNoCase(name.substr(at), known->name) && Holds(run.Databases(), name.substr(0, at));
    };
    if (std::ranges::any_of(schema::PerDatabase(), belongs)) continue;
    const std::int64_t rows = run.file.Scalar("SELECT COUNT(*) FROM " + Quoted(table)).Whole();
    run.file.DropTable(table);
    run.Changed(table, "the table was dropped: it belongs to no Database", rows);
  }
}

void CompleteTables(RepairRun& run) {
  const auto complete = [&](const std::string& name, const Table& table) {
    if (!run.file.TableExists(name)) {
      run.file.CreateTable(name, table);
      run.Changed(name, "the table was made");
      return;
    }
    for (const std::string& field : MissingFields(run.file, name, table))
      run.Changed(name, fmt::format("the field {} was made", field));
    run.file.AddMissingFields(name, table);
  };
  for (const Table* table : schema::Global()) complete(table->name, *table);
  for (const Table* table :
       {&schema::Users, &schema::StockHistory, &schema::OpenBatch, &schema::PendingRollUps, &schema::LoginFailures})
    if (run.file.TableExists(table->name)) complete(table->name, *table);
  for (const std::string& database : run.Databases()) {
    for (const Table* table : schema::PerDatabase()) complete(TableName(database, *table), *table);
    const std::string info = TableName(database, schema::Info);
    const std::int64_t rows = run.file.Scalar("SELECT COUNT(*) FROM " + Quoted(info)).Whole();
    if (rows == 0)
      InsertRow(run.file, schema::Info, info,
                {{"FullName", "Custom Database"}, {"Disclaimer", ""}, {"TradeMark", ""}, {"TemplateFile", ""}});
    if (rows > 1)
      run.file.Execute(fmt::format("DELETE FROM {0} WHERE RowKey > (SELECT MIN(RowKey) FROM {0})", Quoted(info)));
    if (rows != 1) run.Changed(info, fmt::format("it had {} rows", rows));
  }
  run.file.CompleteLayout(run.Databases());
}

void MendValues(RepairRun& run) {
  run.Show("Examining Values");
  const auto mend = [&](const std::string& name, const Table& table) {
    if (run.file.TableExists(name)) run.Mended(name, FitValues(run.file, name, table));
  };
  for (const Table* table : schema::Global()) mend(table->name, *table);
  for (const Table* table :
       {&schema::Users, &schema::StockHistory, &schema::OpenBatch, &schema::PendingRollUps, &schema::LoginFailures})
    mend(table->name, *table);
  for (const std::string& database : run.Databases())
    for (const Table* table : schema::PerDatabase()) mend(TableName(database, *table), *table);
}

namespace {

// Batches without a number, or with that of an earlier one, get the next ones.
void NumberBatches(RepairRun& run, const std::string& database, std::int64_t& next) {
  const std::string table = TableName(database, schema::Batch);
  std::vector<std::pair<std::int64_t, std::int64_t>> rows;
  Statement row =
      run.file.Prepare(fmt::format("SELECT RowKey, COALESCE(BatchNo, 0) FROM {0} b WHERE COALESCE(BatchNo, 0) NOT "
                                   "BETWEEN 1 AND {1} OR EXISTS (SELECT 1 "
                                   "FROM {0} e WHERE e.BatchNo = b.BatchNo AND e.RowKey < b.RowKey) ORDER BY RowKey",
                                   Quoted(table), kLastCounter));
  while (row.Step()) rows.emplace_back(row.Whole(0), row.Whole(1));
  for (const auto& [key, old] : rows) {
    UpdateRow(run.file, schema::Batch, table, key, {{"BatchNo", next}});
    run.Changed(table, fmt::format("the Batch of row {} had the number {:06} and has {:06} now", key, old, next));
    next = next % kLastCounter + 1;
  }
}

// Numbers begin again at 1 after the last one: ahead is what lies less than half the way round before the next.
std::int64_t NextAfter(std::int64_t next, std::int64_t used) {
  if (next < 1 || next > kLastCounter) return used % kLastCounter + 1;
  const std::int64_t distance = (used - next + kLastCounter) % kLastCounter;
  return used > 0 && distance < kLastCounter / 2 ? used % kLastCounter + 1 : next;
}

}  // namespace

void MendNumbers(RepairRun& run) {
  const FileInfoRow before = ReadFileInfo(run.file);
  std::int64_t batch = before.batchNumber;
  for (const std::string& database : run.Databases())
    batch = NextAfter(batch, run.file
                                 .Scalar(fmt::format("SELECT MAX(BatchNo) FROM {} WHERE BatchNo <= ?",
                                                     QuotedTable(database, schema::Batch)),
                                         {kLastCounter})
                                 .Whole());
  batch = NextAfter(batch, 0);
  for (const std::string& database : run.Databases()) NumberBatches(run, database, batch);
  const std::int64_t used =
      run.file.Scalar("SELECT MAX(BatchNo) FROM JobRecords WHERE BatchNo > ?", {kLastJobBatch}).Whole();
  const std::int64_t item = NextAfter(before.itemNumber, std::max<std::int64_t>(0, used - kLastJobBatch));
  const auto store = [&](std::string_view field, std::int64_t old, std::int64_t now) {
    if (old == now) return;
    UpdateRow(run.file, schema::FileInfo, schema::FileInfo.name, run.file.Scalar("SELECT RowKey FROM FileInfo").Whole(),
              {{std::string(field), now}});
    run.Changed(schema::FileInfo.name, fmt::format("{} was {} and is {} now", field, old, now));
  };
  const auto stored = [&](std::string_view field) {
    return run.file.Scalar(fmt::format("SELECT COALESCE({}, 0) FROM FileInfo", Quoted(field))).Whole();
  };
  store("BatchNumber", stored("BatchNumber"), batch);
  store("ItemNumber", stored("ItemNumber"), item);
}

void FindWhatIsLeft(RepairRun& run) {
  const CheckAnswer found = CheckDataFileRules(run.session, CheckDepth::Deep, CheckState::InUse);
  for (const CheckFault& fault : found.faults) run.Left(fault.Table, FaultText(fault));
  if (HasRowsToAccept(found.faults)) run.Left("", std::string(kAcceptRows));
}

void FindEmptyDatabases(RepairRun& run) {
  for (const std::string& database : run.Databases())
    if (run.file.Scalar(fmt::format("SELECT 1 FROM {} LIMIT 1", QuotedTable(database, schema::Basic))).IsNull())
      run.EmptyDatabase(database);
}

}  // namespace vellumark
