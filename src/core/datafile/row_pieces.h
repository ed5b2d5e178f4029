#pragma once

#include <cstdint>
#include <functional>
#include <string_view>

#include "core/datafile/engine.h"

namespace vellumark {

/// Walks a table in pieces of some thousand rows, so that one statement over a large table can be run piece by piece,
/// show how far it is and be stopped: `piece` gets the first and the last row number and how much of the table is then
/// done, in percent. False when it answered false. The table must not gain or lose rows meanwhile.
bool ForRowPieces(Database& file, std::string_view table,
                  const std::function<bool(std::int64_t first, std::int64_t last, double percent)>& piece);

}  // namespace vellumark
