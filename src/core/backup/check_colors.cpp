#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <span>

#include "core/backup/check_run.h"
#include "core/base/number.h"
#include "core/base/text.h"
#include "core/colors/additive_sets.h"
#include "core/colors/figure_book.h"
#include "core/colors/normalise.h"
#include "core/datafile/pending_rollups.h"
#include "core/datafile/references.h"

// What holds of recipes, of the figures that follow from them, and of the texts by which they are searched.

namespace vellumark {

void ForEachCheckedFormula(CheckRun& run, const std::string& database,
                           const std::function<void(const CheckedFormula&)>& take) {
  constexpr int kFirst = 7;
  std::string columns = "RowKey, Color_Name, Color_Set, AddSetName, BasicCost, BasicVOC, BasicHAP";
  for (int n = 0; n < schema::kIngredientSlots; ++n) columns += ", " + schema::Numbered("BC", n);
  for (int n = 0; n < schema::kIngredientSlots; ++n) columns += ", " + schema::Numbered("BQ", n);
  const std::string table = TableName(database, schema::Mix);
  Statement rows = run.file.Prepare(fmt::format("SELECT {} FROM {}", columns, Quoted(table)));
  WalkRows(run, rows, RowCount(run.file, table), [&](const Statement& row) {
    CheckedFormula formula{row.Whole(0),  row.TextView(1), row.TextView(2), row.TextView(3),
                           row.Single(4), row.Single(5),   row.Single(6)};
    for (int n = 0; n < schema::kIngredientSlots; ++n) {
      const auto slot = static_cast<std::size_t>(n);
      formula.BC[slot] = row.TextView(kFirst + n);
      formula.BQ[slot] = row.Single(kFirst + schema::kIngredientSlots + n);
    }
    take(formula);
  });
}

const Recipe& CheckedFormula::Filled() const {
  if (filled.empty())
    for (std::size_t n = 0; n < BC.size() && !BC[n].empty(); ++n)
      filled.push_back({std::string(BC[n]), ShownAmount(BQ[n])});
  return filled;
}

FormulaLook LookAtFormulaSlots(CheckRun& run, const std::string& database) {
  return [&run, table = TableName(database, schema::Mix)](const CheckedFormula& formula) {
    const auto found = [&](std::string what) { run.Found(table, formula.row, formula.Color_Name, std::move(what)); };
    bool gap = false;
    for (std::size_t n = 0; n < formula.BC.size(); ++n) {
      const std::string_view name = formula.BC[n];
      if (name.empty()) {
        gap = true;
        if (formula.BQ[n] != 0) found(fmt::format("BQ{} is {} without an ingredient.", n, FigureText(formula.BQ[n])));
        continue;
      }
      if (gap) found(fmt::format("BC{} is filled behind an empty slot.", n));
      if (formula.BQ[n] < 0) found(fmt::format("BQ{} is {}, below 0.", n, FigureText(formula.BQ[n])));
      for (std::size_t k = 0; k < n; ++k)
        if (EqualNoCase(formula.BC[k], name)) found(fmt::format("{} is an ingredient twice.", name));
    }
  };
}

FormulaLook LookAtIngredients(CheckRun& run, const std::string& database) {
  const auto basic = std::make_shared<Statement>(run.file.Prepare(
      fmt::format("SELECT 1 FROM {} WHERE Color_Name = ? LIMIT 1", QuotedTable(database, schema::Basic))));
  // Recipes draw on few inks: each name is looked up once.
  const auto known = std::make_shared<std::unordered_map<std::string, bool>>();
  return [&run, basic, known, table = TableName(database, schema::Mix)](const CheckedFormula& formula) {
    for (const std::string_view name : formula.BC) {
      if (name.empty()) continue;
      const auto [place, isNew] = known->try_emplace(std::string(name), true);
      if (isNew) {
        basic->Bind(1, name);
        place->second = basic->Step();
        basic->Reset();
      }
      if (!place->second)
        run.Found(table, formula.row, formula.Color_Name, fmt::format("The ingredient {} does not exist.", name));
    }
  };
}

FormulaLook LookAtColorSets(CheckRun& run, const std::string& database) {
  return [&run, table = TableName(database, schema::Mix)](const CheckedFormula& formula) {
    std::string_view rest = formula.Color_Set;
    bool same = true;
    for (const std::string_view name : formula.BC) {
      if (name.empty()) continue;
      same = same && rest.size() >= name.size() + 2 && rest.front() == '<' && rest.substr(1, name.size()) == name &&
             rest[name.size() + 1] == '>';
      if (!same) break;
      rest.remove_prefix(name.size() + 2);
    }
    if (!same || !rest.empty())
      run.Found(table, formula.row, formula.Color_Name,
                fmt::format("Color_Set is {}, not that of the ingredients.",
                            formula.Color_Set.empty() ? std::string_view("empty") : formula.Color_Set));
  };
}

FormulaLook LookAtFormulaTotals(CheckRun& run, const std::string& database) {
  return [&run, database, table = TableName(database, schema::Mix)](const CheckedFormula& formula) {
    const Recipe& recipe = formula.Filled();
    const double total = TotalOf(recipe);
    if (recipe.empty() || total == 100) return;
    if (!formula.AddSetName.empty()) {
      const auto set = ReadAdditiveSet(run.session, formula.AddSetName, database);
      if (set && total == RoundTo(100 + TotalOf(set->Rows()), 3)) return;
    }
    run.Found(table, formula.row, formula.Color_Name, fmt::format("The formula totals {}.", Fixed(total, 3)));
  };
}

FormulaLook LookAtRollUps(CheckRun& run, const std::string& database) {
  constexpr static std::array kEmissionDecimals{3};
  RollUpWanted stale;
  for (const PendingRollUps& pending : ReadPendingRollUps(run.file))
    if (EqualNoCase(pending.database, database)) stale = pending.stale;
  return [&run, stale, book = std::make_shared<FigureBook>(run.session, database),
          table = TableName(database, schema::Mix)](const CheckedFormula& formula) {
    // The accuracy is a setting of the machine; a file that was written under another one is no worse for it.
    const std::array costDecimals{run.session.DecimalPlaces, 2, 3, 4};
    const RolledUp sum = book->Sum(formula.Filled());
    const auto check = [&](std::string_view field, float stored, float rolledUp, std::span<const int> decimals) {
      if (std::ranges::none_of(decimals, [&](int places) { return stored == RoundSingle(rolledUp, places); }))
        run.Found(table, formula.row, formula.Color_Name,
                  fmt::format("{} is {}; its ingredients give {}.", field, ShortestText(stored),
                              ShortestText(RoundSingle(rolledUp, decimals.front()))));
    };
    if (!stale.cost) check("BasicCost", formula.BasicCost, sum.BasicCost, costDecimals);
    if (!stale.voc) check("BasicVOC", formula.BasicVOC, sum.BasicVOC, kEmissionDecimals);
    if (!stale.hap) check("BasicHAP", formula.BasicHAP, sum.BasicHAP, kEmissionDecimals);
  };
}

namespace {

// A search text against the names of the slots that it is built from.
void CheckSet(CheckRun& run, const std::string& table, std::string_view setField, std::string_view nameField, int slots,
              std::string_view keyField) {
  std::string columns = fmt::format("RowKey, {}, {}", Quoted(keyField), Quoted(setField));
  for (int n = 0; n < slots; ++n) columns += ", " + Quoted(schema::Numbered(nameField, n));
  Statement rows = run.file.Prepare(fmt::format("SELECT {} FROM {}", columns, Quoted(table)));
  WalkRows(run, rows, RowCount(run.file, table), [&](const Statement& row) {
    std::vector<std::string> names;
    for (int n = 0; n < slots; ++n) names.push_back(row.Text(3 + n));
    const std::string right = NameSet(names);
    if (row.TextView(2) != right)
      run.Found(table, row.Whole(0), row.TextView(1),
                fmt::format("{} is {}, not {}.", setField, row.TextView(2), right));
  });
}

}  // namespace

void CheckAdditiveSets(CheckRun& run) {
  for (const std::string& database : run.Databases()) {
    const std::string table = TableName(database, schema::Additives);
    CheckSet(run, table, "SetList", "Add_Name", schema::kSetSlots, "SetName");
    Statement basic = run.file.Prepare(
        fmt::format("SELECT Additive FROM {} WHERE Color_Name = ? LIMIT 1", QuotedTable(database, schema::Basic)));
    const auto fault = [&](const AdditiveSet& set, std::string what) {
      run.Found(table, set.key, set.SetName, std::move(what));
    };
    for (const AdditiveSet& set : ListAdditiveSets(run.session, database)) {
      const Recipe rows = set.Rows();
      for (std::size_t i = 0; i < rows.size(); ++i) {
        const Ingredient& line = rows[i];
        basic.Bind(1, line.name);
        if (!basic.Step()) {
          fault(set, fmt::format("The Additive {} does not exist.", line.name));
        } else if (!basic.Bool(0)) {
          fault(set, fmt::format("{} is no Additive.", line.name));
        }
        basic.Reset();
        if (!(line.amount > 0)) fault(set, fmt::format("{} has {} percent.", line.name, FigureText(line.amount)));
        for (std::size_t k = 0; k < i; ++k)
          if (EqualNoCase(rows[k].name, line.name)) fault(set, fmt::format("It holds {} twice.", line.name));
      }
    }
  }
}

void CheckFormulaSets(CheckRun& run) {
  for (const std::string& database : run.Databases()) {
    const std::string table = TableName(database, schema::Mix);
    Statement rows = run.file.Prepare(fmt::format(
        "SELECT RowKey, Color_Name, AddSetName FROM {} WHERE AddSetName <> '' AND AddSetName NOT IN (SELECT "
        "SetName FROM {} WHERE SetName IS NOT NULL)",
        Quoted(table), QuotedTable(database, schema::Additives)));
    run.FoundRows(table, rows, [](const Statement& row) {
      return fmt::format("Its Additive Set {} does not exist.", row.TextView(2));
    });
  }
}

void CheckDesignSets(CheckRun& run) {
  if (run.HasGlobalTables()) CheckSet(run, schema::Designs.name, "IngSet", "IngName", schema::kDesignSlots, "DesignID");
}

}  // namespace vellumark
