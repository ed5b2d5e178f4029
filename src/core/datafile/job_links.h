#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "core/datafile/engine.h"

namespace vellumark {

// What other tables repeat of Job Records. All of it within the caller's transaction, after the rows themselves.

/// What stands for the job number of a Batch that is shared between jobs.
inline constexpr std::string_view kSplitJobs = "- SPLIT -";
/// `JobRecords.BatchNo` numbers Batches up to it, and items that were taken from stock above it.
inline constexpr std::int32_t kLastJobBatch = 1'000'000;

/// The job of a Batch as its rows have it: none, the number of the only one, or "- SPLIT -".
void StoreBatchJob(Database& file, std::string_view database, std::int32_t batchNo);
/// What was returned of a Batch lies under this reference now: on the Batch and on its rows.
void StoreBatchLot(Database& file, std::string_view database, std::int32_t batchNo, std::int32_t ref);

}  // namespace vellumark
