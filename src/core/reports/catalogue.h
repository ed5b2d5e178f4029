#pragma once

#include <string_view>
#include <vector>

#include "core/reports/definition.h"

namespace vellumark {

/// Every report, in the order of the menu.
const std::vector<ReportDefinition>& ReportCatalogue();
/// By its key or its window, in any case; nullptr when there is none.
const ReportDefinition* FindReport(std::string_view key);

}  // namespace vellumark
