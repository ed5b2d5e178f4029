#include "core/datafile/moved_rows.h"

#include <fmt/format.h>

#include <algorithm>
#include <tuple>

#include "core/base/number.h"
#include "core/base/text.h"
#include "core/datafile/job_links.h"
#include "core/datafile/schema.h"
#include "core/datafile/writer.h"

namespace vellumark {
namespace {

enum Kind : std::uint8_t { kBatch = 1, kJobRecord = 2, kDesignUse = 3 };

// `Name` is the number of the Job or the DesignID.
const Table& Layout() {
  static const Table table{std::string(kMovedRowsTable),
                           {Field{"Kind", FieldType::Byte}, Field{"DatabaseName", FieldType::Text, 30, true},
                            Field{"BatchNo", FieldType::Long}, Field{"Name", FieldType::Text, 30, true},
                            Field{"Date_Entered", FieldType::Date}, Field{"InFile", FieldType::Memo, 0, true}},
                           {{"BatchNo"}, {"Name"}}};
  return table;
}

// True or false of every row, also of one without a date.
std::string Moves(std::string_view row) {
  return fmt::format("(COALESCE({0}Date_Entered, '') > '' AND COALESCE({0}Date_Entered, '') < ?1)", row);
}

// Rows follow their Batch by its number. Where two bear it, a fault, they stay with the one that stays.
std::string MovesWithBatch(const std::string& table, const std::string& batches, std::string_view number) {
  const std::string batch = fmt::format("SELECT 1 FROM {} b WHERE b.BatchNo = {}.{} AND ", batches, Quoted(table), number);
  return fmt::format("(EXISTS ({0}{1}) AND NOT EXISTS ({0}NOT {1}))", batch, Moves("b."));
}

MovingCount& CountOf(std::vector<MovingCount>& counts, std::string_view database, int year) {
  const auto found = std::ranges::find_if(counts, [&](const MovingCount& count) {
    return count.year == year && EqualNoCase(count.database, database);
  });
  if (found != counts.end()) return *found;
  return counts.emplace_back(MovingCount{std::string(database), year});
}

// Adds the rows of a query of years and numbers.
void AddCounts(std::vector<MovingCount>& counts, std::string_view database, Statement rows, const DateTime& cutoff,
               std::int64_t MovingCount::* kind) {
  rows.Bind(1, DayAfter(cutoff));
  while (rows.Step()) CountOf(counts, database, static_cast<int>(LeadingInteger(rows.TextView(0)))).*kind += rows.Whole(1);
}

constexpr std::string_view kYearOf = "SUBSTR({}Date_Entered, 1, 4)";

void CountOfDatabase(Database& file, const std::string& database, const DateTime& cutoff,
                     std::vector<MovingCount>& counts) {
  const std::string batches = QuotedTable(database, schema::Batch);
  const std::string year = fmt::format(fmt::runtime(kYearOf), "");
  AddCounts(counts, database,
            file.Prepare(fmt::format("SELECT {0}, COUNT(*) FROM {1} WHERE {2} GROUP BY {0}", year, batches, Moves(""))),
            cutoff, &MovingCount::batches);
  const auto following = [&](const Table& table, std::string_view number, std::int64_t MovingCount::* kind) {
    const std::string name = TableName(database, table);
    if (!file.TableExists(name)) return;
    const std::string yearOfBatch = fmt::format("(SELECT MIN({}) FROM {} b WHERE b.BatchNo = {}.{})",
                                                fmt::format(fmt::runtime(kYearOf), "b."), batches, Quoted(name), number);
    AddCounts(counts, database,
              file.Prepare(fmt::format("SELECT Year, COUNT(*) FROM (SELECT {} AS Year FROM {} WHERE {}) AS Years GROUP BY Year",
                                       yearOfBatch, Quoted(name), MovesWithBatch(name, batches, number))),
              cutoff, kind);
  };
  following(schema::BatchLotInv, "BatchNo", &MovingCount::lotLines);
  following(schema::BatchScaleResults, "BatchID", &MovingCount::weighings);
}

void RequireTable(Database& file) {
  if (!file.TableExists(kMovedRowsTable)) file.CreateTable(kMovedRowsTable, Layout());
}

// Notes what is about to be removed.
class Notes {
 public:
  Notes(Database& file, const DateTime& cutoff, Leaving leaving, std::string_view inFile)
      : file_(file), after_(DayAfter(cutoff)), leaving_(leaving), inFile_(inFile) {
    RequireTable(file);
  }

  void OfDatabase(const std::string& database) {
    const std::string batches = QuotedTable(database, schema::Batch);
    Note(fmt::format("(Kind, DatabaseName, BatchNo, InFile) SELECT {}, ?3, b.BatchNo, ?2 FROM {} b WHERE b.BatchNo IS NOT "
                     "NULL AND {}",
                     int{kBatch}, batches, Gone("b.")),
         database);
    Note(fmt::format("(Kind, DatabaseName, BatchNo, Name, InFile) SELECT {}, ?3, j.BatchNo, j.JobNumber, ?2 FROM "
                     "JobRecords j WHERE {} AND j.Database = ?3 AND j.BatchNo <= {} AND EXISTS (SELECT 1 FROM {} b WHERE "
                     "b.BatchNo = j.BatchNo AND NOT {})",
                     int{kJobRecord}, Gone("j."), kLastJobBatch, batches, Gone("b.")),
         database);
  }
  void OfDesigns() {
    Note(fmt::format("(Kind, Name, Date_Entered, InFile) SELECT {}, j.DesignID, MAX(j.Date_Entered), ?2 FROM JobRecords j "
                     "WHERE {} AND j.DesignID > '' GROUP BY j.DesignID",
                     int{kDesignUse}, Gone("j.")));
  }

 private:
  std::string Gone(std::string_view row) const {
    return leaving_ == Leaving::Moving ? Moves(row) : "(NOT " + Moves(row) + ")";
  }
  void Note(const std::string& rows, const std::string& database = {}) {
    Statement insert = file_.Prepare(fmt::format("INSERT INTO {} {}", Quoted(kMovedRowsTable), rows));
    insert.Bind(1, after_).Bind(2, inFile_);
    if (!database.empty()) insert.Bind(3, database);
    insert.Run();
  }

  Database& file_;
  std::string after_;
  Leaving leaving_;
  std::string inFile_;
};

// In a file that has no such rows, fields of the same kinds of a table that every file has.
std::string Moved(Database& file, Kind kind, std::string_view fields, std::string_view alike) {
  if (!file.TableExists(kMovedRowsTable)) return fmt::format("(SELECT {} FROM JobRecords WHERE 1 = 0)", alike);
  return fmt::format("(SELECT {} FROM {} WHERE Kind = {})", fields, Quoted(kMovedRowsTable), int{kind});
}

}  // namespace

std::string DayAfter(const DateTime& cutoff) {
  return DateTime::FromDayNumber(cutoff.DayNumber() + 1).ToText();
}

std::vector<MovingRows> RowsThatMove(Database& file, const std::vector<std::string>& databases) {
  std::vector<MovingRows> moving;
  for (const std::string& database : databases) {
    const std::string batches = QuotedTable(database, schema::Batch);
    const auto following = [&](const Table& table, std::string_view number) {
      const std::string name = TableName(database, table);
      if (file.TableExists(name)) moving.push_back({name, MovesWithBatch(name, batches, number)});
    };
    following(schema::BatchLotInv, "BatchNo");
    following(schema::BatchScaleResults, "BatchID");
    moving.push_back({TableName(database, schema::Batch), Moves("")});
  }
  moving.push_back({schema::JobRecords.name, Moves("")});
  return moving;
}

std::vector<MovingCount> CountMovingRows(Database& file, const std::vector<std::string>& databases,
                                         const DateTime& cutoff) {
  std::vector<MovingCount> counts;
  for (const std::string& database : databases) CountOfDatabase(file, database, cutoff, counts);
  const std::string year = fmt::format(fmt::runtime(kYearOf), "");
  Statement jobs = file.Prepare(fmt::format(
      "SELECT COALESCE(Database, ''), {0}, COUNT(*) FROM JobRecords WHERE {1} GROUP BY COALESCE(Database, ''), {0}", year,
      Moves("")));
  jobs.Bind(1, DayAfter(cutoff));
  while (jobs.Step())
    CountOf(counts, jobs.TextView(0), static_cast<int>(LeadingInteger(jobs.TextView(1)))).jobs += jobs.Whole(2);
  const auto place = [&](const MovingCount& count) {
    return std::ranges::find_if(databases, [&](const std::string& name) { return EqualNoCase(name, count.database); }) -
           databases.begin();
  };
  std::ranges::sort(counts, [&](const MovingCount& a, const MovingCount& b) {
    return std::tuple(place(a), a.database, a.year) < std::tuple(place(b), b.database, b.year);
  });
  return counts;
}

void RemoveMovedRows(Database& file, const std::vector<std::string>& databases, const DateTime& cutoff, Leaving leaving,
                     std::string_view inFile) {
  Transaction transaction(file);
  Notes notes(file, cutoff, leaving, inFile);
  for (const std::string& database : databases) notes.OfDatabase(database);
  notes.OfDesigns();
  for (const MovingRows& rows : RowsThatMove(file, databases))
    file.Prepare(fmt::format("DELETE FROM {} WHERE {}{}", Quoted(rows.table), leaving == Leaving::Moving ? "" : "NOT ",
                             rows.where))
        .Bind(1, DayAfter(cutoff))
        .Run();
  for (const std::string& database : databases)
    transaction.Note({Change::Kind::Batch, database, "", Change::What::All, ""});
  transaction.Note({Change::Kind::Job, "", "", Change::What::All, ""});
  transaction.Commit();
}

std::string FileOfMovedBatch(Database& file, std::string_view database, std::int64_t batchNo) {
  if (!file.TableExists(kMovedRowsTable)) return {};
  return file
      .Scalar(fmt::format("SELECT InFile FROM {} WHERE Kind = {} AND DatabaseName = ? AND BatchNo = ? ORDER BY RowKey "
                          "DESC LIMIT 1",
                          Quoted(kMovedRowsTable), int{kBatch}),
              {database, batchNo})
      .Text();
}

std::string MovedBatches(Database& file) {
  return Moved(file, kBatch, "DatabaseName, BatchNo", "Database AS DatabaseName, BatchNo");
}

std::string MovedJobRecords(Database& file) {
  return Moved(file, kJobRecord, "DatabaseName, BatchNo, Name AS JobNumber",
               "Database AS DatabaseName, BatchNo, JobNumber");
}

std::string MovedDesignUses(Database& file) {
  return Moved(file, kDesignUse, "Name AS DesignID, Date_Entered", "DesignID, Date_Entered");
}

namespace {

void ChangeNotes(Database& file, const std::string& sql, std::initializer_list<std::string_view> values) {
  if (!file.TableExists(kMovedRowsTable)) return;
  Statement statement = file.Prepare(fmt::format(fmt::runtime(sql), Quoted(kMovedRowsTable)));
  int place = 0;
  for (const std::string_view value : values) statement.Bind(++place, value);
  statement.Run();
}

}  // namespace

void NoteLostJobRecord(Database& file, std::string_view database, std::int64_t batchNo, std::string_view jobNumber) {
  Transaction transaction(file);
  RequireTable(file);
  InsertRow(file, Layout(), std::string(kMovedRowsTable),
            {{"Kind", int{kJobRecord}}, {"DatabaseName", database}, {"BatchNo", batchNo}, {"Name", jobNumber}, {"InFile", ""}});
  transaction.Commit();
}

bool MovedInto(Database& file, std::string_view name) {
  if (!file.TableExists(kMovedRowsTable)) return false;
  return !file.Scalar(fmt::format("SELECT 1 FROM {} WHERE InFile = ? LIMIT 1", Quoted(kMovedRowsTable)), {name}).IsNull();
}

void RenameMovedFile(Database& file, std::string_view name, std::string_view newName) {
  ChangeNotes(file, "UPDATE {} SET InFile = ?2 WHERE InFile = ?1", {name, newName});
}

void RenameMovedDatabase(Database& file, std::string_view name, std::string_view newName) {
  ChangeNotes(file, "UPDATE {} SET DatabaseName = ?2 WHERE DatabaseName = ?1", {name, newName});
}

void DeleteMovedDatabase(Database& file, std::string_view name) {
  ChangeNotes(file, "DELETE FROM {} WHERE DatabaseName = ?1", {name});
}

void RenameMovedDesign(Database& file, std::string_view designID, std::string_view newID) {
  ChangeNotes(file, fmt::format("UPDATE {{}} SET Name = ?2 WHERE Kind = {} AND Name = ?1", int{kDesignUse}), {designID, newID});
}

}  // namespace vellumark
