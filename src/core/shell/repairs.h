#pragma once

#include <functional>

#include "core/backup/deep_check.h"
#include "core/backup/repair.h"
#include "core/session/session.h"
#include "core/shell/opening.h"

namespace vellumark {

/// Repairs the session's Data File, after asking, and opens it again: with the same Database and user when it was open,
/// else with login. A file that cannot be opened is repaired too; where its users can be read one of them has to log in
/// before anything is replaced. `closeWindows` closes the child windows and may decline. Refused to a user without the
/// right, for archive and backup copies, and where nothing can be read; the file is then as it was.
Result<RepairReport> RepairDataFile(Session& session, OpeningWindows& windows,
                                    const std::function<bool()>& closeWindows);

/// Every row of the open file against every rule. Changes nothing; tells when the file is sound.
CheckAnswer CheckOpenDataFile(Session& session);

/// Takes the rows that another program changed as they stand, after asking; refused as AcceptStrayRows is. Tells when the
/// file is sound by that.
Result<AcceptedRows> AcceptHandEdits(Session& session);
bool HasHandEdits(const CheckAnswer& found);

}  // namespace vellumark
