#include "core/colors/formula_work.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "core/base/number.h"
#include "core/base/text.h"
#include "core/colors/amounts.h"
#include "core/colors/names.h"
#include "core/colors/stock_trace.h"
#include "core/datafile/references.h"
#include "core/session/acts.h"
#include "core/session/undo_step.h"

namespace vellumark {
namespace {

constexpr double kSmallestAmount = 0.001;
constexpr double kLargestPart = 999;

bool IsFilled(const FormulaWork::Row& row) {
  return !TrimView(row.BC).empty();
}

std::string FieldOf(std::string_view word, std::size_t row) {
  return schema::Numbered(word, static_cast<int>(row));
}

std::unexpected<Refusal> InvalidFormula(std::string text, std::string field) {
  return Refuse(Padded(30, "Invalid Formula"), std::move(text), std::move(field));
}

std::optional<double> AmountOf(std::string_view typed) {
  const auto number = ParseNumber(typed);
  if (!number || std::fabs(*number) > 1e9) return std::nullopt;
  return number;
}

void ShowGrid(FormulaWork& work, const Recipe& recipe) {
  for (std::size_t n = 0; n < work.grid.size(); ++n)
    work.grid[n] =
        n < recipe.size() ? FormulaWork::Row{recipe[n].name, Fixed(recipe[n].amount, 3)} : FormulaWork::Row{};
}

bool IsKnown(const Session& session, const FormulaWork& work, std::string_view name) {
  return BasicColorExists(session, name) ||
         std::ranges::any_of(work.newIngredients, [&](const NewIngredient& i) { return EqualNoCase(i.name, name); });
}

Recipe SetRows(const Session& session, std::string_view setName) {
  const auto set = ReadAdditiveSet(session, setName);
  return set ? set->Rows() : Recipe{};
}

// Each check runs over all rows before the next begins.
using RowCheck = Result<void> (*)(const Session&, const FormulaWork&, std::size_t);

Result<void> CheckKnown(const Session& session, const FormulaWork& work, std::size_t row) {
  if (!IsFilled(work.grid[row]) || IsKnown(session, work, TrimView(work.grid[row].BC))) return {};
  return InvalidFormula(
      "Unrecognized Basic / Additive in the formula.\n\nMake sure item is properly added to the database.",
      FieldOf("BC", row));
}

Result<void> CheckAmountRange(const Session&, const FormulaWork& work, std::size_t row) {
  // A row without any amount has a message of its own, which comes after this check.
  if (TrimView(work.grid[row].BQ).empty()) return {};
  if (const auto amount = EnterAmount(work.grid[row].BQ, FieldOf("BQ", row)); !amount)
    return std::unexpected(amount.error());
  return {};
}

Result<void> CheckHasAmount(const Session&, const FormulaWork& work, std::size_t row) {
  if (!IsFilled(work.grid[row]) || AmountOf(work.grid[row].BQ)) return {};
  return InvalidFormula("No quantity for this ingredient.", FieldOf("BQ", row));
}

Result<void> CheckHasIngredient(const Session&, const FormulaWork& work, std::size_t row) {
  if (IsFilled(work.grid[row]) || !AmountOf(work.grid[row].BQ)) return {};
  return InvalidFormula("No ingredient for this quantity.", FieldOf("BC", row));
}

Result<void> CheckSingleUse(const Session&, const FormulaWork& work, std::size_t row) {
  if (!IsFilled(work.grid[row])) return {};
  for (std::size_t earlier = 0; earlier < row; ++earlier)
    if (EqualNoCase(TrimView(work.grid[earlier].BC), TrimView(work.grid[row].BC)))
      return InvalidFormula("Duplicate use of an ingredient in the formula.", FieldOf("BC", row));
  return {};
}

// A set needs lines beside it, and its own lines need room among the fifteen.
Result<void> CheckSet(const Session& session, const FormulaWork& work) {
  const Recipe set = SetRows(session, work.AddSetName);
  if (set.empty()) return {};
  const Recipe rest = WithoutSet(GridRecipe(work), set);
  if (rest.empty()) return InvalidFormula("Can't save a formula with just an Additive Set.", "BC0");
  if (rest.size() + set.size() > static_cast<std::size_t>(schema::kIngredientSlots))
    return Refuse("Exceeded Formula Maxium Ingredients",
                  "The selected Additive Set cannot be entered into the formula.\n\nThe current ingredients and the "
                  "choosen Additive Set exceed 15 items.",
                  "AddSetName");
  return {};
}

// The stored recipe: the grid and the set's lines, in parts of 100.
Recipe StoredRecipe(const Session& session, const FormulaWork& work) {
  const Recipe set = SetRows(session, work.AddSetName);
  return set.empty() ? Normalise(GridRecipe(work)) : NormaliseWithSet(GridRecipe(work), set);
}

// What rounds to nothing in parts of 100 would stand in the formula and never be weighed.
Result<void> CheckShares(const Session& session, const FormulaWork& work) {
  const Recipe stored = StoredRecipe(session, work);
  const Ingredient* lost = LostShare(stored);
  if (lost == nullptr) return {};
  for (std::size_t row = 0; row < work.grid.size(); ++row)
    if (EqualNoCase(TrimView(work.grid[row].BC), lost->name))
      return InvalidFormula(fmt::format("This formula cannot be saved: {}.", LostShareText(*lost)), FieldOf("BQ", row));
  return {};
}

void AddIngredients(Session& session, const FormulaWork& work) {
  for (const NewIngredient& ingredient : work.newIngredients)
    if (!BasicColorExists(session, ingredient.name)) AddZeroBasic(session, ingredient.name, ingredient.additive);
}

// Writes the recipe and what it gives; `more` and `values` go into the same row. The row written.
std::int64_t WriteRecipe(Session& session, const FormulaWork& work, const Recipe& recipe,
                         const std::vector<Cell>& more) {
  const RolledUp figures = RollUpRecipe(session, recipe);
  std::vector<std::string> fields{"BasicCost", "BasicVOC", "BasicHAP"};
  for (const Cell& cell : more) fields.push_back(cell.first);
  RecipeWriter writer(session, {}, fields);
  writer.Set(recipe, work.AddSetName);
  writer.SetMore(0, figures.BasicCost).SetMore(1, figures.BasicVOC).SetMore(2, figures.BasicHAP);
  for (std::size_t i = 0; i < more.size(); ++i) writer.SetMore(3 + i, more[i].second);
  if (work.key == 0) return writer.Insert();
  return writer.Update(work.key) ? work.key : 0;
}

std::unexpected<Refusal> Gone(const FormulaWork& work) {
  return Refuse("Color Not Found", work.Color_Name + " is not found in this database.", "Color_Name");
}

Result<double> ReadAdjustPercent(std::string_view typed) {
  const double value = RoundTo(AmountOf(typed).value_or(0), 2);
  if (value > 0 && value < 100) return value;
  return Refuse("Invalid Percentage", "You must enter a valid percentage > 0 and < 100.", "txtPercent");
}

// After a save the fields show what was stored.
void Reload(const Session& session, FormulaWork& work) {
  const auto mix = ReadMix(session, work.Color_Name);
  if (!mix) return;
  const bool editing = work.AllowEditing;
  work = LoadFormulaWork(session, *mix);
  work.AllowEditing = editing;
}

}  // namespace

Recipe GridRecipe(const FormulaWork& work) {
  Recipe recipe;
  for (const FormulaWork::Row& row : work.grid)
    if (IsFilled(row)) recipe.push_back({Trim(row.BC), RoundTo(AmountOf(row.BQ).value_or(0), 3)});
  return recipe;
}

Result<void> CheckNewMixName(const Session& session, const std::string& name, std::string_view field) {
  if (!MayDo(session, Act::EditFormulas))
    return Refuse(Padded(30, "Color Not Found"),
                  name +
                      " is not found in this database, and you do not\nhave permission to add a new Master Formula "
                      "to the database.",
                  std::string(field));
  const bool published = IsPantoneBookMix(session, name);
  if (auto valid = CheckNewName(name, NameSource::Typed, session.NameLength, field); !valid && !published) return valid;
  if (HasPantonePrefix(name) && !published)
    return Refuse(Padded(30, "Master Formula - Invalid Color Name"),
                  "You cannot add a new color to the database that begins with the word PANTONE. Please choose another "
                  "name.",
                  std::string(field));
  return {};
}

bool AskNewMix(Session& session, const std::string& name) {
  const std::string text =
      BasicColorExists(session, name)
          ? fmt::format(
                "A Basic Color {0} already exists in the {1} database.\n\nWould you like to also add a Master "
                "Formula {0} to the database?",
                name, session.CurrentDatabase)
          : fmt::format(
                "This Master Formula is not found in the {} database\n\nWould you like to create a new Master "
                "Formula?",
                session.CurrentDatabase);
  return session.prompt.Ask(Padded(30, "Master Formula - New Master Formula"), text);
}

Result<NameEntry> EnterMixName(Session& session, std::string_view typed) {
  std::string name = ReadName(session, typed);
  if (name.empty()) return NameEntry{};
  if (const auto mix = FindMix(session, name)) return NameEntry{NameEntry::Kind::Found, mix->Color_Name};
  if (auto allowed = CheckNewMixName(session, name); !allowed) return std::unexpected(allowed.error());
  if (IsPantoneBookMix(session, name)) name = GetTemplateMixName(session, name);
  if (!AskNewMix(session, name)) return NameEntry{NameEntry::Kind::Abandoned, name};
  if (auto writable = RequireWritable(session); !writable) return std::unexpected(writable.error());
  return NameEntry{NameEntry::Kind::New, name};
}

FormulaWork NewFormulaWork(const Session& session, std::string name) {
  MixColor mix;
  mix.Color_Name = std::move(name);
  FormulaWork work = LoadFormulaWork(session, mix);
  work.AllowEditing = true;
  return work;
}

FormulaWork LoadFormulaWork(const Session& session, const MixColor& mix) {
  FormulaWork work;
  static_cast<MixColor&>(work) = mix;
  ShowFigures(session, MixFields(), work);
  const auto set = ReadAdditiveSet(session, mix.AddSetName);
  work.AddSetName = set ? set->SetName : "";
  ShowGrid(work, set ? WithoutSet(mix.Ingredients(), set->Rows()) : mix.Ingredients());
  return work;
}

Result<IngredientEntry> EnterIngredient(Session& session, const FormulaWork& work, std::size_t row,
                                        std::string_view typed) {
  IngredientEntry entry;
  entry.name = StoredName(session, ColorKind::Basic, ReadName(session, typed));
  if (entry.name.empty()) return entry;
  for (std::size_t other = 0; other < work.grid.size(); ++other)
    if (other != row && EqualNoCase(TrimView(work.grid[other].BC), entry.name))
      return InvalidFormula("Duplicate use of an ingredient in the formula.", FieldOf("BC", row));
  if (IsKnown(session, work, entry.name)) return entry;

  if (auto writable = RequireWritable(session); !writable) return std::unexpected(writable.error());
  if (auto allowed = CheckNewBasicName(session, entry.name, FieldOf("BC", row)); !allowed)
    return std::unexpected(allowed.error());
  const bool add = session.prompt.Ask(
      "Add Basic Color To Database?",
      fmt::format("The Basic Color {0} is not found in this database.\n\nHint: Check your list of Basic Colors for "
                  "spelling variations\nbefore adding a new Basic Color to this database.\n\nWould you like to add the "
                  "Basic Color {0} to this database?",
                  entry.name));
  if (!add) return IngredientEntry{};
  const bool isColor = session.prompt.Ask(
      "Confirm Basic Color description",
      fmt::format("Is {} a Color or an Additive?\n\nYes - It is a Color, No - It is an Additive", entry.name));
  entry.toAdd = NewIngredient{entry.name, !isColor};
  return entry;
}

Result<std::string> EnterAmount(std::string_view typed, std::string_view field) {
  if (const auto amount = AmountOf(typed)) {
    const double rounded = RoundTo(*amount, 3);
    if (rounded >= kSmallestAmount && rounded <= kLargestPart) return Fixed(rounded, 3);
  }
  return Refuse("Invalid Formula Amount",
                fmt::format("You must enter an amount between\n\n0.001 and {}", Fixed(kLargestPart, 3)),
                std::string(field));
}

std::string UpdateBQTotal(const FormulaWork& work) {
  Currency total;
  for (const FormulaWork::Row& row : work.grid) total += Currency::From(AmountOf(row.BQ).value_or(0));
  return total.Fixed(3);
}

Result<void> ChooseAdditiveSet(const Session& session, FormulaWork& work, std::string_view setName) {
  if (TrimView(setName).empty()) {
    work.AddSetName.clear();
    return {};
  }
  const auto set = ReadAdditiveSet(session, ReadSetName(setName));
  if (!set) return Refuse("Additive Set Name", fmt::format("Additive Set: {} is not on file.", setName), "AddSetName");
  if (auto fits = CheckSetFitsFormula(GridRecipe(work), *set); !fits) return fits;
  work.AddSetName = set->SetName;
  return {};
}

Result<void> ValidateFormula(const Session& session, const FormulaWork& work) {
  if (std::ranges::none_of(work.grid, IsFilled))
    return InvalidFormula("Can't save a formula with no ingredients.", "BC0");
  for (const RowCheck check : {CheckKnown, CheckAmountRange, CheckHasAmount, CheckHasIngredient, CheckSingleUse})
    for (std::size_t row = 0; row < work.grid.size(); ++row)
      if (auto passed = check(session, work, row); !passed) return passed;
  if (auto set = CheckSet(session, work); !set) return set;
  return CheckShares(session, work);
}

Result<void> SaveMix(Session& session, FormulaWork& work) {
  if (auto writable = RequireWritable(session); !writable) return writable;
  const bool isNew = work.key == 0;
  const bool withRecipe = isNew || work.AllowEditing;
  if (withRecipe) {
    if (auto right = RequireFormulaRight(session); !right) return right;
    if (auto valid = ValidateFormula(session, work); !valid) return valid;
  }
  auto mix = ReadTyped(session, MixFields(), work);
  if (!mix) return std::unexpected(mix.error());
  if (isNew && MixColorExists(session, work.Color_Name))
    return Refuse("Master Formula Exists",
                  "This Master Formula already exists in the database.\n\nPlease select different name.", "Color_Name");

  if (isNew) {
    mix->Date_Entered = session.clock.Today();
    mix->book = BookDataOfMix(session, work.Color_Name);
  }
  std::vector<Cell> cells = MixFields().Cells(*mix, isNew ? kNewRowUses : kSavedUses);
  if (withRecipe) cells.emplace_back("LastModified", session.clock.Today());
  Transaction transaction(session.File());
  UndoStep step(session, Undoable::SaveMix,
                fmt::format("{} the Master Formula {}", isNew ? "Add" : "Change", work.Color_Name));
  if (withRecipe) {
    AddIngredients(session, work);
    if (WriteRecipe(session, work, StoredRecipe(session, work), cells) == 0) return Gone(work);
  } else if (!UpdateRow(session.File(), schema::Mix, session.Table(schema::Mix), work.key, cells)) {
    return Gone(work);
  }
  transaction.Note({Change::Kind::Mix, session.CurrentDatabase, work.Color_Name,
                    isNew ? Change::What::Added : Change::What::Updated, ""});
  step.Keep();
  transaction.Commit();
  Reload(session, work);
  return {};
}

Result<void> SaveFormula(Session& session, FormulaWork& work) {
  if (auto writable = RequireWritable(session); !writable) return writable;
  if (auto right = RequireFormulaRight(session); !right) return right;
  if (auto valid = ValidateFormula(session, work); !valid) return valid;
  Transaction transaction(session.File());
  UndoStep step(session, Undoable::SaveFormula, fmt::format("Change the ingredients of {}", work.Color_Name));
  AddIngredients(session, work);
  const Cell modified{"LastModified", session.clock.Today()};
  if (work.key == 0 || WriteRecipe(session, work, StoredRecipe(session, work), {modified}) == 0) return Gone(work);
  transaction.Note({Change::Kind::Mix, session.CurrentDatabase, work.Color_Name, Change::What::Updated, ""});
  step.Keep();
  transaction.Commit();
  Reload(session, work);
  return {};
}

Result<bool> DeleteMix(Session& session, const std::string& name) {
  if (auto writable = RequireWritable(session); !writable) return std::unexpected(writable.error());
  const auto mix = ReadMix(session, name);
  if (!mix) return Refuse("Color Not Found", name + " is not found in this database.", "Color_Name");
  if (auto right = RequireFormulaRight(session); !right) return std::unexpected(right.error());
  if (UsedByDesign(session.File(), session.CurrentDatabase, ColorKind::Mix, mix->Color_Name))
    return Refuse("Additive Set Color",
                  "Color is used in a Job Design.\n\nRename color or modify Job Design before deleting.");
  if (!session.prompt.Ask("Master Formula - Delete Master Formula?",
                          fmt::format("Deleting this Master Formula will permanently remove it from the {} "
                                      "database.\n\nDo you want to delete this Master Formula?",
                                      session.CurrentDatabase),
                          Answer::No))
    return false;
  Transaction transaction(session.File());
  UndoStep step(session, Undoable::DeleteMix, fmt::format("Delete the Master Formula {}", mix->Color_Name));
  GiveUpColorStock(session, ColorKind::Mix, session.CurrentDatabase, mix->Color_Name);
  session.File()
      .Prepare("DELETE FROM " + session.QuotedTable(schema::Mix) + " WHERE RowKey = ?")
      .Bind(1, mix->key)
      .Run();
  transaction.Note({Change::Kind::Mix, session.CurrentDatabase, mix->Color_Name, Change::What::Deleted, ""});
  step.Keep();
  transaction.Commit();
  return true;
}

Result<std::string> EnterAdjustPercent(std::string_view typed) {
  const Result<double> value = ReadAdjustPercent(typed);
  if (!value) return std::unexpected(value.error());
  return Fixed(*value, 2);
}

std::vector<std::string> AdjustChoices(const Session& session, const FormulaWork& work, FormulaAdjustment adjustment) {
  const Recipe set = SetRows(session, work.AddSetName);
  const Recipe grid = WithoutSet(GridRecipe(work), set);
  if (adjustment != FormulaAdjustment::Add) return NamesOf(grid);
  std::vector<std::string> names = BasicNames(session, BasicFilter::Colors);
  std::erase_if(names,
                [&](const std::string& name) { return HoldsIngredient(grid, name) || HoldsIngredient(set, name); });
  return names;
}

Result<void> AdjustFormula(Session& session, FormulaWork& work, FormulaAdjustment adjustment,
                           std::string_view ingredient, std::string_view percent) {
  const Result<double> read = ReadAdjustPercent(percent);
  if (!read) return std::unexpected(read.error());
  const double value = *read;
  const std::vector<std::string> choices = AdjustChoices(session, work, adjustment);
  const auto choice = std::ranges::find_if(choices, [&](const std::string& c) { return EqualNoCase(c, ingredient); });
  if (choice == choices.end())
    return Refuse("Color Not Found", fmt::format("{} cannot be chosen for this adjustment.", ingredient), "cmbBasics");

  FormulaWork adjusted = work;
  if (adjustment == FormulaAdjustment::Add) {
    const auto empty = std::ranges::find_if_not(adjusted.grid, IsFilled);
    if (empty == adjusted.grid.end())
      return Refuse(
          "Maximum Ingredients Exceeded",
          fmt::format("This formula already contains the maximum number of ingredients, 15.\n\n{} could not be "
                      "added to the formula.",
                      *choice));
    *empty = {*choice, Fixed(value, 3)};
  } else {
    const double change = adjustment == FormulaAdjustment::Increase ? value : -value;
    for (FormulaWork::Row& row : adjusted.grid)
      if (EqualNoCase(TrimView(row.BC), *choice))
        row.BQ = Fixed(ChangedByPercent(AmountOf(row.BQ).value_or(0), change), 3);
  }
  if (auto saved = SaveFormula(session, adjusted); !saved) return saved;
  work = std::move(adjusted);
  return {};
}

}  // namespace vellumark
