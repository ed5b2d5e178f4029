#pragma once

#include <string>
#include <string_view>

#include "core/datafile/field_map.h"
#include "core/session/session.h"

namespace vellumark {

inline constexpr double kLargestAmount = 99999;

/// The decimals with which such a number is shown and kept.
int DecimalsOf(const Session& session, AmountKey key);
/// The text of a number as its field shows it.
std::string AmountText(const Session& session, AmountKey key, float value);
/// The figures of a record as their fields show them.
TypedTexts FigureTexts(const Session& session, const FieldList& fields, const void* record);

/// Reads a typed number: trimmed, rounded to its decimals, then compared with its range (0 to 99999; adjustments and
/// measurements from -99999). Refused with the focus on `field`.
Result<float> ReadAmount(const Session& session, AmountKey key, std::string_view typed, std::string_view field);

/// Reads the typed figures of a record in the order of its fields into `record`; then each that has changed since it
/// was loaded needs its right.
Result<void> ReadFigures(const Session& session, const FieldList& fields, const TypedTexts& typed,
                         const TypedTexts& loaded, void* record);

/// The rights to type into price and emission fields; other keys need none.
Result<void> RequireRight(const Session& session, AmountKey key, std::string_view field);
/// The right to change formulas.
Result<void> RequireFormulaRight(const Session& session);

}  // namespace vellumark
