#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/colors/additive_sets.h"
#include "core/colors/basic_work.h"
#include "core/colors/formulas.h"

namespace vellumark {

/// An ingredient that the recipe names and the Database is to get with it.
struct NewIngredient {
  std::string name;
  bool additive = false;
};

/// What the Master Formula window holds of one formula. Its grid holds the lines beside the Additive Set.
struct FormulaWork : ColorWork<MixColor> {
  struct Row {
    std::string BC;
    std::string BQ;
  };

  std::array<Row, schema::kIngredientSlots> grid;
  bool AllowEditing = false;                  ///< "Edit Formula": lets the recipe of a stored formula be written
  std::vector<NewIngredient> newIngredients;  ///< made in the same transaction as the formula
};

/// The filled rows of the grid, in order; a row without a number counts as nothing.
Recipe GridRecipe(const FormulaWork& work);

/// Leaving the name field, as for a Basic Color; a formula is found by its code too.
Result<NameEntry> EnterMixName(Session& session, std::string_view typed);
Result<void> CheckNewMixName(const Session& session, const std::string& name, std::string_view field = "Color_Name");
bool AskNewMix(Session& session, const std::string& name);

FormulaWork NewFormulaWork(const Session& session, std::string name);
/// With a set, its lines are left out of the grid; a set that no longer exists leaves all lines in the grid.
FormulaWork LoadFormulaWork(const Session& session, const MixColor& mix);

/// What leaving an ingredient field of the grid led to.
struct IngredientEntry {
  std::string name;  ///< as the field shows it; empty when the operator declined
  std::optional<NewIngredient> toAdd;
};
/// Finds an ingredient, or asks whether it is to be added and whether it is a Color or an Additive. Nothing is written:
/// the caller adds `toAdd` at once (AddZeroBasic) or leaves it to the save (newIngredients). A name that stands in
/// another row is refused.
Result<IngredientEntry> EnterIngredient(Session& session, const FormulaWork& work, std::size_t row,
                                        std::string_view typed);
/// An amount of the grid: numeric, 0.001 to 999, three decimals; the text as the field shows it.
Result<std::string> EnterAmount(std::string_view typed, std::string_view field);

/// Total Parts: the numeric amounts of the grid with four decimals, shown with three.
std::string UpdateBQTotal(const FormulaWork& work);

/// Chooses an Additive Set for the formula, or none with an empty name.
Result<void> ChooseAdditiveSet(const Session& session, FormulaWork& work, std::string_view setName);

/// The checks of a recipe in their order; the first failure is reported.
Result<void> ValidateFormula(const Session& session, const FormulaWork& work);

/// Saves the record. A new formula is written whole; of a stored one the recipe and LastModified only with
/// AllowEditing. On success `work` holds the formula as stored, its amounts in parts of 100.
Result<void> SaveMix(Session& session, FormulaWork& work);
/// Writes only the recipe of a stored formula: normalised, rolled up, LastModified today.
Result<void> SaveFormula(Session& session, FormulaWork& work);

/// True when deleted, false when the question was answered with No. Lots and measurements go with it; Batches and Job
/// Records keep the name. A formula in a Design is refused.
Result<bool> DeleteMix(Session& session, const std::string& name);

enum class FormulaAdjustment { Increase, Decrease, Add };
/// The percentage of an adjustment: numeric, above 0 and below 100; the text as the field shows it, two decimals.
Result<std::string> EnterAdjustPercent(std::string_view typed);
/// Changes one ingredient by a percentage above 0 and below 100, or adds it with that percentage as its amount, and
/// saves the formula at parts of 100.
Result<void> AdjustFormula(Session& session, FormulaWork& work, FormulaAdjustment adjustment,
                           std::string_view ingredient, std::string_view percent);
/// What the list of the adjust window offers: the grid's lines, or the Colors that the formula does not hold.
std::vector<std::string> AdjustChoices(const Session& session, const FormulaWork& work, FormulaAdjustment adjustment);

}  // namespace vellumark
