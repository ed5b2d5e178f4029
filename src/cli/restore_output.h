#pragma once

#include "cli/output.h"
#include "core/shell/backups.h"

namespace vellumark::cli {

/// What a restore did: what it kept, the photos that came with the backup, what became of one of an older version, what
/// had been made since.
Json RestoredJson(const RestoredDataFile& restored);

}  // namespace vellumark::cli
