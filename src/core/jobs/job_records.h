#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "core/datafile/writer.h"
#include "core/jobs/job_record.h"

namespace vellumark {

// The one writer of `JobRecords`. What goes through all tables, a colour's, a lot's or a Database's new name, is
// written there by core/datafile. Each procedure tells the Jobs that it touched, and keeps in step what others repeat
// of the rows: the jobs of Batches, the last use of Designs.

/// Puts the rows of a Batch of the current Database in the place of those that it has. Each needs its `JobNumber`. The
/// design, the user-defined values and the dates of the row that the job had stay: a Job that is closed stays closed on
/// its day.
void ReplaceJobRecords(Session& session, std::int32_t batchNo, const std::vector<std::vector<Cell>>& rows);

/// Adds an item from stock under the next free item number, which it is given.
void AddJobRecord(Session& session, JobRecord& record);
/// Writes all fields of a row that is there.
void StoreJobRecord(Session& session, const JobRecord& record);
void DeleteJobRecord(Session& session, const JobRecord& record);

/// Keeps a row that a return took off its Job, beside the line of the stock history that tells of the return.
void KeepReturned(Session& session, const JobRecord& record, std::int64_t line);
/// Puts the row of that line back on its Job, with nothing used; its row number, 0 when none was kept or its number
/// has gone to another item.
std::int64_t PutBackJobRecord(Session& session, std::int64_t line);

/// The new number on all rows of the Job, on those that were returned, and on its Batches. Refused while one of these
/// is open.
Result<void> StoreJobNumber(Session& session, std::string_view number, std::string_view newNumber);

/// Refused for the row of a Batch that is open: it would be written over by what is on the bench.
Result<void> RequireBatchClosed(const Session& session, const JobRecord& record);

}  // namespace vellumark
