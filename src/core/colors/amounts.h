#pragma once

#include <string>
#include <string_view>

#include "core/session/session.h"

namespace vellumark {

/// What a number typed on a colour's window stands for: it decides decimals, range and the words of a refusal.
enum class AmountKey { Currency, Reorder, VOC, HAP, AdjInv, Lab };

inline constexpr double kLargestAmount = 99999;

/// The decimals with which such a number is shown and kept.
int DecimalsOf(const Session& session, AmountKey key);
/// The text of a number as its field shows it.
std::string AmountText(const Session& session, AmountKey key, float value);

/// Reads a typed number: trimmed, rounded to its decimals, then compared with its range (0 to 99999; adjustments and
/// measurements from -99999). Refused with the focus on `field`.
Result<float> ReadAmount(const Session& session, AmountKey key, std::string_view typed, std::string_view field);

/// The rights to type into price and emission fields; other keys need none.
Result<void> RequireRight(const Session& session, AmountKey key, std::string_view field);
/// The right to change formulas.
Result<void> RequireFormulaRight(const Session& session);

}  // namespace vellumark
