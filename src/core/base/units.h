#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>

namespace vellumark {

/// Codes of the units of weight, for inventory (`UMI`) and Batches (`UMF`).
enum Unit : int { UnitPound = 1, UnitKilogram = 2, UnitGram = 3, UnitOunce = 4 };

/// "lb.", "kg.", "g.", "oz." for the codes 1 to 4; empty for any other.
std::string_view UnitName(int unit);

/// The code of a unit's name, with or without its full stop, in any case; or of its number.
std::optional<int> ParseUnit(std::string_view text);

/// The factor that turns a quantity in unit `from` into unit `to`, rounded to ten decimals and held as a Single. One
/// pound is 0.45359237 kg by definition (international yard and pound agreement of 1959), 453.59237 g, 16 oz.; as a
/// Single the kilogram's factor prints as 0.45359236. Throws std::out_of_range for codes outside 1 to 4.
float UnitFactor(int from, int to);

}  // namespace vellumark
