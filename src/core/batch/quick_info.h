#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "core/batch/batch_options.h"
#include "core/batch/batch_work.h"

namespace vellumark {

/// Captions and values of the quick information on a row's colour: the lines that the settings choose (`wanted`) and
/// that the user may see. Quantities in the Batch's unit, costs and emissions per inventory unit.
std::vector<std::pair<std::string, std::string>> QuickInfo(const Session& session, const BatchWork& work,
                                                           std::size_t row,
                                                           const std::array<bool, kQuickInfoFields>& wanted);

}  // namespace vellumark
