#include <fmt/format.h>

#include <algorithm>
#include <array>

#include "core/backup/check_run.h"
#include "core/base/text.h"
#include "core/base/units.h"
#include "core/batch/takings.h"
#include "core/datafile/job_links.h"
#include "core/datafile/kept_rows.h"
#include "core/datafile/moved_rows.h"

// What holds of Batches, of what they took from stock, and of the jobs that they were made for.

namespace vellumark {
namespace {

constexpr int kLines = schema::kBatchLines;

struct CheckedBatch {
  std::int64_t row = 0;
  std::int64_t BatchNo = 0;
  std::array<std::string_view, kLines> IngName;
  std::array<std::int64_t, kLines> IngType{};
};

std::string Called(std::int64_t batchNo) {
  return fmt::format("{:06}", batchNo);
}

void ForEachBatch(CheckRun& run, const std::string& table, const std::function<void(const CheckedBatch&)>& take) {
  std::string columns = "RowKey, BatchNo";
  for (int n = 0; n < kLines; ++n) columns += ", " + schema::Numbered("IngName", n);
  for (int n = 0; n < kLines; ++n) columns += ", " + schema::Numbered("IngType", n);
  Statement rows = run.file.Prepare(fmt::format("SELECT {} FROM {}", columns, Quoted(table)));
  WalkRows(run, rows, RowCount(run.file, table), [&](const Statement& row) {
    CheckedBatch batch{row.Whole(0), row.Whole(1), {}, {}};
    for (int n = 0; n < kLines; ++n) {
      batch.IngName[static_cast<std::size_t>(n)] = row.TextView(2 + n);
      batch.IngType[static_cast<std::size_t>(n)] = row.Whole(2 + kLines + n);
    }
    take(batch);
  });
}

}  // namespace

void CheckBatchLines(CheckRun& run) {
  for (const std::string& database : run.Databases()) {
    const std::string table = TableName(database, schema::Batch);
    ForEachBatch(run, table, [&](const CheckedBatch& batch) {
      bool gap = false;
      for (std::size_t n = 0; n < batch.IngName.size(); ++n) {
        if (batch.IngName[n].empty()) {
          gap = true;
          continue;
        }
        if (gap)
          run.Found(table, batch.row, Called(batch.BatchNo),
                    fmt::format("IngName{} is filled behind an empty line.", n));
        if (static_cast<std::int64_t>(LineKindOf(batch.IngType[n])) != batch.IngType[n])
          run.Found(table, batch.row, Called(batch.BatchNo), fmt::format("IngType{} is {}.", n, batch.IngType[n]));
      }
    });
  }
}

void CheckBatchLots(CheckRun& run) {
  for (const std::string& database : run.Databases()) {
    const std::string batches = TableName(database, schema::Batch);
    const std::string lots = TableName(database, schema::BatchLotInv);
    Statement orphans = run.file.Prepare(
        fmt::format("SELECT RowKey, IngName, BatchNo FROM {} t WHERE NOT EXISTS (SELECT 1 FROM {} b WHERE b.BatchNo = "
                    "t.BatchNo)",
                    Quoted(lots), Quoted(batches)));
    run.FoundRows(lots, orphans,
                  [](const Statement& row) { return fmt::format("There is no Batch {}.", Called(row.Whole(2))); });
    Statement taken = run.file.Prepare(
        fmt::format("SELECT RowKey, IngName, IngType, LotRefID, LotQty FROM {} WHERE BatchNo = ?", Quoted(lots)));
    ForEachBatch(run, batches, [&](const CheckedBatch& batch) {
      taken.Bind(1, batch.BatchNo);
      while (taken.Step()) {
        bool isLine = false;
        for (std::size_t n = 0; n < batch.IngName.size() && !isLine; ++n)
          isLine = batch.IngType[n] == taken.Whole(2) && EqualNoCase(batch.IngName[n], taken.TextView(1));
        if (!isLine)
          run.Found(lots, taken.Whole(0), taken.TextView(1),
                    fmt::format("It is no line of the Batch {}.", Called(batch.BatchNo)));
        // Only into Unlotted Inventory can an addition have given back.
        if (taken.Whole(3) != 0 && taken.Number(4) < 0)
          run.Found(lots, taken.Whole(0), taken.TextView(1),
                    fmt::format("LotQty of the Batch {} is {}, below 0.", Called(batch.BatchNo),
                                FigureText(taken.Number(4))));
      }
      taken.Reset();
    });
  }
}

namespace {

// What was made, in the inventory unit as it may have been at the time: a room that has gone from pounds to kilograms
// keeps the figures of its jobs as they stand. Of the two units of a size that gives more, so that none is blamed.
double MostMade(int stored, double quantity, int inventoryUnit) {
  const bool small = inventoryUnit == UnitGram || inventoryUnit == UnitOunce;
  return quantity * static_cast<double>(UnitFactor(stored, small ? UnitGram : UnitPound));
}

// The jobs of a Batch use no more than was made, but for what the decimals of units leave.
void CheckJobQuantities(CheckRun& run) {
  for (const std::string& database : run.Databases()) {
    const std::string batches = TableName(database, schema::Batch);
    Statement rows = run.file.Prepare(
        fmt::format("SELECT b.RowKey, b.BatchNo, b.ActualQuantity, COALESCE(b.UMF, 0), SUM(j.QtyUsed), COUNT(*) FROM {} j "
                    "JOIN {} b ON b.BatchNo = j.BatchNo WHERE j.Database = ?1 AND j.BatchNo <= {} GROUP BY b.RowKey",
                    Quoted(schema::JobRecords.name), Quoted(batches), kLastJobBatch));
    rows.Bind(1, database);
    WalkRows(run, rows, RowCount(run.file, batches), [&](const Statement& row) {
      const auto unit = static_cast<int>(row.Whole(3));
      const int stored = unit >= UnitPound && unit <= UnitOunce ? unit : run.session.UMF;
      const double made = MostMade(stored, row.Number(2), run.session.UMI);
      const double slack = 0.001 * static_cast<double>(row.Whole(5) + 1) + made * 1e-5;
      if (row.Number(2) > 0 && row.Number(4) > made + slack)
        run.Found(batches, row.Whole(0), Called(row.Whole(1)),
                  fmt::format("{} were made, and its jobs use {}.", FigureText(made), FigureText(row.Number(4))));
    });
  }
}

// What a Batch called its job when all Job Records of it were in this file.
std::string JobWithMoved(CheckRun& run, const std::string& database, std::int64_t batchNo) {
  Statement records = run.file.Prepare(fmt::format(
      "SELECT COUNT(*), COALESCE(MIN(JobNumber), '') FROM (SELECT JobNumber FROM {} WHERE BatchNo = ?1 AND Database = ?2 "
      "UNION ALL SELECT JobNumber FROM {} AS m WHERE m.BatchNo = ?1 AND m.DatabaseName = ?2) AS Records",
      Quoted(schema::JobRecords.name), MovedJobRecords(run.file)));
  records.Bind(1, batchNo).Bind(2, database).Step();
  return records.Whole(0) > 1 ? std::string(kSplitJobs) : records.Text(1);
}

}  // namespace

void CheckJobItems(CheckRun& run) {
  if (!run.HasGlobalTables()) return;
  for (const Table* table : JobTables(run.file)) {
    const std::string& jobs = table->name;
    Statement rows = run.file.Prepare(fmt::format(
        "SELECT RowKey, COALESCE(JobNumber, ''), ItemType, QtyUsed, JobNumber IS NULL FROM {}", Quoted(jobs)));
    WalkRows(run, rows, RowCount(run.file, jobs), [&](const Statement& row) {
      const std::string_view number = row.TextView(1);
      if ((number.empty() && row.Whole(4) == 0) || EqualNoCase(number, kSplitJobs))
        run.Found(jobs, row.Whole(0), number, fmt::format("\"{}\" is no Job Number.", number));
      if (row.Whole(2) > 2) run.Found(jobs, row.Whole(0), number, fmt::format("ItemType is {}.", row.Whole(2)));
      if (row.Number(3) < 0)
        run.Found(jobs, row.Whole(0), number, fmt::format("QtyUsed is {}, below 0.", FigureText(row.Number(3))));
    });
  }
}

void CheckScaleResults(CheckRun& run) {
  for (const std::string& database : run.Databases()) {
    const std::string results = TableName(database, schema::BatchScaleResults);
    if (!run.file.TableExists(results)) continue;
    Statement orphans = run.file.Prepare(
        fmt::format("SELECT RowKey, ColorName, BatchID FROM {} t WHERE NOT EXISTS (SELECT 1 FROM {} b WHERE b.BatchNo = "
                    "t.BatchID)",
                    Quoted(results), QuotedTable(database, schema::Batch)));
    run.FoundRows(results, orphans,
                  [](const Statement& row) { return fmt::format("There is no Batch {}.", Called(row.Whole(2))); });
    Statement twice = run.file.Prepare(fmt::format(
        "SELECT MAX(RowKey), ColorName, BatchID FROM {} GROUP BY BatchID, IngType, ColorName HAVING COUNT(*) > 1",
        Quoted(results)));
    run.FoundRows(results, twice, [](const Statement& row) {
      return fmt::format("It was weighed twice for the Batch {}.", Called(row.Whole(2)));
    });
  }
}

void CheckJobBatches(CheckRun& run) {
  if (!run.HasGlobalTables()) return;
  const std::string& jobs = schema::JobRecords.name;
  for (const std::string& database : run.Databases()) {
    const std::string batches = TableName(database, schema::Batch);
    Statement orphans = run.file.Prepare(
        fmt::format("SELECT RowKey, JobNumber, BatchNo FROM {} j WHERE j.Database = ?1 AND j.BatchNo BETWEEN 1 AND {} "
                    "AND NOT EXISTS (SELECT 1 FROM {} b WHERE b.BatchNo = j.BatchNo) AND NOT EXISTS (SELECT 1 FROM {} AS m "
                    "WHERE m.BatchNo = j.BatchNo AND m.DatabaseName = ?1)",
                    Quoted(jobs), kLastJobBatch, Quoted(batches), MovedBatches(run.file)));
    orphans.Bind(1, database);
    run.FoundRows(jobs, orphans, [&](const Statement& row) {
      return fmt::format("{} has no Batch {}.", database, Called(row.Whole(2)));
    });
    // What the Batch calls its job against the records of it.
    Statement named =
        run.file.Prepare(fmt::format("SELECT b.RowKey, b.BatchNo, COALESCE(b.JobNumber, ''), COUNT(j.RowKey), "
                                     "COALESCE(MIN(j.JobNumber), '') FROM {} b "
                                     "LEFT JOIN {} j ON j.BatchNo = b.BatchNo AND j.Database = ?1 GROUP BY b.RowKey",
                                     Quoted(batches), Quoted(jobs)));
    named.Bind(1, database);
    WalkRows(run, named, RowCount(run.file, batches), [&](const Statement& row) {
      const std::int64_t records = row.Whole(3);
      const std::string right = records == 0 ? "" : records == 1 ? row.Text(4) : std::string(kSplitJobs);
      if (!EqualNoCase(row.TextView(2), right) && !EqualNoCase(row.TextView(2), JobWithMoved(run, database, row.Whole(1))))
        run.Found(batches, row.Whole(0), Called(row.Whole(1)),
                  fmt::format("JobNumber is \"{}\", but {} of its Job Records give \"{}\".", row.TextView(2), records,
                              right));
    });
  }
  CheckJobQuantities(run);
  for (const Table* table : JobTables(run.file)) {
    const std::string& of = table->name;
    Statement strangers = run.file.Prepare(fmt::format("SELECT RowKey, JobNumber, Database FROM {}", Quoted(of)));
    WalkRows(run, strangers, RowCount(run.file, of), [&](const Statement& row) {
      const bool listed = std::ranges::any_of(
          run.info.dbList, [&](const std::string& database) { return EqualNoCase(database, row.TextView(2)); });
      if (!listed)
        run.Found(of, row.Whole(0), row.TextView(1), fmt::format("There is no Database {}.", row.TextView(2)));
    });
  }
}

}  // namespace vellumark
