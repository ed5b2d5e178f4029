#pragma once

#include <string>

#include "core/backup/archive.h"

namespace vellumark {

/// Moves the Batches and Job Records of five years ago and earlier into an archive beside the Data File, and tells how many
/// under "Finished Archiving". The file is compacted afterwards; that this failed is told with it. Child windows are closed by
/// the caller. Refused without the right to back up, in an archive or backup copy, while a Batch is open and when there is
/// nothing to move. What moved.
Result<ArchivePreview> ArchiveDataFile(Session& session);

/// At the opening: what a process that died left of an archive goes. What fails is told, and ends nothing.
void UndoUnfinishedArchiveOrTell(Session& session);

}  // namespace vellumark
