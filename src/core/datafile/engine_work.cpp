#include "core/datafile/engine_work.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <fmt/format.h>

#include "core/datafile/engine_keys.h"
#include "core/datafile/engine_sqlite.h"

namespace vellumark {

std::unique_ptr<Database> SqliteDatabase::OpenWork(const std::filesystem::path& path) {
  auto file = std::make_unique<SqliteDatabase>(path, false);
  file->Connect(SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE | SQLite::OPEN_NOMUTEX);
  file->Execute("PRAGMA locking_mode=EXCLUSIVE");
  file->Execute("PRAGMA journal_mode=OFF");
  file->Execute("PRAGMA synchronous=OFF");
  file->Execute("PRAGMA cache_size=-65536");
  GiveRowKeys(*file);
  return file;
}

std::unique_ptr<Database> OpenWorkFile(const std::filesystem::path& path) {
  return SqliteDatabase::OpenWork(path);
}

void AddColumn(Database& workFile, std::string_view table, std::string_view column, FieldType type) {
  const Table added{std::string(table), {{std::string(column), type}}, {}};
  workFile.AddMissingFields(table, added);
}

}  // namespace vellumark
