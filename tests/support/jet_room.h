#pragma once

#include <gtest/gtest.h>

#include <cstdio>
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

/// What a command says, which must not fail.
inline std::string SaidBy(const std::string& command) {
  std::string text;
  std::FILE* pipe = ::popen((command + " 2>&1").c_str(), "r");
  char buffer[65536];
  for (std::size_t got = 0; (got = std::fread(buffer, 1, sizeof buffer, pipe)) > 0;) text.append(buffer, got);
  EXPECT_EQ(::pclose(pipe), 0) << text.substr(0, 500);
  return text;
}

/// What an independent reader makes of a table: its values behind one another, none of which may hold these marks. It
/// takes an empty text for Null.
inline std::string Exported(const std::filesystem::path& file, const std::string& table) {
  return SaidBy("mdb-export -H -Q -d '\x1F' -R '\x1E' -T '%Y-%m-%d %H:%M:%S' -0 '<null>' '" + file.string() + "' '" +
                table + "'");
}

}  // namespace vellumark::test
