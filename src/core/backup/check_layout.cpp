#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <span>

#include "core/backup/archive.h"
#include "core/backup/check_run.h"
#include "core/base/refusal.h"
#include "core/base/text.h"
#include "core/batch/leave.h"
#include "core/datafile/job_links.h"
#include "core/datafile/mend_fields.h"
#include "core/datafile/pending_rollups.h"
#include "core/datafile/row_checks.h"

// What holds of the file as a whole, and of every value in it.

namespace vellumark {
namespace {

// Every table of the layout that the file has, under its name there.
void ForEachTable(CheckRun& run, const std::function<void(const std::string& name, const Table& table)>& take) {
  if (run.HasGlobalTables()) {
    for (const Table* table : schema::Global()) take(table->name, *table);
    if (run.file.TableExists(schema::Users.name)) take(schema::Users.name, schema::Users);
  }
  for (const std::string& database : run.Databases())
    for (const Table* table : schema::PerDatabase())
      if (const std::string name = TableName(database, *table); run.file.TableExists(name)) take(name, *table);
}

// The engine finds a row by its number whatever the column is called; whoever asks for the column does not.
bool HasRowKey(Database& file, const std::string& name, const Table& table) {
  try {
    file.Prepare(fmt::format("SELECT {} FROM {} WHERE 1 = 0", table.rowKey, Quoted(name))).Step();
    return true;
  } catch (const Failure&) {
    return false;
  }
}

bool Lacks(CheckRun& run, const std::string& name, const Table& table) {
  if (!run.file.TableExists(name)) {
    // A copy of an earlier program has none, and is only looked at; what is worked in gets it at its opening.
    if (&table == &schema::BatchScaleResults) return false;
    run.Found(name, 0, "", "The table is missing.");
    return true;
  }
  std::vector<std::string> missing = MissingFields(run.file, name, table);
  if (!HasRowKey(run.file, name, table)) missing.push_back(table.rowKey);
  for (const std::string& field : missing) run.Found(name, 0, "", fmt::format("The field {} is missing.", field));
  return !missing.empty();
}

}  // namespace

void CheckParts(CheckRun& run) {
  bool global = true;
  for (const Table* table : schema::Global())
    if (Lacks(run, table->name, *table)) global = false;
  std::vector<std::string> whole;
  for (const std::string& database : run.info.dbList) {
    bool lacks = false;
    for (const Table* table : schema::PerDatabase()) lacks = Lacks(run, TableName(database, *table), *table) || lacks;
    const bool listed =
        std::ranges::any_of(whole, [&](const std::string& earlier) { return EqualNoCase(earlier, database); });
    if (!lacks && !listed) whole.push_back(database);
  }
  run.SetUsable(std::move(whole), global);
}

void CheckFileInfo(CheckRun& run) {
  if (!run.HasGlobalTables()) return;
  const std::string& table = schema::FileInfo.name;
  if (const std::int64_t rows = RowCount(run.file, table); rows != 1)
    run.Found(table, 0, "", fmt::format("It has {} rows.", rows));
  const VersionGate gate = GateOf(run.info.fileVersion);
  if (gate == VersionGate::Unusable) run.Found(table, 1, "", fmt::format("FileVersion is {}.", run.info.fileVersion));
  for (const std::string& database : run.Databases()) {
    const std::string info = TableName(database, schema::Info);
    if (const std::int64_t rows = RowCount(run.file, info); rows != 1)
      run.Found(info, 0, "", fmt::format("It has {} rows.", rows));
  }
}

void CheckDatabaseList(CheckRun& run) {
  const std::vector<std::string>& listed = run.info.dbList;
  const std::string& fileInfo = schema::FileInfo.name;
  const auto isListed = [&](std::string_view name) {
    return std::ranges::any_of(listed, [&](const std::string& one) { return EqualNoCase(one, name); });
  };
  for (std::size_t i = 0; i < listed.size(); ++i) {
    if (listed[i].empty()) run.Found(fileInfo, 1, "", "DBList holds an empty name.");
    for (std::size_t k = 0; k < i; ++k)
      if (EqualNoCase(listed[i], listed[k]))
        run.Found(fileInfo, 1, "", fmt::format("DBList names {} twice.", listed[i]));
  }
  if (!run.info.currentDB.empty() && !isListed(run.info.currentDB))
    run.Found(fileInfo, 1, "", fmt::format("CurrentDB is {}, which DBList does not name.", run.info.currentDB));
  for (const std::string& table : run.file.TableNames()) {
    if (StartsWithNoCase(table, "MSys") || EqualNoCase(table, schema::Users.name)) continue;
    const auto is = [&](const Table* known) { return EqualNoCase(known->name, table); };
    if (std::ranges::any_of(schema::Global(), is)) continue;
    const auto belongs = [&](const Table* known) {
      return table.size() > known->name.size() &&
             EqualNoCase(std::string_view(table).substr(table.size() - known->name.size()), known->name) &&
             isListed(std::string_view(table).substr(0, table.size() - known->name.size()));
    };
    if (std::ranges::none_of(schema::PerDatabase(), belongs))
      run.Found(table, 0, "", "The table belongs to no Database that DBList names.");
  }
}

namespace {

// Counters start again at 1 after the last number, so ahead means: less than half the way round before it.
bool IsAhead(std::int64_t used, std::int64_t next) {
  const std::int64_t distance = (used - next + kLastCounter) % kLastCounter;
  return distance < kLastCounter / 2;
}

}  // namespace

void CheckCounters(CheckRun& run) {
  if (!run.HasGlobalTables()) return;
  const auto check = [&](std::string_view field, std::int64_t next, std::int64_t used, const std::string& where) {
    if (next < 1 || next > kLastCounter) {
      run.Found(schema::FileInfo.name, 1, "", fmt::format("{} is {}, beyond 1 to {}.", field, next, kLastCounter));
    } else if (used > 0 && IsAhead(used, next)) {
      run.Found(schema::FileInfo.name, 1, "",
                fmt::format("{} is {}, but {} has the number {} already.", field, next, where, used));
    }
  };
  check("BatchNumber", run.info.batchNumber, 0, "");
  for (const std::string& database : run.Databases()) {
    const std::string batches = TableName(database, schema::Batch);
    const std::int64_t used = run.file.Scalar(fmt::format("SELECT MAX(BatchNo) FROM {}", Quoted(batches))).Whole();
    if (used <= kLastCounter) check("BatchNumber", run.info.batchNumber, used, batches);
  }
  const std::int64_t item =
      run.file.Scalar("SELECT MAX(BatchNo) FROM JobRecords WHERE BatchNo > ?", {kLastJobBatch}).Whole();
  check("ItemNumber", run.info.itemNumber, item - kLastJobBatch, schema::JobRecords.name);
}

void CheckMarkers(CheckRun& run) {
  for (const MarkedBatch& batch : MarkedBatches(run.file))
    run.Found("MSysOpenBatch", 0, fmt::format("{:06}", batch.BatchNo),
              fmt::format("The Batch {:06} of {} is marked as open.", batch.BatchNo, batch.database));
  for (const PendingRollUps& pending : ReadPendingRollUps(run.file))
    run.Found("MSysPendingRollUps", 0, pending.database,
              fmt::format("Figures of the formulas of {} are older than those of their ingredients.", pending.database));
  if (const std::string archive = UnfinishedArchive(run.file); !archive.empty())
    run.Found("MSysUnfinishedArchive", 0, archive, fmt::format("The archive {} was not finished.", archive));
}

void CheckUsers(CheckRun& run) {
  if (!run.file.TableExists(schema::Users.name)) return;
  if (run.file.Scalar("SELECT COUNT(*) FROM Users WHERE IsAdmin <> 0").Whole() == 0)
    run.Found(schema::Users.name, 0, "", "No user is an administrator.");
}

void CheckStructure(CheckRun& run) {
  for (std::string& fault : run.file.Faults()) run.Found("", 0, "", std::move(fault));
}

namespace {

void CheckRowFields(CheckRun& run, const std::string& name, const Table& table, const Statement& row) {
  for (std::size_t i = 0; i < table.fields.size(); ++i) {
    const Field& field = table.fields[i];
    const Value value = ReadableValue(run.file, name, table, row, i);
    if (value.IsNull() || IsPlain(field, KeptValue::Of(value))) continue;
    std::string what;
    try {
      if (FittedValue(field, name, value) == value) continue;
      what = fmt::format("The field {}.{} holds \"{}\", which is not how it is kept.", name, field.name, value.Text());
    } catch (const BadValue& bad) {
      what = bad.what();
    }
    // The first text of a row is what people call it.
    const std::string_view called =
        table.fields[0].type == FieldType::Text && i != 0 ? row.TextView(1) : std::string_view();
    run.Found(name, row.Whole(0), called, std::move(what));
  }
}

void CheckTableFields(CheckRun& run, const std::string& name, const Table& table) {
  if (run.Stopped()) return;
  Statement rows = run.file.Prepare(fmt::format("SELECT {} FROM {}", ReadableColumns(table), Quoted(name)));
  WalkRows(run, rows, RowCount(run.file, name), [&](const Statement& row) { CheckRowFields(run, name, table, row); });
}

// The place of each field of the layout among those that a table has.
std::vector<std::size_t> PlacesOf(const Table& table, const std::vector<std::string>& fields) {
  std::vector<std::size_t> places;
  for (const Field& field : table.fields) {
    const auto found =
        std::ranges::find_if(fields, [&](const std::string& one) { return EqualNoCase(one, field.name); });
    places.push_back(static_cast<std::size_t>(found - fields.begin()));
  }
  return places;
}

}  // namespace

void CheckFields(CheckRun& run) {
  ForEachTable(run, [&](const std::string& name, const Table& table) { CheckTableFields(run, name, table); });
}

namespace {

// The first text of a row is what people call it.
std::string NameOfRow(CheckRun& run, const std::string& name, std::int64_t row) {
  std::string called;
  ForEachTable(run, [&](const std::string& known, const Table& table) {
    if (!EqualNoCase(known, name) || table.fields[0].type != FieldType::Text) return;
    called = run.file
                 .Scalar(fmt::format("SELECT {} FROM {} WHERE RowKey = ?", Quoted(table.fields[0].name), Quoted(name)),
                         {row})
                 .Text();
  });
  return called;
}

std::string StrayText(StrayRow::What what) {
  switch (what) {
    case StrayRow::What::Added:
      return "The row was added, and not by this program.";
    case StrayRow::What::Gone:
      return "The row is gone, and this program did not remove it.";
    case StrayRow::What::Unknown:
      return "What this program keeps to know this row and those behind it by is damaged.";
    default:
      return "The row is not as this program wrote it.";
  }
}

}  // namespace

namespace {

void WalkChecks(CheckRun& run, const LookAtTable& look) {
  ForEachStrayRow(
      run.file,
      [&](const StrayRow& stray) {
        const bool whole = stray.what == StrayRow::What::Gone && stray.row == 0;
        run.Found(stray.table, stray.row, whole ? std::string() : NameOfRow(run, stray.table, stray.row),
                  whole ? "The table is gone, and this program did not remove it." : StrayText(stray.what));
      },
      [&](std::int64_t done, std::int64_t all) { return run.GoOn(done, all); },
      [&](const ReadTable& table) { run.Read(table); }, look);
}

}  // namespace

// A copy that an earlier program made has nothing to compare with.
void CheckRows(CheckRun& run) {
  if (HasRowChecks(run.file)) WalkChecks(run, {});
}

// What is plain at sight is nearly all; the others are read again, each by itself.
void CheckFieldsWithRows(CheckRun& run, const std::function<void(const std::function<void()>&)>& asFields) {
  std::map<std::string, const Table*> left;
  ForEachTable(run, [&](const std::string& name, const Table& table) { left.emplace(name, &table); });
  WalkChecks(run, [&](const std::string& name, const std::vector<std::string>& fields) -> RowLook {
    const auto known =
        std::ranges::find_if(left, [&](const auto& one) { return EqualNoCase(one.first, name); });
    if (known == left.end()) return {};
    const Table& table = *known->second;
    const std::vector<std::size_t> places = PlacesOf(table, fields);
    if (std::ranges::find(places, fields.size()) != places.end()) return {};
    left.erase(known);
    return [&run, &asFields, &table, places, name](std::int64_t row, std::span<const KeptValue> values) {
      const auto fits = [&](std::size_t i) {
        const KeptValue& value = values[places[i]];
        return value.kind == KeptValue::Kind::Null || IsPlain(table.fields[i], value);
      };
      std::size_t i = 0;
      while (i < places.size() && fits(i)) ++i;
      if (i == places.size()) return;
      Statement again = run.file.Prepare(
          fmt::format("SELECT {} FROM {} WHERE {} = ?1", ReadableColumns(table), Quoted(name), table.rowKey));
      if (again.Bind(1, row).Step()) asFields([&] { CheckRowFields(run, name, table, again); });
    };
  });
  asFields([&] {
    for (const auto& [name, table] : left) CheckTableFields(run, name, *table);
  });
}

namespace {

enum class NameIs { Text, Number };

void CheckFilled(CheckRun& run, const std::string& table, std::string_view field, NameIs kind = NameIs::Text) {
  const std::string column = Quoted(field);
  Statement empty = run.file.Prepare(fmt::format("SELECT RowKey, {0} FROM {1} WHERE {0} IS NULL{2}", column, Quoted(table),
                                                 kind == NameIs::Text ? fmt::format(" OR {} = ''", column) : ""));
  run.FoundRows(table, empty, [&](const Statement&) { return fmt::format("{} is empty.", field); });
}

void CheckNames(CheckRun& run, const std::string& table, std::string_view field, NameIs kind = NameIs::Text) {
  CheckFilled(run, table, field, kind);
  const std::string column = Quoted(field);
  // The index on the name gives equal ones side by side.
  Statement twice =
      run.file.Prepare(fmt::format("SELECT {0}, COUNT(*) FROM {1} WHERE {0} {2} GROUP BY {0} HAVING COUNT(*) > 1", column,
                                   Quoted(table), kind == NameIs::Text ? "<> ''" : "IS NOT NULL"));
  Statement rows =
      run.file.Prepare(fmt::format("SELECT RowKey, {0} FROM {1} WHERE {0} = ? ORDER BY RowKey", column, Quoted(table)));
  while (twice.Step()) {
    const std::int64_t count = twice.Whole(1);
    rows.Bind(1, twice.Get(0));
    rows.Step();  // the first one has the name by right
    run.FoundRows(table, rows, [&](const Statement& row) {
      return fmt::format("{} {} stands in {} rows.", field, row.TextView(1), count);
    });
    rows.Reset();
  }
}

// What is typed has no blanks around it, so that nobody finds a name that has.
void CheckTrimmed(CheckRun& run, const std::string& table, std::string_view field) {
  Statement blank =
      run.file.Prepare(fmt::format("SELECT RowKey, {0} FROM {1} WHERE {0} <> TRIM({0})", Quoted(field), Quoted(table)));
  run.FoundRows(table, blank, [&](const Statement& row) {
    return fmt::format("{} \"{}\" has blanks around it.", field, row.TextView(1));
  });
}

}  // namespace

void CheckUniqueNames(CheckRun& run) {
  if (run.HasGlobalTables()) {
    CheckNames(run, schema::Designs.name, "DesignID");
    CheckNames(run, schema::Dispenser.name, "Name");
    if (run.file.TableExists(schema::Users.name)) CheckNames(run, schema::Users.name, "Username");
  }
  for (const std::string& database : run.Databases()) {
    for (const Table* table : {&schema::Basic, &schema::Mix}) {
      CheckNames(run, TableName(database, *table), "Color_Name");
      CheckTrimmed(run, TableName(database, *table), "Color_Name");
    }
    // A color has as many measurements as were taken.
    for (const Table* table : {&schema::BasicLab, &schema::MixLab})
      CheckFilled(run, TableName(database, *table), "Color_Name");
    CheckNames(run, TableName(database, schema::Additives), "SetName");
    CheckTrimmed(run, TableName(database, schema::Additives), "SetName");
    CheckNames(run, TableName(database, schema::Batch), "BatchNo", NameIs::Number);
  }
}

}  // namespace vellumark
