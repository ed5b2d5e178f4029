#pragma once

#include <string_view>

#include "core/datafile/color_kind.h"
#include "core/session/session.h"

namespace vellumark {

/// One figure of a colour's row, such as "PurchaseCost", read live; 0 when the row is missing. `database` empty means
/// the current one.
float ColorFigure(const Session& session, ColorKind kind, std::string_view name, std::string_view field,
                  std::string_view database = {});

}  // namespace vellumark
