#pragma once

#include <string_view>

#include "core/base/refusal.h"
#include "core/base/sheet.h"
#include "core/session/session.h"

namespace vellumark {

/// What a Job has still out, as codes that the Scan tab takes: each item on its own, to be scanned from top to bottom
/// and followed by the quantity that comes back. Refused for a number that no Job has, and for a Job with nothing out.
Result<Sheet> JobReturnsSheet(const Session& session, std::string_view jobNumber);

}  // namespace vellumark
