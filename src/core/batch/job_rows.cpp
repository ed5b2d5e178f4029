#include "core/batch/job_rows.h"

#include <fmt/format.h>

#include <algorithm>

#include "core/base/units.h"
#include "core/batch/made.h"
#include "core/jobs/job_records.h"

namespace vellumark {
namespace {

constexpr std::string_view kOfBatch = "BatchNo = ?1 AND Database = ?2";

float Converted(double quantity, int from, int to) {
  return RoundSingle(from == to ? quantity : quantity * static_cast<double>(UnitFactor(from, to)), 3);
}

double MadeQuantity(const Session& session, const BatchRecord& record) {
  return RoundTo(Converted(record.work.ShownTotal, record.work.UMF, session.UMI), 3);
}

// What each job uses, in the inventory unit. Jobs that use all of the Batch use all of it there too: the last one takes
// up what the decimals of the others leave.
std::vector<float> JobQuantities(const Session& session, const BatchRecord& record) {
  std::vector<float> quantities;
  double left = MadeQuantity(session, record);
  for (const BatchJobLine& line : record.jobs) {
    quantities.push_back(Converted(line.QtyUsed, record.work.UMF, session.UMI));
    left -= RoundTo(quantities.back(), 3);
  }
  if (!quantities.empty() && !(record.returned > 0))
    quantities.back() = std::max(0.0F, RoundSingle(RoundTo(quantities.back(), 3) + left, 3));
  return quantities;
}

}  // namespace

std::vector<BatchJobLine> ReadJobLines(const Session& session, std::int32_t batchNo, int unit, double total) {
  Statement rows = session.File().Prepare(
      fmt::format("SELECT JobNumber, QtyIssued, QtyUsed FROM JobRecords WHERE {} ORDER BY RowKey", kOfBatch));
  rows.Bind(1, batchNo).Bind(2, session.CurrentDatabase);
  std::vector<BatchJobLine> lines;
  double stored = 0;
  double sum = 0;
  while (rows.Step()) {
    lines.push_back(
        {rows.Text(0), Converted(rows.Single(1), session.UMI, unit), Converted(rows.Single(2), session.UMI, unit)});
    stored += RoundTo(rows.Single(2), 3);
    sum += RoundTo(lines.back().QtyUsed, 3);
  }
  if (!lines.empty() && RoundSingle(stored, 3) == Converted(total, unit, session.UMI)) {
    BatchJobLine& last = lines.back();
    const bool sameIssued = last.QtyIssued == last.QtyUsed;
    last.QtyUsed = RoundSingle(RoundTo(last.QtyUsed, 3) + total - sum, 3);
    if (sameIssued) last.QtyIssued = last.QtyUsed;
  }
  return lines;
}

float JobsUse(const Session& session, std::int32_t batchNo) {
  return RoundSingle(session.File()
                         .Scalar(fmt::format("SELECT SUM(QtyUsed) FROM JobRecords WHERE {}", kOfBatch),
                                 {batchNo, session.CurrentDatabase})
                         .Number(),
                     3);
}

float ReturnedQuantity(const Session& session, const BatchRecord& record) {
  if (!(record.returned > 0)) return 0;
  double left = MadeQuantity(session, record);
  for (const float used : JobQuantities(session, record)) left -= RoundTo(used, 3);
  return std::max(0.0F, RoundSingle(left, 3));
}

void WriteJobRows(Session& session, const BatchRecord& record, const DateTime& date) {
  const BatchWork& work = record.work;
  const double made = work.ShownTotal * static_cast<double>(UnitFactor(work.UMF, session.UMI));
  const auto perUnit = [made](double figure) { return made > 0 ? figure / made : 0; };
  const auto lot = MadeLot(session, record);
  const std::vector<float> quantities = JobQuantities(session, record);
  std::vector<std::vector<Cell>> rows;
  for (std::size_t i = 0; i < record.jobs.size(); ++i) {
    const BatchJobLine& line = record.jobs[i];
    const float used = quantities[i];
    rows.push_back({
        {"JobNumber", line.JobNumber},
        {"Color_Name", work.Color_Name},
        {"Color_Code", work.formula.Color_Code},
        {"Database", session.CurrentDatabase},
        {"BatchNo", record.BatchNo},
        {"ItemType", static_cast<int>(ColorKind::Mix)},
        {"UnitCost", RoundSingle(perUnit(work.figures.TotalCost.ToDouble()), JobCostDecimals(session))},
        {"VOC", RoundSingle(perUnit(work.figures.VOC), 3)},
        {"HAP", RoundSingle(perUnit(work.figures.HAP), 3)},
        {"LotRefID", lot ? lot->LotRefID : 0},
        {"LotNumber", lot ? Value(lot->LotNumber) : Value(kUnlottedInv)},
        {"LotLoc", lot ? lot->LotLoc : ""},
        {"LotContID", lot ? lot->LotContID : ""},
        {"LotDate", lot ? Value(lot->LotDate) : Value()},
        {"QtyIssued", line.QtyIssued == line.QtyUsed ? used : Converted(line.QtyIssued, work.UMF, session.UMI)},
        {"QtyUsed", used},
        {"Date_Entered", date},
        {"Date_Returned", date},
        {"Date_Completed", date},
    });
  }
  ReplaceJobRecords(session, record.BatchNo, rows);
}

}  // namespace vellumark
