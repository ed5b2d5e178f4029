#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/jobs/job_record.h"

namespace vellumark {

// What is changed of rows that stand, beside what was used (job_stock.h). A row that is older than a year keeps what it
// has; cost, VOC and HAP of a Batch's row are the Batch's.

/// What people change of a row.
enum class JobField { UnitCost, VOC, HAP, DesignID, UserText, UserNumber, DateReturned, DateCompleted };

/// More days than these ago a row was entered too long ago to be changed.
constexpr std::int64_t kJobYearDays = 365;
/// How many days ago the row was entered.
std::int64_t JobRowAge(const Session& session, const JobRecord& record);

/// Whether these rows may be changed so.
Result<void> CheckJobChange(const Session& session, const std::vector<std::int64_t>& rows, JobField field);
/// Before the window of a change opens: the same, and the question about what was used so far.
Result<void> OpenJobChange(Session& session, const std::vector<std::int64_t>& rows, JobField field);

// The changes of these windows, on all of the rows or on none. A figure is typed, 0 to 99999, and asks for its right.
Result<void> UpdateJobCostModel(Session& session, const std::vector<std::int64_t>& rows, std::string_view typed);
Result<void> UpdateJobVOCModel(Session& session, const std::vector<std::int64_t>& rows, std::string_view typed);
Result<void> UpdateJobHAPModel(Session& session, const std::vector<std::int64_t>& rows, std::string_view typed);
/// An empty Design takes the reference away.
Result<void> UpdateJobDesignID(Session& session, const std::vector<std::int64_t>& rows, std::string_view design);
Result<void> UpdateJobUDText(Session& session, const std::vector<std::int64_t>& rows, int number, std::string_view typed);
Result<void> UpdateJobUDNumeric(Session& session, const std::vector<std::int64_t>& rows, int number,
                                std::string_view typed);
Result<void> JobsNewReturnDate(Session& session, const std::vector<std::int64_t>& rows, const DateTime& date);

/// Closes the Job on that day, which all of its rows bear then. A Job that was last worked on more than a year ago keeps
/// its date.
Result<void> JobClosingDate(Session& session, std::string_view jobNumber, const DateTime& date);
/// Takes the date of completion off all of its rows.
Result<void> ReopenJob(Session& session, std::string_view jobNumber);

}  // namespace vellumark
