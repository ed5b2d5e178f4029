#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/base/table.h"
#include "core/jobs/ink_estimator.h"

namespace vellumark {

// From a Design to the bench: what a new run of it needs, what stock has of that, and what is to be made.

/// How the quantities of a run are found.
struct RunWish {
  std::string impressions;
  bool estimate = false;  ///< by size and coverage, sheetfed; else the stored quantities, as the impressions go
  int ink = 2;            ///< of the estimate, Spot Color
  int stock = 0;
};

/// One colour of the run, in the inventory unit.
struct RunNeed {
  DesignColor color;
  double needed = 0;
  double stock = 0;   ///< Unlotted and lots, none on consignment
  double toMake = 0;  ///< what is not there
  bool known = true;  ///< the colour is in its Database
};

/// Refused: a number of impressions that is none; stored quantities without impressions that they are for; an estimate
/// without a size. A colour without a coverage is estimated as if it covered all.
Result<std::vector<RunNeed>> NeedsOfRun(const Session& session, const Design& design, const RunWish& wish);
TableOf<RunNeed> RunNeedColumns(const Session& session);
/// What is to be made, as the quantity of a Batch in the unit of Batches: rounded up to its three decimals.
std::string BatchQuantityText(const Session& session, const RunNeed& need);

}  // namespace vellumark
