#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "core/datafile/schema.h"

namespace vellumark {

/// What came out of a damaged file, of one table.
struct SalvagedTable {
  std::string name;
  std::int64_t rows = 0;               ///< that were saved
  std::int64_t cutRows = 0;            ///< of them, those of which the end of a long text is gone
  std::int64_t lostRows = 0;           ///< known to have been there
  std::vector<std::string> lostNames;  ///< as far as an index still tells them, "RED (row 5)"; some hundred at most
};

struct Salvage {
  std::vector<SalvagedTable> tables;
  std::int64_t strayPages = 0;  ///< of rows of which nobody knows the table
  /// Whether it was a Data File at all, of which something is left.
  bool Any() const { return !tables.empty(); }
};

/// The layout of a table by the name that it has in a file, whatever Database it belongs to; null for one that this
/// program does not know.
const Table* KnownLayout(std::string_view name);

/// Reads the rows of a damaged file past the engine, page by page, and puts them into a new one at `fresh`, an empty
/// file so far. Pages that are damaged lose their rows and no others: what stands below one is found by its look. Rows
/// keep their numbers. Tables of the layout are made anew with their indexes. Throws Failure when `damaged` cannot be
/// read or `fresh` not be written; then, and when nothing is left, `fresh` is none.
Salvage SalvageInto(const std::filesystem::path& damaged, const std::filesystem::path& fresh);

}  // namespace vellumark
