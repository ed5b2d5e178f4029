// Of the engine: its hook before each write tells what stood in the row.

#ifndef SQLITE_ENABLE_PREUPDATE_HOOK
#define SQLITE_ENABLE_PREUPDATE_HOOK
#endif
#include <sqlite3.h>

#include <fmt/format.h>

#include <algorithm>
#include <cstring>
#include <exception>
#include <map>
#include <optional>
#include <utility>

#include "core/base/refusal.h"
#include "core/base/text.h"
#include "core/datafile/engine_sqlite.h"
#include "core/datafile/recorded_changes.h"
#include "core/datafile/schema.h"

namespace vellumark {
namespace {

bool IsRecorded(std::string_view table) {
  return !table.starts_with("MSys") && !EqualNoCase(table, "FileInfo") && !EqualNoCase(table, "Users");
}

// The values of a row behind one another, which takes a tenth of the place of the values themselves: a letter for the
// kind, eight bytes of a number, the length and the bytes of a text.
class PackedRow {
 public:
  void Add(sqlite3_value* value) {
    switch (sqlite3_value_type(value)) {
      case SQLITE_INTEGER:
        return AddWord('I', sqlite3_value_int64(value));
      case SQLITE_FLOAT:
        return AddWord('D', sqlite3_value_double(value));
      case SQLITE_NULL:
        bytes_ += 'N';
        return;
      default: {
        const auto* text = static_cast<const char*>(sqlite3_value_blob(value));
        const auto size = static_cast<std::size_t>(sqlite3_value_bytes(value));
        AddWord('T', static_cast<std::int64_t>(size));
        if (size > 0) bytes_.append(text, size);
      }
    }
  }
  /// What stands at `at`, which goes on behind it; nothing at the end.
  std::string_view Next(std::size_t& at) const {
    if (at >= bytes_.size()) return {};
    const std::size_t begin = at;
    const char kind = bytes_[at++];
    if (kind != 'N') {
      const auto word = WordOf<std::int64_t>(std::string_view(bytes_).substr(at));
      at += sizeof word + (kind == 'T' ? static_cast<std::size_t>(word) : 0);
    }
    return std::string_view(bytes_).substr(begin, at - begin);
  }
  static Value ValueOf(std::string_view packed) {
    if (packed.empty() || packed[0] == 'N') return {};
    const std::string_view rest = packed.substr(1);
    if (packed[0] == 'I') return WordOf<std::int64_t>(rest);
    if (packed[0] == 'D') return WordOf<double>(rest);
    return rest.substr(sizeof(std::int64_t));
  }
  void Clear() { bytes_.clear(); }

 private:
  template <class T>
  void AddWord(char kind, T word) {
    bytes_ += kind;
    bytes_.append(reinterpret_cast<const char*>(&word), sizeof word);
  }
  template <class T>
  static T WordOf(std::string_view bytes) {
    T word;
    std::memcpy(&word, bytes.data(), sizeof word);
    return word;
  }

  std::string bytes_;
};

}  // namespace

struct ChangeRecorder::Engine {
  using Before = std::optional<PackedRow>;  ///< nothing: the row was not there
  struct Table {
    std::string name;
    std::map<std::int64_t, Before> rows;
  };

  explicit Engine(SqliteDatabase& recorded) : file(recorded), hears(!recorded.Recording()) {
    if (!hears) return;
    file.Recording() = true;
    sqlite3_preupdate_hook(file.Handle(), OnWrite, this);
  }
  ~Engine() {
    if (!hears) return;
    sqlite3_preupdate_hook(file.Handle(), nullptr, nullptr);
    file.Recording() = false;
  }
  Engine(const Engine&) = delete;
  Engine& operator=(const Engine&) = delete;

  // No exception may pass through the engine.
  static void OnWrite(void* self, sqlite3* connection, int what, const char* database, const char* table,
                      sqlite3_int64 before, sqlite3_int64 after) {
    auto& engine = *static_cast<Engine*>(self);
    try {
      if (std::strcmp(database, "main") == 0 && IsRecorded(table)) engine.Note(connection, what, table, before, after);
    } catch (...) {
      engine.thrown = std::current_exception();
    }
  }
  void Note(sqlite3* connection, int what, std::string_view table, std::int64_t before, std::int64_t after) {
    std::map<std::int64_t, Before>& rows = RowsOf(table);
    if (what != SQLITE_INSERT) {
      if (const auto [row, isNew] = rows.try_emplace(before); isNew) {
        row->second.emplace();
        const int columns = sqlite3_preupdate_count(connection);
        for (int column = 0; column < columns; ++column) {
          sqlite3_value* value = nullptr;
          Check(sqlite3_preupdate_old(connection, column, &value));
          row->second->Add(value);
        }
      }
    }
    if (what != SQLITE_DELETE) rows.try_emplace(after);
  }
  std::map<std::int64_t, Before>& RowsOf(std::string_view table) {
    if (last < tables.size() && tables[last].name == table) return tables[last].rows;
    const auto found = std::ranges::find(tables, table, &Table::name);
    last = static_cast<std::size_t>(found - tables.begin());
    if (found == tables.end()) tables.push_back({std::string(table), {}});
    return tables[last].rows;
  }
  void Check(int code) const {
    if (code != SQLITE_OK) throw Failure(file.Path().string(), CauseInWords(code, sqlite3_errstr(code)));
  }
  void AddChanges(const Table& table, std::vector<RecordedChange>& changes);

  SqliteDatabase& file;
  bool hears;
  std::vector<Table> tables;  ///< in the order in which they were written first
  std::size_t last = 0;
  std::exception_ptr thrown;
};

// What the rows were against what they are now.
void ChangeRecorder::Engine::AddChanges(const Table& table, std::vector<RecordedChange>& changes) {
  using What = RecordedChange::What;
  if (!file.TableExists(table.name)) return;
  const std::string sql = fmt::format("SELECT * FROM main.{} WHERE RowKey = ?1", Quoted(table.name));
  sqlite3_stmt* made = nullptr;
  Check(sqlite3_prepare_v2(file.Handle(), sql.c_str(), static_cast<int>(sql.size()), &made, nullptr));
  const std::unique_ptr<sqlite3_stmt, int (*)(sqlite3_stmt*)> row(made, sqlite3_finalize);
  const int columns = sqlite3_column_count(made);
  std::vector<std::string> fields;
  for (int column = 0; column < columns; ++column) fields.emplace_back(sqlite3_column_name(made, column));
  PackedRow now;
  for (const auto& [key, before] : table.rows) {
    sqlite3_reset(made);
    sqlite3_bind_int64(made, 1, key);
    const int code = sqlite3_step(made);
    const bool stands = code == SQLITE_ROW;
    if (!stands && code != SQLITE_DONE) Check(code);
    if (!before && !stands) continue;
    now.Clear();
    for (int column = 0; stands && column < columns; ++column) now.Add(sqlite3_column_value(made, column));
    RecordedChange change{!before ? What::Added : stands ? What::Updated : What::Removed, table.name, key, {}};
    std::size_t old = 0, left = 0;
    for (const std::string& field : fields) {
      const std::string_view was = before ? before->Next(old) : std::string_view();
      const std::string_view is = stands ? now.Next(left) : std::string_view();
      if (field == kRowKey || (change.what == What::Updated && was == is)) continue;
      change.cells.push_back({field, PackedRow::ValueOf(was), PackedRow::ValueOf(is)});
    }
    if (change.what != What::Updated || !change.cells.empty()) changes.push_back(std::move(change));
  }
}

// In the rows of another engine nobody listens.
ChangeRecorder::ChangeRecorder(Database& file) {
  if (auto* database = dynamic_cast<SqliteDatabase*>(&file)) engine_ = std::make_unique<Engine>(*database);
}

ChangeRecorder::~ChangeRecorder() = default;

bool ChangeRecorder::Hears() const {
  return engine_ && engine_->hears;
}

std::vector<RecordedChange> ChangeRecorder::Changes() const {
  std::vector<RecordedChange> changes;
  if (!engine_) return changes;
  if (engine_->thrown) std::rethrow_exception(engine_->thrown);
  for (const Engine::Table& table : engine_->tables) engine_->AddChanges(table, changes);
  return changes;
}

}  // namespace vellumark
