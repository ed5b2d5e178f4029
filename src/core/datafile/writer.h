#pragma once

#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "core/datafile/schema.h"

namespace vellumark {

/// The one way by which a row reaches a table: every value is checked against its field (see FittedValue) before
/// anything is written, and a row that would take another one's key is refused with BadValue. Prepared once for a list
/// of fields, used for as many rows as wanted.
class RowWriter {
 public:
  RowWriter(Database& file, const Table& table, std::string tableName, const std::vector<std::string>& fields);

  /// The value of the field at that place in the list; throws BadValue. Values stay for the next row.
  RowWriter& Set(std::size_t place, const Value& value);
  /// Adds a row, null in every field that is not in the list; its row number.
  std::int64_t Insert();
  /// Writes the fields of an existing row; false when the row is gone.
  bool Update(std::int64_t key);

 private:
  void RequireOwnKey(std::int64_t key);

  Database& file_;
  std::string tableName_;
  std::string insertSql_;
  std::string updateSql_;
  std::string keySql_;  ///< empty when the key is not among the fields
  std::size_t keyPlace_ = 0;
  std::vector<const Field*> fields_;
  std::vector<Value> values_;
};

using Cell = std::pair<std::string, Value>;

/// One row at a time, for places where speed does not count.
std::int64_t InsertRow(Database& file, const Table& table, const std::string& tableName,
                       const std::vector<Cell>& cells);
bool UpdateRow(Database& file, const Table& table, const std::string& tableName, std::int64_t key,
               const std::vector<Cell>& cells);

}  // namespace vellumark
