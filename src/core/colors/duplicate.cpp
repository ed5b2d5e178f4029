#include "core/colors/duplicate.h"

#include <fmt/format.h>

#include <algorithm>

#include "core/base/text.h"
#include "core/colors/additive_sets.h"
#include "core/colors/amounts.h"
#include "core/colors/basics.h"
#include "core/colors/formulas.h"
#include "core/colors/names.h"
#include "core/session/undo_step.h"

namespace vellumark {
namespace {

constexpr std::string_view kField = "txtNewName";

struct Target {
  std::string database;
  std::string name;
  std::optional<MixColor> existing;
  std::optional<AdditiveSet> set;
};

Result<std::string> NewName(const Session& session, std::string_view typed, std::string_view source,
                            std::string_view database) {
  std::string name = ReadNewName(session, typed);
  if (name.empty()) return Refuse("Color Name Needed", "Please enter a new color name.", std::string(kField));
  if (auto valid = CheckNewName(name, NameSource::Typed, session.NameLength, kField, source); !valid)
    return std::unexpected(valid.error());
  name = StoredName(session, ColorKind::Mix, name, database);
  if (HasPantonePrefix(name) && !IsPantoneBookMix(session, name, database))
    return Refuse("Invalid Master Formula Name",
                  "You cannot use a name that begins with the word PANTONE.\n\nPlease choose another name.",
                  std::string(kField));
  return name;
}

Result<Target> ReadTarget(const Session& session, std::string_view typed, std::string_view source,
                          std::string_view targetDatabase, std::string_view setName) {
  Target target;
  target.database = targetDatabase.empty() ? session.CurrentDatabase : Upper(TrimView(targetDatabase));
  if (std::ranges::none_of(session.databaseList, [&](const std::string& d) { return EqualNoCase(d, target.database); }))
    return Refuse("Database Not Found", fmt::format("The {} Database is not in this Data File.", target.database),
                  "cmbDatabases");
  auto name = NewName(session, typed, source, target.database);
  if (!name) return std::unexpected(name.error());
  target.name = *std::move(name);
  target.existing = ReadMix(session, target.name, target.database);
  if (!TrimView(setName).empty()) {
    target.set = ReadAdditiveSet(session, ReadSetName(setName), target.database);
    if (!target.set)
      return Refuse("Additive Set Name", fmt::format("Additive Set: {} is not on file.", setName), "cmbDBAddSets");
  }
  return target;
}

// What is copied: a formula's lines beside its own Additive Set.
struct Source {
  std::string name;
  Recipe list;
  std::vector<NewIngredient> newIngredients = {};
};

Recipe WithoutOwnSet(const Session& session, const Recipe& all, std::string_view setName) {
  const auto set = ReadAdditiveSet(session, setName);
  if (!set) return all;
  Recipe rest = WithoutSet(all, set->Rows());
  return rest.empty() ? all : rest;
}

// Names common to both count once.
bool SetFits(const Recipe& list, const AdditiveSet& set) {
  const Recipe others = WithoutSet(list, set.Rows());
  return !others.empty() && others.size() + set.Rows().size() <= static_cast<std::size_t>(schema::kIngredientSlots);
}

bool IsAdditive(const Session& session, const Source& source, std::string_view name) {
  for (const NewIngredient& added : source.newIngredients)
    if (EqualNoCase(added.name, name)) return added.additive;
  const auto basic = ReadBasic(session, name);
  return basic && basic->Additive;
}

// The lines under the names of the target; two that are one there become one.
Recipe InTarget(const Session& session, const Recipe& list, const std::string& database) {
  Recipe lines;
  for (const Ingredient& line : list)
    lines =
        FoldAdditions(std::move(lines), {{StoredName(session, ColorKind::Basic, line.name, database), line.amount}});
  return lines;
}

void AddMissingIngredients(Session& session, const std::string& database, const Source& source, const Recipe& lines) {
  const auto isAdditive = [&](const std::string& stored) {
    return std::ranges::any_of(source.list, [&](const Ingredient& line) {
      return SameColorName(line.name, stored) && IsAdditive(session, source, line.name);
    });
  };
  for (const Ingredient& line : lines)
    if (!BasicColorExists(session, line.name, database))
      AddZeroBasic(session, line.name, isAdditive(line.name), database);
}

std::vector<Cell> NewRecordCells(const Session& session) {
  return {{"Color_Code", ""},
          {"Inv_Note", ""},
          {"Notes", ""},
          {"Inventory", 0.0F},
          {"Reorder", 0.0F},
          {"PurchaseCost", 0.0F},
          {"VOC", 0.0F},
          {"HAP", 0.0F},
          {"LotRefID", 0},
          {"Recycle", true},
          {"Color_Guide", ""},
          {"Page", "0"},
          {"Row", 0},
          {"Red", 0},
          {"Green", 0},
          {"Blue", 0},
          {"Date_Entered", session.clock.Today()}};
}

void Store(Session& session, const Target& target, const Recipe& recipe, std::string_view setName) {
  const RolledUp figures = RollUpRecipe(session, recipe, target.database);
  std::vector<Cell> cells{{"Color_Name", target.name},
                          {"BasicCost", figures.BasicCost},
                          {"BasicVOC", figures.BasicVOC},
                          {"BasicHAP", figures.BasicHAP},
                          {"LastModified", session.clock.Today()}};
  if (!target.existing) {
    const std::vector<Cell> more = NewRecordCells(session);
    cells.insert(cells.end(), more.begin(), more.end());
  }
  std::vector<std::string> fields;
  for (const Cell& cell : cells) fields.push_back(cell.first);
  RecipeWriter writer(session, target.database, fields);
  writer.Set(recipe, setName);
  for (std::size_t i = 0; i < cells.size(); ++i) writer.SetMore(i, cells[i].second);
  if (target.existing) {
    writer.Update(target.existing->key);
  } else {
    writer.Insert();
  }
}

void TellDone(Session& session, const Target& target, std::string_view source) {
  if (target.existing) {
    session.prompt.Tell("Master Formula - Modified", fmt::format("The formula for {} was modified.", target.name));
  } else {
    session.prompt.Tell(
        "Master Formula - Duplicated",
        fmt::format("The formula for {} was duplicated into the color  {}\n\nIt is available for use in "
                    "the {} Database.",
                    source, target.name, target.database));
  }
}

Result<void> MayDuplicate(const Session& session) {
  if (auto writable = RequireWritable(session); !writable) return writable;
  return RequireFormulaRight(session);
}

Result<Duplicated> Duplicate(Session& session, const Source& source, std::string_view typed,
                             std::string_view targetDatabase, std::string_view setName) {
  const auto target = ReadTarget(session, typed, source.name, targetDatabase, setName);
  if (!target) return std::unexpected(target.error());
  if (target->existing &&
      !session.prompt.Ask("Overwite Exisiting Master Formula?",
                          fmt::format("This Master Formula already exists in the {} database.\nWould you like to "
                                      "overwrite this Master Formula's existing formula?",
                                      target->database),
                          Answer::No))
    return Duplicated{};

  const Recipe list = InTarget(session, source.list, target->database);
  if (list.empty()) return Refuse(Padded(30, "Invalid Formula"), "Can't save a formula with no ingredients.", "BC0");
  const bool withSet = target->set && SetFits(list, *target->set);
  if (target->set && !withSet)
    session.prompt.Tell("Maxium Formula Ingredients Exceeded",
                        "The Duplicated Formula cannot be saved with the selected Additive Set information.\nThe total "
                        "number of ingredients exceeds 15.\n\nIt will be duplicated without the Additive Set "
                        "information.");

  const Recipe recipe = withSet ? NormaliseWithSet(list, target->set->Rows()) : Normalise(list);
  if (const Ingredient* lost = LostShare(recipe))
    return Refuse(Padded(30, "Invalid Formula"),
                  fmt::format("This formula cannot be saved: {}.", LostShareText(*lost)));

  Transaction transaction(session.File());
  UndoStep step(session, Undoable::DuplicateFormula, fmt::format("Duplicate {} as {}", source.name, target->name));
  AddMissingIngredients(session, target->database, source, list);
  Store(session, *target, recipe, withSet ? target->set->SetName : std::string());
  transaction.Note({Change::Kind::Mix, target->database, target->name,
                    target->existing ? Change::What::Updated : Change::What::Added, ""});
  step.Keep();
  transaction.Commit();
  TellDone(session, *target, source.name);
  return Duplicated{true, target->existing.has_value(), withSet, target->name};
}

}  // namespace

Result<Duplicated> DuplicateFormula(Session& session, std::string_view source, std::string_view typed,
                                    std::string_view targetDatabase, std::string_view setName) {
  if (auto may = MayDuplicate(session); !may) return std::unexpected(may.error());
  const auto mix = ReadMix(session, source);
  if (!mix) return Refuse("Color Not Found", fmt::format("{} is not found in this database.", source), "Color_Name");
  return Duplicate(session, {mix->Color_Name, WithoutOwnSet(session, mix->Ingredients(), mix->AddSetName)}, typed,
                   targetDatabase, setName);
}

Result<Duplicated> DuplicateFormula(Session& session, const FormulaWork& source, std::string_view typed,
                                    std::string_view targetDatabase, std::string_view setName) {
  if (auto may = MayDuplicate(session); !may) return std::unexpected(may.error());
  if (auto valid = ValidateFormula(session, source); !valid) return std::unexpected(valid.error());
  return Duplicate(session, {source.Color_Name, GridRecipe(source), source.newIngredients}, typed, targetDatabase,
                   setName);
}

}  // namespace vellumark
