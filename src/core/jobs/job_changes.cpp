#include "core/jobs/job_changes.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <functional>

#include "core/base/text.h"
#include "core/base/units.h"
#include "core/colors/amounts.h"
#include "core/jobs/job_numbers.h"
#include "core/jobs/job_options.h"
#include "core/jobs/job_records.h"
#include "core/session/undo_step.h"

namespace vellumark {
namespace {

constexpr std::string_view kOlder = " older than 1 year.";

// What is told of a field that cannot be changed, and what is asked before it is.
struct FieldTexts {
  JobField field;
  const char* title;   // of the refusal
  const char* old;     // of a row older than a year, before " older than 1 year."
  const char* bound;   // what it is bound to on a Batch's row; null: it may be changed there
  const char* locked;  // which of it is locked
  const char* question;
  const char* used;  // what was used so many days ago
  const char* then;  // what for
  const char* now;   // what is asked
  bool unit = false;
};
constexpr std::array<FieldTexts, 8> kTexts{{
    {JobField::UnitCost, "Unit Cost - Unchangable", "Prices cannot be changed on items that are",
     "The Unit Cost associated with this ink is bound to the Batch Cost Model ", "Unit Cost",
     "Change Unit Cost Pricing Model", "This Price was used ", " days(s) ago to generate the Total Cost.",
     "Change the current Price per (", true},
    {JobField::VOC, "VOC - Unchangable", "VOC values cannot be changed on items that are",
     "The VOC Value associated with this ink is bound to the Batch VOC Calculation Model ", "VOC Value",
     "Change VOC Calculation Model", "This VOC value was used ", " day(s) ago to generate Total VOCs.",
     "Change the current VOC per (", true},
    {JobField::HAP, "HAP - Unchangable", "HAP Values cannot be changed on items that are",
     "The HAP Value associated with this ink is bound to the Batch HAP Calculation Model ", "HAP Value",
     "Change HAP Calculation Model", "This HAP value was used ", " day(s) ago to generate Total HAPs.",
     "Change the current HAP per (", true},
    {JobField::DesignID, "Design ID - Unchangable", "Design ID cannot be changed on items that are", nullptr, "",
     "Change Design ID Reference", "This Design was used ", " day(s) ago.", "Change the current Design ID"},
    {JobField::UserText, "User Defined Data - Unchangable",
     "Required user defined data cannot be changed on items that are", nullptr, "", nullptr, "", "", ""},
    {JobField::UserNumber, "User Defined Data - Unchangable",
     "Required user defined data cannot be changed on items that are", nullptr, "", nullptr, "", "", ""},
    {JobField::DateReturned, "Date Returned - Unchangable", "Date Returned cannot be changed on items that are",
     nullptr, "", nullptr, "", "", ""},
    {JobField::DateCompleted, "Date Completed - Unchangable", "Date Completed cannot be changed on Job Records",
     nullptr, "", nullptr, "", "", ""},
}};

const FieldTexts& TextsOf(JobField field) {
  return *std::ranges::find(kTexts, field, &FieldTexts::field);
}

// A value that is too old to be changed has a title of its own.
std::string OldTitle(JobField field) {
  if (field == JobField::VOC) return "VOC Value - Unchangable";
  if (field == JobField::HAP) return "HAP Value - Unchangable";
  return TextsOf(field).title;
}

Result<std::vector<JobRecord>> RowsOf(const Session& session, const std::vector<std::int64_t>& rows) {
  std::vector<JobRecord> records;
  for (const std::int64_t row : rows) {
    auto record = ReadJobRecord(session, row);
    if (!record) return Refuse("Job Item Not Found", "This item is no longer on a Job.", "BatchNo");
    records.push_back(*std::move(record));
  }
  if (records.empty()) return Refuse("Job Item Not Found", "Select an item of the Job first.", "BatchNo");
  return records;
}

Result<void> CheckRecord(const Session& session, const JobRecord& record, JobField field) {
  const FieldTexts& texts = TextsOf(field);
  if (JobRowAge(session, record) > kJobYearDays)
    return Refuse(OldTitle(field), std::string(texts.old) + std::string(kOlder));
  if (record.IsOfBatch() && texts.bound != nullptr)
    return Refuse(texts.title, fmt::format("{}\nand the Job Number that was assigned to it when it was made.\n\n"
                                           "This {} is locked to a specific Batch creation.",
                                           texts.bound, texts.locked));
  return {};
}

// Whoever may not type a figure is not asked about it.
Result<void> RequireRightOf(const Session& session, JobField field) {
  if (field == JobField::UnitCost) return RequireRight(session, AmountKey::Currency, "UnitCost");
  if (field == JobField::VOC) return RequireRight(session, AmountKey::VOC, "VOC");
  if (field == JobField::HAP) return RequireRight(session, AmountKey::HAP, "HAP");
  return {};
}

// All of the rows or none of them, each by `change`.
Result<void> ChangeRows(Session& session, const std::vector<std::int64_t>& rows, JobField field,
                        const std::function<void(JobRecord&)>& change) {
  if (auto writable = RequireWritable(session); !writable) return writable;
  Transaction transaction(session.File());
  auto records = RowsOf(session, rows);
  if (!records) return std::unexpected(records.error());
  for (JobRecord& record : *records) {
    if (auto allowed = CheckRecord(session, record, field); !allowed) return allowed;
    if (auto closed = RequireBatchClosed(session, record); !closed) return closed;
    change(record);
    StoreJobRecord(session, record);
  }
  transaction.Commit();
  return {};
}

Result<void> ChangeFigure(Session& session, const std::vector<std::int64_t>& rows, JobField field, AmountKey key,
                          float JobRecord::*figure, std::string_view column, std::string_view typed) {
  if (auto right = RequireRight(session, key, column); !right) return right;
  const auto value = ReadAmount(session, key, typed, column);
  if (!value) return std::unexpected(value.error());
  return ChangeRows(session, rows, field, [&](JobRecord& record) { record.*figure = *value; });
}

Result<void> SetCompleted(Session& session, std::string_view jobNumber, const std::optional<DateTime>& date) {
  if (auto writable = RequireWritable(session); !writable) return writable;
  Transaction transaction(session.File());
  Job job = LoadJob(session, ReadJobNumber(jobNumber));
  UndoStep step(session, Undoable::CloseJob, fmt::format("{} Job {}", date ? "Close" : "Reopen", job.JobNumber));
  if (job.items.empty()) return std::unexpected(JobNotFound(job.JobNumber));
  const JobRecord& latest = job.items.back();
  if (JobRowAge(session, latest) > kJobYearDays) return CheckRecord(session, latest, JobField::DateCompleted);
  for (JobRecord& record : job.items) {
    record.Date_Completed = date;
    StoreJobRecord(session, record);
  }
  step.Keep();
  transaction.Commit();
  return {};
}

}  // namespace

std::int64_t JobRowAge(const Session& session, const JobRecord& record) {
  return record.Date_Entered ? session.clock.Today().DayNumber() - record.Date_Entered->DayNumber() : 0;
}

Result<void> CheckJobChange(const Session& session, const std::vector<std::int64_t>& rows, JobField field) {
  const auto records = RowsOf(session, rows);
  if (!records) return std::unexpected(records.error());
  for (const JobRecord& record : *records)
    if (auto allowed = CheckRecord(session, record, field); !allowed) return allowed;
  return {};
}

Result<void> OpenJobChange(Session& session, const std::vector<std::int64_t>& rows, JobField field) {
  if (auto allowed = CheckJobChange(session, rows, field); !allowed) return allowed;
  const FieldTexts& texts = TextsOf(field);
  if (auto right = RequireRightOf(session, field); !right) return right;
  if (texts.question == nullptr) return {};
  const auto records = RowsOf(session, rows);
  if (!records) return std::unexpected(records.error());
  const std::string unit = texts.unit ? fmt::format("{})", UnitName(session.UMI)) : std::string();
  const std::string text = fmt::format("{}{}{}\n\n{}{} associated with this item?", texts.used,
                                       JobRowAge(session, records->front()), texts.then, texts.now, unit);
  if (!session.prompt.Ask(texts.question, text)) return Decline(texts.question);
  return {};
}

Result<void> UpdateJobCostModel(Session& session, const std::vector<std::int64_t>& rows, std::string_view typed) {
  return ChangeFigure(session, rows, JobField::UnitCost, AmountKey::Currency, &JobRecord::UnitCost, "UnitCost", typed);
}
Result<void> UpdateJobVOCModel(Session& session, const std::vector<std::int64_t>& rows, std::string_view typed) {
  return ChangeFigure(session, rows, JobField::VOC, AmountKey::VOC, &JobRecord::VOC, "VOC", typed);
}
Result<void> UpdateJobHAPModel(Session& session, const std::vector<std::int64_t>& rows, std::string_view typed) {
  return ChangeFigure(session, rows, JobField::HAP, AmountKey::HAP, &JobRecord::HAP, "HAP", typed);
}

Result<void> UpdateJobDesignID(Session& session, const std::vector<std::int64_t>& rows, std::string_view design) {
  const std::string id = Trim(design);
  std::string description;
  std::string onFile;
  if (!id.empty()) {
    Statement row = session.File().Prepare("SELECT DesignID, Description FROM Designs WHERE DesignID = ?1 LIMIT 1");
    if (!row.Bind(1, id).Step())
      return Refuse("Design Not Found", fmt::format("There is no Design {} in this Data File.", id), "DesignID");
    onFile = row.Text(0);
    description = row.Text(1);
  }
  return ChangeRows(session, rows, JobField::DesignID, [&](JobRecord& record) {
    record.DesignID = onFile;
    record.DesignDesc = description;
  });
}

Result<void> UpdateJobUDText(Session& session, const std::vector<std::int64_t>& rows, int number,
                             std::string_view typed) {
  const auto text = ReadJobText(session, number, typed);
  if (!text) return std::unexpected(text.error());
  return ChangeRows(session, rows, JobField::UserText,
                    [&](JobRecord& record) { record.UD_Text.at(static_cast<std::size_t>(number)) = *text; });
}

Result<void> UpdateJobUDNumeric(Session& session, const std::vector<std::int64_t>& rows, int number,
                                std::string_view typed) {
  const auto value = ReadJobNumeric(session, number, typed);
  if (!value) return std::unexpected(value.error());
  return ChangeRows(session, rows, JobField::UserNumber,
                    [&](JobRecord& record) { record.UD_Numeric.at(static_cast<std::size_t>(number)) = *value; });
}

Result<void> JobsNewReturnDate(Session& session, const std::vector<std::int64_t>& rows, const DateTime& date) {
  return ChangeRows(session, rows, JobField::DateReturned,
                    [&](JobRecord& record) { record.Date_Returned = date.Midnight(); });
}

Result<void> JobClosingDate(Session& session, std::string_view jobNumber, const DateTime& date) {
  return SetCompleted(session, jobNumber, date.Midnight());
}

Result<void> ReopenJob(Session& session, std::string_view jobNumber) {
  return SetCompleted(session, jobNumber, std::nullopt);
}

}  // namespace vellumark
