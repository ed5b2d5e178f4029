#pragma once

#include <string>
#include <string_view>

#include "core/colors/formula_work.h"

namespace vellumark {

/// What a duplicate came to.
struct Duplicated {
  bool done = false;         ///< false when the operator did not want to overwrite
  bool overwritten = false;  ///< an existing formula took the recipe
  bool withSet = false;
  std::string name;
};

/// Copies a formula under a new name into a Database of the file (empty: the current one), with an Additive Set of that
/// Database or none; the set of the formula itself stays behind. Ingredients that the Database lacks are made there
/// with zero figures. Tells when it is done.
Result<Duplicated> DuplicateFormula(Session& session, std::string_view source, std::string_view typed,
                                    std::string_view targetDatabase = {}, std::string_view setName = {});
/// The same of a formula with the recipe that stands on screen, saved or not; one that is not valid is refused.
Result<Duplicated> DuplicateFormula(Session& session, const FormulaWork& source, std::string_view typed,
                                    std::string_view targetDatabase = {}, std::string_view setName = {});

}  // namespace vellumark
