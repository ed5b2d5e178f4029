#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "core/datafile/color_kind.h"
#include "core/session/session.h"

namespace vellumark {

/// Everything that names a colour of the current Database as its ingredient, each list in order.
struct ColorUses {
  std::vector<std::string> formulas;
  std::vector<std::string> additiveSets;
  std::vector<std::string> designs;  ///< by DesignID; Designs are shared by all Databases
  bool Any() const { return !formulas.empty() || !additiveSets.empty() || !designs.empty(); }
};

/// Where a colour is used. Only Designs can hold a Master Formula.
ColorUses FindUses(const Session& session, ColorKind kind, std::string_view name);

}  // namespace vellumark
