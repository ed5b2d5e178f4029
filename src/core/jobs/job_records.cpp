#include "core/jobs/job_records.h"

#include <fmt/format.h>

#include <algorithm>
#include <set>
#include <stdexcept>

#include "core/base/text.h"
#include "core/datafile/kept_rows.h"
#include "core/datafile/lifecycle.h"
#include "core/jobs/design_uses.h"
#include "core/jobs/job_renames.h"
#include "core/session/undo_step.h"

namespace vellumark {
namespace {

constexpr std::int32_t kMostItems = 999'999;

struct KeptValues {
  std::string JobNumber;
  std::vector<Cell> cells;
};

std::vector<std::string> UserFields() {
  std::vector<std::string> fields{"DesignID", "DesignDesc"};
  for (const Field& field : schema::JobRecords.fields)
    if (field.name.starts_with("UD_")) fields.push_back(field.name);
  return fields;
}

std::vector<KeptValues> ReadKept(const Session& session, std::int32_t batchNo) {
  std::vector<std::string> fields = UserFields();
  for (const char* date : {"Date_Entered", "Date_Returned", "Date_Completed"}) fields.emplace_back(date);
  std::string columns = "JobNumber";
  for (const std::string& field : fields) columns += ", " + Quoted(field);
  Statement rows = session.File().Prepare(
      fmt::format("SELECT {} FROM JobRecords WHERE BatchNo = ?1 AND Database = ?2 ORDER BY RowKey", columns));
  rows.Bind(1, batchNo).Bind(2, session.CurrentDatabase);
  std::vector<KeptValues> kept;
  while (rows.Step()) {
    KeptValues& row = kept.emplace_back(rows.Text(0), std::vector<Cell>{});
    for (std::size_t i = 0; i < fields.size(); ++i)
      row.cells.emplace_back(fields[i], rows.Get(static_cast<int>(i) + 1));
  }
  return kept;
}

std::vector<Cell> NothingEntered() {
  std::vector<Cell> cells;
  for (const std::string& field : UserFields()) {
    const int place = schema::JobRecords.Find(field);
    const bool number = schema::JobRecords.fields[static_cast<std::size_t>(place)].type == FieldType::Single;
    cells.emplace_back(field, number ? Value(0.0F) : Value(""));
  }
  return cells;
}

std::string TextOf(const std::vector<Cell>& row, std::string_view field) {
  const auto found = std::ranges::find_if(row, [&](const Cell& cell) { return cell.first == field; });
  if (found == row.end()) throw std::logic_error("a Job Record without its " + std::string(field));
  return found->second.Text();
}

// The kept cells, and of the row what is not among them.
std::vector<Cell> Joined(std::vector<Cell> kept, const std::vector<Cell>& row) {
  const std::size_t count = kept.size();
  for (const Cell& cell : row) {
    const auto end = kept.begin() + static_cast<std::ptrdiff_t>(count);
    if (std::none_of(kept.begin(), end, [&](const Cell& other) { return other.first == cell.first; }))
      kept.push_back(cell);
  }
  return kept;
}

void Tell(Transaction& transaction, const std::string& number) {
  transaction.Note({Change::Kind::Job, "", number, Change::What::Updated, {}});
}

// The number that the next item from stock gets: the counter, or the first one after it that no item has. The counter
// begins anew one day, and may meet items that were never archived.
std::int32_t FreeItem(const Session& session) {
  Statement taken =
      session.File().Prepare("SELECT DISTINCT BatchNo FROM JobRecords WHERE BatchNo >= ? ORDER BY BatchNo");
  const std::int32_t counter = std::clamp(ReadFileInfo(session.File()).itemNumber, 1, kMostItems);
  for (const std::int32_t from : {counter, 1}) {
    taken.Reset();
    taken.Bind(1, kLastJobBatch + from);
    std::int64_t free = kLastJobBatch + from;
    while (taken.Step() && taken.Whole(0) <= free) ++free;
    if (free <= kLastJobBatch + kMostItems) return static_cast<std::int32_t>(free - kLastJobBatch);
  }
  throw Failure(session.File().Path().string(), "has no free item number left; archive old Job Records");
}

std::vector<Cell> CellsOf(const JobRecord& record) {
  return JobFields().Cells(record, kNewRowUses);
}

}  // namespace

void ReplaceJobRecords(Session& session, std::int32_t batchNo, const std::vector<std::vector<Cell>>& rows) {
  Transaction transaction(session.File());
  const std::vector<KeptValues> before = ReadKept(session, batchNo);
  std::set<std::string> designs;
  for (const KeptValues& row : before) {
    Tell(transaction, row.JobNumber);
    designs.insert(TextOf(row.cells, "DesignID"));
  }
  session.File()
      .Prepare("DELETE FROM JobRecords WHERE BatchNo = ?1 AND Database = ?2")
      .Bind(1, batchNo)
      .Bind(2, session.CurrentDatabase)
      .Run();
  for (const std::vector<Cell>& row : rows) {
    const std::string number = TextOf(row, "JobNumber");
    std::vector<Cell> cells = NothingEntered();
    for (const KeptValues& old : before)
      if (EqualNoCase(old.JobNumber, number)) cells = old.cells;
    InsertRow(session.File(), schema::JobRecords, schema::JobRecords.name, Joined(std::move(cells), row));
    Tell(transaction, number);
  }
  for (const std::string& design : designs) FollowLastUsed(session, design);
  transaction.Commit();
}

void AddJobRecord(Session& session, JobRecord& record) {
  Transaction transaction(session.File());
  const std::int32_t item = FreeItem(session);
  session.ItemNumber = StepItemNumber(session.File(), item);
  record.BatchNo = kLastJobBatch + item;
  record.row = InsertRow(session.File(), schema::JobRecords, schema::JobRecords.name, CellsOf(record));
  FollowLastUsed(session, record.DesignID);
  Tell(transaction, record.JobNumber);
  transaction.Commit();
}

void StoreJobRecord(Session& session, const JobRecord& record) {
  Transaction transaction(session.File());
  const auto before = ReadJobRecord(session, record.row);
  if (!before) throw std::logic_error("a Job Record is gone while it is changed");
  UpdateRow(session.File(), schema::JobRecords, schema::JobRecords.name, record.row, CellsOf(record));
  if (before->DesignID != record.DesignID)
    for (const std::string& design : {before->DesignID, record.DesignID}) FollowLastUsed(session, design);
  Tell(transaction, record.JobNumber);
  transaction.Commit();
}

void DeleteJobRecord(Session& session, const JobRecord& record) {
  Transaction transaction(session.File());
  session.File().Prepare("DELETE FROM JobRecords WHERE RowKey = ?1").Bind(1, record.row).Run();
  if (record.IsOfBatch()) StoreBatchJob(session.File(), record.Database, record.BatchNo);
  FollowLastUsed(session, record.DesignID);
  Tell(transaction, record.JobNumber);
  transaction.Commit();
}

void KeepReturned(Session& session, const JobRecord& record, std::int64_t line) {
  Database& file = session.File();
  const Table& returned = ReturnedItems();
  if (!file.TableExists(returned.name)) file.CreateTable(returned.name, returned);
  std::vector<Cell> cells = CellsOf(record);
  cells.emplace_back("Line", line);
  InsertRow(file, returned, returned.name, cells);
}

std::int64_t PutBackJobRecord(Session& session, std::int64_t line) {
  Database& file = session.File();
  if (!file.TableExists(ReturnedItems().name)) return 0;
  Transaction transaction(file);
  JobRecord record;
  {
    Statement kept = file.Prepare(
        fmt::format("SELECT {} FROM {} WHERE Line = ?1 LIMIT 1", JobFields().Columns(), Quoted(ReturnedItems().name)));
    kept.Bind(1, line);
    if (!kept.Step()) return 0;
    JobFields().Read(kept, 0, record);
  }
  const Value taken = file.Scalar("SELECT 1 FROM JobRecords WHERE BatchNo = ? LIMIT 1", {record.BatchNo});
  if (!record.IsOfBatch() && !taken.IsNull()) return 0;
  record.QtyUsed = 0;
  record.row = InsertRow(file, schema::JobRecords, schema::JobRecords.name, CellsOf(record));
  file.Prepare(fmt::format("DELETE FROM {} WHERE Line = ?1", Quoted(ReturnedItems().name))).Bind(1, line).Run();
  if (record.IsOfBatch() && session.FindDatabase(record.Database) != nullptr)
    StoreBatchJob(file, record.Database, record.BatchNo);
  FollowLastUsed(session, record.DesignID);
  Tell(transaction, record.JobNumber);
  transaction.Commit();
  return record.row;
}

Result<void> StoreJobNumber(Session& session, std::string_view number, std::string_view newNumber) {
  Transaction transaction(session.File());
  UndoStep step(session, Undoable::RenameJob, fmt::format("Rename Job {} to {}", number, newNumber),
                std::string(kJobSubject));
  const std::vector<JobRecord> items = JobItems(session, number);
  for (const JobRecord& item : items)
    if (auto closed = RequireBatchClosed(session, item); !closed) return closed;
  for (const Table* table : JobTables(session.File()))
    session.File()
        .Prepare(fmt::format("UPDATE {} SET JobNumber = ?2 WHERE JobNumber = ?1", Quoted(table->name)))
        .Bind(1, number)
        .Bind(2, newNumber)
        .Run();
  NoteJobRename(session.File(), number, newNumber);
  for (const JobRecord& item : items)
    if (item.IsOfBatch() && session.FindDatabase(item.Database) != nullptr)
      StoreBatchJob(session.File(), item.Database, item.BatchNo);
  transaction.Note({Change::Kind::Job, "", std::string(number), Change::What::Renamed, std::string(newNumber)});
  step.Keep();
  transaction.Commit();
  return {};
}

Result<void> RequireBatchClosed(const Session& session, const JobRecord& record) {
  if (!record.IsOfBatch() || !session.File().TableExists(schema::OpenBatch.name)) return {};
  const Value open = session.File().Scalar(
      fmt::format("SELECT 1 FROM {} WHERE DatabaseName = ? AND BatchNo = ? LIMIT 1", Quoted(schema::OpenBatch.name)),
      {record.Database, record.BatchNo});
  if (open.IsNull()) return {};
  return Refuse("Batch Window - in State of Edit.",
                "The Batch Window is open with active data.\n"
                "Changing data elsewhere can impact this recipe.\n"
                "Save or Clear the data on the Batch Window.",
                "BatchNo");
}

}  // namespace vellumark
