#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace vellumark::postgres {

/// A statement of the core in this engine's words.
struct StatementText {
  std::string sql = {};
  /// Which value of the caller's, from 1, stands at each mark of `sql`. Each mark has a type of its own, so a value
  /// that is asked for twice stands there twice.
  std::vector<int> values = {};
  std::string written = {};  ///< the table whose rows it writes, as this engine calls it; empty of a query
  std::string key = {};      ///< the column of the keys, when it writes them itself
};

/// Names fold to small letters, whether they are quoted or not; `?` and `?1` become `$1`; LIKE does not regard case;
/// what is empty sorts before everything else.
StatementText Translated(std::string_view sql);

/// A name as this engine calls it.
std::string Folded(std::string_view name);

}  // namespace vellumark::postgres
