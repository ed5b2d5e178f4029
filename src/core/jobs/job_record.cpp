#include "core/jobs/job_record.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "core/base/number.h"
#include "core/base/text.h"
#include "core/base/units.h"
#include "core/jobs/job_numbers.h"

namespace vellumark {
namespace {

constexpr int kFinestDecimals = 6;  // of a cost that was derived for grams

JobRecord RecordOf(const Statement& row) {
  JobRecord record;
  record.row = row.Whole(0);
  JobFields().Read(row, 1, record);
  return record;
}

std::string Select(std::string_view condition, std::string_view order) {
  return fmt::format("SELECT RowKey, {} FROM JobRecords WHERE {}{}{}", JobFields().Columns(), condition,
                     order.empty() ? "" : " ORDER BY ", order);
}

// Whole units of the product: exact, so that a half is a half.
std::int64_t ProductUnits(float used, float perUnit, int decimals) {
  __extension__ using Wide = __int128;
  Wide product = static_cast<Wide>(WholeUnits(used, 3)) * WholeUnits(perUnit, kFinestDecimals);
  const bool negative = product < 0;
  if (negative) product = -product;
  Wide divisor = 1;
  for (int i = decimals; i < 3 + kFinestDecimals; ++i) divisor *= 10;
  const auto units = static_cast<std::int64_t>((product + divisor / 2) / divisor);
  return negative ? -units : units;
}

}  // namespace

StockPlace JobRecord::Place() const {
  return {.LotRefID = LotRefID,
          .LotNumber = LotNumber,
          .LotLoc = LotLoc,
          .LotContID = LotContID,
          .LotDate = LotDate};
}

std::string JobRecord::ItemText() const {
  return fmt::format("{:06}", BatchNo);
}

const FieldMap<JobRecord>& JobFields() {
  using J = JobRecord;
  static const FieldMap<J> fields = [] {
    const FieldTraits quantity{.unit = true};
    FieldMap<J> map;
    map.Add("JobNumber", &J::JobNumber, {.use = FieldUse::Key, .caption = "Job Number"})
        .Add("DesignID", &J::DesignID, {.caption = "Design ID"})
        .Add("DesignDesc", &J::DesignDesc, {.caption = "Design Desc"})
        .Add("Color_Name", &J::Color_Name, {.caption = "Color Name"})
        .Add("Color_Code", &J::Color_Code, {.caption = "Color Code"})
        .Add("Database", &J::Database)
        .Add("BatchNo", &J::BatchNo, {.caption = "Batch/Item", .format = Format::Number})
        .Add("ItemType", &J::ItemType)
        .Add("UnitCost", &J::UnitCost, {.amount = AmountKey::Currency, .price = true, .caption = "Unit Cost"})
        .Add("VOC", &J::VOC, {.amount = AmountKey::VOC})
        .Add("HAP", &J::HAP, {.amount = AmountKey::HAP})
        .Add("LotRefID", &J::LotRefID)
        .Add("LotNumber", &J::LotNumber, {.caption = "Lot Number"})
        .Add("LotLoc", &J::LotLoc, {.caption = "Lot Location"})
        .Add("LotContID", &J::LotContID, {.caption = "Lot Cont. ID"})
        .Add("LotDate", &J::LotDate, {.caption = "Lot Date"})
        .Add("QtyIssued", &J::QtyIssued, quantity)
        .Add("QtyUsed", &J::QtyUsed, quantity)
        .Add("Date_Entered", &J::Date_Entered, {.caption = "Date Entered"})
        .Add("Date_Returned", &J::Date_Returned, {.caption = "Date Returned"})
        .Add("Date_Completed", &J::Date_Completed, {.caption = "Date Completed"});
    for (std::size_t n = 0; n < kJobUserFields; ++n)
      map.Add(
          schema::Numbered("UD_Text", static_cast<int>(n)), [n](J & job) -> auto& { return job.UD_Text[n]; });
    for (std::size_t n = 0; n < kJobUserFields; ++n)
      map.Add(
          schema::Numbered("UD_Numeric", static_cast<int>(n)), [n](J & job) -> auto& { return job.UD_Numeric[n]; });
    return map;
  }();
  return fields;
}

std::optional<JobRecord> ReadJobRecord(const Session& session, std::int64_t row) {
  Statement rows = session.File().Prepare(Select("RowKey = ?1", ""));
  if (!rows.Bind(1, row).Step()) return std::nullopt;
  return RecordOf(rows);
}

void ForEachJobRecord(const Session& session, std::string_view condition, const std::vector<Value>& parameters,
                      std::string_view order, const std::function<bool(const JobRecord&)>& take) {
  Statement rows = session.File().Prepare(Select(condition, order));
  for (std::size_t i = 0; i < parameters.size(); ++i) rows.Bind(static_cast<int>(i) + 1, parameters[i]);
  while (rows.Step())
    if (!take(RecordOf(rows))) return;
}

std::vector<JobRecord> JobItems(const Session& session, std::string_view jobNumber) {
  std::vector<JobRecord> items;
  ForEachJobRecord(session, "JobNumber = ?1", {jobNumber}, "Date_Entered, RowKey", [&](const JobRecord& record) {
    items.push_back(record);
    return true;
  });
  return items;
}

Result<JobRecord> FindJobItem(const Session& session, std::string_view jobNumber, std::int32_t batchNo,
                              std::string_view database) {
  std::vector<JobRecord> items = JobItems(session, jobNumber);
  if (items.empty()) return std::unexpected(JobNotFound(jobNumber));
  std::erase_if(items, [&](const JobRecord& item) {
    return item.BatchNo != batchNo || (!database.empty() && !EqualNoCase(item.Database, database));
  });
  if (items.empty())
    return Refuse("Job Item Not Found", fmt::format("The Job {} has no Batch or item {:06}.", jobNumber, batchNo),
                  "BatchNo");
  const bool several =
      std::ranges::any_of(items, [&](const JobRecord& item) { return item.Database != items.front().Database; });
  if (several)
    return Refuse("Job Item Not Found",
                  fmt::format("The Job {} has a Batch {:06} of several Databases; name the Database.", jobNumber, batchNo),
                  "Database");
  return items.front();
}

int JobCostDecimals(const Session& session) {
  const bool fine = session.UMI == UnitGram || session.UMI == UnitOunce;
  return std::max(session.DecimalPlaces, fine ? kFinestDecimals : 0);
}

double JobAmount(float used, float perUnit, int decimals) {
  return OfWholeUnits(ProductUnits(used, perUnit, decimals), decimals);
}

JobTotals TotalsOf(const Session& session, const std::vector<JobRecord>& items) {
  std::int64_t used = 0;
  std::int64_t cost = 0;
  std::int64_t VOC = 0;
  std::int64_t HAP = 0;
  for (const JobRecord& item : items) {
    used += WholeUnits(item.QtyUsed, 3);
    cost += ProductUnits(item.QtyUsed, item.UnitCost, session.DecimalPlaces);
    VOC += ProductUnits(item.QtyUsed, item.VOC, 3);
    HAP += ProductUnits(item.QtyUsed, item.HAP, 3);
  }
  return {OfWholeUnits(used, 3), OfWholeUnits(cost, session.DecimalPlaces), OfWholeUnits(VOC, 3), OfWholeUnits(HAP, 3)};
}

Job LoadJob(const Session& session, std::string_view jobNumber) {
  Job job{.JobNumber = std::string(jobNumber), .items = JobItems(session, jobNumber), .totals = {}, .Date_Entered = {},
          .Date_Completed = {}};
  if (job.items.empty()) return job;
  job.JobNumber = job.items.front().JobNumber;
  job.totals = TotalsOf(session, job.items);
  for (const JobRecord& item : job.items) {
    if (item.Date_Entered && (!job.Date_Entered || *item.Date_Entered < *job.Date_Entered))
      job.Date_Entered = item.Date_Entered;
    if (item.Date_Completed && (!job.Date_Completed || *job.Date_Completed < *item.Date_Completed))
      job.Date_Completed = item.Date_Completed;
  }
  return job;
}

}  // namespace vellumark
