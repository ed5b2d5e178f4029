#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <map>
#include <utility>

#include "core/backup/repair_run.h"
#include "core/base/number.h"
#include "core/base/refusal.h"
#include "core/colors/basics.h"
#include "core/colors/formulas.h"
#include "core/colors/guide_books.h"
#include "core/colors/guide_database.h"
#include "core/colors/rollup.h"
#include "core/datafile/databases.h"
#include "core/datafile/references.h"
#include "core/datafile/writer.h"
#include "core/session/stock_lines.h"

// The steps that mend recipes, the figures and texts that follow from them, and names that stand twice.

namespace vellumark {
namespace {

constexpr int kSlots = schema::kIngredientSlots;
constexpr std::size_t kNameLength = 30;

struct StoredRecipe {
  std::int64_t row = 0;
  std::string Color_Name;
  std::string Color_Set;
  std::string AddSetName;
  std::array<std::string, kSlots> BC;
  std::array<float, kSlots> BQ{};
  bool hasGaps = false;  // an amount or a name that is missing
};

void ForEachRecipe(RepairRun& run, const std::string& database, const std::function<void(const StoredRecipe&)>& take) {
  std::string columns = "RowKey, Color_Name, Color_Set, AddSetName";
  for (int n = 0; n < kSlots; ++n) columns += ", " + schema::Numbered("BC", n);
  for (int n = 0; n < kSlots; ++n) columns += ", " + schema::Numbered("BQ", n);
  Statement rows =
      run.file.Prepare(fmt::format("SELECT {} FROM {} ORDER BY RowKey", columns, QuotedTable(database, schema::Mix)));
  while (rows.Step()) {
    StoredRecipe recipe{rows.Whole(0), rows.Text(1), rows.Text(2), rows.Text(3), {}, {}, false};
    for (int n = 0; n < kSlots; ++n) {
      const auto slot = static_cast<std::size_t>(n);
      recipe.BC[slot] = rows.Text(4 + n);
      recipe.BQ[slot] = rows.Single(4 + kSlots + n);
      recipe.hasGaps = recipe.hasGaps || rows.IsNull(4 + n) || rows.IsNull(4 + kSlots + n);
    }
    take(recipe);
  }
}

// The lines in their order without gaps, each ingredient once.
Recipe ClosedUp(const StoredRecipe& stored) {
  Recipe recipe;
  for (std::size_t n = 0; n < stored.BC.size(); ++n) {
    if (stored.BC[n].empty()) continue;
    const auto same =
        std::ranges::find_if(recipe, [&](const Ingredient& line) { return EqualNoCase(line.name, stored.BC[n]); });
    if (same == recipe.end()) {
      recipe.push_back({stored.BC[n], ShownAmount(stored.BQ[n])});
    } else {
      same->amount = RoundTo(same->amount + ShownAmount(stored.BQ[n]), 3);
    }
  }
  return recipe;
}

bool SlotsAre(const StoredRecipe& stored, const Recipe& recipe) {
  for (std::size_t n = 0; n < stored.BC.size(); ++n) {
    const bool filled = n < recipe.size();
    if (stored.BC[n] != (filled ? recipe[n].name : std::string())) return false;
    if (filled ? ShownAmount(stored.BQ[n]) != recipe[n].amount : stored.BQ[n] != 0) return false;
  }
  return true;
}

// The rows whose names have blanks around them, and what they are to be called: the name without them, or where another
// row has that, one of its own.
std::vector<std::pair<std::int64_t, Renaming>> NamesToTrim(RepairRun& run, const std::string& table,
                                                           std::string_view field, std::string_view instead) {
  std::vector<std::pair<std::int64_t, Renaming>> names;
  Statement row = run.file.Prepare(
      fmt::format("SELECT RowKey, {0} FROM {1} WHERE {0} <> TRIM({0}) ORDER BY RowKey", Quoted(field), Quoted(table)));
  while (row.Step()) names.push_back({row.Whole(0), {row.Text(1), {}}});
  if (names.empty()) return names;
  auto taken = NamesOfColumn(run.file, table, field);
  const DateTime today = run.Today();
  for (auto& [key, name] : names) {
    name.newName = FreeName(taken, [&, &was = name.oldName](int number) {
      const bool isBlank = TrimView(was).empty();
      if (number == 1 && !isBlank) return Trim(was);
      return fmt::format("{} {:02}-{:02}-{:02} DC{}", instead, today.month, today.day, today.year % 100,
                         isBlank ? number : number - 1);
    });
    run.Changed(table, fmt::format("\"{}\" is called {} now", name.oldName, name.newName));
  }
  return names;
}

// Where formulas name it: an ingredient in one of the slots, or the Additive Set.
void RenameInRecipes(RepairRun& run, const std::string& database, const std::vector<std::string>& fields,
                     const Renaming& name) {
  for (const std::string& field : fields)
    run.file.Prepare(fmt::format("UPDATE {0} SET {1} = ?2 WHERE {1} = ?1", QuotedTable(database, schema::Mix), field))
        .Bind(1, name.oldName)
        .Bind(2, name.newName)
        .Run();
}

}  // namespace

// What names a colour elsewhere follows; the texts that recipes are searched by are rebuilt after this.
void TrimNames(RepairRun& run) {
  std::vector<std::string> slots;
  for (int n = 0; n < kSlots; ++n) slots.push_back(schema::Numbered("BC", n));
  run.ForEachKind([&](const std::string& database, ColorKind kind) {
    const Table& table = ColorTable(kind);
    const std::string of = TableName(database, table);
    for (const auto& [key, name] : NamesToTrim(run, of, "Color_Name", "DupColor")) {
      UpdateRow(run.file, table, of, key, {{"Color_Name", name.newName}});
      RenameReferences(run.file, database, kind, name.oldName, name.newName);
      if (kind == ColorKind::Basic) RenameInRecipes(run, database, slots, name);
      if (HasStockHistory(run.file))
        AddRenameLines(run.file, NewStockLine(run.session, StockEvent::Renamed, kind, database), name.oldName,
                       name.newName);
    }
  });
  for (const std::string& database : run.Databases()) {
    const std::string sets = TableName(database, schema::Additives);
    for (const auto& [key, name] : NamesToTrim(run, sets, "SetName", "DupSet")) {
      UpdateRow(run.file, schema::Additives, sets, key, {{"SetName", name.newName}});
      RenameInRecipes(run, database, {"AddSetName"}, name);
    }
  }
}

void RebuildFormulas(RepairRun& run) {
  for (const std::string& database : run.Databases()) {
    run.Show(fmt::format("Rebuilding Formulas, Colorsets,\n   Costs, VOCs && HAPs - {}", database));
    const std::string table = TableName(database, schema::Mix);
    struct New {
      std::int64_t row;
      Recipe recipe;
      std::string AddSetName;
    };
    std::vector<New> sets;
    std::vector<New> slots;
    ForEachRecipe(run, database, [&](const StoredRecipe& stored) {
      Recipe recipe = ClosedUp(stored);
      if (!SlotsAre(stored, recipe)) {
        slots.push_back({stored.row, std::move(recipe), stored.AddSetName});
      } else if (stored.Color_Set != NameSet(NamesOf(recipe)) || stored.hasGaps) {
        sets.push_back({stored.row, std::move(recipe), stored.AddSetName});
      }
    });
    RecipeWriter writer(run.session, database);
    for (const std::vector<New>* rows : {&slots, &sets})
      for (const New& row : *rows) writer.Set(row.recipe, row.AddSetName).Update(row.row);
    if (!slots.empty()) run.Changed(table, "ingredients were closed up, each stands once", std::ssize(slots));
    if (!sets.empty()) run.Changed(table, "Color_Set was rebuilt from the ingredients", std::ssize(sets));
    if (const std::size_t renewed = RunPasses(run.session, kAllRollUps, database); renewed > 0)
      run.Changed(table, "costs, VOCs and HAPs were rebuilt from the ingredients", static_cast<std::int64_t>(renewed));
  }
}

void RebuildAdditiveSets(RepairRun& run) {
  run.Show("Rebuilding Additive Sets");
  for (const std::string& database : run.Databases()) {
    const std::string table = TableName(database, schema::Additives);
    std::string columns = "RowKey, SetList";
    for (int n = 0; n < schema::kSetSlots; ++n) columns += ", " + schema::Numbered("Add_Name", n);
    std::vector<std::pair<std::int64_t, std::string>> lists;
    Statement rows = run.file.Prepare(fmt::format("SELECT {} FROM {}", columns, Quoted(table)));
    while (rows.Step()) {
      std::vector<std::string> names;
      for (int n = 0; n < schema::kSetSlots; ++n) names.push_back(rows.Text(2 + n));
      std::string list = NameSet(names);
      if (rows.IsNull(1) || rows.TextView(1) != list) lists.emplace_back(rows.Whole(0), std::move(list));
    }
    for (const auto& [row, list] : lists) UpdateRow(run.file, schema::Additives, table, row, {{"SetList", list}});
    if (!lists.empty()) run.Changed(table, "SetList was rebuilt from the Additives", std::ssize(lists));
  }
}

std::unordered_set<std::string> NamesOfColumn(Database& file, const std::string& table, std::string_view column) {
  std::unordered_set<std::string> names;
  Statement rows = file.Prepare(fmt::format("SELECT {0} FROM {1} WHERE {0} <> ''", Quoted(column), Quoted(table)));
  while (rows.Step()) names.insert(Key(rows.TextView(0)));
  return names;
}

std::string FreeName(std::unordered_set<std::string>& taken, const std::function<std::string(int number)>& name) {
  for (int number = 1;; ++number)
    if (std::string made = name(number); taken.insert(Key(made)).second) return made;
}

void MakeColor(RepairRun& run, const std::string& database, ColorKind kind, const std::string& name, bool additive) {
  const std::string table = TableName(database, ColorTable(kind));
  if (kind == ColorKind::Mix) {
    MixColor color;
    color.Color_Name = name;
    color.Date_Entered = color.LastModified = run.Today();
    color.book = BookDataOfMix(run.session, name, database);
    InsertRow(run.file, schema::Mix, table, MixFields().Cells(color, kNewRowUses));
  } else {
    BasicColor color;
    color.Color_Name = name;
    color.Date_Entered = run.Today();
    color.IngSort = NextIngSort(run.session, database);
    color.Additive = additive;
    color.book = BookDataOfBasic(run.session, name, database);
    InsertRow(run.file, schema::Basic, table, BasicFields().Cells(color, kNewRowUses));
  }
}

void AddMissingIngredients(RepairRun& run) {
  run.Show("Repairing Basics && Additives");
  for (const std::string& database : run.Databases()) {
    const std::string table = TableName(database, schema::Basic);
    auto known = NamesOfColumn(run.file, table, "Color_Name");
    known.merge(NamesOfColumn(run.file, TableName(database, schema::Mix), "Color_Name"));
    std::vector<std::string> missing;
    ForEachRecipe(run, database, [&](const StoredRecipe& stored) {
      for (const std::string& name : stored.BC)
        if (!name.empty() && known.insert(Key(name)).second) missing.push_back(name);
    });
    for (const std::string& name : missing) {
      MakeColor(run, database, ColorKind::Basic, name);
      run.Changed(table, fmt::format("{} was made: a formula names it", name));
    }
  }
}

namespace {

bool HoldsNothing(const Value& value) {
  return value.IsNull() || (value.IsText() ? value.Text().empty() : value.Number() == 0);
}

// The first row of a name keeps it, with what it lacks and another one has; the others get names of their own. What
// names the colour elsewhere means the first.
void RenameDuplicates(RepairRun& run, const std::string& database, ColorKind kind,
                      const std::vector<std::string>& compared) {
  const std::string table = TableName(database, ColorTable(kind));
  std::vector<std::string> names;
  {
    Statement twice = run.file.Prepare(fmt::format(
        "SELECT Color_Name FROM {} WHERE Color_Name <> '' GROUP BY Color_Name HAVING COUNT(*) > 1", Quoted(table)));
    while (twice.Step()) names.push_back(twice.Text(0));
  }
  if (names.empty()) return;
  std::string columns = "RowKey";
  for (const std::string& field : compared) columns += ", " + Quoted(field);
  auto taken = NamesOfColumn(run.file, table, "Color_Name");
  const DateTime today = run.Today();
  for (const std::string& name : names) {
    std::vector<std::pair<std::int64_t, std::vector<Value>>> rows;
    Statement row =
        run.file.Prepare(fmt::format("SELECT {} FROM {} WHERE Color_Name = ? ORDER BY RowKey", columns, Quoted(table)));
    row.Bind(1, name);
    while (row.Step()) {
      std::vector<Value> values;
      for (std::size_t i = 0; i < compared.size(); ++i) values.push_back(row.Get(static_cast<int>(i) + 1));
      rows.emplace_back(row.Whole(0), std::move(values));
    }
    row.Reset();
    std::vector<Cell> gained;
    for (std::size_t i = 0; i < compared.size(); ++i)
      for (std::size_t other = 1; other < rows.size() && HoldsNothing(rows[0].second[i]); ++other)
        if (!HoldsNothing(rows[other].second[i])) {
          gained.emplace_back(compared[i], rows[other].second[i]);
          rows[0].second[i] = rows[other].second[i];
        }
    UpdateRow(run.file, ColorTable(kind), table, rows[0].first, gained);
    for (const auto& [field, value] : gained)
      run.Changed(table, fmt::format("{}: {} is {} now, as in the other row of the name", name, field, value.Text()));
    for (std::size_t other = 1; other < rows.size(); ++other) {
      const std::string renamed = FreeName(taken, [&](int number) {
        return fmt::format("DupColor {:02}-{:02}-{:02} DC{}", today.month, today.day, today.year % 100, number);
      });
      UpdateRow(run.file, ColorTable(kind), table, rows[other].first, {{"Color_Name", renamed}});
      run.Changed(table, fmt::format("{} stood twice: row {} is called {} now", name, rows[other].first, renamed));
    }
  }
}

}  // namespace

void RenameDuplicateBasics(RepairRun& run) {
  run.Show("Removing Duplicate Basics && Additives");
  for (const std::string& database : run.Databases())
    RenameDuplicates(
        run, database, ColorKind::Basic,
        {"Color_Code", "Reorder", "PurchaseCost", "Notes", "Inv_Note", "VOC", "HAP", "Date_Entered", "LastConsumed"});
}

void RenameDuplicateFormulas(RepairRun& run) {
  run.Show("Removing Duplicate Master Formulas");
  for (const std::string& database : run.Databases())
    RenameDuplicates(
        run, database, ColorKind::Mix,
        {"Color_Code", "Reorder", "PurchaseCost", "Notes", "Inv_Note", "VOC", "HAP", "Date_Entered", "LastProduced"});
}

// What stands in a set is an Additive of its Database. A name that stood twice means the row that kept it.
void MendAdditiveNames(RepairRun& run) {
  for (const std::string& database : run.Databases()) {
    const std::string table = TableName(database, schema::Basic);
    const std::string sets = TableName(database, schema::Additives);
    NameRows(run, sets, schema::Additives, "SetName");
    const DateTime today = run.Today();
    RenameRepeated(run, sets, schema::Additives, "SetName", [&](const std::string&, int number) {
      return fmt::format("DupSet {:02}-{:02}-{:02} DC{}", today.month, today.day, today.year % 100, number);
    });
    for (int n = 0; n < schema::kSetSlots; ++n) {
      const std::string field = schema::Numbered("Add_Name", n);
      std::vector<std::pair<std::string, std::int64_t>> wrong;
      Statement row =
          run.file.Prepare(fmt::format("SELECT DISTINCT s.{0}, COALESCE(b.RowKey, 0) FROM {1} s LEFT JOIN {2} b ON "
                                       "b.Color_Name = s.{0} WHERE s.{0} <> '' "
                                       "AND COALESCE(b.Additive, 0) = 0",
                                       field, Quoted(sets), Quoted(table)));
      while (row.Step()) wrong.emplace_back(row.Text(0), row.Whole(1));
      for (const auto& [name, key] : wrong) {
        if (key == 0) {
          if (BasicColorExists(run.session, name, database)) continue;  // the set names it twice
          MakeColor(run, database, ColorKind::Basic, name, true);
          run.Changed(table, fmt::format("{} was made: an Additive Set names it", name));
        } else {
          UpdateRow(run.file, schema::Basic, table, key, {{"Additive", 1}});
          run.Changed(table, fmt::format("{} is an Additive: a set holds it", name));
        }
      }
    }
  }
}

void SortIngredients(RepairRun& run) {
  for (const std::string& database : run.Databases()) {
    run.Show("Updating Ingredient Sort Order " + database);
    const std::string table = TableName(database, schema::Basic);
    std::vector<std::pair<std::int64_t, std::int64_t>> moved;
    std::int64_t place = 0;
    Statement rows =
        run.file.Prepare(fmt::format("SELECT RowKey, IngSort FROM {} ORDER BY Color_Name, RowKey", Quoted(table)));
    for (; rows.Step(); ++place)
      if (rows.IsNull(1) || rows.Whole(1) != place) moved.emplace_back(rows.Whole(0), place);
    RowWriter writer(run.file, schema::Basic, table, {"IngSort"});
    for (const auto& [row, sort] : moved) writer.Set(0, sort).Update(row);
    if (!moved.empty()) run.Changed(table, "IngSort is the place by name", std::ssize(moved));
  }
}

void MendFormulaSets(RepairRun& run) {
  for (const std::string& database : run.Databases()) {
    const std::string table = TableName(database, schema::Mix);
    std::vector<StoredRecipe> wrong;
    const auto sets = NamesOfColumn(run.file, TableName(database, schema::Additives), "SetName");
    ForEachRecipe(run, database, [&](const StoredRecipe& stored) {
      if (!stored.AddSetName.empty() && !sets.contains(Key(stored.AddSetName))) wrong.push_back(stored);
    });
    for (const StoredRecipe& stored : wrong) {
      UpdateRow(run.file, schema::Mix, table, stored.row, {{"AddSetName", ""}});
      run.Changed(table, fmt::format("{}: there is no Additive Set {}", stored.Color_Name, stored.AddSetName));
    }
  }
}

namespace {

void TakeBooks(RepairRun& run, const std::string& database, ColorKind kind, const GuideBooks& books) {
  const std::string table = TableName(database, ColorTable(kind));
  std::vector<std::pair<std::int64_t, BookData>> changed;
  Statement rows =
      run.file.Prepare(fmt::format("SELECT RowKey, Color_Name, {} FROM {}", BookFields().Columns(), Quoted(table)));
  while (rows.Step()) {
    const auto book = books.find(Key(rows.TextView(1)));
    if (book == books.end()) continue;
    BookData stored;
    BookFields().Read(rows, 2, stored);
    if (!(stored == book->second)) changed.emplace_back(rows.Whole(0), book->second);
  }
  for (const auto& [row, book] : changed)
    UpdateRow(run.file, ColorTable(kind), table, row, BookFields().Cells(book, kNewRowUses));
  if (!changed.empty()) run.Changed(table, "guide, page and swatch were read again", std::ssize(changed));
}

}  // namespace

void ReadGuidesAgain(RepairRun& run) {
  std::vector<std::string> of;
  for (const std::string& database : run.Databases())
    if (EqualNoCase(ReadDatabaseInfo(run.file, database).fullName, "PANTONE")) of.push_back(database);
  if (of.empty()) return;
  const std::filesystem::path path = TemplatePath(run.session);
  if (path.empty()) return run.Left("", "there is no template of color guides to read pages and swatches from");
  const auto guides = Database::Open(path, OpenMode::ReadOnly);
  const GuideBooks basics = ReadGuideBooks(*guides, kGuideBasicTables);
  const GuideBooks formulas = ReadGuideBooks(*guides, kGuideMixTables);
  for (const std::string& database : of) {
    run.Show("Updating Pantone Book Information - " + database);
    TakeBooks(run, database, ColorKind::Basic, basics);
    TakeBooks(run, database, ColorKind::Mix, formulas);
  }
}

}  // namespace vellumark
