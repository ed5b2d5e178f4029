#pragma once

#include <cstdint>
#include <optional>

#include "core/batch/record.h"
#include "core/batch/takings.h"

namespace vellumark {

// A row of `<DB>_Batch` as a record. For the procedures of this room.

/// The lines of a stored Batch; nothing when there is no such row.
std::optional<StoredBatchLines> ReadStoredLines(const Session& session, std::int64_t key);

/// The record of a stored Batch in the state Edit, against stock as it is now. `takings` are those of the Batch;
/// `stockReturned`: they were handed back to stock, so that what it made is none for itself.
std::optional<BatchRecord> LoadBatchRow(Session& session, std::int64_t key, const std::vector<BatchTaking>& takings,
                                        bool stockReturned);

/// 0 when there is no such Batch.
std::int64_t BatchRowOf(const Session& session, std::int32_t batchNo);

}  // namespace vellumark
