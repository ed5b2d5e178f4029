#pragma once

#include "cli/frame.h"
#include "core/session/acts.h"

namespace vellumark::cli {

/// For verbs that open no Data File but change what all of the machine share: when the stored default Data File has
/// users, the user of the options must be one of them and hold the rights of the act; to look, nobody need be one
/// unless the verb works `asUser`, whose rights then hold. A default that is gone guards nothing; one that cannot be
/// read is a Failure, since nobody can tell then.
Result<void> RequireInDefaultFile(Context& context, Act act, bool asUser);

}  // namespace vellumark::cli
