#include "core/reports/catalogue.h"

#include "core/base/text.h"
#include "core/reports/families.h"

namespace vellumark {

const std::vector<ReportDefinition>& ReportCatalogue() {
  static const std::vector<ReportDefinition> catalogue = [] {
    std::vector<ReportDefinition> reports;
    AddColorReports(reports);
    AddStockReports(reports);
    AddRecycleReports(reports);
    AddProductionReports(reports);
    AddConsumptionReports(reports);
    AddAdditionReports(reports);
    AddBatchListReports(reports);
    AddJobReports(reports);
    AddStockHistoryReports(reports);
    return reports;
  }();
  return catalogue;
}

const ReportDefinition* FindReport(std::string_view key) {
  for (const ReportDefinition& report : ReportCatalogue())
    if (EqualNoCase(report.key, key) || EqualNoCase(report.window, key)) return &report;
  return nullptr;
}

}  // namespace vellumark
