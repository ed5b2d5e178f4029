#pragma once

#include "cli/output.h"
#include "core/upgrade/upgrade_report.h"

namespace vellumark::cli {

/// What was done, or not, step by step.
Json StepLinesJson(const std::vector<StepLine>& lines);
/// What an update of a Data File did, row by row and sum by sum.
Json UpgradeJson(const UpgradeReport& report);

}  // namespace vellumark::cli
