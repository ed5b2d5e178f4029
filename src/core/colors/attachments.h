#pragma once

#include <optional>
#include <string>
#include <vector>

#include "core/colors/basic_work.h"
#include "core/colors/formula_work.h"

namespace vellumark {

/// What the window of a colour holds beside its record; what is not given stays as it is on file.
struct ColorAttachments {
  std::optional<std::vector<LabReading>> measurements;  ///< the whole list
  std::optional<std::string> Red;                       ///< a part of the swatch as typed; all blank: none any more
  std::optional<std::string> Green;
  std::optional<std::string> Blue;
};

/// Saves the record and what else belongs to the colour, in one transaction.
Result<void> SaveBasic(Session& session, BasicWork& work, const ColorAttachments& attachments);
Result<void> SaveMix(Session& session, FormulaWork& work, const ColorAttachments& attachments);

}  // namespace vellumark
