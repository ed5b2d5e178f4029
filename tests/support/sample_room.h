#pragma once

#include <string>
#include <vector>

#include "support/ink_room.h"

namespace vellumark::test {

/// The rows of a file of the sample ink room below its heading, cell by cell.
std::vector<std::vector<std::string>> SampleRows(const std::string& file);

/// Puts the colours of the sample ink room into a room's Database, with their stock, notes and swatches, and its
/// formulas, all to be recycled; every third formula has `leftover` in stock.
void HaveSampleInkRoom(InkRoom& room, float leftover);

}  // namespace vellumark::test
