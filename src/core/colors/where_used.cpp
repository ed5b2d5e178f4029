#include "core/colors/where_used.h"

#include "core/colors/additive_sets.h"
#include "core/colors/formulas.h"
#include "core/datafile/references.h"

namespace vellumark {

ColorUses FindUses(const Session& session, ColorKind kind, std::string_view name) {
  ColorUses uses;
  uses.designs = DesignsUsing(session.File(), session.CurrentDatabase, kind, name);
  if (kind == ColorKind::Mix) return uses;
  uses.formulas = FormulasUsing(session, name);
  for (const AdditiveSet& set : ListAdditiveSets(session))
    if (HoldsIngredient(set.Rows(), name)) uses.additiveSets.push_back(set.SetName);
  return uses;
}

}  // namespace vellumark
