#pragma once

#include <string>
#include <string_view>

#include "core/exchange/formula_merge.h"

namespace vellumark {

// The Additive Sets of a merge. For the procedures of this room.

/// Which set of the Database each of the source is, or becomes: the one of its name when it holds the same, else one
/// with " DUP" behind its name, and a number from 2 where that is another one too. One that cannot be a set here is left
/// out, and its formulas come without it.
void PlanSets(Session& session, MergePlan& plan);

/// The name here of a set of the source; empty for none.
std::string SetHere(const MergePlan& plan, std::string_view name);

}  // namespace vellumark
