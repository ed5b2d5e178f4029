// Of the engine: its hook before each write tells what stood in the row.

#ifndef SQLITE_ENABLE_PREUPDATE_HOOK
#define SQLITE_ENABLE_PREUPDATE_HOOK
#endif
#include <sqlite3.h>

#include <fmt/format.h>

#include <algorithm>
#include <bit>
#include <cstring>
#include <exception>
#include <map>
#include <memory>
#include <utility>

#include "core/base/refusal.h"
#include "core/base/text.h"
#include "core/datafile/engine_row_checks.h"
#include "core/datafile/engine_sqlite.h"
#include "core/datafile/kept_rows.h"
#include "core/datafile/recorded_changes.h"
#include "core/datafile/schema.h"

namespace vellumark {
namespace {

bool IsRecorded(std::string_view table) {
  if (table.starts_with("MSys")) return IsOfKeptRows(table);
  return !EqualNoCase(table, "FileInfo") && !EqualNoCase(table, "Users");
}

// The values of rows one after the other: a letter for the kind, eight bytes of a number, the length and the bytes of a
// text. That takes a tenth of the place of the values themselves. A row stays where it was put.
class PackedRows {
 public:
  /// A row of so many values follows.
  void Begin(int values) {
    used_ = needed_ = 0;
    Need(static_cast<std::size_t>(values) * kMostOfNumber);
  }
  void Add(sqlite3_value* value) {
    switch (sqlite3_value_type(value)) {
      case SQLITE_INTEGER:
        return AddWord('I', sqlite3_value_int64(value));
      case SQLITE_FLOAT:
        return AddWord('D', sqlite3_value_double(value));
      case SQLITE_NULL:
        row_[used_++] = 'N';
        return;
      default: {
        const std::string_view text = TextOf(value);
        Need(text.size());
        AddWord('T', std::ssize(text));
        if (!text.empty()) std::memcpy(row_.data() + used_, text.data(), text.size());
        used_ += text.size();
      }
    }
  }
  /// Where it stands.
  const char* End() {
    if (pieces_.empty() || left_ < used_) {
      left_ = std::max(kPiece, used_);
      pieces_.push_back(std::make_unique_for_overwrite<char[]>(left_));
      next_ = pieces_.back().get();
    }
    char* const row = next_;
    std::memcpy(row, row_.data(), used_);
    next_ += used_;
    left_ -= used_;
    return row;
  }

  /// The value at `at`, which goes on behind it.
  static std::string_view Next(const char*& at) {
    const char* const begin = at++;
    if (*begin != 'N') {
      const auto word = WordOf<std::int64_t>(at);
      at += sizeof word + (*begin == 'T' ? static_cast<std::size_t>(word) : 0);
    }
    return {begin, static_cast<std::size_t>(at - begin)};
  }
  static bool AreSame(std::string_view packed, sqlite3_value* value) {
    const char* const rest = packed.data() + 1;
    switch (sqlite3_value_type(value)) {
      case SQLITE_INTEGER:
        return packed[0] == 'I' && WordOf<std::int64_t>(rest) == sqlite3_value_int64(value);
      case SQLITE_FLOAT:
        return packed[0] == 'D' &&
               WordOf<std::uint64_t>(rest) == std::bit_cast<std::uint64_t>(sqlite3_value_double(value));
      case SQLITE_NULL:
        return packed[0] == 'N';
      default:
        return packed[0] == 'T' && packed.substr(1 + sizeof(std::int64_t)) == TextOf(value);
    }
  }
  static void Write(std::string_view packed, ChangeWriter& to) {
    const char* const rest = packed.data() + 1;
    if (packed[0] == 'I') return to.Whole(WordOf<std::int64_t>(rest));
    if (packed[0] == 'D') return to.Number(WordOf<double>(rest));
    if (packed[0] == 'T') return to.Text(packed.substr(1 + sizeof(std::int64_t)));
    to.Null();
  }
  static void Write(sqlite3_value* value, ChangeWriter& to) {
    switch (sqlite3_value_type(value)) {
      case SQLITE_INTEGER:
        return to.Whole(sqlite3_value_int64(value));
      case SQLITE_FLOAT:
        return to.Number(sqlite3_value_double(value));
      case SQLITE_NULL:
        return to.Null();
      default:
        to.Text(TextOf(value));
    }
  }

 private:
  static constexpr std::size_t kMostOfNumber = 1 + sizeof(std::int64_t);
  static constexpr std::size_t kPiece = std::size_t{64} << 10;

  static std::string_view TextOf(sqlite3_value* value) {
    const auto* text = static_cast<const char*>(sqlite3_value_blob(value));
    const auto size = static_cast<std::size_t>(sqlite3_value_bytes(value));
    return size == 0 ? std::string_view() : std::string_view(text, size);
  }
  void Need(std::size_t more) {
    needed_ += more;
    if (row_.size() < needed_) row_.resize(2 * needed_);
  }
  template <class T>
  void AddWord(char kind, T word) {
    row_[used_] = kind;
    std::memcpy(row_.data() + used_ + 1, &word, sizeof word);
    used_ += kMostOfNumber;
  }
  template <class T>
  static T WordOf(const char* bytes) {
    T word;
    std::memcpy(&word, bytes, sizeof word);
    return word;
  }

  std::vector<std::unique_ptr<char[]>> pieces_;
  char* next_ = nullptr;
  std::size_t left_ = 0;
  std::vector<char> row_;   // the one that is packed
  std::size_t used_ = 0;    // of it
  std::size_t needed_ = 0;  // at most, with what is still to come
};

}  // namespace

struct ChangeRecorder::Engine {
  using Before = const char*;  ///< where its values stand; null: the row was not there
  struct Table {
    std::string name;
    bool recorded = true;
    std::map<std::int64_t, Before> rows{};
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
      if (std::strcmp(database, "main") != 0) return;
      if (Table& written = engine.TableOf(table); written.recorded)
        engine.Note(connection, what, written, before, after);
    } catch (...) {
      engine.thrown = std::current_exception();
    }
  }
  void Note(sqlite3* connection, int what, Table& table, std::int64_t before, std::int64_t after) {
    if (what != SQLITE_INSERT) {
      if (const auto [row, isNew] = table.rows.try_emplace(before); isNew) {
        const int columns = sqlite3_preupdate_count(connection);
        values.Begin(columns);
        for (int column = 0; column < columns; ++column) {
          sqlite3_value* value = nullptr;
          Check(sqlite3_preupdate_old(connection, column, &value));
          values.Add(value);
        }
        row->second = values.End();
      }
    }
    if (what != SQLITE_DELETE) table.rows.try_emplace(after);
  }
  Table& TableOf(std::string_view table) {
    if (last < tables.size() && tables[last].name == table) return tables[last];
    const auto found = std::ranges::find(tables, table, &Table::name);
    last = static_cast<std::size_t>(found - tables.begin());
    if (found == tables.end()) tables.push_back({std::string(table), IsRecorded(table)});
    return tables[last];
  }
  void Check(int code) const {
    if (code != SQLITE_OK) throw Failure(file.Path().string(), CauseInWords(code, sqlite3_errstr(code)));
  }
  /// What the rows of a table were against what they are now.
  class Comparison;

  SqliteDatabase& file;
  bool hears;
  std::vector<Table> tables;  ///< in the order in which they were written first
  std::size_t last = 0;
  PackedRows values;
  std::exception_ptr thrown;
};

class ChangeRecorder::Engine::Comparison {
 public:
  Comparison(const Table& table, const std::vector<std::string_view>& nameFields, ChangeWriter& writer, Heard& heard)
      : table_(table), nameFields_(nameFields), writer_(writer), heard_(heard) {}

  void Run(RowChecks& rows) {
    std::vector<std::int64_t> keys;
    keys.reserve(table_.rows.size());
    for (const auto& row : table_.rows) keys.push_back(row.first);
    auto row = table_.rows.begin();
    rows.ReadRows(table_.name, keys, [&](std::size_t, sqlite3_stmt* now) {
      if (row->second != nullptr && now != nullptr) {
        Update(row->first, row->second, now);
      } else if (row->second != nullptr || now != nullptr) {
        if (fields_.empty()) TellFields(now == nullptr ? rows.FieldsOf(table_.name) : RowChecks::FieldsOf(now));
        now == nullptr ? Remove(row->first, row->second) : Add(row->first, now);
      }
      ++row;
    });
  }

 private:
  void Begin() {
    if (!std::exchange(begun_, true)) writer_.Begin(table_.name);
  }
  void TellFields(std::vector<std::string> fields) {
    Begin();
    fields_ = std::move(fields);
    std::vector<std::string> told = fields_;
    std::erase(told, kRowKey);
    writer_.Fields(told);
  }
  bool IsName(std::string_view field) const { return std::ranges::find(nameFields_, field) != nameFields_.end(); }

  void Add(std::int64_t key, sqlite3_stmt* now) {
    writer_.Row(RecordedChange::What::Added, key);
    for (std::size_t column = 0; column < fields_.size(); ++column) {
      if (fields_[column] == kRowKey) continue;
      PackedRows::Write(ColumnOf(now, column), writer_);
      heard_.nameCame = heard_.nameCame || IsName(fields_[column]);
    }
  }
  void Remove(std::int64_t key, const char* at) {
    writer_.Row(RecordedChange::What::Removed, key);
    for (const std::string& field : fields_)
      if (const std::string_view was = PackedRows::Next(at); field != kRowKey) PackedRows::Write(was, writer_);
  }
  void Update(std::int64_t key, const char* at, sqlite3_stmt* now) {
    bool told = false;
    const auto columns = static_cast<std::size_t>(sqlite3_data_count(now)) - 1;
    for (std::size_t column = 0; column < columns; ++column) {
      const std::string_view was = PackedRows::Next(at);
      sqlite3_value* const is = ColumnOf(now, column);
      if (PackedRows::AreSame(was, is)) continue;
      if (!std::exchange(told, true)) {
        Begin();
        writer_.Row(RecordedChange::What::Updated, key);
      }
      TellField(column, sqlite3_column_name(now, static_cast<int>(column) + 1));
      PackedRows::Write(was, writer_);
      PackedRows::Write(is, writer_);
    }
    if (told) writer_.EndOfFields();
  }
  void TellField(std::size_t column, const char* name) {
    auto used = std::ranges::find(used_, column);
    if (used == used_.end()) {
      used = used_.insert(used, column);
      writer_.NewField(name);
      heard_.nameCame = heard_.nameCame || IsName(name);
    }
    writer_.Field(static_cast<std::size_t>(used - used_.begin()));
  }
  /// The first one of the statement is the key.
  static sqlite3_value* ColumnOf(sqlite3_stmt* row, std::size_t column) {
    return sqlite3_column_value(row, static_cast<int>(column) + 1);
  }

  const Table& table_;
  const std::vector<std::string_view>& nameFields_;
  ChangeWriter& writer_;
  Heard& heard_;
  bool begun_ = false;
  std::vector<std::string> fields_{};  // all of them, once a whole row was told
  std::vector<std::size_t> used_{};    // the columns that were told of changed rows, in their order
};

// In the rows of another engine nobody listens.
ChangeRecorder::ChangeRecorder(Database& file) {
  if (auto* database = dynamic_cast<SqliteDatabase*>(&file)) engine_ = std::make_unique<Engine>(*database);
}

ChangeRecorder::~ChangeRecorder() = default;

bool ChangeRecorder::Hears() const {
  return engine_ && engine_->hears;
}

ChangeRecorder::Heard ChangeRecorder::Changes(const std::vector<std::string_view>& nameFields) const {
  Heard heard;
  if (!engine_) return heard;
  if (engine_->thrown) std::rethrow_exception(engine_->thrown);
  ChangeWriter writer;
  for (const Engine::Table& table : engine_->tables)
    if (table.recorded && engine_->file.TableExists(table.name))
      Engine::Comparison(table, nameFields, writer, heard).Run(engine_->file.Rows());
  heard.changes = writer.Take();
  return heard;
}

}  // namespace vellumark
