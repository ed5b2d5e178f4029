#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/base/date.h"
#include "core/session/session.h"

namespace vellumark {

/// The notes of a formula's ingredients, in the order given: each under its name and a line of hyphens. An ingredient
/// without notes is left out.
std::string IngredientNotes(const Session& session, const std::vector<std::string>& ingredients);

/// What was noted in a Batch of the colour.
struct BatchNote {
  std::int32_t BatchNo = 0;
  std::optional<DateTime> Date_Entered;
  std::string Notes;
  /// The number as it is shown, in six digits.
  std::string Number() const;
};
/// Those of every Batch of the colour that has notes, by Date_Entered.
std::vector<BatchNote> BatchNotes(const Session& session, std::string_view colorName);

}  // namespace vellumark
