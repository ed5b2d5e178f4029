#include "cli/upgrade_output.h"

namespace vellumark::cli {
Json StepLinesJson(const std::vector<StepLine>& lines) {
  Json list = Json::array();
  for (const StepLine& line : lines)
    list.push_back({{"Step", line.Step},
                    {"Table", line.Table.empty() ? Json() : Json(line.Table)},
                    {"Count", line.Count},
                    {"What", line.What}});
  return list;
}

Json UpgradeJson(const UpgradeReport& report) {
  Json tables = Json::array();
  for (const UpgradeTable& table : report.tables)
    tables.push_back({{"Table", table.Table},
                      {"Read", table.Read},
                      {"Made", table.Made},
                      {"Left", table.Left},
                      {"Written", table.Written},
                      {"Mended", table.Mended}});
  Json sums = Json::array();
  for (const UpgradeSum& sum : report.sums)
    sums.push_back({{"What", sum.What}, {"Before", sum.Before}, {"After", sum.After}, {"Same", sum.Same()}});
  return {{"File", report.file.string()},
          {"Source", report.source.string()},
          {"FromVersion", report.fromVersion},
          {"ToVersion", report.toVersion},
          {"DryRun", report.dryRun},
          {"Report", report.text.empty() ? Json() : Json(report.text.string())},
          {"Balanced", report.Balanced()},
          {"Tables", tables},
          {"Sums", sums},
          {"Changes", StepLinesJson(report.changes)},
          {"Names", StepLinesJson(report.names)},
          {"Refused", StepLinesJson(report.refused)},
          {"Damaged", StepLinesJson(report.damaged)},
          {"Left", StepLinesJson(report.left)}};
}

}  // namespace vellumark::cli
