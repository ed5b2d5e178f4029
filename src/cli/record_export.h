#pragma once

#include "cli/frame.h"
#include "core/exchange/record_export.h"

namespace vellumark::cli {

/// The verb `export` of a noun: records by number or by date into a tab text file.
void AddRecordExport(CLI::App& noun, Commands& commands, const std::string& what, bool jobs);

}  // namespace vellumark::cli
