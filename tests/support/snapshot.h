#pragma once

#include <string>

#include "core/datafile/schema.h"

namespace vellumark::test {

/// Every row of every table as one text, in table order: two files with the same text hold the same data. `ownTables`
/// are those that the system keeps beside its schema, the stock history and marks of what is under way; an empty one
/// counts as none.
inline std::string Snapshot(Database& file, bool ownTables = true) {
  std::string text;
  for (const std::string& table : file.TableNames()) {
    if (!ownTables && table.starts_with("MSys")) continue;
    const std::size_t before = text.size();
    text += "== " + table + "\n";
    const std::size_t rowsFrom = text.size();
    Statement rows = file.Prepare("SELECT * FROM " + Quoted(table) + " ORDER BY " +
                                  (table == schema::StockHistory.name ? schema::StockHistory.rowKey : "RowKey"));
    while (rows.Step()) {
      for (int column = 0; column < rows.ColumnCount(); ++column) {
        const Value value = rows.Get(column);
        text += value.IsNull() ? "~" : value.Text();
        text += '\t';
      }
      text += '\n';
    }
    if (text.size() == rowsFrom && table.starts_with("MSys")) text.resize(before);
  }
  return text;
}

}  // namespace vellumark::test
