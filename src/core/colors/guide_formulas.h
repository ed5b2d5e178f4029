#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/colors/formula_work.h"

namespace vellumark {

/// The published recipe of a formula of the current Database: that of the guide that its row names, since two guides
/// may have a formula of one name, else of the first guide that has the name; nothing when none has.
std::optional<Recipe> ReadTemplateRecipe(const Session& session, std::string_view name);

/// True when a formula of a guide differs from what was published: another ingredient, or another amount.
bool IsFormulaModified(const Session& session, std::string_view name);

/// A formula beside what was published, each with its lines as they stand.
struct FormulaComparison {
  std::string Color_Name;
  Recipe original;
  Recipe modified;
  /// Of each modified line: "+1.250" or "-1.250" against the published amount, "added"; empty where nothing differs.
  std::vector<std::string> changes;
  /// Published lines that the formula no longer has.
  std::vector<std::string> missing;
  std::optional<DateTime> Date_Entered;
  bool isModified = false;
  bool canRevert = false;
};
/// Refused for a formula that is not there or that the guides do not have.
Result<FormulaComparison> CompareFormula(const Session& session, std::string_view name);

/// True when every published ingredient of the formula is still in the Database.
bool CanRevertToGuide(const Session& session, std::string_view name);

/// The question before a formula is put back; refused where that cannot be done.
Result<bool> AskRevertToGuide(Session& session, std::string_view name);
/// Puts a formula back to the published recipe: no Additive Set, no longer open for editing, saved and rolled up.
Result<void> PutBackToGuide(Session& session, FormulaWork& work);
/// Both. False when the operator declined.
Result<bool> RevertToGuide(Session& session, FormulaWork& work);

}  // namespace vellumark
