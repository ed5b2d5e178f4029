#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "core/colors/additive_sets.h"
#include "core/colors/formulas.h"

namespace vellumark {

// Additive Sets and the formulas that use them, managed in bulk. Every procedure is one transaction; one that the
// operator stops is refused and changes nothing.

/// A recipe with a set applied: the rows of its present set go, the rest share what the new set leaves of 100. When
/// rest and set are more than 14 lines, or nothing but the set would remain, the set is not applied and the rest is
/// brought to 100 alone.
struct AppliedSet {
  Recipe recipe;
  bool applied = false;
};
AppliedSet WithSetApplied(const Recipe& recipe, const Recipe& presentSet, const Recipe& newSet);
/// A recipe with its set removed and brought to 100.
Recipe WithSetRemoved(const Recipe& recipe, const Recipe& presentSet);

/// The names of the formulas that have no Additive Set, in order.
std::vector<std::string> FormulasWithoutSet(const Session& session);

/// Rewrites an existing set and every formula with it. `setName` is the set on file, `work` the new content.
Result<AdditiveSet> EditAdditiveSet(Session& session, std::string_view setName, const AdditiveSetWork& work);

/// Renames a set and its mention in formulas. A name on file is asked about: Yes gives the formulas that set with its
/// lines and the renamed one goes. False when the operator declined.
Result<bool> RenameAdditiveSet(Session& session, std::string_view oldName, std::string_view typed);

/// Deletes a set after asking, and removes it from every formula with it. False when the operator declined.
Result<bool> DeleteAdditiveSet(Session& session, std::string_view setName);

enum class SetMethod { Add, Remove, AddByFilter };
/// The filter of the third method; an empty ingredient accepts all.
struct SetFilter {
  std::string ingredient;
  bool atLeast = true;  ///< ">=", else "<="
  double percent = 0;
};

/// The filter as it stands in its fields; a percentage that is no number from 0 to 100 is refused, unless the
/// ingredient is empty.
Result<SetFilter> ReadSetFilter(std::string_view ingredient, bool atLeast, std::string_view percent);

/// One colour of the preview.
struct SetPreviewRow {
  std::string color;
  std::string info;
  std::string currentSet;
  bool modable = false;
};
/// What the method would do with each colour, in the order given.
Result<std::vector<SetPreviewRow>> PreviewAdditiveSet(Session& session, std::string_view setName, SetMethod method,
                                                      const SetFilter& filter, const std::vector<std::string>& colors);

/// Asks, and applies the set to the colours or removes it from them; a colour that the preview excludes is refused.
/// False when the operator declined.
Result<bool> ApplyAdditiveSet(Session& session, std::string_view setName, SetMethod method,
                              const std::vector<std::string>& colors);

}  // namespace vellumark
