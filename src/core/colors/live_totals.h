#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/colors/formula_work.h"
#include "core/colors/ink.h"

namespace vellumark {

/// Cost and emissions per inventory unit of one ingredient, and its swatch.
struct IngredientFigures {
  float Cost = 0;
  float VOC = 0;
  float HAP = 0;
  std::optional<Ink> ink{};
};
/// Those of the lines of a grid and of the Additive Set beside it, kept with a formula on screen so that its totals
/// follow every key.
struct GridFigures {
  struct SetLine {
    std::string name;
    double percent = 0;
    IngredientFigures figures;
  };
  std::array<IngredientFigures, schema::kIngredientSlots> lines;
  std::vector<SetLine> set;
};

/// As they are on file; zero for an ingredient that is not.
IngredientFigures ReadIngredientFigures(const Session& session, std::string_view name);
GridFigures ReadGridFigures(const Session& session, const FormulaWork& work);

/// The figures under the grid while amounts are typed.
struct LiveTotals {
  std::string BasicCost;
  std::string VOCBasics;
  std::string HAPBasics;
  std::optional<Ink> ink{};  ///< what the recipe looks like
};
/// The grid shares what the set leaves of 100, as it will when it is saved.
LiveTotals ComputeLiveTotals(const Session& session, const FormulaWork& work, const GridFigures& figures);
/// What stands with a stored formula, which its ingredients may have left behind.
LiveTotals StoredTotals(const Session& session, const MixColor& mix);

}  // namespace vellumark
