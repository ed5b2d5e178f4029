#pragma once

#include <optional>
#include <string_view>

#include "core/datafile/color_kind.h"
#include "core/session/session.h"

namespace vellumark {

/// The parts of a colour's swatch that are to change, each 0 to 255.
struct SwatchChange {
  std::optional<int> Red;
  std::optional<int> Green;
  std::optional<int> Blue;
  bool clears = false;  ///< the colour has none any more
  bool Any() const { return Red || Green || Blue || clears; }
};

/// One part as typed: a whole number from 0 to 255.
Result<int> ReadSwatchPart(std::string_view field, std::string_view typed);

/// Gives a colour of the current Database its swatch by hand. Black is stored as 1, 1, 1: zeros are no swatch. Refused
/// for a colour whose swatch comes from a guide.
Result<void> SetSwatch(Session& session, ColorKind kind, std::string_view name, const SwatchChange& change);

}  // namespace vellumark
