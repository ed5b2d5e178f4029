#pragma once

#include <optional>
#include <string_view>

#include "core/datafile/color_kind.h"
#include "core/session/session.h"

namespace vellumark {

/// How a colour looks on a screen, each part 0 to 255.
struct Ink {
  int Red = 0;
  int Green = 0;
  int Blue = 0;
  bool operator==(const Ink&) const = default;
};

/// The ink of a colour of a Database, of the current one when it is empty. Nothing for one that has no swatch: no row,
/// or one whose three parts were never set.
std::optional<Ink> InkOf(const Session& session, ColorKind kind, std::string_view name,
                         const std::string& database = {});

}  // namespace vellumark
