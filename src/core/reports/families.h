#pragma once

#include <vector>

#include "core/reports/definition.h"

namespace vellumark {

// The definitions of each family, in the order of the catalogue.

void AddColorReports(std::vector<ReportDefinition>& catalogue);
void AddStockReports(std::vector<ReportDefinition>& catalogue);
void AddRecycleReports(std::vector<ReportDefinition>& catalogue);
void AddProductionReports(std::vector<ReportDefinition>& catalogue);
void AddConsumptionReports(std::vector<ReportDefinition>& catalogue);
void AddAdditionReports(std::vector<ReportDefinition>& catalogue);
void AddBatchListReports(std::vector<ReportDefinition>& catalogue);
void AddJobReports(std::vector<ReportDefinition>& catalogue);
void AddStockHistoryReports(std::vector<ReportDefinition>& catalogue);

}  // namespace vellumark
