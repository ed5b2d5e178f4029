#pragma once

#include <string>

#include "cli/frame.h"
#include "core/batch/open.h"
#include "core/batch/record.h"

namespace vellumark::cli {

/// The answer of calc and save.
Json BatchJson(const Session& session, const BatchRecord& record);
std::string BatchText(const Session& session, const BatchRecord& record);

/// A stored Batch: its fields, its rows, where they were taken from, its jobs.
Json StoredBatchJson(const Session& session, const BatchRecord& record);
std::string StoredBatchText(const Session& session, const BatchRecord& record);

}  // namespace vellumark::cli
