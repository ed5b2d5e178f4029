#pragma once

#include <string_view>

#include "core/base/refusal.h"

namespace vellumark {

/// Whether a value can stand behind a key of the settings: a switch is 0 or 1, a unit 1 to 4, a width a whole number.
/// Texts, and keys that nothing here knows, take any value that the file can hold. The refusal tells what the key
/// means.
Result<void> CheckSettingValue(std::string_view key, std::string_view value);

}  // namespace vellumark
