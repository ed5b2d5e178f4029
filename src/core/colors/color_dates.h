#pragma once

#include <optional>
#include <string_view>

#include "core/session/session.h"

namespace vellumark {

// When a Batch last made a formula or consumed a Basic Color of the current Database; nothing when none is left that
// did. Within the caller's transaction.

void StoreLastProduced(Session& session, std::string_view formula, const std::optional<DateTime>& when);
void StoreLastConsumed(Session& session, std::string_view basic, const std::optional<DateTime>& when);

}  // namespace vellumark
