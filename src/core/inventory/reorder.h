#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "core/datafile/color_kind.h"
#include "core/session/session.h"

namespace vellumark {

// `AdjustReorderForm`: the reorder point of one colour.

/// Which colour of that name is meant; a name that both a Basic Color and a formula bear is asked for, unless `wanted`
/// tells. Refused when there is none.
Result<ColorKind> ChooseReorderColor(const Session& session, const std::string& name,
                                     std::optional<ColorKind> wanted = {});

/// A number from 0 to 99999, three decimals.
Result<float> ReadReorderPoint(std::string_view typed);

/// Writes the reorder point; one that the stock has reached is warned of first, and written all the same.
Result<void> SaveReorderPoint(Session& session, ColorKind kind, const std::string& name, std::string_view typed);

}  // namespace vellumark
