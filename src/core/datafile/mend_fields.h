#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "core/datafile/engine.h"
#include "core/datafile/kept_value.h"
#include "core/datafile/schema.h"

namespace vellumark {

/// The fields of a table as a query reads them, the row's number first, and what stands at a place of its fields. A figure
/// that is not finite comes as a text.
std::string ReadableColumns(const Table& table);
Value ReadableValue(Database& file, std::string_view name, const Table& table, const Statement& row, std::size_t place);

/// Whether a value is as its field keeps it; quick for what nearly all are, and says no of others that FittedValue takes.
bool IsPlain(const Field& field, const KeptValue& value);

/// What was done to a field of a table.
struct MendedField {
  std::string field;
  std::int64_t rows = 0;
  std::string what;  ///< in words
};

/// What a field can hold of a value that it cannot hold as it is; null where nothing is left. What became of it, in words.
Value NearestValue(const Field& field, const Value& value);
std::string MendedText(const Field& field, const Value& now);

/// Makes every value fit its field: texts are cut to their width, figures that are none or out of range become 0, dates
/// that are none become empty. Nothing is written of a row that is sound. Figures of a table that keeps more than the
/// 32 bits of a Single are not rounded.
std::vector<MendedField> FitValues(Database& file, const std::string& name, const Table& table);

/// Rounds the figures of one row, as another tool wrote it, to the Singles that the table keeps. Throws BadValue for what
/// no field can hold, and has written nothing then.
void FitFigures(Database& file, const std::string& name, const Table& table, std::int64_t row);

/// Which empty fields of a table mean something, and what stands in others.
struct NullRule {
  std::set<std::string, std::less<>> left;           ///< stay as they are
  std::map<std::string, Value, std::less<>> filled;  ///< get this instead of an empty text or 0
};
/// Fills fields without a value with the empty value of their kind; dates and texts that may not be empty only by the
/// rule. Of those that are left the rows are counted too, with `what` empty.
std::vector<MendedField> FillNulls(Database& file, const std::string& name, const Table& table, const NullRule& rule);

}  // namespace vellumark
