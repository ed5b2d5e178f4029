#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "core/base/table.h"
#include "core/datafile/undo_log.h"
#include "core/session/session.h"

namespace vellumark {

/// What can be taken back in this file, the latest first: postings, adjustments, saved Batches and colours, renames,
/// the work of the bulk tools, imports, deletions (see Undoable). Acts of Databases that are gone and imports that were
/// taken back are left out.
std::vector<UndoEntry> ListUndo(const Session& session);
TableOf<UndoEntry> UndoColumns();

/// Takes an act back as its opposite, in one transaction: the rows as they stood before, and for each figure of stock a
/// line of the history that moves as much the other way. 0 is the latest one. Refused, and told why, when something
/// else was built on it since, when it wrote more than is kept, and to a user without the right of the act. Gives back
/// what was taken back, in words.
Result<std::string> TakeBackAct(Session& session, std::int64_t id);

}  // namespace vellumark
