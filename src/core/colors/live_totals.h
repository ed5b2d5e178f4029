#pragma once

#include <array>
#include <string>
#include <string_view>

#include "core/colors/formula_work.h"

namespace vellumark {

/// Cost and emissions per inventory unit of one ingredient, and its swatch.
struct IngredientFigures {
  float Cost = 0;
  float VOC = 0;
  float HAP = 0;
  int Red = 0;
  int Green = 0;
  int Blue = 0;
  /// An ink of which nothing is known but zeros has no swatch.
  bool HasSwatch() const { return Red != 0 || Green != 0 || Blue != 0; }
};
/// Those of the lines of a grid, kept beside a formula on screen so that its totals follow every key.
using GridFigures = std::array<IngredientFigures, schema::kIngredientSlots>;

/// As they are on file; zero for an ingredient that is not.
IngredientFigures ReadIngredientFigures(const Session& session, std::string_view name);
GridFigures ReadGridFigures(const Session& session, const FormulaWork& work);

/// The figures under the grid while amounts are typed.
struct LiveTotals {
  std::string BasicCost;
  std::string VOCBasics;
  std::string HAPBasics;
};
LiveTotals ComputeLiveTotals(const Session& session, const FormulaWork& work, const GridFigures& figures);

}  // namespace vellumark
