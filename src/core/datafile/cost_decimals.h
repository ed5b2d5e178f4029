#pragma once

#include <string>
#include <vector>

#include "core/datafile/engine.h"

namespace vellumark {

/// How many decimals costs have is a setting of the machine, and the costs of formulas are stored with them. A file
/// notes with how many its own were worked out: where `decimals` are others, the costs of all its Databases are marked
/// as older than their ingredients, and the note is written anew.
void SettleCostDecimals(Database& file, const std::vector<std::string>& databases, int decimals);

}  // namespace vellumark
