#include "core/batch/jobs.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

#include "core/base/text.h"
#include "core/batch/bench.h"
#include "core/jobs/job_numbers.h"

namespace vellumark {
namespace {

BatchJobLine JobLine(std::string number, double used) {
  const float quantity = RoundSingle(used, 3);
  return {std::move(number), quantity, quantity};
}

double SumUsed(const BatchRecord& record) {
  double sum = 0;
  for (const BatchJobLine& line : record.jobs) sum += RoundTo(line.QtyUsed, 3);
  return RoundTo(sum, 3);
}

Refusal InvalidQuantity(const BatchRecord& record) {
  return {"Batch Window - Invalid Quantity",
          fmt::format("You must enter an amount between 0 and {}", Fixed(record.work.ShownTotal, 3)), "txtQtyUsed"};
}

std::optional<double> ReadItemQty(const BatchRecord& record, std::string_view typed) {
  if (Trim(typed).empty()) return 0;
  const auto amount = ParseNumber(typed);
  if (!amount || *amount < 0) return std::nullopt;
  const double rounded = RoundTo(*amount, 3);
  if (rounded > record.work.ShownTotal) return std::nullopt;
  return rounded;
}

}  // namespace

Result<void> EnterJobNumber(Session& session, BatchRecord& record, std::string_view typed) {
  if (record.jobs.size() > 1) return {};
  std::string number = ReadJobNumber(typed);
  if (number == record.JobNumber()) return {};
  if (auto editable = CheckEditable(session, record); !editable) return editable;
  if (EqualNoCase(number, kSplitJobs))
    return Refuse("Batch Window - Specify a Job Number", "Click the Split button to edit Qty Used.", "JobNumber");
  if (number.empty()) {
    record.jobs.clear();
  } else {
    record.ReturnToInventory = true;
    if (record.jobs.empty()) {
      const double total = record.work.Rows.empty() ? RoundTo(record.jobsTotal, 3) : record.work.ShownTotal;
      record.jobs.push_back(JobLine(std::move(number), total));
    } else {
      record.jobs.front().JobNumber = std::move(number);
    }
  }
  UpdateReturned(record);
  return {};
}

Result<void> CheckQtyUsedKey(const BatchRecord& record) {
  constexpr const char* title = "Batch Window - Specify a Job Number";
  if (record.jobs.empty())
    return Refuse(title, "You must specify a Job Number before editing the Qty Used field.", "JobNumber");
  if (record.jobs.size() > 1) return Refuse(title, "Click the Split button to edit Qty Used.", "cmdSplitJobs");
  return {};
}

Result<void> EnterQtyUsed(Session& session, BatchRecord& record, std::string_view typed) {
  if (auto allowed = CheckQtyUsedKey(record); !allowed) {
    if (record.jobs.empty() && Trim(typed).empty()) return {};
    return allowed;
  }
  const auto amount = ParseNumber(typed);
  const double used = amount ? RoundTo(*amount, 3) : 0;
  if (used > record.work.ShownTotal)
    return Refuse("Batch Window - Qty Used Too Large", "Qty Used must be less than Batch Quantity", "txtQtyUsed");
  if (!(used > 0))
    return Refuse("Invalid Job Quantity",
                  "Qty Used cannot be set to zero if a Job Number is specified.\n"
                  "Clear the Job Number field to remove the Job Record.",
                  "txtQtyUsed");
  BatchJobLine& line = record.jobs.front();
  if (line.QtyUsed == RoundSingle(used, 3)) return {};
  if (auto editable = CheckEditable(session, record); !editable) return editable;
  line = JobLine(line.JobNumber, used);
  UpdateReturned(record);
  return {};
}

Result<void> SetReturnToInventory(Session& session, BatchRecord& record, bool checked) {
  if (!checked && !record.jobs.empty())
    return Refuse("Option Must Be Checked", "This option must be checked when a Job Number is specified.",
                  "chkReturnToInventory");
  if (checked == record.ReturnToInventory) return {};
  if (auto editable = CheckEditable(session, record); !editable) return editable;
  record.ReturnToInventory = checked;
  UpdateReturned(record);
  return {};
}

Result<std::string> EnterJobItemQty(const BatchRecord& record, std::string_view typed) {
  const auto amount = ReadItemQty(record, typed);
  if (!amount) return std::unexpected(InvalidQuantity(record));
  return Fixed(*amount, 3);
}

std::string JobItemsReturned(const BatchRecord& record, const std::vector<JobItem>& items) {
  double sum = 0;
  for (const JobItem& item : items)
    if (!ReadJobNumber(item.JobNumber).empty()) sum += ParseNumber(item.QtyUsed).value_or(0);
  return Fixed(std::max(0.0, RoundTo(record.work.ShownTotal - sum, 3)), 3);
}

Result<void> SaveJobItems(Session& session, BatchRecord& record, const std::vector<JobItem>& items) {
  std::vector<BatchJobLine> lines;
  std::vector<std::string> numbers;
  double sum = 0;
  for (const JobItem& item : items) {
    const auto amount = ReadItemQty(record, item.QtyUsed);
    if (!amount) return std::unexpected(InvalidQuantity(record));
    std::string number = ReadJobNumber(item.JobNumber);
    if (number.empty()) continue;
    if (EqualNoCase(number, kSplitJobs))
      return Refuse("Batch Window - Specify a Job Number", fmt::format("{} is not a Job Number.", number), "JobNumber");
    if (std::ranges::any_of(numbers, [&](const std::string& other) { return EqualNoCase(other, number); }))
      return Refuse("Duplicate Job Numbers", "You cannot have duplicate Job Numbers.", "JobNumber");
    numbers.push_back(number);
    sum = RoundTo(sum + *amount, 3);
    if (*amount > 0) lines.push_back(JobLine(std::move(number), *amount));
  }
  if (sum > record.work.ShownTotal)
    return Refuse("Batch Window - Invalid Quantity",
                  "The total quantity used for all jobs cannot exceed the batch quantity made.", "txtQtyUsed");
  if (lines.size() > kMostJobLines)
    return Refuse(" Split Jobs", fmt::format("A Batch can be split over {} jobs at most.", kMostJobLines), "JobNumber");
  if (lines == record.jobs) return {};
  if (auto editable = CheckEditable(session, record); !editable) return editable;
  record.jobs = std::move(lines);
  if (!record.jobs.empty()) record.ReturnToInventory = true;
  UpdateReturned(record);
  return {};
}

std::string ReturnedRuleText() {
  return "Batch Amount  =  Qty Used  +  Qty Returned To Inv\n"
         "                           or, in other words\n"
         "Qty Returned To Inv  =  Batch Amount  --  Qty Used";
}

void FollowTotal(Session& session, BatchRecord& record) {
  // A calculation that was taken away, as by another unit, is no smaller Batch: the jobs wait for the next.
  if (record.work.Rows.empty()) return UpdateReturned(record);
  const float total = record.work.Total;
  const float oldTotal = std::exchange(record.jobsTotal, total);
  if (record.jobs.size() == 1) {
    BatchJobLine& line = record.jobs.front();
    const bool allOfIt = line.QtyUsed == oldTotal;
    if (total > oldTotal ? allOfIt : line.QtyUsed > total) line = JobLine(line.JobNumber, record.work.ShownTotal);
  } else if (record.jobs.size() > 1 && total < oldTotal) {
    record.jobs.clear();
    session.prompt.Tell("Re-enter Job Numbers",
                        "Because you decreased the quantity of this batch,\n"
                        "you will have to re-enter your Job Numbers.");
  }
  UpdateReturned(record);
}

void UpdateReturned(BatchRecord& record) {
  const double total = record.work.ShownTotal;
  if (record.jobs.empty()) {
    record.returned = record.ReturnToInventory ? RoundSingle(total, 3) : 0;
  } else {
    record.returned = RoundSingle(std::max(0.0, total - SumUsed(record)), 3);
  }
}

}  // namespace vellumark
