#pragma once

#include <string>
#include <string_view>

#include "core/datafile/engine.h"

namespace vellumark::test {

/// What a query finds, row behind row; the values of a row stand without anything between them.
inline std::string Listed(Database& file, std::string_view sql, std::string_view between = " ") {
  std::string text;
  Statement row = file.Prepare(sql);
  for (bool first = true; row.Step(); first = false) {
    if (!first) text += between;
    for (int column = 0; column < row.ColumnCount(); ++column) text += row.Get(column).Text();
  }
  return text;
}

}  // namespace vellumark::test
