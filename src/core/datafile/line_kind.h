#pragma once

#include <cstdint>
#include <string_view>

#include "core/datafile/color_kind.h"

namespace vellumark {

/// What a line of a Batch is, under the code that its `IngType` stores: an ingredient of the recipe, a recycled colour,
/// an addition.
enum class LineKind : std::uint8_t { Basic = 1, Mix = 2, Addition = 3 };

/// The kind that a stored code means: what is none of the others is an ingredient.
constexpr LineKind LineKindOf(std::int64_t code) {
  return code == 2 ? LineKind::Mix : code == 3 ? LineKind::Addition : LineKind::Basic;
}

/// "Basic", "Mix", "Addition".
constexpr std::string_view LineKindName(LineKind kind) {
  return kind == LineKind::Mix ? "Mix" : kind == LineKind::Addition ? "Addition" : "Basic";
}

/// Whose stock such a line takes: an addition is a Basic Color.
constexpr ColorKind ColorKindOf(LineKind kind) {
  return kind == LineKind::Mix ? ColorKind::Mix : ColorKind::Basic;
}

}  // namespace vellumark
