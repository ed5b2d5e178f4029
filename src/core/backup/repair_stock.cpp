#include <fmt/format.h>

#include <cmath>
#include <limits>
#include <utility>

#include "core/backup/check_run.h"
#include "core/backup/repair_run.h"
#include "core/base/number.h"
#include "core/datafile/job_links.h"
#include "core/datafile/line_kind.h"
#include "core/datafile/moved_rows.h"
#include "core/datafile/references.h"
#include "core/datafile/stock_history.h"
#include "core/datafile/stock_trail.h"
#include "core/datafile/writer.h"
#include "core/inventory/lots.h"
#include "core/session/stock_lines.h"

// The steps that mend stock, lots, and what Batches hold of them.

namespace vellumark {
namespace {

constexpr std::string_view kDocument = "Repair";

struct NullStock {
  std::int64_t row;
  std::string name;
  std::int32_t ref;
};

// What the history tells of a figure that is gone; of one of which it tells nothing, 0.
void FillStock(RepairRun& run, const std::string& database, ColorKind kind, const Table& table, std::string_view name,
               std::string_view quantity, std::string_view ref) {
  const std::string of = TableName(database, table);
  std::vector<NullStock> empty;
  Statement rows =
      run.file.Prepare(fmt::format("SELECT RowKey, COALESCE({0}, ''), COALESCE({1}, 0) FROM {2} WHERE {3} IS NULL",
                                   name, ref, Quoted(of), quantity));
  while (rows.Step()) empty.push_back({rows.Whole(0), rows.Text(1), static_cast<std::int32_t>(rows.Whole(2))});
  for (const NullStock& row : empty) {
    // Of a lot without a reference the history tells nothing.
    const bool unknown = &table == &LotTable(kind) && row.ref == 0;
    const double told = unknown ? 0 : run.HistoryOf(database, kind, row.name, row.ref).value_or(0);
    UpdateRow(run.file, table, of, row.row, {{std::string(quantity), RoundSingle(told, 3)}});
    run.Changed(of, fmt::format("{}: {} had no value and is {} now{}", row.name, quantity, Fixed(told, 3),
                                told == 0 ? "" : ", as its history adds up to"));
  }
}

}  // namespace

void MendInventory(RepairRun& run) {
  run.ForEachKind([&](const std::string& database, ColorKind kind) {
    FillStock(run, database, kind, ColorTable(kind), "Color_Name", "Inventory", "0");
  });
}

namespace {

struct BadLot {
  std::int64_t row;
  std::string name;
  std::int64_t ref;
  std::string number;
  bool known;  // by its number among those that share the reference
};

// What Batches and Jobs took from a lot comes back to it by its reference and number.
void FollowReference(RepairRun& run, const std::string& database, ColorKind kind, const BadLot& lot, std::int32_t ref) {
  if (!lot.known || !IsLotReference(static_cast<std::int32_t>(lot.ref))) return;
  if (ref > std::numeric_limits<std::int16_t>::max())
    return run.Left(TableName(database, schema::BatchLotInv),
                    fmt::format("{}: Batches and Jobs still name the lot {} by the reference {}, since no Batch can record {}",
                                lot.name, lot.number, lot.ref, ref));
  MoveLotCopies(run.file, database, kind, lot.name, {static_cast<std::int32_t>(lot.ref), lot.number}, ref);
}

// Each lot of a colour has a reference of its own; the first of those that share one keeps it.
void MendReferences(RepairRun& run, const std::string& database, ColorKind kind, const std::string& lots) {
  std::vector<BadLot> bad;
  Statement rows =
      run.file.Prepare(fmt::format("SELECT RowKey, LotCName, COALESCE(LotRefID, 0), LotNumber, NOT EXISTS (SELECT 1 FROM {0} s "
                                   "WHERE s.LotCName = t.LotCName AND s.LotRefID = t.LotRefID AND s.LotNumber = t.LotNumber "
                                   "AND s.RowKey <> t.RowKey) FROM {0} t WHERE COALESCE(LotRefID, "
                                   "0) NOT BETWEEN 1 AND {1} OR EXISTS "
                                   "(SELECT 1 FROM {0} e WHERE e.LotCName = t.LotCName AND e.LotRefID = t.LotRefID AND "
                                   "e.RowKey < t.RowKey) ORDER BY RowKey",
                                   Quoted(lots), kLastLotRefID));
  while (rows.Step()) bad.push_back({rows.Whole(0), rows.Text(1), rows.Whole(2), rows.Text(3), rows.Whole(4) != 0});
  for (const BadLot& lot : bad) {
    const std::int32_t from = LastLotRefID(run.session, kind, lot.name, database);
    const std::int32_t free = FirstFreeLotRef(run.session, kind, lot.name, database, from);
    if (free < 0) {
      run.Left(lots, fmt::format("{}: no reference is free for the lot of row {}", lot.name, lot.row));
      continue;
    }
    UpdateRow(run.file, LotTable(kind), lots, lot.row, {{"LotRefID", free}});
    StoreLotRefID(run.session, kind, lot.name, database, free);
    FollowReference(run, database, kind, lot, free);
    run.Changed(lots, fmt::format("{}: the lot of row {} had the reference {} and has {} now", lot.name, lot.row,
                                  lot.ref, free));
  }
}

}  // namespace

void MendLots(RepairRun& run) {
  run.ForEachKind([&](const std::string& database, ColorKind kind) {
    run.Show(kind == ColorKind::Basic ? "Repairing Basic Inv.  - " + database : "Repairing Mix Inv.  - " + database);
    const std::string lots = TableName(database, LotTable(kind));
    NameRows(run, lots, LotTable(kind), "LotCName");
    NameRows(run, lots, LotTable(kind), "LotNumber");
    FillStock(run, database, kind, LotTable(kind), "LotCName", "LotQty", "LotRefID");
    run.Mended(lots, FillNulls(run.file, lots, LotTable(kind), {{"LotRefID"}, {}}));
    MendReferences(run, database, kind, lots);
    // A lot never holds less than nothing: it is gone before that. How small a sound one may be is for postings to say.
    const int gone = run.file.Prepare(fmt::format("DELETE FROM {} WHERE LotQty < 0", Quoted(lots))).Run();
    if (gone > 0) run.Changed(lots, "lots that held less than nothing were dropped", gone);
  });
}

void AddColorsOfLots(RepairRun& run) {
  run.ForEachKind([&](const std::string& database, ColorKind kind) {
    const std::string colors = TableName(database, ColorTable(kind));
    auto known = NamesOfColumn(run.file, colors, "Color_Name");
    const auto add = [&](const Table& table, std::string_view field, std::string_view what) {
      std::vector<std::string> missing;
      Statement rows = run.file.Prepare(
          fmt::format("SELECT DISTINCT {0} FROM {1} WHERE {0} <> ''", Quoted(field), QuotedTable(database, table)));
      while (rows.Step())
        if (known.insert(Key(rows.TextView(0))).second) missing.push_back(rows.Text(0));
      for (const std::string& name : missing) {
        MakeColor(run, database, kind, name);
        run.Changed(colors, fmt::format("{} was made: {} names it", name, what));
      }
    };
    add(LotTable(kind), "LotCName", "a lot");
    add(LabTable(kind), "Color_Name", "a measurement");
  });
}

namespace {

constexpr int kLines = schema::kBatchLines;

struct BatchLine {
  std::string name;
  Value quantity;
  std::int64_t kind = 0;
};
struct BatchLines {
  std::int64_t row = 0;
  std::int64_t BatchNo = 0;
  std::vector<BatchLine> lines;
};

// The kind of a line that bears none that there is: what was taken for it tells, else where its colour stands.
std::int64_t KindOfLine(RepairRun& run, const std::string& database, std::int64_t batchNo, const std::string& name) {
  const Value taken = run.file.Scalar(
      fmt::format("SELECT IngType FROM {} WHERE BatchNo = ? AND IngName = ? AND IngType BETWEEN 1 AND 3 LIMIT 1",
                  QuotedTable(database, schema::BatchLotInv)),
      {batchNo, name});
  if (!taken.IsNull()) return taken.Whole();
  const auto stands = [&](const Table& table) {
    return !run.file
                .Scalar(fmt::format("SELECT 1 FROM {} WHERE Color_Name = ? LIMIT 1", QuotedTable(database, table)),
                        {name})
                .IsNull();
  };
  return static_cast<std::int64_t>(!stands(schema::Basic) && stands(schema::Mix) ? LineKind::Mix : LineKind::Basic);
}

void CloseUpLines(RepairRun& run, const std::string& database) {
  const std::string table = TableName(database, schema::Batch);
  std::string columns = "RowKey, BatchNo";
  for (const char* word : {"IngName", "IngQty", "IngType"})
    for (int n = 0; n < kLines; ++n) columns += ", " + schema::Numbered(word, n);
  std::vector<BatchLines> wrong;
  Statement rows = run.file.Prepare(fmt::format("SELECT {} FROM {}", columns, Quoted(table)));
  while (rows.Step()) {
    BatchLines batch{rows.Whole(0), rows.Whole(1), {}};
    bool gap = false;
    bool bad = false;
    for (int n = 0; n < kLines; ++n) {
      BatchLine line{rows.Text(2 + n), rows.Get(2 + kLines + n), rows.Whole(2 + 2 * kLines + n)};
      gap = gap || line.name.empty();
      if (line.name.empty()) continue;
      bad = bad || gap || line.kind < 1 || line.kind > 3;
      batch.lines.push_back(std::move(line));
    }
    if (bad) wrong.push_back(std::move(batch));
  }
  for (const BatchLines& batch : wrong) {
    std::vector<Cell> cells;
    for (int n = 0; n < kLines; ++n) {
      const bool filled = n < static_cast<int>(batch.lines.size());
      const BatchLine line = filled ? batch.lines[static_cast<std::size_t>(n)] : BatchLine{"", 0.0F, 0};
      const bool known = !filled || (line.kind >= 1 && line.kind <= 3);
      cells.emplace_back(schema::Numbered("IngName", n), line.name);
      cells.emplace_back(schema::Numbered("IngQty", n), line.quantity);
      cells.emplace_back(schema::Numbered("IngType", n),
                         known ? line.kind : KindOfLine(run, database, batch.BatchNo, line.name));
    }
    UpdateRow(run.file, schema::Batch, table, batch.row, cells);
    run.Changed(table, fmt::format("the lines of the Batch {:06} were closed up and have kinds", batch.BatchNo));
  }
}

// What a Batch calls its job, against its Job Records.
struct JobOfBatch {
  std::int64_t BatchNo = 0;
  std::string named;
  std::int64_t records = 0;
  std::string right;
};

// Without a record the Batch alone still tells for which job it was made, and keeps that.
void MendJobOfBatch(RepairRun& run, const std::string& database, const std::string& table, const JobOfBatch& batch) {
  const bool split = EqualNoCase(batch.named, kSplitJobs);
  if (batch.records == 0)
    run.Lost(table, fmt::format("the Batch {:06} is of {}, of which there is no record", batch.BatchNo,
                                split ? "several Jobs" : "the Job " + batch.named));
  if (batch.records == 0 && !split) return NoteLostJobRecord(run.file, database, batch.BatchNo, batch.named);
  StoreBatchJob(run.file, database, static_cast<std::int32_t>(batch.BatchNo));
  if (batch.records > 0)
    run.Changed(table, fmt::format("the Batch {:06} was of the Job \"{}\" and is of \"{}\" now, as its Job Records say",
                                   batch.BatchNo, batch.named, batch.right));
}

// The job of a Batch is what its Job Records say, where none of them stands in an archive.
void MendJobsOfBatches(RepairRun& run, const std::string& database) {
  const std::string table = TableName(database, schema::Batch);
  std::vector<JobOfBatch> wrong;
  Statement rows =
      run.file.Prepare(fmt::format("SELECT b.BatchNo, COALESCE(b.JobNumber, ''), COUNT(j.RowKey), "
                                   "COALESCE(MIN(j.JobNumber), '') FROM {} b LEFT JOIN "
                                   "JobRecords j ON j.BatchNo = b.BatchNo AND j.Database = ?1 WHERE NOT EXISTS (SELECT "
                                   "1 FROM {} AS m WHERE m.BatchNo = "
                                   "b.BatchNo AND m.DatabaseName = ?1) GROUP BY b.RowKey",
                                   Quoted(table), MovedJobRecords(run.file)));
  rows.Bind(1, database);
  while (rows.Step()) {
    const std::string right = rows.Whole(2) == 0 ? "" : rows.Whole(2) == 1 ? rows.Text(3) : std::string(kSplitJobs);
    if (!EqualNoCase(rows.TextView(1), right)) wrong.push_back({rows.Whole(0), rows.Text(1), rows.Whole(2), right});
  }
  for (const JobOfBatch& batch : wrong) MendJobOfBatch(run, database, table, batch);
}

}  // namespace

void MendBatches(RepairRun& run) {
  for (const std::string& database : run.Databases()) {
    CloseUpLines(run, database);
    MendJobsOfBatches(run, database);
  }
}

namespace {

// Brings history and stock together: what stands in stock is right, and of what is not there any more what the history
// tells is put back.
class Reconciled {
 public:
  explicit Reconciled(RepairRun& run) : run_(run), balance_(run.file) {}

  void Run() {
    run_.ForEachKind([&](const std::string& database, ColorKind kind) {
      Compare(database, kind, ColorTable(kind), "Color_Name", "Inventory", "0", "''");
      Compare(database, kind, LotTable(kind), "LotCName", "LotQty", "LotRefID", "LotNumber");
    });
    std::vector<Missing> missing;
    balance_.ForEach(
        [&](const std::string& database, ColorKind kind, const std::string& name, std::int32_t ref, double quantity) {
          if (std::fabs(quantity) >= kSameStock && run_.session.FindDatabase(database) != nullptr &&
              !Stands(database, kind, name, ref))
            missing.push_back({database, kind, name, ref, quantity});
        });
    for (const Missing& one : missing) PutBack(one);
  }

 private:
  struct Missing {
    std::string database;
    ColorKind kind;
    std::string name;
    std::int32_t ref;
    double quantity;
  };

  void Compare(const std::string& database, ColorKind kind, const Table& table, std::string_view name,
               std::string_view quantity, std::string_view ref, std::string_view number) {
    const std::string of = TableName(database, table);
    std::vector<StockLine> lines;
    Statement rows =
        run_.file.Prepare(fmt::format("SELECT {}, {}, {}, {} FROM {}", name, quantity, ref, number, Quoted(of)));
    while (rows.Step()) {
      const auto lot = static_cast<std::int32_t>(rows.Whole(2));
      const double told = balance_.Of(database, kind, rows.TextView(0), lot);
      const double stands = LeadingNumber(ShortestText(rows.Single(1)));
      if (std::fabs(told - stands) < kSameStock) continue;
      StockLine line = NewStockLine(run_.session, StockEvent::ManualAdjust, kind, database, rows.Text(0));
      line.LotRefID = lot;
      line.LotNumber = rows.Text(3);
      line.result = rows.Single(1);
      line.change = RoundTo(stands - told, 9);
      line.document = kDocument;
      line.reason = fmt::format("The history added up to {}", Fixed(told, 3));
      lines.push_back(std::move(line));
    }
    for (const StockLine& line : lines) {
      AddStockLine(run_.file, line);
      run_.Changed(of,
                   fmt::format("{}: {} is {}, its history added up to {} and has a line for it now", line.Color_Name,
                               quantity, Fixed(line.result, 3), Fixed(line.result - line.change, 3)));
    }
  }

  bool Stands(const std::string& database, ColorKind kind, const std::string& name, std::int32_t ref) {
    if (ref != 0) return FindLot(run_.session, kind, name, database, ref).has_value();
    return ColorIsThere(run_.session, kind, name, database);
  }

  void PutBack(const Missing& one) {
    if (!ColorIsThere(run_.session, one.kind, one.name, one.database)) {
      MakeColor(run_, one.database, one.kind, one.name);
      run_.Changed(TableName(one.database, ColorTable(one.kind)),
                   fmt::format("{} was made: the stock history has stock of it", one.name));
    }
    const float quantity = RoundSingle(one.quantity, 3);
    if (one.ref == 0) {
      const std::string table = TableName(one.database, ColorTable(one.kind));
      const std::int64_t row =
          run_.file.Scalar(fmt::format("SELECT RowKey FROM {} WHERE Color_Name = ?", Quoted(table)), {one.name})
              .Whole();
      UpdateRow(run_.file, ColorTable(one.kind), table, row, {{"Inventory", quantity}});
      run_.Changed(table,
                   fmt::format("{}: Inventory is {} again, as its history adds up to", one.name, Fixed(quantity, 3)));
      return;
    }
    const std::string lots = TableName(one.database, LotTable(one.kind));
    if (quantity < 0) return Forget(one, lots);
    const std::string number = LastNumber(one);
    InsertRow(run_.file, LotTable(one.kind), lots,
              {{"LotRefID", one.ref},
               {"LotCName", one.name},
               {"LotNumber", number},
               {"LotLoc", ""},
               {"LotContID", ""},
               {"LotQty", quantity},
               {"LotPrice", 0.0F},
               {"LotConsignment", 0}});
    run_.Changed(
        lots,
        fmt::format(
            "{}: the lot {} was made again with {}, as its history adds up to; its place, date and price are not known",
            one.name, number, Fixed(quantity, 3)));
  }

  // By which the lot was called last, under whatever names its colour and its Database had.
  std::string LastNumber(const Missing& one) {
    StockTrail trail = StockTrail::OfColor(run_.file, one.database, one.kind, one.name, true);
    for (bool more = true; more;) {
      std::vector<StockLine> lines;
      more = trail.ReadOn(lines);
      for (StockLine& line : lines)
        if (line.LotRefID == one.ref && !line.LotNumber.empty()) return std::move(line.LotNumber);
    }
    return run_.MadeUpName();
  }

  // Less than nothing cannot be put back.
  void Forget(const Missing& one, const std::string& lots) {
    StockLine line = NewStockLine(run_.session, StockEvent::ManualAdjust, one.kind, one.database, one.name);
    line.LotRefID = one.ref;
    line.change = RoundTo(-one.quantity, 9);
    line.document = kDocument;
    AddStockLine(run_.file, line);
    run_.Changed(lots, fmt::format("{}: the history of a lot that is gone added up to {} and is closed now", one.name,
                                   Fixed(one.quantity, 3)));
  }

  RepairRun& run_;
  StockBalance balance_;
};

}  // namespace

void MendStockHistory(RepairRun& run) {
  run.Show("Examining Stock History");
  if (HasStockHistory(run.file)) {
    Reconciled(run).Run();
  } else {
    BeginStockHistory(run.file, run.Databases(), run.session.clock.Now(), run.session.CurrentUser);
    run.Changed(kStockHistoryTable, "the history was begun");
  }
}

}  // namespace vellumark
