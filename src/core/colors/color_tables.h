#pragma once

#include <string>

#include "core/base/table.h"
#include "core/colors/additive_sets.h"
#include "core/colors/basics.h"
#include "core/colors/formulas.h"

namespace vellumark {

// The fields of colours and Additive Sets as people and programs see them, and the lists of all of them in the order of
// their names. The session must outlive what is made here.

/// What a row about a colour leads to; `database` empty means the current one.
RowTarget ColorTarget(const Session& session, ColorKind kind, std::string_view name, const std::string& database = {});

TableOf<BasicColor> BasicColumns(const Session& session);
TableOf<MixColor> MixColumns(const Session& session);
TableOf<AdditiveSet> AdditiveSetColumns(const Session& session);
/// The lines of a recipe under that heading, their amounts with so many decimals.
TableOf<Ingredient> RecipeColumns(const std::string& heading, const std::string& amount, int decimals = 3);

ListTable ListBasics(const Session& session);
/// Only those with the ingredient when one is given.
ListTable ListFormulas(const Session& session, const std::string& ingredient = {});
ListTable ListSets(const Session& session);

}  // namespace vellumark
