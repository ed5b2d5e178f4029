#pragma once

#include <string_view>

#include "core/session/session.h"

namespace vellumark {

/// One key of the settings given another value, as the windows that have it would: for the same right, checked by the
/// key's type and range, with what hangs on it. DecimalPlaces rewrites the unit costs of the open Data File; a unit tells what it means for what
/// is on file. Refuses a key that the settings do not have. False when the operator declined and nothing changed.
Result<bool> ChangeSetting(Session& session, std::string_view key, std::string_view value);

}  // namespace vellumark
