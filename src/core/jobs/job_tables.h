#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "core/base/sheet.h"
#include "core/base/table.h"
#include "core/jobs/job_record.h"

namespace vellumark {

// Jobs as people and programs see them. The session must outlive what is made here.

/// The columns of JobColumns in their order; from UD_Text and UD_Numeric on there are kJobUserFields each.
enum class JobColumn : int {
  JobNumber, DesignID, DesignDesc, Color_Name, Color_Code, Database, BatchNo, Date_Entered, Date_Returned, QtyIssued,
  QtyUsed, LotNumber, LotLoc, LotContID, LotDate, UnitCost, TotalCost, VOC, TotalVOCs, HAP, TotalHAPs, UD_Text,
  UD_Numeric = UD_Text + kJobUserFields
};
/// The rows of a Job, for people: every title of the Job Window, of which all are shown.
TableOf<JobRecord> JobColumns(const Session& session);
/// The same for programs: the fields of the row.
TableOf<JobRecord> JobRowColumns(const Session& session);
/// A row for each Job, in the order of their numbers.
ListTable ListJobs(const Session& session);

/// What a Job that is not closed still has out of one container.
struct OutOnJob {
  std::string JobNumber;
  std::string Database;
  std::string Color_Name;
  std::string LotNumber;
  std::string LotContID;
  std::int64_t used = 0;  ///< thousandths
  std::optional<DateTime> Date_Entered;
  std::int64_t days = 0;  ///< since then
};
TableOf<OutOnJob> OutColumns(const Session& session);
/// By Job and container, the oldest first.
std::vector<OutOnJob> ReadOut(const Session& session);
ListTable ListJobsOut(const Session& session);

/// The cost sheet of a Job: what it took, used and gave back, what that cost and emitted.
Sheet JobSheet(const Session& session, const Job& job);

}  // namespace vellumark
