#include "core/reports/detail.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>

#include "core/base/text.h"
#include "core/reports/catalogue.h"

namespace vellumark {
namespace {

struct Pair {
  std::string_view summary;
  std::string_view detail;
};
constexpr std::array kPairs{Pair{"ProductionColorNameSummaryForm", "ProductionForm"},
                            Pair{"SummarizedProductionForm", "ProductionForm"},
                            Pair{"ProductionSummaryForm", "SummarizedProductionForm"},
                            Pair{"ConsumptionColorNameSummaryForm", "ConsumptionForm"},
                            Pair{"SummarizedConsumptionForm", "ConsumptionForm"},
                            Pair{"ConsumptionSummaryForm", "SummarizedConsumptionForm"},
                            Pair{"SummarizedBatchAdditionsForm", "BatchAdditionForm"},
                            Pair{"SummarizedJobUsageForm", "JobUsageForm"},
                            Pair{"JobUsageSummaryForm", "SummarizedJobUsageForm"},
                            Pair{"InventorySummaryForm", "InventoryForm"}};

bool CountsNoBatch(const BuiltReport& report, std::size_t row) {
  for (std::size_t i = 0; i < report.columns.size(); ++i)
    if (report.columns[i].key == "Batches") return CellText(report.columns[i], report.Cell(row, i)) == "0";
  return false;
}

}  // namespace

Result<std::optional<ReportDetail>> DetailOf(const Session& session, const ReportDefinition& definition,
                                             const BuiltReport& report, std::size_t row, const std::string& color,
                                             std::optional<ColorKind> kind) {
  const auto pair = std::ranges::find(kPairs, definition.window, &Pair::summary);
  if (pair == kPairs.end()) return std::nullopt;
  ReportDetail detail{.report = FindReport(pair->detail)};
  const RowTarget& target = report.targets.at(row);
  if (target.kind == RowTarget::Kind::Database) {
    if (session.FindDatabase(target.database) == nullptr) return std::nullopt;
    if (definition.subject == ReportSubject::Formula && CountsNoBatch(report, row))
      return Refuse("Color Found Batch Summary",
                    fmt::format("There are no batches in the {} database.", target.database));
    if (definition.subject == ReportSubject::Color && CountsNoBatch(report, row))
      return Refuse("Color Consumption Summary",
                    fmt::format("{} wasn't consumed in the {} database.", color, target.database));
    if (!EqualNoCase(target.database, session.CurrentDatabase)) return std::nullopt;
    if (definition.subject == ReportSubject::None) return detail;
    detail.color = color;
    detail.kind = kind;
    return detail;
  }
  detail.color = target.name;
  detail.kind = target.kind == RowTarget::Kind::Mix ? ColorKind::Mix : ColorKind::Basic;
  return detail;
}

}  // namespace vellumark
