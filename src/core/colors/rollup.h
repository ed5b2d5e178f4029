#pragma once

#include <cstdint>

#include "core/session/session.h"

namespace vellumark {

/// Which of a formula's figures a pass brings up to date.
struct RollUpWanted {
  bool cost = false;
  bool voc = false;
  bool hap = false;
  bool Any() const { return cost || voc || hap; }
};

/// Recomputes the wanted figures of every formula of the current Database from its ingredients, in one walk and one
/// transaction, and clears the session's flags for them. An ingredient without a Basic Color adds nothing.
void RunPasses(Session& session, RollUpWanted wanted);

/// One pass each. They refuse nothing: call them only where the file may be written.
void UpdateMixBasicCosts(Session& session);
void UpdateMixVOC(Session& session);
void UpdateMixHAP(Session& session);

/// Runs the passes whose flags are set, if any. In an archive view, where nothing may be written, the flags stay.
void RunPendingPasses(Session& session);

/// Recomputes the three figures of one row of the current Database's formulas; false when the row is gone.
bool RollUpFormula(Session& session, std::int64_t rowId);

}  // namespace vellumark
