// Of the engine: its session extension tells the rows that were written, with what stood in them.

#ifndef SQLITE_ENABLE_SESSION
#define SQLITE_ENABLE_SESSION
#endif
#ifndef SQLITE_ENABLE_PREUPDATE_HOOK
#define SQLITE_ENABLE_PREUPDATE_HOOK
#endif
#include <sqlite3.h>

#include <fmt/format.h>

#include <map>

#include "core/base/refusal.h"
#include "core/base/text.h"
#include "core/datafile/engine_sqlite.h"
#include "core/datafile/recorded_changes.h"
#include "core/datafile/schema.h"

namespace vellumark {
namespace {

int IsRecorded(void*, const char* table) {
  const std::string_view name = table;
  return name.starts_with("MSys") || EqualNoCase(name, "FileInfo") || EqualNoCase(name, "Users") ? 0 : 1;
}

Value ValueOf(sqlite3_value* value) {
  switch (sqlite3_value_type(value)) {
    case SQLITE_INTEGER:
      return static_cast<std::int64_t>(sqlite3_value_int64(value));
    case SQLITE_FLOAT:
      return sqlite3_value_double(value);
    case SQLITE_NULL:
      return {};
    default: {
      const auto* text = static_cast<const char*>(sqlite3_value_blob(value));
      return std::string(text == nullptr ? "" : text, static_cast<std::size_t>(sqlite3_value_bytes(value)));
    }
  }
}

}  // namespace

struct ChangeRecorder::Engine {
  explicit Engine(SqliteDatabase& recorded) : file(recorded) {
    if (file.Recording()) return;
    Check(sqlite3session_create(file.Handle(), "main", &session));
    sqlite3session_table_filter(session, IsRecorded, nullptr);
    Check(sqlite3session_attach(session, nullptr));
    file.Recording() = true;
  }
  ~Engine() {
    if (session == nullptr) return;
    sqlite3session_delete(session);
    file.Recording() = false;
  }
  Engine(const Engine&) = delete;
  Engine& operator=(const Engine&) = delete;

  void Check(int code) const {
    if (code != SQLITE_OK) throw Failure(file.Path().string(), CauseInWords(code, sqlite3_errstr(code)));
  }
  const std::vector<std::string>& FieldsOf(const std::string& table) {
    std::vector<std::string>& names = fields[table];
    if (!names.empty()) return names;
    const Statement row = file.Prepare(fmt::format("SELECT * FROM {} WHERE RowKey IS NULL", Quoted(table)));
    for (int column = 0; column < row.ColumnCount(); ++column) names.push_back(row.ColumnName(column));
    return names;
  }
  RecordedChange Read(sqlite3_changeset_iter* at);

  SqliteDatabase& file;
  sqlite3_session* session = nullptr;
  std::map<std::string, std::vector<std::string>> fields;
};

RecordedChange ChangeRecorder::Engine::Read(sqlite3_changeset_iter* at) {
  const char* table = nullptr;
  int columns = 0, operation = 0, indirect = 0;
  Check(sqlite3changeset_op(at, &table, &columns, &operation, &indirect));
  RecordedChange change;
  change.table = table;
  change.what = operation == SQLITE_INSERT   ? RecordedChange::What::Added
                : operation == SQLITE_DELETE ? RecordedChange::What::Removed
                                             : RecordedChange::What::Updated;
  const std::vector<std::string>& names = FieldsOf(change.table);
  for (int column = 0; column < columns; ++column) {
    sqlite3_value *before = nullptr, *after = nullptr;
    if (change.what != RecordedChange::What::Added) Check(sqlite3changeset_old(at, column, &before));
    if (change.what != RecordedChange::What::Removed) Check(sqlite3changeset_new(at, column, &after));
    const std::string& name = names.at(static_cast<std::size_t>(column));
    if (name == "RowKey") {
      change.row = sqlite3_value_int64(before != nullptr ? before : after);
    } else if (before != nullptr || after != nullptr) {
      change.cells.push_back(
          {name, before == nullptr ? Value() : ValueOf(before), after == nullptr ? Value() : ValueOf(after)});
    }
  }
  return change;
}

ChangeRecorder::ChangeRecorder(Database& file)
    : engine_(std::make_unique<Engine>(dynamic_cast<SqliteDatabase&>(file))) {}

ChangeRecorder::~ChangeRecorder() = default;

bool ChangeRecorder::Hears() const {
  return engine_->session != nullptr;
}

std::vector<RecordedChange> ChangeRecorder::Changes() const {
  std::vector<RecordedChange> changes;
  if (!Hears()) return changes;
  int size = 0;
  void* bytes = nullptr;
  engine_->Check(sqlite3session_changeset(engine_->session, &size, &bytes));
  const std::unique_ptr<void, void (*)(void*)> held(bytes, sqlite3_free);
  sqlite3_changeset_iter* at = nullptr;
  engine_->Check(sqlite3changeset_start(&at, size, bytes));
  const std::unique_ptr<sqlite3_changeset_iter, int (*)(sqlite3_changeset_iter*)> iterates(at,
                                                                                           sqlite3changeset_finalize);
  while (sqlite3changeset_next(at) == SQLITE_ROW) changes.push_back(engine_->Read(at));
  return changes;
}

}  // namespace vellumark
