#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "core/datafile/engine.h"

namespace vellumark {

// Of the layout what is the same for every engine.

/// What an index of the layout is called.
std::string IndexName(std::string_view table, const std::vector<std::string>& fields);
/// For Database::CompleteLayout.
void CompleteStoredLayout(Database& file, const std::vector<std::string>& databases);

}  // namespace vellumark
