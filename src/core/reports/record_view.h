#pragma once

#include "core/base/refusal.h"
#include "core/base/sheet.h"
#include "core/session/session.h"

namespace vellumark {

/// A Batch or a colour of any Database of the file, to be read: its fields, and of a Batch or formula its lines.
/// Refuses a record or a Database that is no longer there.
Result<Sheet> RecordSheet(Session& session, const RowTarget& target);

}  // namespace vellumark
