#pragma once

#include <string>
#include <vector>

#include "core/datafile/engine.h"

namespace vellumark {

/// Brings the history of a file up to date that earlier programs wrote: makes its indexes, and puts the lines of a
/// rename between those of a formula's two names where it left none and the figures prove it. They do when a formula
/// holds just what the history lacks for it, in Unlotted Inventory and each lot, and one other name's earlier lines add
/// up to just that. Once for a file; nothing when it was done.
void BringStockHistoryUpToDate(Database& file, const std::vector<std::string>& databases);

}  // namespace vellumark
