#pragma once

#include <string_view>

#include "core/session/acts.h"

namespace vellumark {

/// What giving a setting another value is, for the window that has it and for whoever names its key. Options, unless the
/// table has the key.
Act ActOfSetting(std::string_view key);

}  // namespace vellumark
