#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/colors/additive_sets.h"
#include "core/colors/formulas.h"
#include "core/session/session.h"

namespace vellumark {

// The formula modifier: up to five lines, each a change of one ingredient by a percentage, applied to many formulas.

enum class ModMethod { Increase, Decrease, Add, Remove };
inline constexpr std::array<std::string_view, 4> kModMethodTexts{"Increase Basic Color", "Decrease Basic Color",
                                                                 "Add Basic Color", "Remove Basic Color"};
inline constexpr std::size_t kModifierLines = 5;

/// A line as it stands in the fields.
struct ModifierLine {
  bool chosen = false;
  ModMethod method = ModMethod::Increase;
  std::string ingredient;
  std::string percent;
};

/// A line that may be applied: the percentage has two decimals at most.
struct FormulaModification {
  ModMethod method = ModMethod::Increase;
  std::string ingredient;
  double percent = 0;
  std::size_t line = 0;  ///< where it stands among the fields
};

/// What opening the tool asks for: that there are formulas.
Result<void> RequireFormulasToModify(const Session& session);

/// The percentage of a line: a number from 0 that reads as two decimals, exactly 100.00 to remove, up to 50.00 to add,
/// up to 100.00 to decrease. `line` counts from 0.
Result<double> ReadModifierPercent(const ModifierLine& line, std::size_t number = 0);

/// Every check before a preview, in its order: the percentages, that colours are selected, one line for an ingredient,
/// no zero, a line chosen; and that the ingredients are Basic Colors. The chosen lines come back.
Result<std::vector<FormulaModification>> CheckModifierLines(const Session& session,
                                                            const std::vector<ModifierLine>& lines,
                                                            const std::vector<std::string>& colors);

/// What the lines would do to one formula.
struct ModifierPreviewRow {
  std::string Color_Name;
  std::string AddSetName;
  bool modable = false;              ///< may be modified at all
  bool toModify = false;             ///< stands in "Colors to be Modified:"; a modable row may be moved there
  std::vector<std::string> reasons;  ///< at most one for each line
  Recipe present;
  Recipe modified;  ///< the recipe as it would be stored; empty when not modable
};

/// The verdict and the new recipe of one formula. `set` is the formula's Additive Set, null when it has none or the one
/// it names is not on file.
ModifierPreviewRow JudgeModification(const MixColor& mix, const AdditiveSet* set,
                                     const std::vector<FormulaModification>& lines);

/// The recipe after the lines. Lines that come to 0 go and the rest is brought to parts of 100; where rounding misses
/// 100, the last line above the first line's amount is corrected, else the first. Beside an Additive Set the correction
/// does not count the set's share, so that such a formula totals 100 and the set's share until its next save.
Recipe ModifiedRecipe(const MixColor& mix, const AdditiveSet* set, const std::vector<FormulaModification>& lines);

/// Judges the colours, in the order given.
Result<std::vector<ModifierPreviewRow>> PreviewModifier(Session& session, const std::vector<ModifierLine>& lines,
                                                        const std::vector<std::string>& colors);

/// Asks, and changes the colours, which stand in "Colors to be Modified:". Writes recipe, Color_Set and LastModified
/// (date and time) and marks the roll-ups as stale. A colour that cannot be modified is refused. False when the
/// operator declined.
Result<bool> ApplyModifier(Session& session, const std::vector<ModifierLine>& lines,
                           const std::vector<std::string>& colors);

/// "RED 60.000, BLUE 40.000", and the reasons one behind the other, as previews show them.
std::string RecipeText(const Recipe& recipe);
std::string ReasonsText(const ModifierPreviewRow& row);

}  // namespace vellumark
