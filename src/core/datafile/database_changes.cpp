#include "core/datafile/database_changes.h"

#include <fmt/format.h>

#include <algorithm>

#include "core/base/text.h"
#include "core/datafile/databases.h"
#include "core/datafile/formula_imports.h"
#include "core/datafile/kept_rows.h"
#include "core/datafile/lifecycle.h"
#include "core/datafile/moved_rows.h"
#include "core/datafile/pending_rollups.h"
#include "core/datafile/schema.h"

namespace vellumark {
namespace {

// ?1 the old name, ?2 the new one; all slots of a Design in one walk.
void RenameInDesigns(Database& file, std::string_view name, std::string_view newName) {
  std::string sets;
  std::string where;
  for (int slot = 0; slot < schema::kDesignSlots; ++slot) {
    const std::string field = schema::Numbered("IngDB", slot);
    sets += fmt::format("{0}{1} = CASE WHEN {1} = ?1 THEN ?2 ELSE {1} END", slot == 0 ? "" : ", ", field);
    where += fmt::format("{}{} = ?1", slot == 0 ? "" : " OR ", field);
  }
  file.Prepare(fmt::format("UPDATE Designs SET {} WHERE {}", sets, where)).Bind(1, name).Bind(2, newName).Run();
}

}  // namespace

void RenameDatabaseTables(Database& file, std::string_view name, std::string_view newName) {
  Transaction transaction(file);
  for (const Table* table : schema::PerDatabase())
    file.RenameTable(TableName(name, *table), TableName(newName, *table), *table);
  for (const Table* table : TablesOfJobStock(file))
    file.Prepare(fmt::format("UPDATE {} SET Database = ?2 WHERE Database = ?1", Quoted(table->name)))
        .Bind(1, name)
        .Bind(2, newName)
        .Run();
  RenameInDesigns(file, name, newName);
  RenamePendingRollUps(file, name, newName);
  RenameMovedDatabase(file, name, newName);
  RenameFormulaImports(file, name, newName);

  const FileInfoRow info = ReadFileInfo(file);
  std::vector<std::string> names = info.dbList;
  for (std::string& listed : names)
    if (EqualNoCase(listed, name)) listed = newName;
  StoreDatabaseList(file, names);
  if (EqualNoCase(info.currentDB, name)) StoreCurrentDatabase(file, newName);
  transaction.Note({Change::Kind::DatabaseList, std::string(name), "", Change::What::Renamed, std::string(newName)});
  transaction.Commit();
}

void DeleteDatabaseTables(Database& file, const std::vector<std::string>& names) {
  Transaction transaction(file);
  std::vector<std::string> rest = ReadFileInfo(file).dbList;
  for (const std::string& name : names) {
    for (const Table* table : schema::PerDatabase()) file.DropTable(TableName(name, *table));
    for (const Table* table : TablesOfJobStock(file))
      file.Prepare(fmt::format("DELETE FROM {} WHERE Database = ?", Quoted(table->name))).Bind(1, name).Run();
    ClearPendingRollUps(file, name, {true, true, true});
    DeleteMovedDatabase(file, name);
    ForgetFormulaImports(file, name);
    std::erase_if(rest, [&](const std::string& listed) { return EqualNoCase(listed, name); });
    transaction.Note({Change::Kind::DatabaseList, name, "", Change::What::Deleted, ""});
  }
  StoreDatabaseList(file, rest);
  transaction.Note({Change::Kind::Job, "", "", Change::What::All, ""});
  transaction.Commit();
}

}  // namespace vellumark
