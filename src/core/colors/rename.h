#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "core/datafile/color_kind.h"
#include "core/datafile/engine.h"
#include "core/datafile/references.h"
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

/// The name that a Master Formula gets by a rename: one of a guide keeps "PANTONE " in front.
std::string WithBookPrefix(const Session& session, std::string_view oldName, std::string newName);

/// The writing of many renames alone, inside the caller's transaction: for new names that are known to be valid, free
/// and different. Every table is walked once. `goOn` hears how much is done, in percent; false when it stopped the
/// work, which then has to be rolled back.
bool RenameAllChecked(Session& session, Transaction& transaction, ColorKind kind, const std::vector<Renaming>& names,
                      const std::function<bool(double percent)>& goOn);

}  // namespace vellumark
