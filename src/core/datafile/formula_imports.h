#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/datafile/engine.h"

namespace vellumark {

// What imports of formulas did to a Data File, so that each can be taken back as a whole. It stands beside the Databases,
// written in the transaction of the import.

/// A row that an import made, as it left it.
struct ImportedRow {
  std::int64_t key = 0;
  std::string name;
  std::string digest;  ///< of what stood in it
};
/// A formula that it changed, with what stood in it before.
struct ReplacedRecipe {
  ImportedRow row;
  std::string recipe;  ///< a line for each ingredient, its name and its amount apart by a tab
  std::string AddSetName;
  std::optional<DateTime> LastModified;
};

struct FormulaImport {
  std::int64_t id = 0;
  DateTime Moment{};
  std::string Username;
  std::string database;
  std::string source;
  bool madeDatabase = false;
  std::vector<ImportedRow> formulas;
  std::vector<ImportedRow> basics;
  std::vector<ImportedRow> sets;
  std::vector<ReplacedRecipe> replaced;
};

/// The latest ones are kept; the number under which this one is.
std::int64_t AddFormulaImport(Database& file, const FormulaImport& import);
/// Without their rows, the latest first.
std::vector<FormulaImport> ListFormulaImports(Database& file);
/// With its rows; nothing when it is not there. For 0 the latest one.
std::optional<FormulaImport> ReadFormulaImport(Database& file, std::int64_t id);
void RemoveFormulaImport(Database& file, std::int64_t id);

// They go the way of their Database.
void RenameFormulaImports(Database& file, std::string_view database, std::string_view newName);
void ForgetFormulaImports(Database& file, std::string_view database);

/// Of the columns of a row that a statement stands on, from `first` on: 16 hexadecimal digits.
std::string RowDigest(const Statement& row, int first);

}  // namespace vellumark
