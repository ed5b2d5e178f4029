#pragma once

#include "core/base/refusal.h"
#include "core/session/session.h"

namespace vellumark::cli {

/// A weight of the scale that stood still and is none of nothing, in its unit. Refuses when the scale is off, and when
/// no such weight came in so many seconds.
Result<double> ReadSteadyWeight(Session& session, int seconds);

}  // namespace vellumark::cli
