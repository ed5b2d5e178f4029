#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "core/datafile/jet/jet_writer.h"

namespace vellumark::test {

/// A table of a Jet file and its rows, of which each value is as `JetRow` tells it: Boolean 0 or 1, Currency in whole
/// ten-thousandths, Date in days (`JetDays`).
struct JetTableRows {
  std::string name;  ///< letters, digits, blanks, underscores
  std::vector<JetColumn> columns;
  std::vector<std::vector<Value>> rows;
};

/// A Jet file of version 4 with these tables.
inline void MakeJetFile(const std::filesystem::path& file, const std::vector<JetTableRows>& tables) {
  JetWriter writer(file, {2014, 5, 6, 7, 8, 9});
  for (const JetTableRows& table : tables) {
    writer.BeginTable(table.name, table.columns);
    for (const auto& row : table.rows) writer.Add(row);
  }
  writer.Finish();
}

}  // namespace vellumark::test
