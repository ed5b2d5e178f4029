#pragma once

#include <filesystem>
#include <memory>
#include <string_view>

#include "core/datafile/engine.h"
#include "core/datafile/schema.h"

namespace vellumark {

/// Opens a copy of a Data File, or begins one in an empty file, to be worked on and thrown away. Writing costs little:
/// nothing is synced, no row gets a digest, and after a statement that failed the file is good for nothing.
std::unique_ptr<Database> OpenWorkFile(const std::filesystem::path& path);

/// Adds a column to a table of a work file; every row holds null in it.
void AddColumn(Database& workFile, std::string_view table, std::string_view column, FieldType type);

}  // namespace vellumark
