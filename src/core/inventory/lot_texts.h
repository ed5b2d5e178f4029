#pragma once

#include <string>
#include <string_view>

#include "core/base/refusal.h"

namespace vellumark {

// A lot's number, its location and its container.

/// What the fields of a lot can hold and its labels and lists can show; `field` is the control at fault.
Result<void> CheckLotText(std::string_view text, std::string field);
/// Equal in any case, that of accented letters included: a scanner's texts come in capitals.
bool SameLotText(std::string_view a, std::string_view b);

}  // namespace vellumark
