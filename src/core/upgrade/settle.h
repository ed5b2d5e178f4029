#pragma once

#include <string>
#include <vector>

#include "core/upgrade/ladder.h"

namespace vellumark {

/// Writes all that the ladder has by now into a new file, in the order of the layout, each value through its field. What
/// does not fit is mended and counted, what has no place is told. The report's tables get their figures.
void SettleRows(UpgradeRun& run, Database& fresh, int fileVersion, UpgradeReport& report);

}  // namespace vellumark
