#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "core/datafile/pending_rollups.h"
#include "core/session/session.h"

namespace vellumark {

constexpr RollUpWanted kAllRollUps{true, true, true};

/// What is about to be committed makes these figures of the current Database's formulas stale: the session's flags are
/// set, and the file bears the mark until a pass renews them. Call it last in the transaction of the change.
void MarkRollUpsStale(Session& session, RollUpWanted stale);

/// Recomputes the wanted figures of every formula of a Database, the current one by default, from its ingredients, in
/// one walk and one transaction, and clears the flags and the file's mark for them. An ingredient without a Basic Color
/// adds nothing. The number of formulas that had other figures.
std::size_t RunPasses(Session& session, RollUpWanted wanted, std::string_view database = {});

/// One pass each. They refuse nothing: call them only where the file may be written.
void UpdateMixBasicCosts(Session& session);
void UpdateMixVOC(Session& session);
void UpdateMixHAP(Session& session);

/// Runs the passes whose flags are set, and those that the file bears a mark of, in whatever Database. In an archive
/// view, where nothing may be written, the flags stay.
void RunPendingPasses(Session& session);
/// The same where what made the figures stale is done, and what follows must not fail for them: a failure is told, and
/// the marks stay in the file for its next opening.
void RunPendingPassesOrTell(Session& session);

}  // namespace vellumark
