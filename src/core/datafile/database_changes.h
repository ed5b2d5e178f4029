#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "core/datafile/engine.h"

namespace vellumark {

// Each is one transaction, and joins the caller's. That the names are good ones, and the Databases there, is the
// caller's to know.

/// Gives a Database another name wherever the old one stands: its ten tables, Job Records, the ingredients of Designs,
/// `DBList` (at the same place) and, when it is the current one, `CurrentDB`.
void RenameDatabaseTables(Database& file, std::string_view name, std::string_view newName);

/// Removes Databases: their tables, their lines in Job Records, their names in `DBList`. Batch numbers are not handed
/// out again.
void DeleteDatabaseTables(Database& file, const std::vector<std::string>& names);

}  // namespace vellumark
