#include "core/colors/rename.h"

#include <fmt/format.h>

#include <algorithm>
#include <unordered_map>

#include "core/base/number.h"
#include "core/base/progress_run.h"
#include "core/base/text.h"
#include "core/colors/additive_sets.h"
#include "core/colors/amounts.h"
#include "core/colors/basics.h"
#include "core/colors/color_set.h"
#include "core/colors/formulas.h"
#include "core/colors/names.h"
#include "core/colors/rollup.h"
#include "core/colors/stock_trace.h"
#include "core/datafile/references.h"
#include "core/datafile/writer.h"
#include "core/session/undo_step.h"

namespace vellumark {
namespace {

constexpr int kTitleBlanks = 20;
constexpr std::string_view kField = "txtNewName";

std::unexpected<Refusal> NotFound(std::string_view name) {
  return Refuse("Color Not Found", fmt::format("{} is not found in this database.", name), "Color_Name");
}

std::unexpected<Refusal> RefuseBasicName(std::string_view title, std::string text) {
  return Refuse(Padded(kTitleBlanks, title), std::move(text), std::string(kField));
}

// The guide's data come with the name. A swatch that was set by hand belongs to the ink and stays when no guide knows
// the colour under either name.
std::vector<Cell> NameCells(const std::string& name, const BookData& before, const BookData& book) {
  std::vector<Cell> cells;
  if (!before.Color_Guide.empty() || !book.Color_Guide.empty()) cells = BookFields().Cells(book, {FieldUse::Kept});
  cells.emplace_back("Color_Name", name);
  return cells;
}

// A set's lines after the rename. A set that held both names holds the surviving one once, with both percentages.
Recipe RenamedRows(const Recipe& rows, std::string_view oldName, std::string_view newName) {
  Recipe renamed;
  for (const Ingredient& row : rows) {
    const std::string name = EqualNoCase(row.name, oldName) ? std::string(newName) : row.name;
    bool added = false;
    for (Ingredient& earlier : renamed) {
      if (!EqualNoCase(earlier.name, name)) continue;
      earlier.amount = RoundTo(earlier.amount + row.amount, 2);
      added = true;
    }
    if (!added) renamed.push_back({name, row.amount});
  }
  return renamed;
}

struct NewRecipe {
  Recipe recipe;
  std::string setName;
};

NewRecipe RenamedRecipe(const Session& session, const NewRecipe& present, std::string_view oldName,
                        std::string_view newName) {
  Recipe recipe = present.recipe;
  if (!HoldsIngredient(recipe, newName) || EqualNoCase(oldName, newName)) {
    for (Ingredient& line : recipe)
      if (EqualNoCase(line.name, oldName)) line.name = newName;
    return {recipe, present.setName};
  }
  if (const auto set = ReadAdditiveSet(session, present.setName)) {
    // An Additive of the set that becomes an ingredient beside it: the set's share and the ingredient's are one amount
    // from now on, which no set can hold.
    if (HoldsIngredient(set->Rows(), oldName) && !HoldsIngredient(set->Rows(), newName))
      return {MergeIngredients(recipe, oldName, newName), {}};
    const Recipe rows = RenamedRows(set->Rows(), oldName, newName);
    Recipe merged = MergeIngredientsWithSet(recipe, oldName, rows);
    if (merged.size() > rows.size()) return {merged, present.setName};
    // Nothing stands beside the set any more, so there is no formula with a set left: its lines are merged as they are.
    return {MergeIngredients(recipe, oldName, newName), {}};
  }
  return {MergeIngredients(recipe, oldName, newName), present.setName};
}

// The new names by the old ones in capitals.
using NameMap = std::unordered_map<std::string, std::string>;

NameMap MapOf(const std::vector<Renaming>& names) {
  NameMap map;
  for (const Renaming& name : names) map.emplace(Upper(name.oldName), name.newName);
  return map;
}

// The formulas with one of the ingredients. Many names are looked for in one walk over the index of ingredients.
std::vector<std::int64_t> FormulasToRename(const Session& session, const std::vector<Renaming>& names,
                                           const NameMap& map) {
  if (names.size() == 1) return FormulaRowsUsing(session, names.front().oldName);
  std::vector<std::int64_t> rows;
  Statement row = session.File().Prepare("SELECT RowKey, Color_Set FROM " + session.QuotedTable(schema::Mix) +
                                         " ORDER BY Color_Set");
  while (row.Step())
    if (std::ranges::any_of(SplitColorSet(row.TextView(1)),
                            [&](const std::string& item) { return map.contains(Upper(item)); }))
      rows.push_back(row.Whole(0));
  std::ranges::sort(rows);
  return rows;
}

// Formulas that lost their Additive Set over a merge, in the order of the work.
using FormulaNames = std::vector<std::string>;

// How long work goes on: it hears how much is done, in percent, and may end it.
using GoOn = std::function<bool(double percent)>;

double PartOf(std::size_t done, std::size_t all) {
  return 100.0 * static_cast<double>(done) / static_cast<double>(std::max<std::size_t>(all, 1));
}

bool RenameInFormulas(Session& session, Transaction& transaction, const std::vector<Renaming>& names,
                      FormulaNames& withoutSet, const GoOn& goOn) {
  const NameMap map = MapOf(names);
  const std::vector<std::int64_t> users = FormulasToRename(session, names, map);
  RecipeWriter writer(session);
  RecipeReader reader(session);
  std::size_t done = 0;
  for (const std::int64_t user : users) {
    if (const auto mix = reader.ReadRow(user)) {
      NewRecipe renamed{mix->Ingredients(), mix->AddSetName};
      for (const Ingredient& line : mix->Ingredients())
        if (const auto found = map.find(Upper(line.name)); found != map.end())
          renamed = RenamedRecipe(session, renamed, line.name, found->second);
      writer.Set(renamed.recipe, renamed.setName).Update(mix->key);
      if (renamed.setName != mix->AddSetName) withoutSet.push_back(mix->Color_Name);
      transaction.Note({Change::Kind::Mix, session.CurrentDatabase, mix->Color_Name, Change::What::Updated, ""});
    }
    if (!goOn(PartOf(++done, users.size()))) return false;
  }
  return true;
}

// The walk over the places renames a slot where it stands; a set that would then hold one name twice is closed up
// first.
void MergeInAdditiveSets(Session& session, Transaction& transaction, const std::vector<Renaming>& names) {
  const NameMap map = MapOf(names);
  for (const AdditiveSet& set : ListAdditiveSets(session)) {
    AdditiveSet merged = set;
    bool changed = false;
    for (const Ingredient& row : set.Rows()) {
      const auto found = map.find(Upper(row.name));
      if (found == map.end() || !HoldsIngredient(merged.Rows(), found->second)) continue;
      merged.SetRows(RenamedRows(merged.Rows(), row.name, found->second));
      changed = true;
    }
    if (!changed) continue;
    UpdateRow(session.File(), schema::Additives, session.Table(schema::Additives), set.key, AdditiveSetCells(merged));
    transaction.Note({Change::Kind::AdditiveSet, session.CurrentDatabase, set.SetName, Change::What::Updated, ""});
  }
}

// The surviving row keeps what is its own; what belonged to the other goes. One that comes into Additive Sets for the
// other is an Additive, as everything in them.
void GiveUpBasic(Session& session, const BasicColor& color, const std::string& newName) {
  if (UsedByAdditiveSet(session, color.Color_Name))
    if (const auto survivor = ReadBasic(session, newName))
      UpdateRow(session.File(), schema::Basic, session.Table(schema::Basic), survivor->key, {{"Additive", true}});
  GiveUpColorStock(session, ColorKind::Basic, session.CurrentDatabase, color.Color_Name, "Merged into " + newName);
  session.File()
      .Prepare("DELETE FROM " + session.QuotedTable(schema::Basic) + " WHERE RowKey = ?")
      .Bind(1, color.key)
      .Run();
}

// The ingredients of formulas and all other places; the colours' own rows are the caller's.
bool RenameBasicsEverywhere(Session& session, Transaction& transaction, const std::vector<Renaming>& names,
                            FormulaNames& withoutSet, const GoOn& goOn) {
  if (!RenameInFormulas(session, transaction, names, withoutSet, [&](double percent) { return goOn(percent / 2); }))
    return false;
  MergeInAdditiveSets(session, transaction, names);
  if (!RenameReferences(session.File(), session.CurrentDatabase, ColorKind::Basic, names,
                        [&](double percent) { return goOn(50 + percent / 2); }))
    return false;
  for (const Renaming& name : names)
    transaction.Note({Change::Kind::Basic, session.CurrentDatabase, name.oldName, Change::What::Renamed, name.newName});
  return true;
}

void WriteBasicName(Session& session, const BasicColor& color, const std::string& newName) {
  UpdateRow(session.File(), schema::Basic, session.Table(schema::Basic), color.key,
            NameCells(newName, color.book, BookDataOfBasic(session, newName)));
  TraceRename(session, ColorKind::Basic, color.Color_Name, newName);
}

FormulaNames RenameOrMergeBasic(Session& session, const BasicColor& color, const std::string& newName, bool merge) {
  FormulaNames withoutSet;
  ProgressRun progress(session.progress, merge ? "Merging colors ..." : "Renaming color ...");
  Transaction transaction(session.File());
  UndoStep step(session, Undoable::RenameBasic,
                fmt::format("{} {} to {}", merge ? "Merge" : "Rename", color.Color_Name, newName));
  if (merge) {
    GiveUpBasic(session, color, newName);
  } else {
    WriteBasicName(session, color, newName);
  }
  RenameBasicsEverywhere(session, transaction, {{color.Color_Name, newName}}, withoutSet, [&](double percent) {
    session.progress.Percent(percent);
    return true;
  });
  if (merge) MarkRollUpsStale(session, kAllRollUps);  // formulas now count the surviving colour's figures
  step.Keep();
  transaction.Commit();
  return withoutSet;
}

void WriteMixName(Session& session, const MixColor& mix, const std::string& newName) {
  UpdateRow(session.File(), schema::Mix, session.Table(schema::Mix), mix.key,
            NameCells(newName, mix.book, BookDataOfMix(session, newName)));
  TraceRename(session, ColorKind::Mix, mix.Color_Name, newName);
}

bool RenameMixesEverywhere(Session& session, Transaction& transaction, const std::vector<Renaming>& names,
                           const GoOn& goOn) {
  if (!RenameReferences(session.File(), session.CurrentDatabase, ColorKind::Mix, names, goOn)) return false;
  for (const Renaming& name : names)
    transaction.Note({Change::Kind::Mix, session.CurrentDatabase, name.oldName, Change::What::Renamed, name.newName});
  return true;
}

void WriteName(Session& session, ColorKind kind, const Renaming& name) {
  if (kind == ColorKind::Mix) {
    const auto mix = ReadMix(session, name.oldName);
    if (!mix) throw Failure(name.oldName, "is no longer in this database");
    return WriteMixName(session, *mix, name.newName);
  }
  const auto color = ReadBasic(session, name.oldName);
  if (!color) throw Failure(name.oldName, "is no longer in this database");
  WriteBasicName(session, *color, name.newName);
}

}  // namespace

Result<Renamed> RenameBasic(Session& session, std::string_view oldName, std::string_view typed) {
  if (auto writable = RequireWritable(session); !writable) return std::unexpected(writable.error());
  const auto color = ReadBasic(session, oldName);
  if (!color) return NotFound(oldName);
  std::string name = ReadNewName(session, typed);
  if (name.empty()) return RefuseBasicName("Color Name Needed", "Please enter a name.");
  if (auto valid = CheckNewName(name, NameSource::Typed, session.NameLength, kField, color->Color_Name); !valid)
    return std::unexpected(valid.error());
  if (EqualNoCase(name, color->Color_Name))
    return RefuseBasicName("Choose Another Name",
                           "Cannot rename a color with the same name.\n\nPlease enter a different name.");
  const auto survivor = ReadBasic(session, name);
  if (survivor) {
    // A merge puts another ink into the recipes.
    if (!FormulasUsing(session, color->Color_Name).empty())
      if (auto right = RequireFormulaRight(session); !right) return std::unexpected(right.error());
    if (!session.prompt.Ask(Padded(kTitleBlanks, "Basic Color Name Exists"),
                            "This Basic Color already exists.\nDo you want to merge the colors?", Answer::No))
      return Renamed{};
    name = survivor->Color_Name;
  } else if (HasPantonePrefix(name) && !IsPantoneBookBasic(session, name)) {
    return RefuseBasicName("Invalid Basic Color Name",
                           "A color can not be renamed with the word PANTONE unless\nit is used as a ingredient in a "
                           "Pantone Color Guide.\n\nPlease choose another name.");
  }
  const FormulaNames withoutSet = RenameOrMergeBasic(session, *color, name, survivor.has_value());
  if (!withoutSet.empty())
    session.prompt.Tell("Additive Set",
                        fmt::format("{} is an ingredient beside the Additive Set now.\nThese Master Formulas keep "
                                    "their amounts and no longer use the set:\n\n{}",
                                    name, NameLines(withoutSet)));
  return Renamed{true, survivor.has_value(), name};
}

std::string WithBookPrefix(const Session& session, std::string_view oldName, std::string newName) {
  if (HasPantonePrefix(newName) || !IsPantoneBookMix(session, oldName)) return newName;
  return std::string(kPantonePrefix).append(newName);
}

Result<Renamed> RenameColor(Session& session, std::string_view oldName, std::string_view typed) {
  if (auto writable = RequireWritable(session); !writable) return std::unexpected(writable.error());
  const auto mix = ReadMix(session, oldName);
  if (!mix) return NotFound(oldName);
  if (auto right = RequireFormulaRight(session); !right) return std::unexpected(right.error());
  std::string name = ReadNewName(session, typed);
  if (name.empty()) return Refuse("Color Name Needed", "Please enter a new color name.", std::string(kField));
  const auto valid = [&] { return CheckNewName(name, NameSource::Typed, session.NameLength, kField, mix->Color_Name); };
  if (auto fits = valid(); !fits) return std::unexpected(fits.error());
  if (EqualNoCase(name, mix->Color_Name))
    return Refuse("Choose Another Name", "Cannot rename a color with the same name.\n\nPlease enter a different name.",
                  std::string(kField));
  const auto inUse = [&] { return MixColorExists(session, name); };
  const auto refuseInUse = [] {
    return Refuse("Master Formula Exists",
                  "This Master Formula already exists in the database.\n\nPlease select different name.",
                  std::string(kField));
  };
  if (inUse()) return refuseInUse();
  if (HasPantonePrefix(name) && !IsPantoneBookMix(session, name))
    return Refuse("Invalid Formula Name",
                  "This name cannot begin with the word PANTONE.\nRenaming a color with the word PANTONE "
                  "requires\nspelling the color as it is found in the book.\n\nPlease choose another name.",
                  std::string(kField));
  // With its prefix the name may be too long, and must not be cut unseen.
  name = WithBookPrefix(session, mix->Color_Name, std::move(name));
  if (auto fits = valid(); !fits) return std::unexpected(fits.error());
  if (inUse()) return refuseInUse();

  ProgressRun progress(session.progress, "Renaming color ...");
  Transaction transaction(session.File());
  UndoStep step(session, Undoable::RenameMix, fmt::format("Rename {} to {}", mix->Color_Name, name));
  WriteMixName(session, *mix, name);
  RenameMixesEverywhere(session, transaction, {{mix->Color_Name, name}}, [&](double percent) {
    session.progress.Percent(percent);
    return true;
  });
  step.Keep();
  transaction.Commit();
  return Renamed{true, false, name};
}

bool RenameAllChecked(Session& session, Transaction& transaction, ColorKind kind, const std::vector<Renaming>& names,
                      const std::function<bool(double percent)>& goOn) {
  std::size_t done = 0;
  for (const Renaming& name : names) {
    WriteName(session, kind, name);
    if (!goOn(PartOf(++done, names.size()) / 2)) return false;
  }
  const auto rest = [&](double percent) { return goOn(50 + percent / 2); };
  if (kind == ColorKind::Mix) return RenameMixesEverywhere(session, transaction, names, rest);
  FormulaNames none;  // no name is another colour's, so that nothing merges
  return RenameBasicsEverywhere(session, transaction, names, none, rest);
}

}  // namespace vellumark
