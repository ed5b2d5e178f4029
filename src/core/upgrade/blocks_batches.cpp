#include <fmt/format.h>

#include <array>
#include <unordered_map>
#include <unordered_set>

#include "core/base/text.h"
#include "core/datafile/line_kind.h"
#include "core/upgrade/ladder.h"

// The blocks that change recipes and Batches.

namespace vellumark {
namespace {

using schema::Numbered;

std::string BatchTable(const std::string& database) {
  return TableOfDatabase(database, "_Batch");
}

std::unordered_set<std::string> NamesIn(UpgradeRun& run, const std::string& table) {
  std::unordered_set<std::string> names;
  if (!run.Has(table)) return names;
  Statement row = run.file.Prepare(fmt::format("SELECT {} FROM {}", run.Sql(table, "Color_Name"), run.From(table)));
  while (row.Step()) names.insert(NameKey(row.TextView(0)));
  return names;
}

void AddToBatches(UpgradeRun& run, std::string_view field, const std::string& sql, std::string what) {
  run.ForEachDatabase([&](const std::string& database) {
    const std::string table = BatchTable(database);
    if (!run.Has(table) || run.Has(table, field)) return;
    run.Doing(fmt::format("Couldn't add {} field to {}", field, table));
    run.Add(table, field, sql);
    if (!what.empty()) run.Changed(table, what, run.Rows(table));
  });
}

}  // namespace

void AddIngredientTypes(UpgradeRun& run) {
  run.ForEachDatabase([&](const std::string& database) {
    const std::string table = BatchTable(database);
    if (!run.Has(table)) return;
    run.Doing("Couldn't add IngType field to " + table);
    const int first = run.First(table, "Ingredient");
    const int flags = run.First(table, "IsMix");
    for (int n = 0; n < run.Count(table, "Ingredient"); ++n)
      run.Add(table, Numbered("IngType", first + n),
              fmt::format("CASE WHEN COALESCE({}, '') = '' THEN 0 WHEN COALESCE({}, 0) <> 0 THEN {} ELSE {} END",
                          run.Sql(table, Numbered("Ingredient", first + n)), run.Sql(table, Numbered("IsMix", flags + n)),
                          static_cast<int>(LineKind::Mix), static_cast<int>(LineKind::Basic)));
    run.Doing("Couldn't remove IsMix field from " + table);
    run.RemoveFamily(table, "IsMix");
    run.Changed(table, "IngType tells what IsMix told", run.Rows(table));
  });
}

void AddCostModels(UpgradeRun& run) {
  AddToBatches(run, "CostModelType", "0", "CostModelType is 0: costs by the ingredients");
  AddToBatches(run, "JobNumber", "''", {});
  AddToBatches(run, "ShortNote", "''", {});
}

void WidenRecipes(UpgradeRun& run) {
  run.ForEachDatabase([&](const std::string& database) {
    const auto widen = [&](const std::string& table, std::string_view word, int slots, const std::string& sql) {
      run.Doing(fmt::format("Couldn't add {} field to {}", word, table));
      run.AddFamily(table, word, run.First(table, word), slots, sql);
    };
    const std::string mix = TableOfDatabase(database, "_Mix");
    const std::string batch = BatchTable(database);
    widen(mix, "BC", schema::kIngredientSlots, "''");
    widen(mix, "BQ", schema::kIngredientSlots, "0");
    widen(batch, "Ingredient", schema::kBatchLines, "''");
    widen(batch, "Amount", schema::kBatchLines, "0");
    widen(batch, "IngType", schema::kBatchLines, "0");
    run.Changed(mix, "recipes have room for 15 ingredients", run.Rows(mix));
    run.Changed(batch, "Batches have room for 20 lines", run.Rows(batch));
  });
}

void SortBasics(UpgradeRun& run) {
  run.ForEachDatabase([&](const std::string& database) {
    const std::string table = TableOfDatabase(database, "_Basic");
    if (!run.Has(table) || run.Has(table, "IngSort")) return;
    run.Doing("Couldn't add IngSort field to " + table);
    run.Add(table, "IngSort", "NULL");
    const std::string column = run.Own(table, "IngSort", FieldType::Long);
    std::vector<std::int64_t> rows;
    Statement row = run.file.Prepare(
        fmt::format("SELECT Src.RowKey FROM {} ORDER BY {}, Src.RowKey", run.From(table), run.Sql(table, "Color_Name")));
    while (row.Step()) rows.push_back(row.Whole(0));
    Statement sort = run.file.Prepare(fmt::format("UPDATE {} SET {} = ?1 WHERE RowKey = ?2", run.From(table), column));
    for (std::size_t place = 0; place < rows.size(); ++place)
      sort.Bind(1, static_cast<std::int64_t>(place)).Bind(2, rows[place]).Run();
    run.Changed(table, "IngSort is the place by name", std::ssize(rows));
  });
}

namespace {

constexpr std::string_view kPantone = "PANTONE ";

// The Basic Colors under the spellings by which a recipe may name them.
class BasicNames {
 public:
  BasicNames(UpgradeRun& run, const std::string& table) {
    Statement row = run.file.Prepare(fmt::format("SELECT {} FROM {}", run.Sql(table, "Color_Name"), run.From(table)));
    while (row.Step()) {
      exact_.insert(row.Text(0));
      names_.emplace(NameKey(row.TextView(0)), row.Text(0));
    }
  }
  bool Stands(std::string_view name) const { return exact_.contains(std::string(name)); }
  /// As the Basic Color is spelled; empty when there is none.
  std::string Spelled(std::string_view name) const {
    const std::string key = NameKey(name);
    for (const std::string& tried :
         {key, std::string(kPantone) + key, key.starts_with(kPantone) ? key.substr(kPantone.size()) : key})
      if (const auto found = names_.find(tried); found != names_.end()) return found->second;
    return {};
  }

 private:
  std::unordered_set<std::string> exact_;
  std::unordered_map<std::string, std::string> names_;
};

}  // namespace

void MendIngredientNames(UpgradeRun& run) {
  run.ForEachDatabase([&](const std::string& database) {
    const std::string table = TableOfDatabase(database, "_Mix");
    const std::string basics = TableOfDatabase(database, "_Basic");
    if (!run.Has(table) || !run.Has(basics)) return;
    run.Doing("Couldn't check the formulas of " + table);
    const BasicNames names(run, basics);
    const int first = run.First(table, "BC");
    for (int n = first; n < first + run.Count(table, "BC"); ++n) {
      const std::string field = Numbered("BC", n);
      std::vector<std::pair<std::string, std::string>> mended;
      Statement row = run.file.Prepare(
          fmt::format("SELECT DISTINCT {0} FROM {1} WHERE {0} <> ''", run.Sql(table, field), run.From(table)));
      while (row.Step())
        if (!names.Stands(row.TextView(0)))
          if (std::string spelled = names.Spelled(row.TextView(0)); !spelled.empty())
            mended.emplace_back(row.Text(0), std::move(spelled));
      row.Reset();
      for (const auto& [old, spelled] : mended) {
        const std::string column = run.Own(table, field, FieldType::Text);
        const int count = run.file.Prepare(fmt::format("UPDATE {} SET {} = ?1 WHERE {} = ?2", run.From(table), column, column))
                              .Bind(1, spelled)
                              .Bind(2, old)
                              .Run();
        run.Renamed(table, fmt::format("the ingredient {} is {}, as the Basic Color is called", old, spelled), count);
      }
    }
  });
}

namespace {

// What the line of a Batch is by where its name stands; what it was said to be, where that can be.
int KindOf(std::int64_t told, bool isBasic, bool isMix) {
  if (told == static_cast<int>(LineKind::Addition)) return static_cast<int>(told);
  if (told == static_cast<int>(LineKind::Mix) && (isMix || !isBasic)) return static_cast<int>(told);
  if (told == static_cast<int>(LineKind::Basic) && (isBasic || !isMix)) return static_cast<int>(told);
  return static_cast<int>(!isBasic && isMix ? LineKind::Mix : LineKind::Basic);
}

}  // namespace

void FixTypes(UpgradeRun& run) {
  run.ForEachDatabase([&](const std::string& database) {
    const std::string table = BatchTable(database);
    if (!run.Has(table)) return;
    run.Doing("Couldn't fix the types of " + table);
    const auto basics = NamesIn(run, TableOfDatabase(database, "_Basic"));
    const auto formulas = NamesIn(run, TableOfDatabase(database, "_Mix"));
    const int names = run.First(table, "Ingredient");
    const int types = run.First(table, "IngType");
    const int lines = std::min(run.Count(table, "Ingredient"), run.Count(table, "IngType"));
    std::int64_t fixed = 0;
    for (int n = 0; n < lines; ++n) {
      const std::string field = Numbered("IngType", types + n);
      struct Wrong {
        std::string name;
        std::int64_t told;
        int right;
      };
      std::vector<Wrong> wrong;
      const std::string name = run.Sql(table, Numbered("Ingredient", names + n));
      Statement row = run.file.Prepare(fmt::format("SELECT DISTINCT {0}, COALESCE({1}, 0) FROM {2} WHERE {0} <> ''", name,
                                                   run.Sql(table, field), run.From(table)));
      while (row.Step()) {
        const std::string key = NameKey(row.TextView(0));
        const int right = KindOf(row.Whole(1), basics.contains(key), formulas.contains(key));
        if (right != row.Whole(1)) wrong.push_back({row.Text(0), row.Whole(1), right});
      }
      row.Reset();
      if (wrong.empty()) continue;
      const std::string column = run.Own(table, field, FieldType::Byte);
      for (const Wrong& one : wrong)
        fixed += run.file
                     .Prepare(fmt::format("UPDATE {} SET {} = ?1 WHERE {} = ?2 AND COALESCE({}, 0) = ?3", run.From(table),
                                          column, name, column))
                     .Bind(1, one.right)
                     .Bind(2, one.name)
                     .Bind(3, one.told)
                     .Run();
    }
    run.Changed(table, "IngType is that of the color which the line names", fixed);
  });
}

void AddUsernames(UpgradeRun& run) {
  AddToBatches(run, "Username", "''", {});
}

// Nothing else tells what was made: what was planned.
void AddActualQuantities(UpgradeRun& run) {
  run.ForEachDatabase([&](const std::string& database) {
    const std::string table = BatchTable(database);
    if (!run.Has(table) || run.Has(table, "ActualQuantity")) return;
    run.Doing("Couldn't add ActualQuantity field to " + table);
    run.Add(table, "ActualQuantity", run.Sql(table, "Quantity"));
    run.Changed(table, "ActualQuantity is Quantity: the file tells of no other", run.Rows(table));
  });
}

void AddClickedIndexes(UpgradeRun& run) {
  AddToBatches(run, "ClickedIndex", "-1", {});
}

void AddRoundoffs(UpgradeRun& run) {
  AddToBatches(run, "Roundoff", "0", {});
}

void MarkComplete(UpgradeRun& run) {
  AddToBatches(run, "Complete", "1", "Complete is true");
}

}  // namespace vellumark
