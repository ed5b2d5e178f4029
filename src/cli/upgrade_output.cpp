#include "cli/upgrade_output.h"

namespace vellumark::cli {
namespace {

Json UpgradeLinesJson(const std::vector<UpgradeLine>& lines) {
  Json list = Json::array();
  for (const UpgradeLine& line : lines)
    list.push_back({{"Step", line.Step},
                    {"Table", line.Table.empty() ? Json() : Json(line.Table)},
                    {"Count", line.Count},
                    {"What", line.What}});
  return list;
}

}  // namespace

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
          {"Changes", UpgradeLinesJson(report.changes)},
          {"Names", UpgradeLinesJson(report.names)},
          {"Refused", UpgradeLinesJson(report.refused)},
          {"Damaged", UpgradeLinesJson(report.damaged)},
          {"Left", UpgradeLinesJson(report.left)}};
}

}  // namespace vellumark::cli
