#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "core/exchange/formula_table.h"

namespace vellumark {

/// What is known of the names that stand in recipes.
struct IngredientNames {
  /// A Basic Color, of the Database or of the source.
  std::function<bool(const std::string& name)> isBasic;
  /// The place of a formula in the source.
  std::function<std::optional<std::size_t>(const std::string& name)> inSource;
  /// The recipe of a formula of the Database.
  std::function<std::optional<Recipe>(const std::string& name)> here;
};

struct OutMultiplied {
  bool hasFormulas = false;  ///< some ingredient is a formula itself
  std::string fault{};       ///< empty when there is none
};

/// Finds the formulas that have formulas among their ingredients: a name that is a Basic Color is none. One that names
/// itself through others is at fault. With `multiply` such an ingredient is replaced by its own ingredients, in its
/// share, the amounts of one name added up; at fault is a formula that comes to more than fifteen of them or that needs
/// one at fault.
std::vector<OutMultiplied> MultiplyOut(const IngredientNames& names, std::vector<SourceColor>& formulas, bool multiply);

}  // namespace vellumark
