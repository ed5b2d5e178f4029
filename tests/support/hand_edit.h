#pragma once

#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>

#include "core/base/files.h"

namespace vellumark::test {

/// Writes into a Data File that nobody has open with the engine's common tools, as they come with Python: past this
/// program, and soundly as far as the engine knows.
inline void EditByHand(const std::filesystem::path& file, const std::string& sql) {
  const std::filesystem::path folder = file.parent_path();
  ReplaceFile(folder / "edit.py", "import sqlite3, sys\n"
                                  "file = sqlite3.connect(sys.argv[1])\n"
                                  "file.executescript(sys.stdin.read())\n"
                                  "assert file.execute('PRAGMA integrity_check').fetchone() == ('ok',)\n");
  ReplaceFile(folder / "edit.sql", sql);
  const std::string command = "python3 '" + (folder / "edit.py").string() + "' '" + file.string() + "' < '" +
                              (folder / "edit.sql").string() + "'";
  if (std::system(command.c_str()) != 0) throw std::runtime_error("not edited: " + sql);
}

}  // namespace vellumark::test
