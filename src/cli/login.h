#pragma once

#include "cli/frame.h"
#include "core/session/rights.h"

namespace vellumark::cli {

/// For verbs that change what all Data Files of the machine share: when the stored default Data File has users, the
/// user of the options must be one of them and hold the right. A default that is gone guards nothing; one that cannot
/// be read is a Failure, since nobody can tell then.
Result<void> RequireRightInDefaultFile(Context& context, CommandRight right);

}  // namespace vellumark::cli
