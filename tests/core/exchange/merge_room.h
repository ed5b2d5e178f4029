#pragma once

#include <gtest/gtest.h>

#include "core/colors/additive_sets.h"
#include "core/colors/basics.h"
#include "core/exchange/formula_import.h"
#include "core/exchange/formula_sources.h"
#include "support/ink_room.h"
#include "support/snapshot.h"

namespace vellumark::test {

/// Another shop: its Data File, which nobody has open while it is read.
struct OtherShop : InkRoom {
  FormulaTable Read(const Session& reader) {
    session.DataFileDB.reset();
    auto table = ReadDataFileFormulas(reader, session.DataFileName, "ink");
    EXPECT_TRUE(table) << table.error().text;
    return table.value_or(FormulaTable{});
  }
};

/// A set with its percentages.
inline void AddSet(InkRoom& room, const std::string& name, const Recipe& rows) {
  AdditiveSet set;
  set.SetName = name;
  set.SetRows(rows);
  room.AddRow(schema::Additives, AdditiveSetCells(set));
}

inline FormulaTable TableOfRecipes(const std::vector<std::pair<std::string, Recipe>>& formulas) {
  FormulaTable table{.source = "in.mfe", .database = "OTHER"};
  int line = 1;
  for (const auto& [name, recipe] : formulas)
    table.formulas.push_back({.line = ++line, .name = name, .recipe = recipe});
  return table;
}

inline MergePlan PlanOf(Session& session, FormulaTable table, const MergeOptions& options = {}) {
  auto plan = PlanMerge(session, std::move(table), {}, options);
  EXPECT_TRUE(plan) << plan.error().text;
  return *std::move(plan);
}

}  // namespace vellumark::test
