#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "core/batch/dialogs.h"

namespace vellumark {

// Whether stock covers what a Batch takes. Of Unlotted Inventory that runs out only what is there is taken, and only that
// comes back one day; the operator hears of it before the save.

inline constexpr std::string_view kShortStockTitle = "Batch Window - Inventory Too Low";

/// The colours that stock does not cover, in the order of the lines. Those of which nothing at all is in stock are not
/// kept there and are left out.
std::vector<ShortStock> FindShortStock(Session& session, const BatchRecord& record);
/// What the operator is told of them.
std::string ShortStockText(const Session& session, const std::vector<ShortStock>& lines);

/// True when lots are still to be chosen for a line, and there are some.
bool HasUnchosenLots(const Session& session, const BatchRecord& record);

}  // namespace vellumark
