#pragma once

#include <string>
#include <string_view>

#include "core/datafile/color_kind.h"
#include "core/datafile/engine.h"
#include "core/session/session.h"

namespace vellumark {

/// What a rename came to.
struct Renamed {
  bool done = false;    ///< false when the operator did not want to merge
  bool merged = false;  ///< the colour was given up for the one that bears the new name
  std::string name;     ///< the surviving name
};

/// Renames a Basic Color, or merges it into an existing one after asking: the merged one's stock, lots, cost and notes
/// go, the surviving row keeps its own. Every formula, Batch, lot, Job Record, Additive Set and Design of this Database
/// follows, in one transaction.
Result<Renamed> RenameBasic(Session& session, std::string_view oldName, std::string_view typed);

/// Renames a Master Formula everywhere it is named, in one transaction. A name in use is refused, never merged.
Result<Renamed> RenameColor(Session& session, std::string_view oldName, std::string_view typed);

/// The writing of a rename alone, inside the caller's transaction: for a new name that is known to be valid and free.
void RenameChecked(Session& session, Transaction& transaction, ColorKind kind, const std::string& oldName,
                   const std::string& newName);

}  // namespace vellumark
