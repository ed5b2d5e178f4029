#include "core/batch/open.h"

#include <fmt/format.h>

#include "core/base/units.h"
#include "core/batch/holding.h"
#include "core/batch/loader.h"
#include "core/batch/takings.h"
#include "core/session/rights.h"

namespace vellumark {
namespace {

constexpr std::string_view kListColumns =
    "BatchNo, Color_Name, Date_Entered, Quantity, ActualQuantity, UMF, JobNumber, Complete, RowKey";

using TakeBatch = std::function<bool(const BatchListRow&)>;

void ReadList(Statement rows, const TakeBatch& take) {
  while (rows.Step())
    if (!take({static_cast<std::int32_t>(rows.Whole(0)), rows.Text(1), rows.Date(2), rows.Single(3), rows.Single(4),
               static_cast<int>(rows.Whole(5)), rows.Text(6), rows.Bool(7), rows.Whole(8)}))
      return;
}

std::vector<BatchListRow> Listed(Statement rows) {
  std::vector<BatchListRow> list;
  ReadList(std::move(rows), [&](const BatchListRow& row) {
    list.push_back(row);
    return true;
  });
  return list;
}

void ForEachRecentBatch(const Session& session, int count, const TakeBatch& take) {
  Statement rows =
      session.File().Prepare(fmt::format("SELECT {} FROM {} ORDER BY Date_Entered DESC, RowKey DESC LIMIT ?1",
                                         kListColumns, session.QuotedTable(schema::Batch)));
  rows.Bind(1, count);
  ReadList(std::move(rows), take);
}

std::optional<std::int64_t> RowBeside(const Session& session, const BatchRecord& record, bool forward) {
  const bool stored = record.key != 0;
  if (forward && !stored) return std::nullopt;
  const std::string_view direction = forward ? "ASC" : "DESC";
  Statement row = session.File().Prepare(fmt::format(
      "SELECT RowKey FROM {0}{1} ORDER BY BatchNo {2}, RowKey {2} LIMIT 1", session.QuotedTable(schema::Batch),
      !stored   ? ""
      : forward ? " WHERE (BatchNo, RowKey) > (?1, ?2)"
                : " WHERE (BatchNo, RowKey) < (?1, ?2)",
      direction));
  if (stored) row.Bind(1, record.BatchNo).Bind(2, record.key);
  if (!row.Step()) return std::nullopt;
  return row.Whole(0);
}

}  // namespace

std::optional<BatchRecord> ReadBatch(Session& session, std::int32_t batchNo) {
  const std::int64_t row = BatchRowOf(session, batchNo);
  const auto stored = ReadStoredLines(session, row);
  if (!stored) return std::nullopt;
  return LoadBatchRow(session, row, ReadTakings(session, *stored), false);
}

std::vector<Cell> ReadBatchFields(const Session& session, std::int32_t batchNo) {
  std::string columns;
  for (const Field& field : schema::Batch.fields) columns += (columns.empty() ? "" : ", ") + Quoted(field.name);
  Statement row = session.File().Prepare(fmt::format("SELECT {} FROM {} WHERE BatchNo = ? ORDER BY RowKey LIMIT 1",
                                                     columns, session.QuotedTable(schema::Batch)));
  std::vector<Cell> cells;
  if (!row.Bind(1, batchNo).Step()) return cells;
  int column = 0;
  for (const Field& field : schema::Batch.fields) cells.emplace_back(field.name, row.Get(column++));
  return cells;
}

std::vector<BatchLotRow> ReadBatchLots(const Session& session, std::int32_t batchNo) {
  const std::int64_t row = BatchRowOf(session, batchNo);
  std::vector<BatchLotRow> lots;
  const auto stored = ReadStoredLines(session, row);
  if (!stored) return lots;
  for (BatchTaking& taking : ReadTakings(session, *stored))
    lots.push_back({std::move(taking.use), std::move(taking.IngName), taking.IngType});
  return lots;
}

TableOf<BatchLotRow> BatchLotColumns(const Session& session) {
  using Row = BatchLotRow;
  const std::string used = fmt::format("Used ({})", UnitName(session.UMI));
  return TableOf<Row>()
      .Add("IngName", &Row::IngName, "Name")
      .Heading("Color Name")
      .Width(4200)
      .Add("IngType", [](const Row& lot) { return static_cast<int>(lot.IngType); })
      .Add("LotRefID", &Row::LotRefID)
      .Add("LotNumber", &Row::LotNumber, "Lot Number")
      .Width(2640)
      .Add("LotLoc", &Row::LotLoc, "Location")
      .Width(2160)
      .Add("LotContID", &Row::LotContID, "Cont. ID")
      .Width(2160)
      .Add("LotDate", &Row::LotDate)
      .Add("LotQty", &Row::LotQty, used)
      .Heading("Used")
      .Width(1680)
      .Add("LotPrice", [&session](const Row& lot) { return SeenPrice(session, lot.LotPrice); })
      .Add(
          "", [unit = std::string(UnitName(session.UMI))](const Row&) { return unit; }, "Unit")
      .Width(960)
      .Show({"Name", "Lot Number", "Location", "Cont. ID", used});
}

ListTable ListBatchLots(const Session& session, std::int32_t batchNo) {
  return BatchLotColumns(session).Of(ReadBatchLots(session, batchNo));
}

bool OpenBatch(Session& session, BatchRecord& record, std::int32_t batchNo) {
  return OpenBatchRow(session, record, BatchRowOf(session, batchNo));
}

bool OpenBatchRow(Session& session, BatchRecord& record, std::int64_t key) {
  const auto stored = ReadStoredLines(session, key);
  if (!stored) return false;
  std::vector<BatchTaking> takings = ReadTakings(session, *stored);
  if (session.ArchiveView) {
    record = LoadBatchRow(session, key, takings, false).value();
    return true;
  }
  Transaction transaction(session.File());
  HoldBatch(session, stored->BatchNo, takings);
  BatchRecord opened = LoadBatchRow(session, key, takings, true).value();
  transaction.Commit();
  record = std::move(opened);
  return true;
}

std::optional<std::int64_t> NextBatchRow(const Session& session, const BatchRecord& record) {
  return RowBeside(session, record, true);
}
std::optional<std::int64_t> PreviousBatchRow(const Session& session, const BatchRecord& record) {
  return RowBeside(session, record, false);
}

TableOf<BatchListRow> BatchColumns() {
  using Row = BatchListRow;
  TableOf<Row> table;
  table.Add("BatchNo", &Row::BatchNo)
      .Add(
          "", [](const Row& row) { return BatchNoText(row.BatchNo); }, "Batch")
      .Heading("Batch ID #")
      .Width(1680)
      .Add("Color_Name", &Row::Color_Name, "Color Name")
      .Width(4200)
      .Add("Date_Entered", &Row::Date_Entered, "Date Entered")
      .Width(2520)
      .Add("Quantity", &Row::Quantity)
      .Add("ActualQuantity", &Row::ActualQuantity, "Made")
      .Heading("Quantity")
      .Width(2160)
      .Large()
      .Add(
          "UMF", [](const Row& row) { return UnitName(row.UMF); }, "Unit")
      .Width(840)
      .Add("JobNumber", &Row::JobNumber, "Job Number")
      .Width(2160)
      .Add("Complete", &Row::Complete, "", Format::Mark)
      .Show({"Batch", "Color Name", "Date Entered", "Made", "Unit", "Job Number", "Complete"});
  return table;
}

std::vector<BatchListRow> BatchesBefore(const Session& session, const std::optional<BatchListRow>& batch, int count) {
  Statement rows = session.File().Prepare(
      fmt::format("SELECT {} FROM {}{} ORDER BY BatchNo DESC, RowKey DESC LIMIT {}", kListColumns,
                  session.QuotedTable(schema::Batch), batch ? " WHERE (BatchNo, RowKey) < (?1, ?2)" : "", count));
  if (batch) rows.Bind(1, batch->BatchNo).Bind(2, batch->key);
  return Listed(std::move(rows));
}

std::vector<BatchListRow> BatchesOfDay(const Session& session, const DateTime& day) {
  Statement rows = session.File().Prepare(
      fmt::format("SELECT {} FROM {} WHERE Date_Entered >= ?1 AND Date_Entered <= ?2 ORDER BY Date_Entered DESC, RowKey DESC",
                  kListColumns, session.QuotedTable(schema::Batch)));
  rows.Bind(1, day.DateText()).Bind(2, day.DateText() + " 23:59:59");
  return Listed(std::move(rows));
}

std::vector<BatchListRow> RecentBatches(const Session& session, int count) {
  std::vector<BatchListRow> list;
  ForEachRecentBatch(session, count, [&](const BatchListRow& row) {
    list.push_back(row);
    return true;
  });
  return list;
}

ListTable ListRecentBatches(const Session& session, int count) {
  return BatchColumns().Of([&session, count](const TakeBatch& take) { ForEachRecentBatch(session, count, take); });
}

ListTable ListBatches(const Session& session, const std::string& colorName) {
  return BatchColumns().Of([&session, colorName](const TakeBatch& take) {
    Statement rows = session.File().Prepare(fmt::format("SELECT {} FROM {}{} ORDER BY BatchNo, RowKey", kListColumns,
                                                        session.QuotedTable(schema::Batch),
                                                        colorName.empty() ? "" : " WHERE Color_Name = ?1"));
    if (!colorName.empty()) rows.Bind(1, colorName);
    ReadList(std::move(rows), take);
  });
}

}  // namespace vellumark
