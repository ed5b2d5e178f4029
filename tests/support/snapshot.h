#pragma once

#include <string>

#include "core/datafile/engine.h"

namespace vellumark::test {

/// Every row of every table as one text, in table order: two files with the same text hold the same data.
inline std::string Snapshot(Database& file) {
  std::string text;
  for (const std::string& table : file.TableNames()) {
    text += "== " + table + "\n";
    Statement rows = file.Prepare("SELECT rowid, * FROM " + Quoted(table) + " ORDER BY rowid");
    while (rows.Step()) {
      for (int column = 0; column < rows.ColumnCount(); ++column) {
        const Value value = rows.Get(column);
        text += value.IsNull() ? "~" : value.Text();
        text += '\t';
      }
      text += '\n';
    }
  }
  return text;
}

}  // namespace vellumark::test
