#include "core/batch/modified.h"

#include <fmt/format.h>

#include <algorithm>

#include "core/base/text.h"
#include "core/batch/weighing.h"
#include "core/colors/additive_sets.h"
#include "core/colors/amounts.h"
#include "core/colors/basics.h"
#include "core/colors/formula_work.h"
#include "core/colors/formulas.h"
#include "core/colors/names.h"

namespace vellumark {
namespace {

constexpr std::size_t kMostFolded = 14;

struct Folded {
  Recipe recipe;  ///< formula and additions, as amounts
  Recipe set;     ///< the lines of the formula's Additive Set
  std::string setName;
};

std::int32_t SortOf(const BatchWork& work, const std::string& name) {
  for (const auto* list : {&work.Ingredients, &work.Additions})
    for (const BatchIngredient& ingredient : *list)
      if (EqualNoCase(ingredient.IngName, name)) return ingredient.IngSort;
  return 0;
}

// What weighing left over or under is no wish to change the formula.
float MeantAmount(const BatchRecord& record, const BatchIngredient& addition) {
  return RoundSingle(RoundTo(addition.Amount, 3) - RoundTo(WeighedDifference(record, addition.IngName), 3), 3);
}

Folded FoldBatch(const Session& session, const BatchRecord& record) {
  const BatchWork& work = record.work;
  Folded folded;
  if (const auto mix = ReadMix(session, work.Color_Name); mix && !mix->AddSetName.empty()) {
    if (const auto set = ReadAdditiveSet(session, mix->AddSetName)) {
      folded.setName = set->SetName;
      folded.set = set->Rows();
    }
  }
  Recipe additions;
  for (const BatchIngredient& i : work.Ingredients) folded.recipe.push_back({i.IngName, ShownAmount(i.Amount)});
  for (const BatchIngredient& i : work.Additions)
    if (const float meant = MeantAmount(record, i); meant != 0) additions.push_back({i.IngName, ShownAmount(meant)});
  folded.recipe = FoldAdditions(std::move(folded.recipe), additions);
  if (!work.settings.userOrder) {
    std::ranges::stable_sort(folded.recipe, std::ranges::greater{}, &Ingredient::amount);
  } else {
    std::ranges::stable_sort(folded.recipe, {}, [&](const Ingredient& i) { return SortOf(work, i.name); });
  }
  return folded;
}

Recipe PartsOf(const Folded& folded) {
  return folded.set.empty() ? Normalise(folded.recipe) : NormaliseWithSet(folded.recipe, folded.set);
}

std::vector<Cell> FigureCells(const Session& session, const Recipe& recipe) {
  const RolledUp figures = RollUpRecipe(session, recipe);
  return {{"BasicCost", figures.BasicCost},
          {"BasicVOC", figures.BasicVOC},
          {"BasicHAP", figures.BasicHAP},
          {"LastModified", session.clock.Today()}};
}

std::vector<Cell> NewFormulaCells(const Session& session, const BatchRecord& record, const std::string& name) {
  const BatchFormula& from = record.work.formula;
  const auto old = ReadMix(session, record.work.Color_Name);
  return {{"Color_Name", name},
          {"Color_Code", ""},
          {"Inventory", 0.0F},
          {"Reorder", old ? old->Reorder : 0},
          {"PurchaseCost", from.PurchaseCost},
          {"Notes", from.Notes},
          {"Inv_Note", ""},
          {"Recycle", old ? old->Recycle : true},
          {"Date_Entered", session.clock.Today()},
          {"LotRefID", 0},
          {"VOC", old ? old->VOC : 0},
          {"HAP", old ? old->HAP : 0},
          {"Color_Guide", from.Color_Guide},
          {"Page", from.Page},
          {"Row", from.Row},
          {"Red", from.Red},
          {"Green", from.Green},
          {"Blue", from.Blue}};
}

}  // namespace

bool OffersFormulaChange(const Session& session, const BatchRecord& record) {
  const BatchWork& work = record.work;
  const bool additions = std::ranges::any_of(
      work.Additions, [&](const BatchIngredient& addition) { return MeantAmount(record, addition) != 0; });
  return record.state == BatchState::Add && additions && work.RecycledColors.empty() &&
         work.FormulaIngredients.size() + work.Additions.size() <= kMostFolded && RequireFormulaRight(session);
}

Recipe ModifiedRecipe(const Session& session, const BatchRecord& record) {
  return PartsOf(FoldBatch(session, record));
}

Result<ModifiedBatchChoice> CheckModifiedBatch(Session& session, const BatchRecord& record,
                                               const ModifiedBatchChoice& choice) {
  if (choice.change == FormulaChange::None) return choice;
  if (auto right = RequireFormulaRight(session); !right) return std::unexpected(right.error());
  const Folded folded = FoldBatch(session, record);
  if (WithoutSet(folded.recipe, folded.set).empty()) {
    session.prompt.Tell("Modify / Create Color",
                        "Can't modify or create a new color from this formula.\n"
                        "Additions made to the batch create an Add Set ingredient formula.\n"
                        "Formulas must contain ingredients not found in the Add Set.\n"
                        "The batch will be saved without making any changes.");
    return ModifiedBatchChoice{};
  }
  if (const Recipe parts = PartsOf(folded); const Ingredient* lost = LostShare(parts))
    return Refuse("Modify / Create Color",
                  fmt::format("The formula cannot hold the additions: {}.", LostShareText(*lost)));
  if (choice.change == FormulaChange::Update) return choice;
  ModifiedBatchChoice checked = choice;
  checked.newName = ReadNewName(session, choice.newName);
  if (checked.newName.empty())
    return Refuse("Master Formula", "Please enter a name for the new Master Formula.", "txtColorName");
  checked.newName = StoredName(session, ColorKind::Mix, checked.newName);
  if (auto valid = CheckNewMixName(session, checked.newName, "txtColorName"); !valid)
    return std::unexpected(valid.error());
  if (MixColorExists(session, checked.newName))
    return Refuse("Master Formula Already Exists",
                  "This Master Formula already exists. Please choose another name for the new Master Formula Record.",
                  "txtColorName");
  if (BasicColorExists(session, checked.newName) &&
      !session.prompt.Ask("Master Formula", fmt::format("A Basic Color {0} already exists in the {1} database.\n"
                                                        "Would you like to also add a Master Formula {0}?",
                                                        checked.newName, session.CurrentDatabase)))
    return Decline("Master Formula", "txtColorName");
  return checked;
}

bool WriteModifiedFormula(Session& session, BatchRecord& record, const ModifiedBatchChoice& choice) {
  if (choice.change == FormulaChange::None) return true;
  const bool update = choice.change == FormulaChange::Update;
  const auto mix = ReadMix(session, record.work.Color_Name);
  if (update && !mix) return false;
  const Folded folded = FoldBatch(session, record);
  const Recipe recipe = PartsOf(folded);
  std::vector<Cell> cells = FigureCells(session, recipe);
  if (!update) std::ranges::move(NewFormulaCells(session, record, choice.newName), std::back_inserter(cells));
  std::vector<std::string> fields;
  for (const Cell& cell : cells) fields.push_back(cell.first);
  Transaction transaction(session.File());
  RecipeWriter writer(session, {}, fields);
  writer.Set(recipe, folded.setName);
  for (std::size_t i = 0; i < cells.size(); ++i) writer.SetMore(i, cells[i].second);
  if (update) {
    writer.Update(mix->key);
  } else {
    writer.Insert();
    record.work.Color_Name = choice.newName;
    record.work.formula.Color_Code.clear();
  }
  transaction.Note({Change::Kind::Mix,
                    session.CurrentDatabase,
                    record.work.Color_Name,
                    update ? Change::What::Updated : Change::What::Added,
                    {}});
  transaction.Commit();
  return true;
}

}  // namespace vellumark
