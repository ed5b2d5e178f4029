#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "core/datafile/engine.h"

namespace vellumark {

/// What a file is by its content.
struct DataFileKind {
  bool jet = false;  ///< of an earlier program: it is read and never written
  int version = 0;   ///< its `FileVersion`
};
/// Throws Failure for what is neither a Data File nor a Jet file of one.
DataFileKind LookAtDataFile(const std::filesystem::path& path);

/// What to tell of a file of a version that this program cannot use.
std::string UnusableText(const std::filesystem::path& path, int version);

/// What of a Jet file could not be read, or not be taken as it is.
struct SourceDamage {
  std::string table;
  std::int64_t count = 1;
  std::string what;
};

/// Copies the tables of a Jet file into a work file, row by row: texts and whole numbers as they are, dates as the Data
/// File keeps them, money as numbers. Only those that `wanted` names, or all.
std::vector<SourceDamage> CopyJetTables(const std::filesystem::path& path, Database& work,
                                        const std::function<void(std::string_view table, double percent)>& tell,
                                        const std::function<bool(std::string_view table)>& wanted = {});

}  // namespace vellumark
