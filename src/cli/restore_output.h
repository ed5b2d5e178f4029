#pragma once

#include "cli/output.h"
#include "core/shell/backups.h"

namespace vellumark::cli {

Json CountsJson(const DatabaseProof& database);

/// What a restore did: what it kept, the photos that came with the backup, what became of one of an older version, what
/// had been made since.
Json RestoredJson(const RestoredDataFile& restored);
/// The same for people, with every change of stock of what had been made since.
std::string RestoredText(const RestoredDataFile& restored);

}  // namespace vellumark::cli
