#pragma once

#include <filesystem>
#include <memory>
#include <stdexcept>

#include "core/base/files.h"
#include "core/exchange/formula_merge.h"
#include "desktop/kit/window_list.h"

namespace vellumark::test {

/// What the dialogs of an import are opened with: a file of a shop's own columns, written into `folder`, and a recipe of
/// the formula TARGET that differs from the one here.
inline desktop::Arguments OwnColumns(const std::filesystem::path& folder) {
  const std::filesystem::path path = folder / "own.csv";
  ReplaceFile(path, "Farbe;Tinte;Anteil\nTARGET;RED;100\n");
  return {{"File", path.string()}};
}
inline desktop::Arguments ComparedTarget(Session& session) {
  FormulaTable table{.source = "in.mfe", .database = "SHOP"};
  table.formulas.push_back({.line = 2, .name = "TARGET", .recipe = {{"RED", 75}, {"WHITE", 25}}});
  auto plan = PlanMerge(session, std::move(table), {});
  if (!plan) throw std::logic_error(plan.error().text);
  return {{"Plan", std::shared_ptr<const MergePlan>(std::make_shared<MergePlan>(*std::move(plan)))}, {"Place", 0}};
}

}  // namespace vellumark::test
