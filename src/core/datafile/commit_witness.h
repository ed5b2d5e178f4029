#pragma once

#include <functional>
#include <set>
#include <string>
#include <vector>

#include "core/base/changes.h"

namespace vellumark {

/// Looks on at every commit of this process: the tables in whose rows the engine wrote, and what the commit tells. For
/// checks of a rule that every write has to keep, whichever room makes it. Tables made or dropped whole are not told.
using CommitWitness = std::function<void(const std::set<std::string>& tables, const std::vector<Change>& told)>;

/// Of every file that is opened from now on, while it has listeners (see Database::SetChanges). None by default.
void SetCommitWitness(CommitWitness witness);
const CommitWitness& TheCommitWitness();

}  // namespace vellumark
