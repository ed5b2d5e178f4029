#include "core/datafile/engine_row_digest.h"

#include <sqlite3.h>

#include <algorithm>
#include <bit>

#include "core/base/digest.h"

namespace vellumark {

std::string_view BytesOf(sqlite3_value* value) {
  const auto* bytes = static_cast<const char*>(sqlite3_value_blob(value));
  return {bytes, static_cast<std::size_t>(sqlite3_value_bytes(value))};
}

namespace {

static_assert(static_cast<int>(KeptValue::Kind::Whole) == SQLITE_INTEGER &&
              static_cast<int>(KeptValue::Kind::Number) == SQLITE_FLOAT &&
              static_cast<int>(KeptValue::Kind::Text) == SQLITE_TEXT &&
              static_cast<int>(KeptValue::Kind::Bytes) == SQLITE_BLOB &&
              static_cast<int>(KeptValue::Kind::Null) == SQLITE_NULL);

KeptValue ValueAt(sqlite3_stmt* row, int column) {
  sqlite3_value* value = sqlite3_column_value(row, column);
  switch (const int type = sqlite3_value_type(value)) {
    case SQLITE_NULL:
      return {};
    case SQLITE_INTEGER:
      return KeptValue(static_cast<std::int64_t>(sqlite3_value_int64(value)));
    case SQLITE_FLOAT:
      return KeptValue(sqlite3_value_double(value));
    default:
      return {static_cast<KeptValue::Kind>(type), BytesOf(value)};
  }
}

void AddValue(Digest& digest, std::size_t field, const KeptValue& value) {
  if (value.kind == KeptValue::Kind::Null) return;
  const std::uint64_t place = (field * 8 + static_cast<std::uint64_t>(value.kind)) * 0xD6E8FEB86659FD93ULL;
  if (value.kind == KeptValue::Kind::Whole) {
    digest.Add(static_cast<std::uint64_t>(value.whole) ^ place);
  } else if (value.kind == KeptValue::Kind::Number) {
    digest.Add(std::bit_cast<std::uint64_t>(value.number) ^ place);
  } else {
    digest.Add(place);
    digest.Add(value.text);
  }
}

}  // namespace

std::uint64_t DigestOfColumns(sqlite3_stmt* row, int first) {
  Digest digest;
  const int columns = sqlite3_data_count(row);
  for (int column = first; column < columns; ++column)
    AddValue(digest, static_cast<std::size_t>(column - first), ValueAt(row, column));
  return std::max<std::uint64_t>(digest.Value(), 1);
}

void ReadColumns(sqlite3_stmt* row, int first, std::vector<KeptValue>& values) {
  values.clear();
  const int columns = sqlite3_data_count(row);
  for (int column = first; column < columns; ++column) values.push_back(ValueAt(row, column));
}

}  // namespace vellumark
