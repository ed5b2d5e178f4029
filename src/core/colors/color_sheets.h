#pragma once

#include <string>
#include <vector>

#include "core/base/sheet.h"
#include "core/colors/additive_sets.h"
#include "core/colors/basics.h"
#include "core/colors/formulas.h"
#include "core/colors/guide_formulas.h"
#include "core/session/settings.h"

namespace vellumark {

// What is printed of colours and Additive Sets.

/// What can be left out of a colour's card, and the setting that chooses the item of that number.
std::vector<std::string> CardItems(ColorKind kind);
NamedSetting<bool> CardItemSetting(ColorKind kind, std::size_t item);
/// A colour's card: what is known of it, its recipe, its notes. Costs only for those who may see them.
Sheet BasicColorSheet(const Session& session, const BasicColor& color);
Sheet FormulaSheet(const Session& session, const MixColor& mix);
/// The lines of each set and the formulas that use it.
Sheet AdditiveSetsSheet(const Session& session, const std::vector<AdditiveSet>& sets);
/// A formula beside the recipe that its guide publishes.
Sheet CompareSheet(const FormulaComparison& compared);
/// The formulas that need a Basic Color, which can therefore not be deleted.
Sheet FormulaRequirementSheet(std::vector<std::string> formulas);

}  // namespace vellumark
