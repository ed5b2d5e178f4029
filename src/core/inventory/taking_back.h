#pragma once

#include <cstdint>
#include <string>

#include "core/session/session.h"

namespace vellumark {

// Bookings that are taken back by their line of the stock history. The line stays; another one, which moves as much the
// other way, names it.

/// What the reason of a line that takes another one back ends with.
std::string TakesBack(std::int64_t line);
bool WasTakenBack(const Session& session, std::int64_t line);
/// Refused because the line, in words, "was taken back already".
std::unexpected<Refusal> NotTakenBack(std::string_view title, std::int64_t line, std::string_view why);

}  // namespace vellumark
