#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "core/datafile/kept_value.h"

struct sqlite3_stmt;
struct sqlite3_value;

namespace vellumark {

/// Of a text too, as it is kept.
std::string_view BytesOf(sqlite3_value* value);

/// Of the values of a row from this column on. Nulls count for nothing, so that a field which is added to a table
/// changes no row. Never 0, which says that there is no row.
std::uint64_t DigestOfColumns(sqlite3_stmt* row, int first);

/// Those values, which stand until the next row.
void ReadColumns(sqlite3_stmt* row, int first, std::vector<KeptValue>& values);

}  // namespace vellumark
