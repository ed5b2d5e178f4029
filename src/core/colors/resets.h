#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "core/datafile/color_kind.h"
#include "core/session/session.h"

namespace vellumark {

// Mass resets: one figure of every item of the current Database. Each reads a typed value, refuses one out of range,
// writes in one transaction and sets the session's flag of the figure.

Result<void> ResetBasicCosts(Session& session, std::string_view newValue);
Result<void> ResetMixCosts(Session& session, std::string_view newValue);
/// PurchaseCost of every formula becomes its BasicCost, plus a markup in percent, plus a fixed amount, each step at the
/// decimals of costs, held between 0 and 99999. Pending roll-ups run first.
Result<void> ResetMixCostsFromBasics(Session& session, std::string_view markup, std::string_view fixed);

/// Both figures of every Basic Color or every formula, or the one that is given. Both are read before either is
/// written; a refusal calls them "VOC" and "HAP".
struct EmissionReset {
  std::optional<std::string> VOC{};
  std::optional<std::string> HAP{};
};
Result<void> ResetEmissions(Session& session, ColorKind kind, const EmissionReset& reset);

/// Sets the decimals of unit costs to 2, 3 or 4 and rewrites every BasicCost with them. A smaller number is asked
/// about; false when the operator declined and nothing changed. Refuses a user who may not change Options.
Result<bool> ChangeDecimalPlaces(Session& session, int decimalPlaces);

}  // namespace vellumark
