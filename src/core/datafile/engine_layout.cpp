#include "core/datafile/engine_layout.h"

#include <fmt/format.h>

#include <algorithm>

#include "core/base/text.h"
#include "core/datafile/engine_row_checks.h"
#include "core/datafile/engine_sqlite.h"
#include "core/datafile/schema.h"

// All texts that make, change or list what stands in the file beside its rows.

namespace vellumark {
namespace {

using IndexFields = std::vector<std::string>;

std::string Columns(const IndexFields& fields) {
  std::string columns;
  for (const std::string& field : fields) columns += (columns.empty() ? "" : ", ") + Quoted(field);
  return columns;
}

void CreateIndex(Database& file, std::string_view table, const IndexFields& fields) {
  file.Execute(
      fmt::format("CREATE INDEX {} ON {} ({})", Quoted(IndexName(table, fields)), Quoted(table), Columns(fields)));
}

bool Holds(const std::vector<std::string>& names, std::string_view wanted) {
  return std::ranges::any_of(names, [&](const std::string& name) { return EqualNoCase(name, wanted); });
}

// Names compare without regard to case by what stands here, and by nothing else.
std::string_view ColumnType(const Field& field) {
  switch (field.type) {
    case FieldType::Single:
      return "REAL";
    case FieldType::Text:
    case FieldType::Memo:
    case FieldType::Date:
      return "TEXT COLLATE NOCASE";
    default:
      return "INTEGER";
  }
}

std::string TableLayout(std::string_view name, const Table& table) {
  std::string columns;
  for (const Field& field : table.fields) columns += fmt::format("{} {}, ", Quoted(field.name), ColumnType(field));
  return fmt::format("TABLE {} ({}{} INTEGER PRIMARY KEY)", Quoted(name), columns, Quoted(table.rowKey));
}

}  // namespace

std::string IndexName(std::string_view table, const IndexFields& fields) {
  std::string name = std::string(table) + "_";
  for (const std::string& field : fields) name += field + "_";
  return name + "Index";
}

void CompleteStoredLayout(Database& file, const std::vector<std::string>& databases) {
  const std::vector<std::string> present = file.StoredIndexes({});
  Transaction transaction(file);
  for (const std::string& database : databases)
    if (const std::string name = TableName(database, schema::BatchScaleResults);
        !file.TableExists(name) && file.TableExists(TableName(database, schema::Batch)))
      file.CreateTable(name, schema::BatchScaleResults);
  const auto completeIndexes = [&](const std::string& name, const Table& table) {
    for (const IndexFields& fields : table.indexes)
      if (&table != &schema::BatchScaleResults && !Holds(present, IndexName(name, fields)) && file.TableExists(name) &&
          MissingFields(file, name, table).empty())
        file.EnsureIndex(name, IndexName(name, fields), fields);
  };
  for (const Table* table : schema::Global()) completeIndexes(table->name, *table);
  for (const std::string& database : databases)
    for (const Table* table : schema::PerDatabase()) completeIndexes(TableName(database, *table), *table);
  transaction.Commit();
}

void SqliteDatabase::CreateIndexes(std::string_view name, const Table& table) {
  for (const IndexFields& fields : table.indexes) CreateIndex(*this, name, fields);
}

void SqliteDatabase::CreateTable(std::string_view name, const Table& table) {
  Execute("CREATE " + TableLayout(name, table));
  CreateIndexes(name, table);
}

void SqliteDatabase::MakeScratchTable(std::string_view name, const Table& table) {
  if (!Scalar("SELECT 1 FROM sqlite_temp_master WHERE name = ?", {name}).IsNull()) {
    Execute("DELETE FROM temp." + Quoted(name));
    return;
  }
  Execute("CREATE TEMP " + TableLayout(name, table));
  Execute(fmt::format("CREATE UNIQUE INDEX temp.{} ON {} ({})", Quoted(IndexName(name, {table.key})), Quoted(name),
                      Quoted(table.key)));
}

void SqliteDatabase::RenameTable(std::string_view name, std::string_view newName, const Table& table) {
  Rows().Keep();  // while the rows stand under this name
  // Indexes keep their names when their table gets another, and the next table of the old name would want them.
  for (const std::string& index : StoredIndexes(name)) Execute("DROP INDEX " + Quoted(index));
  Execute("ALTER TABLE " + Quoted(name) + " RENAME TO " + Quoted(newName));
  Rows().TableRenamed(name, newName);
  CreateIndexes(newName, table);
}

void SqliteDatabase::DropTable(std::string_view name) {
  Execute("DROP TABLE " + Quoted(name));
}

bool SqliteDatabase::EnsureIndex(std::string_view table, std::string_view name, const std::vector<std::string>& fields,
                                 std::string_view where) {
  if (Holds(StoredIndexes(table), name)) return false;
  Execute(fmt::format("CREATE INDEX {} ON {} ({}){}{}", Quoted(name), Quoted(table), Columns(fields),
                      where.empty() ? "" : " WHERE ", where));
  return true;
}

void SqliteDatabase::CompleteLayout(const std::vector<std::string>& databases) {
  CompleteStoredLayout(*this, databases);
}

std::vector<std::string> SqliteDatabase::StoredFields(std::string_view table) {
  std::vector<std::string> fields;
  Statement column = Prepare("SELECT name FROM pragma_table_info(?1) WHERE pk = 0 AND name <> ?2");
  column.Bind(1, table).Bind(2, kRowKey);
  while (column.Step()) fields.push_back(column.Text(0));
  return fields;
}

std::vector<std::string> SqliteDatabase::StoredIndexes(std::string_view table) {
  std::vector<std::string> indexes;
  Statement index = Prepare(
      "SELECT name FROM sqlite_master WHERE type = 'index' AND sql IS NOT NULL AND (?1 = '' OR tbl_name = ?1 COLLATE "
      "NOCASE)");
  index.Bind(1, table);
  while (index.Step()) indexes.push_back(index.Text(0));
  return indexes;
}

void SqliteDatabase::AddMissingFields(std::string_view name, const Table& table) {
  for (const std::string& field : MissingFields(*this, name, table))
    Execute(fmt::format("ALTER TABLE {} ADD COLUMN {} {}", Quoted(name), Quoted(field),
                        ColumnType(table.fields[static_cast<std::size_t>(table.Find(field))])));
}

}  // namespace vellumark
