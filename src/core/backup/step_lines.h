#pragma once

#include <cstdint>
#include <string>

#include "core/base/table.h"

namespace vellumark {

/// What a step of a repair or an update did, or could not do, to a table.
struct StepLine {
  std::string Step;
  std::string Table;  ///< empty when it is the file's own
  std::int64_t Count = 1;
  std::string What;
};

/// The same in a list of all that came of it.
struct StepLineOf : StepLine {
  std::string Outcome;  ///< such as "Mended", "Left", "Lost"
};
const TableOf<StepLineOf>& StepColumns();

}  // namespace vellumark
