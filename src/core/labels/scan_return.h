#pragma once

#include <map>
#include <vector>

#include "core/jobs/job_record.h"
#include "core/labels/scan_records.h"
#include "core/session/session.h"

namespace vellumark {

/// The row of its Job that a record with a job number would give back from, checked whole. `taken` is what records
/// before it would take from a row.
Result<JobRecord> CheckScannedReturn(const Session& session, const ScanRecord& record,
                                     const std::map<std::int64_t, double>& taken = {});
/// The rows of its Job that have its colour, for the operator to pick one.
std::vector<JobRecord> RowsToPick(const Session& session, const ScanRecord& record);

/// Checks a record with a job number whole and gives its quantity back from the Job to stock: row and stock in one
/// transaction. At most what is still out can come back; when all of it does, the row goes. What became of it stands in
/// the record, and what the look-ups found in its empty values.
void ReturnScannedInk(Session& session, ScanRecord& record);

/// A record by what it says: a return where it names a Job, else stock that is added. Nothing is done for a record that
/// was successful already.
void BookScan(Session& session, ScanRecord& record);

}  // namespace vellumark
