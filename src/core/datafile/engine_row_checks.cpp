#include "core/datafile/engine_row_checks.h"

#include <fmt/format.h>
#include <sqlite3.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

#include "core/base/digest.h"
#include "core/base/refusal.h"
#include "core/base/text.h"
#include "core/datafile/engine_row_digest.h"
#include "core/datafile/engine_sqlite.h"

namespace vellumark {
namespace {

constexpr int kBlockBits = 6;
constexpr std::size_t kRowsOfBlock = std::size_t{1} << kBlockBits;

std::int64_t BlockOf(std::int64_t key) {
  return key >> kBlockBits;
}
std::size_t PlaceInBlock(std::int64_t key) {
  return static_cast<std::size_t>(key) & (kRowsOfBlock - 1);
}
std::int64_t KeyAt(std::int64_t block, std::size_t place) {
  return block * static_cast<std::int64_t>(kRowsOfBlock) + static_cast<std::int64_t>(place);
}

// An entry of the log that begins with it has the rows of a table together. An earlier program wrote the name of the
// table before each.
constexpr std::uint64_t kRowsTogether = ~std::uint64_t{0};

// Of an entry of the log, so that a bit that flips in it is not taken for one in a row.
std::uint64_t DigestOfEntry(std::int64_t entry, std::string_view sums) {
  Digest digest;
  digest.Add(static_cast<std::uint64_t>(entry));
  digest.Add(sums);
  return digest.Value();
}

void BindText(sqlite3_stmt* statement, int parameter, std::string_view text) {
  sqlite3_bind_text(statement, parameter, text.data(), static_cast<int>(text.size()), SQLITE_STATIC);
}

}  // namespace

// The digests of 64 rows, in the order of their keys, and one of them all: so that a bit that flips in here is not
// taken for one in a row.
struct RowChecks::Record {
  std::int64_t block = 0;
  std::array<std::uint64_t, kRowsOfBlock + 1> sums{};
  bool stands = false;  // in the file
  bool sound = true;

  std::uint64_t Own() const {
    Digest digest;
    digest.Add(static_cast<std::uint64_t>(block));
    for (std::size_t i = 0; i < kRowsOfBlock; ++i) digest.Add(sums[i]);
    return digest.Value();
  }
  void Take(std::string_view bytes) {
    stands = true;
    sound = bytes.size() == sizeof sums;
    if (!sound) return;
    std::memcpy(sums.data(), bytes.data(), sizeof sums);
    sound = sums[kRowsOfBlock] == Own();
  }
  bool Empty() const {
    return std::ranges::all_of(sums.begin(), sums.end() - 1, [](std::uint64_t sum) { return sum == 0; });
  }
};

// A statement for one use.
class RowChecks::Query {
 public:
  Query(const RowChecks& checks, const std::string& sql) : checks_(checks), made_(checks.Made(sql)) {}
  ~Query() { sqlite3_finalize(made_); }
  Query(const Query&) = delete;
  Query& operator=(const Query&) = delete;

  bool Step() { return checks_.Step(made_); }
  sqlite3_stmt* get() const { return made_; }
  std::int64_t Whole(int column) const { return sqlite3_column_int64(made_, column); }
  std::string Text(int column) const { return std::string(BytesOf(sqlite3_column_value(made_, column))); }

 private:
  const RowChecks& checks_;
  sqlite3_stmt* made_;
};

RowChecks::RowChecks(const std::filesystem::path& path, sqlite3* connection) : path_(path), connection_(connection) {
  sqlite3_update_hook(connection_, OnWrite, this);
  sqlite3_set_authorizer(connection_, OnAuthorize, this);
}

RowChecks::~RowChecks() {
  sqlite3_update_hook(connection_, nullptr, nullptr);
  sqlite3_set_authorizer(connection_, nullptr, nullptr);
  for (sqlite3_stmt* statement : {read_, insert_, update_, remove_, log_}) sqlite3_finalize(statement);
  for (const KnownTable& table : tables_) {
    sqlite3_finalize(table.row);
    sqlite3_finalize(table.rows);
  }
}

void RowChecks::Throw() const {
  throw Failure(path_.string(), CauseInWords(sqlite3_errcode(connection_), sqlite3_errmsg(connection_)));
}

sqlite3_stmt* RowChecks::Made(const std::string& sql) const {
  sqlite3_stmt* statement = nullptr;
  if (sqlite3_prepare_v3(connection_, sql.data(), static_cast<int>(sql.size()), SQLITE_PREPARE_PERSISTENT, &statement,
                         nullptr) != SQLITE_OK)
    Throw();
  return statement;
}

bool RowChecks::Step(sqlite3_stmt* statement) const {
  const int code = sqlite3_step(statement);
  if (code != SQLITE_ROW && code != SQLITE_DONE) {
    const Failure failure(path_.string(), CauseInWords(code, sqlite3_errmsg(connection_)));
    sqlite3_reset(statement);
    throw failure;
  }
  return code == SQLITE_ROW;
}

void RowChecks::Run(sqlite3_stmt* statement) const {
  Step(statement);
  sqlite3_reset(statement);
}

void RowChecks::Execute(const std::string& sql) const {
  if (sqlite3_exec(connection_, sql.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK) Throw();
}

// ---- What is written

void RowChecks::OnWrite(void* self, int, const char* database, const char* table, long long key) {
  auto& checks = *static_cast<RowChecks*>(self);
  if (std::strcmp(database, "main") != 0 || std::strncmp(table, "sqlite_", 7) == 0) return;
  const std::size_t place = checks.PlaceOf(table);
  checks.tables_[place].written = true;
  if (checks.kept_) checks.written_.push_back({place, key, false, 0});
}

// The engine would empty a table whole, and tell of no row, unless it is asked not to here.
int RowChecks::OnAuthorize(void* self, int action, const char* table, const char*, const char* database, const char*) {
  auto& checks = *static_cast<RowChecks*>(self);
  if (action == SQLITE_DROP_TABLE) checks.dropped_.emplace_back(table);
  if (action != SQLITE_DELETE || database == nullptr || std::strcmp(database, "main") != 0 ||
      std::strncmp(table, "sqlite_", 7) == 0)
    return SQLITE_OK;
  // A table that is dropped is asked for in these words too.
  if (!checks.dropped_.empty() && checks.dropped_.back() == table) return SQLITE_OK;
  return SQLITE_IGNORE;
}

std::size_t RowChecks::PlaceOf(std::string_view table) {
  if (last_ < tables_.size() && tables_[last_].name == table) return last_;
  const auto found = std::ranges::find(tables_, table, &KnownTable::name);
  last_ = static_cast<std::size_t>(found - tables_.begin());
  if (found == tables_.end()) tables_.push_back({std::string(table)});
  return last_;
}

std::set<std::string> RowChecks::WrittenTables() const {
  std::set<std::string> names;
  for (const KnownTable& table : tables_)
    if (table.written) names.insert(table.name);
  return names;
}

void RowChecks::Forget() {
  written_.clear();
  dropped_.clear();
  for (KnownTable& table : tables_) table.written = false;
}

// ---- Digests

bool RowChecks::Stands(std::string_view table) const {
  Query row(*this, "SELECT 1 FROM main.sqlite_master WHERE type = 'table' AND name = ?1 COLLATE NOCASE");
  BindText(row.get(), 1, table);
  return row.Step();
}

bool RowChecks::StandInFile() const {
  return Stands(kTable);
}

bool RowChecks::LogStands() const {
  return Stands(kLog);
}

void RowChecks::MakeLog() {
  Execute(fmt::format("CREATE TABLE IF NOT EXISTS main.{} (Entry INTEGER PRIMARY KEY, Sums BLOB) WITHOUT ROWID", kLog));
}

void RowChecks::Begin() {
  kept_ = true;
  logs_ = LogStands();
  if (logs_) CountLog();
}

void RowChecks::CountLog() {
  Query last(*this, fmt::format("SELECT COALESCE(MAX(Entry), 0), COUNT(*) FROM main.{}", kLog));
  last.Step();
  entry_ = last.Whole(0);
  entries_ = last.Whole(1);
}

void RowChecks::LookAgain() {
  if (!std::exchange(takenBack_, false)) return;
  kept_ = kept_ && StandInFile();
  logs_ = kept_ && LogStands();
  entries_ = 0;
  if (logs_) CountLog();
}

void RowChecks::EmptyLog() {
  LookAgain();
  if (entries_ > 0) Fold();
}

// By the names in the engine's list of tables, which are not those that it goes by: a letter that turned over shows
// there alone.
std::vector<std::string> RowChecks::Tables() const {
  Query rows(*this,
             fmt::format(
                 "SELECT m.name FROM main.sqlite_master m JOIN pragma_table_list l ON l.name = m.name "
                 "COLLATE NOCASE WHERE m.type = 'table' AND l.schema = 'main' AND l.type = 'table' AND "
                 "l.wr = 0 AND m.name NOT LIKE 'sqlite\\_%' ESCAPE '\\' AND m.name COLLATE NOCASE NOT IN ('{}', '{}') ORDER BY m.name",
                 kTable, kLog));
  std::vector<std::string> names;
  while (rows.Step()) names.push_back(rows.Text(0));
  return names;
}

bool RowChecks::Read(std::string_view table, std::int64_t block, Record& record) {
  record = {block};
  if (read_ == nullptr)
    read_ = Made(fmt::format("SELECT Checks FROM main.{} WHERE TableName = ?1 AND Block = ?2", kTable));
  BindText(read_, 1, table);
  sqlite3_bind_int64(read_, 2, block);
  if (Step(read_)) record.Take(BytesOf(sqlite3_column_value(read_, 0)));
  sqlite3_reset(read_);
  return record.sound;
}

void RowChecks::Write(std::string_view table, const Record& written) {
  Record record = written;
  record.sums[kRowsOfBlock] = record.Own();
  const bool empty = record.Empty();
  const char* const sql = empty           ? "DELETE FROM main.{} WHERE TableName = ?1 AND Block = ?2"
                          : record.stands ? "UPDATE main.{} SET Checks = ?3 WHERE TableName = ?1 AND Block = ?2"
                                          : "INSERT INTO main.{} (TableName, Block, Checks) VALUES (?1, ?2, ?3)";
  sqlite3_stmt*& statement = empty ? remove_ : record.stands ? update_ : insert_;
  if (statement == nullptr) statement = Made(fmt::format(fmt::runtime(sql), kTable));
  BindText(statement, 1, table);
  sqlite3_bind_int64(statement, 2, record.block);
  if (!empty) sqlite3_bind_blob(statement, 3, record.sums.data(), sizeof record.sums, SQLITE_STATIC);
  Run(statement);
}

sqlite3_stmt* RowChecks::RowOf(KnownTable& table) {
  if (table.row == nullptr)
    table.row = Made(fmt::format("SELECT rowid, * FROM main.{} WHERE rowid = ?1", Quoted(table.name)));
  return table.row;
}

// 0 when it is gone.
std::uint64_t RowChecks::DigestRow(const Row& row) {
  if (row.read) return row.sum;
  sqlite3_stmt* const statement = RowOf(tables_[row.table]);
  sqlite3_bind_int64(statement, 1, row.key);
  const std::uint64_t sum = Step(statement) ? DigestOfColumns(statement, 1) : 0;
  sqlite3_reset(statement);
  return sum;
}

// Many are read in one walk, which costs less than looking each up.
void RowChecks::Walk(std::size_t place, std::span<const std::int64_t> keys, const Taking& take) {
  constexpr std::size_t kMany = 4;
  KnownTable& table = tables_[place];
  if (keys.size() < kMany) {
    sqlite3_stmt* const statement = RowOf(table);
    for (std::size_t i = 0; i < keys.size(); ++i) {
      sqlite3_bind_int64(statement, 1, keys[i]);
      take(i, Step(statement) ? statement : nullptr);
      sqlite3_reset(statement);
    }
    return;
  }
  sqlite3_stmt*& statement = table.rows;
  if (statement == nullptr)
    statement = Made(
        fmt::format("SELECT rowid, * FROM main.{} WHERE rowid BETWEEN ?1 AND ?2 ORDER BY rowid", Quoted(table.name)));
  sqlite3_bind_int64(statement, 1, keys.front());
  sqlite3_bind_int64(statement, 2, keys.back());
  std::size_t i = 0;
  while (i < keys.size() && Step(statement)) {
    const std::int64_t key = sqlite3_column_int64(statement, 0);
    for (; i < keys.size() && keys[i] < key; ++i) take(i, nullptr);
    if (i < keys.size() && keys[i] == key) take(i++, statement);
  }
  for (; i < keys.size(); ++i) take(i, nullptr);
  sqlite3_reset(statement);
}

// `rows` stand in one block and in their order.
void RowChecks::DigestRows(std::span<const Row> rows, Record& record) {
  std::array<std::int64_t, kRowsOfBlock> keys;
  std::size_t unread = 0;
  for (const Row& row : rows) {
    if (row.read)
      record.sums[PlaceInBlock(row.key)] = row.sum;
    else
      keys[unread++] = row.key;
  }
  Walk(rows.front().table, std::span(keys).first(unread), [&](std::size_t place, sqlite3_stmt* row) {
    record.sums[PlaceInBlock(keys[place])] = row == nullptr ? 0 : DigestOfColumns(row, 1);
  });
}

void RowChecks::ReadRows(std::string_view name, std::span<const std::int64_t> keys, const Taking& take) {
  const std::size_t table = PlaceOf(name);
  for (std::size_t first = 0, end = 0; first < keys.size(); first = end) {
    while (end < keys.size() && BlockOf(keys[end]) == BlockOf(keys[first])) ++end;
    Walk(table, keys.subspan(first, end - first), [&](std::size_t place, sqlite3_stmt* row) {
      if (kept_) written_.push_back({table, keys[first + place], true, row == nullptr ? 0 : DigestOfColumns(row, 1)});
      take(first + place, row);
    });
  }
}

std::vector<std::string> RowChecks::FieldsOf(std::string_view table) {
  sqlite3_stmt* const row = RowOf(tables_[PlaceOf(table)]);
  sqlite3_bind_null(row, 1);
  Run(row);  // which makes it anew where the table has changed
  return FieldsOf(row);
}

std::vector<std::string> RowChecks::FieldsOf(sqlite3_stmt* row) {
  std::vector<std::string> fields;
  for (int column = 1; column < sqlite3_column_count(row); ++column)
    fields.emplace_back(sqlite3_column_name(row, column));
  return fields;
}

// Of each row stays what was noted of it last. One that was read and not written had its digest kept before.
void RowChecks::DropReadTwice() {
  std::ranges::stable_sort(written_, {}, [](const Row& row) { return std::pair(row.table, row.key); });
  std::size_t kept = 0;
  for (std::size_t first = 0, end = 0; first < written_.size(); first = end) {
    bool wrote = false;
    for (; end < written_.size() && written_[end].IsOf(written_[first]); ++end) wrote = wrote || !written_[end].read;
    if (wrote) written_[kept++] = written_[end - 1];
  }
  written_.resize(kept);
}

void RowChecks::Keep() {
  if (written_.empty()) return;
  LookAgain();
  if (!kept_) return written_.clear();
  DropReadTwice();
  if (written_.empty()) return;
  if (logs_ && written_.size() <= kFewRows) {
    KeepInLog();
  } else {
    KeepInBlocks();
  }
  written_.clear();
}

void RowChecks::KeepInBlocks() {
  EmptyLog();  // what it says of these rows is older
  Record record;
  for (auto row = written_.begin(); row != written_.end();) {
    const std::string& table = tables_[row->table].name;
    const std::int64_t block = BlockOf(row->key);
    const auto end = std::find_if(row, written_.end(), [&](const Row& other) {
      return other.table != row->table || BlockOf(other.key) != block;
    });
    // What cannot be relied on stays, so that the check goes on naming it.
    if (Read(table, block, record)) {
      DigestRows({row, end}, record);
      if (record.stands || !record.Empty()) Write(table, record);
    }
    row = end;
  }
}

// For each table the number of its rows, the length of its name and the name, then key and digest of each row; one of
// all of it at the end.
void RowChecks::KeepInLog() {
  if (entries_ >= kMostEntries) Fold();
  std::string sums;
  const auto add = [&](std::uint64_t word) { sums.append(reinterpret_cast<const char*>(&word), sizeof word); };
  add(kRowsTogether);
  for (auto row = written_.begin(); row != written_.end();) {
    const auto end = std::find_if(row, written_.end(), [&](const Row& other) { return other.table != row->table; });
    const std::string& name = tables_[row->table].name;
    add(static_cast<std::uint64_t>(end - row));
    add(name.size());
    sums += name;
    for (; row != end; ++row) {
      add(static_cast<std::uint64_t>(row->key));
      add(DigestRow(*row));
    }
  }
  ++entry_;
  ++entries_;
  add(DigestOfEntry(entry_, sums));
  if (log_ == nullptr) log_ = Made(fmt::format("INSERT INTO main.{} (Entry, Sums) VALUES (?1, ?2)", kLog));
  sqlite3_bind_int64(log_, 1, entry_);
  sqlite3_bind_blob(log_, 2, sums.data(), static_cast<int>(sums.size()), SQLITE_STATIC);
  Run(log_);
}

RowChecks::LoggedSums RowChecks::ReadLog(const std::function<void(std::int64_t entry)>& unsound) {
  LoggedSums logged;
  if (!LogStands()) return logged;
  Query entries(*this, fmt::format("SELECT Entry, Sums FROM main.{} ORDER BY Entry", kLog));
  while (entries.Step()) {
    std::string_view sums = BytesOf(sqlite3_column_value(entries.get(), 1));
    const auto take = [&] {
      std::uint64_t word = 0;
      std::memcpy(&word, sums.data(), sizeof word);
      sums.remove_prefix(sizeof word);
      return word;
    };
    constexpr std::size_t kWord = sizeof(std::uint64_t);
    std::uint64_t own = 0;
    if (sums.size() >= kWord) std::memcpy(&own, sums.data() + sums.size() - kWord, kWord);
    if (sums.size() < kWord || own != DigestOfEntry(entries.Whole(0), sums.substr(0, sums.size() - kWord))) {
      unsound(entries.Whole(0));
      continue;
    }
    sums.remove_suffix(kWord);
    std::uint64_t first = 0;
    if (!sums.empty()) std::memcpy(&first, sums.data(), kWord);
    const bool together = first == kRowsTogether;
    if (together) sums.remove_prefix(kWord);
    while (!sums.empty()) {
      std::uint64_t count = together ? take() : 1;
      const std::size_t length = take();
      Sums& rows = logged[std::string(sums.substr(0, length))];
      sums.remove_prefix(length);
      for (; count > 0; --count) {
        const auto key = static_cast<std::int64_t>(take());
        rows[key] = take();
      }
    }
  }
  return logged;
}

void RowChecks::Fold() {
  std::string unsound;
  const LoggedSums logged =
      ReadLog([&](std::int64_t entry) { unsound += fmt::format("{}{}", unsound.empty() ? "" : ", ", entry); });
  Record record;
  for (const auto& [table, rows] : logged)
    for (auto row = rows.begin(); row != rows.end();) {
      const std::int64_t block = BlockOf(row->first);
      const bool known = Read(table, block, record);
      for (; row != rows.end() && BlockOf(row->first) == block; ++row)
        record.sums[PlaceInBlock(row->first)] = row->second;
      if (known && (record.stands || !record.Empty())) Write(table, record);
    }
  Execute(fmt::format("DELETE FROM main.{} WHERE Entry NOT IN ({})", kLog, unsound));
  entries_ = 0;
}

void RowChecks::KeepAll() {
  Execute(
      fmt::format("CREATE TABLE IF NOT EXISTS main.{} (TableName TEXT COLLATE NOCASE, Block INTEGER, Checks BLOB, "
                  "PRIMARY KEY (TableName, Block)) WITHOUT ROWID",
                  kTable));
  MakeLog();
  for (const std::string_view own : {kTable, kLog}) Execute(fmt::format("DELETE FROM main.{}", own));
  for (const std::string& table : Tables()) KeepTable(table);
  written_.clear();
  Begin();
}

void RowChecks::KeepTable(const std::string& table) {
  Query rows(*this, fmt::format("SELECT rowid, * FROM main.{} ORDER BY rowid", Quoted(table)));
  Record record;
  bool any = false;
  while (rows.Step()) {
    const std::int64_t key = rows.Whole(0);
    if (!any || BlockOf(key) != record.block) {
      if (any) Write(table, record);
      record = {BlockOf(key)};
      any = true;
    }
    record.sums[PlaceInBlock(key)] = DigestOfColumns(rows.get(), 1);
  }
  if (any) Write(table, record);
}

void RowChecks::TableRenamed(std::string_view name, std::string_view newName) {
  if (!kept_) return;
  EmptyLog();
  const Query rename(*this, fmt::format("UPDATE main.{} SET TableName = ?2 WHERE TableName = ?1", kTable));
  BindText(rename.get(), 1, name);
  BindText(rename.get(), 2, newName);
  Run(rename.get());
}

void RowChecks::ForgetDropped() {
  if (dropped_.empty()) return;
  for (const std::string& name : std::exchange(dropped_, {})) {
    if (!kept_ || Stands(name)) continue;
    EmptyLog();
    std::erase_if(written_, [&](const Row& row) { return EqualNoCase(tables_[row.table].name, name); });
    const Query drop(*this, fmt::format("DELETE FROM main.{} WHERE TableName = ?1", kTable));
    BindText(drop.get(), 1, name);
    Run(drop.get());
  }
}

// ---- The check

void RowChecks::ForEachStrayRow(const std::function<void(const StrayRow&)>& found,
                                const std::function<bool(std::int64_t done, std::int64_t all)>& goOn,
                                const std::function<void(const ReadTable&)>& read, const LookAtTable& look) {
  const std::vector<std::string> tables = Tables();
  std::int64_t all = 0;
  for (const std::string& table : tables) {
    Query count(*this, fmt::format("SELECT COUNT(*) FROM main.{}", Quoted(table)));
    if (count.Step()) all += count.Whole(0);
  }
  const LoggedSums logged = ReadLog([&](std::int64_t entry) {
    found({std::string(kLog), entry, StrayRow::What::Unknown});
  });
  std::int64_t done = 0;
  for (const std::string& table : tables) {
    const auto sums = logged.find(table);
    ReadTable whole{table};
    if (!CheckTable(whole, sums == logged.end() ? Sums() : sums->second, found, [&] { return goOn(++done, all); }, look))
      return;
    if (read) read(whole);
  }
  std::set<std::string> known;
  for (Query kept(*this, fmt::format("SELECT DISTINCT TableName FROM main.{}", kTable)); kept.Step();)
    known.insert(kept.Text(0));
  for (const auto& [table, sums] : logged) known.insert(table);
  for (const std::string& table : known)  // to the letter: a bit that turns over makes a small letter of a capital
    if (std::ranges::find(tables, table) == tables.end()) found({table, 0, StrayRow::What::Gone});
}

// The records of a table in their order, with what the log says of their rows.
class RowChecks::Kept {
 public:
  Kept(const RowChecks& checks, const std::string& table, const Sums& logged)
      : records_(checks, fmt::format("SELECT Block, Checks FROM main.{} WHERE TableName = ?1 ORDER BY Block", kTable)),
        row_(logged.begin()),
        end_(logged.end()) {
    BindText(records_.get(), 1, table);
    more_ = records_.Step();
  }

  Record Next() {
    Record record;
    if (!more_ && row_ == end_) return record;
    const bool stored = more_ && (row_ == end_ || records_.Whole(0) <= BlockOf(row_->first));
    record.block = stored ? records_.Whole(0) : BlockOf(row_->first);
    record.stands = true;
    if (stored) {
      record.Take(BytesOf(sqlite3_column_value(records_.get(), 1)));
      more_ = records_.Step();
    }
    for (; row_ != end_ && BlockOf(row_->first) == record.block; ++row_)
      record.sums[PlaceInBlock(row_->first)] = row_->second;
    return record;
  }

 private:
  Query records_;
  Sums::const_iterator row_;
  Sums::const_iterator end_;
  bool more_ = false;
};

// Rows and records side by side, both in the order of the keys.
bool RowChecks::CheckTable(ReadTable& read, const Sums& logged, const std::function<void(const StrayRow&)>& found,
                           const std::function<bool()>& goOn, const LookAtTable& look) {
  const std::string& table = read.table;
  Query rows(*this, fmt::format("SELECT rowid, * FROM main.{} ORDER BY rowid", Quoted(table)));
  const RowLook lookAtRow = look ? look(table, FieldsOf(rows.get())) : RowLook();
  std::vector<KeptValue> values;
  Kept records(*this, table, logged);
  Record record;
  const auto next = [&] {
    record = records.Next();
    if (!record.sound) found({table, KeyAt(record.block, 0), StrayRow::What::Unknown});
  };
  // A digest is taken away with its row: what is left has none.
  const auto leave = [&] {
    for (std::size_t place = 0; record.sound && place < kRowsOfBlock; ++place)
      if (record.sums[place] != 0) found({table, KeyAt(record.block, place), StrayRow::What::Gone});
  };
  next();
  while (rows.Step()) {
    const std::int64_t key = rows.Whole(0);
    const std::uint64_t digest = DigestOfColumns(rows.get(), 1);
    ++read.rows;
    read.digest += digest;
    if (lookAtRow) {
      ReadColumns(rows.get(), 1, values);
      lookAtRow(key, values);
    }
    while (record.stands && record.block < BlockOf(key)) {
      leave();
      next();
    }
    const bool here = record.stands && record.block == BlockOf(key);
    if (!here || record.sound) {
      const std::uint64_t kept = here ? std::exchange(record.sums[PlaceInBlock(key)], 0) : 0;
      if (kept != digest)
        found({table, key, kept == 0 ? StrayRow::What::Added : StrayRow::What::Changed});
    }
    if (!goOn()) return false;
  }
  while (record.stands) {
    leave();
    next();
  }
  return true;
}

ReadTable RowChecks::ReadRowsOf(const std::string& table) {
  ReadTable read{table};
  for (Query rows(*this, fmt::format("SELECT rowid, * FROM main.{}", Quoted(table))); rows.Step(); ++read.rows)
    read.digest += DigestOfColumns(rows.get(), 1);
  return read;
}

// ---- For everybody

// Of another engine than this one nobody keeps digests.
bool HasRowChecks(Database& file) {
  auto* database = dynamic_cast<SqliteDatabase*>(&file);
  return database != nullptr && database->Rows().StandInFile();
}

void ForEachStrayRow(Database& file, const std::function<void(const StrayRow&)>& found,
                     const std::function<bool(std::int64_t done, std::int64_t all)>& goOn,
                     const std::function<void(const ReadTable&)>& read, const LookAtTable& look) {
  dynamic_cast<SqliteDatabase&>(file).Rows().ForEachStrayRow(found, goOn, read, look);
}

ReadTable ReadRowsOf(Database& file, const std::string& table) {
  return dynamic_cast<SqliteDatabase&>(file).Rows().ReadRowsOf(table);
}

void AcceptRows(Database& file) {
  auto* database = dynamic_cast<SqliteDatabase*>(&file);
  if (database == nullptr) return;
  Transaction transaction(file);
  database->Rows().KeepAll();
  transaction.Commit();
}

}  // namespace vellumark
