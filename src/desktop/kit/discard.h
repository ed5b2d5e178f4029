#pragma once

#include "core/session/session.h"

namespace vellumark::desktop {

/// Asks whether what was typed may be given up; No is the default.
bool MayDiscard(const Session& session);

}  // namespace vellumark::desktop
