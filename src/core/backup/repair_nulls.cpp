#include <fmt/format.h>

#include "core/backup/repair_run.h"
#include "core/datafile/job_links.h"
#include "core/datafile/writer.h"
#include "core/session/users.h"

// The steps that fill what holds no value. A date that is missing means that something has not happened yet or that
// nobody knows when: it moves no figure of a report, and stays.

namespace vellumark {
namespace {

void Fill(RepairRun& run, const std::string& name, const Table& table, const NullRule& rule) {
  run.Mended(name, FillNulls(run.file, name, table, rule));
}

}  // namespace

void NameRows(RepairRun& run, const std::string& name, const Table& table, std::string_view field) {
  std::vector<std::int64_t> rows;
  Statement row = run.file.Prepare(
      fmt::format("SELECT RowKey FROM {0} WHERE {1} IS NULL OR {1} = '' ORDER BY RowKey", Quoted(name), Quoted(field)));
  while (row.Step()) rows.push_back(row.Whole(0));
  if (rows.empty()) return;
  auto taken = NamesOfColumn(run.file, name, field);
  for (const std::int64_t key : rows) {
    const std::string made = FreeName(taken, [&](int) { return run.MadeUpName(); });
    UpdateRow(run.file, table, name, key, {{std::string(field), made}});
    run.Changed(name, fmt::format("row {} had no {} and is called {} now", key, field, made));
  }
}

void RenameRepeated(RepairRun& run, const std::string& name, const Table& table, std::string_view field,
                    const std::function<std::string(const std::string& old, int number)>& made) {
  std::vector<std::pair<std::int64_t, std::string>> rows;
  Statement row =
      run.file.Prepare(fmt::format("SELECT RowKey, {0} FROM {1} t WHERE EXISTS (SELECT 1 FROM {1} e WHERE e.{0} = "
                                   "t.{0} AND e.RowKey < t.RowKey) ORDER BY RowKey",
                                   Quoted(field), Quoted(name)));
  while (row.Step()) rows.emplace_back(row.Whole(0), row.Text(1));
  if (rows.empty()) return;
  auto taken = NamesOfColumn(run.file, name, field);
  for (const auto& [key, old] : rows) {
    const std::string free = FreeName(taken, [&, &was = old](int number) { return made(was, number); });
    UpdateRow(run.file, table, name, key, {{std::string(field), free}});
    run.Changed(name, fmt::format("{} stood twice: row {} is called {} now", old, key, free));
  }
}

void FillColorTables(RepairRun& run) {
  const Value today = run.Today();
  for (const std::string& database : run.Databases()) {
    for (const Table* table : {&schema::Basic, &schema::Additives, &schema::Batch, &schema::Mix}) {
      const std::string name = TableName(database, *table);
      run.Show("Repairing Null Values - " + name);
      NullRule rule;
      if (table == &schema::Basic || table == &schema::Mix) {
        rule.filled = {{"Date_Entered", today}, {"LastModified", today}};
        rule.left = {"Inventory"};  // of which the stock history knows more
        NameRows(run, name, *table, "Color_Name");
      } else if (table == &schema::Batch) {
        rule.left = {"BatchNo"};  // numbered at the end
        NameRows(run, name, *table, "Color_Name");
      } else {
        rule.left = {"SetName"};
      }
      std::vector<MendedField> fields = FillNulls(run.file, name, *table, rule);
      std::erase_if(fields, [](const MendedField& field) {
        return field.field == "Inventory" || field.field == "BatchNo" || field.field == "SetName";
      });
      run.Mended(name, fields);
    }
  }
}

void FillDesigns(RepairRun& run) {
  run.Show("Repairing Null Values - Designs Table");
  const std::string& name = schema::Designs.name;
  NameRows(run, name, schema::Designs, "DesignID");
  const Value today = run.Today();
  Fill(run, name, schema::Designs, {{}, {{"Created", today}, {"LastModified", today}}});
}

namespace {

// A record without a number is found by nobody. The only one of its Batch bears that by which the Batch calls its job.
void NumberJobRecords(RepairRun& run) {
  const std::string& jobs = schema::JobRecords.name;
  struct UnnumberedRecord {
    std::int64_t row;
    std::int64_t BatchNo;
    std::string JobNumber;
  };
  for (const std::string& database : run.Databases()) {
    std::vector<UnnumberedRecord> unnumbered;
    Statement rows = run.file.Prepare(fmt::format(
        "SELECT j.RowKey, j.BatchNo, MIN(b.JobNumber) FROM {0} j JOIN {1} b ON b.BatchNo = j.BatchNo WHERE j.Database = ?1 AND "
        "COALESCE(j.JobNumber, '') = '' AND b.JobNumber NOT IN ('', '{2}') AND NOT EXISTS (SELECT 1 FROM {0} o WHERE "
        "o.BatchNo = j.BatchNo AND o.Database = j.Database AND o.RowKey <> j.RowKey) GROUP BY j.RowKey, j.BatchNo",
        jobs, QuotedTable(database, schema::Batch), kSplitJobs));
    rows.Bind(1, database);
    while (rows.Step()) unnumbered.push_back({rows.Whole(0), rows.Whole(1), rows.Text(2)});
    for (const UnnumberedRecord& record : unnumbered) {
      UpdateRow(run.file, schema::JobRecords, jobs, record.row, {{"JobNumber", record.JobNumber}});
      run.Changed(jobs, fmt::format("row {} had no JobNumber and is of the Job {} now, as its Batch {:06} says", record.row,
                                    record.JobNumber, record.BatchNo));
    }
  }
  NameRows(run, jobs, schema::JobRecords, "JobNumber");
}

}  // namespace

void FillJobs(RepairRun& run) {
  run.Show("Repairing Null Values - Dispenser Table");
  Fill(run, schema::Dispenser.name, schema::Dispenser, {});
  run.Show("Repairing Null Values - Job Table");
  // Where there is one Database, a row that names none is of it.
  NullRule rule;
  if (run.Databases().size() == 1) rule.filled = {{"Database", run.Databases().front()}};
  std::vector<MendedField> fields = FillNulls(run.file, schema::JobRecords.name, schema::JobRecords, rule);
  std::erase_if(fields, [](const MendedField& field) { return field.field == "JobNumber"; });
  run.Mended(schema::JobRecords.name, fields);
  NumberJobRecords(run);
}

void FillMeasurements(RepairRun& run) {
  run.ForEachKind([&](const std::string& database, ColorKind kind) {
    run.Show(kind == ColorKind::Basic ? "Repairing Basic L-a-b-D  - " + database
                                      : "Repairing Mix L-a-b-D   - " + database);
    const std::string name = TableName(database, LabTable(kind));
    Fill(run, name, LabTable(kind), {});
    NameRows(run, name, LabTable(kind), "Color_Name");
  });
}

void MendUserTable(RepairRun& run) {
  if (!UsersEnabled(run.session)) return;
  run.Show("Repairing - Users Table");
  const std::string& name = schema::Users.name;
  const MendedUsers mended = MendUsers(run.session);
  if (mended.nameless > 0) run.Changed(name, "rows without a name were dropped", mended.nameless);
  if (mended.twice > 0) run.Changed(name, "rows of a name that another row has were dropped", mended.twice);
  if (mended.rescued) run.Changed(name, "ADMIN was added");
  Fill(run, name, schema::Users, {{"Password"}, {}});
}

void DropNamelessDispensers(RepairRun& run) {
  run.Show("Examining - Dispenser Table");
  const std::string& name = schema::Dispenser.name;
  const int dropped = run.file.Prepare("DELETE FROM " + Quoted(name) + " WHERE Name IS NULL OR Name = ''").Run();
  if (dropped > 0) run.Changed(name, "rows without a name were dropped", dropped);
  RenameRepeated(run, name, schema::Dispenser, "Name",
                 [](const std::string& old, int number) { return fmt::format("{} {}", Left(old, 26), number + 1); });
}

}  // namespace vellumark
