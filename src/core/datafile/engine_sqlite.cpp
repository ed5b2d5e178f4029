#include "core/datafile/engine_sqlite.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <fmt/format.h>
#include <sqlite3.h>

#include <cmath>
#include <exception>
#include <fstream>
#include <limits>
#include <optional>
#include <set>
#include <system_error>
#include <unordered_map>
#include <utility>

#include "core/base/files.h"
#include "core/base/platform.h"
#include "core/base/refusal.h"
#include "core/base/text.h"
#include "core/datafile/engine_keys.h"
#include "core/datafile/engine_row_checks.h"

namespace vellumark {

std::string CauseInWords(int code, const char* message) {
  switch (code & 0xFF) {
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
      return "is in use by another process";
    case SQLITE_NOTADB:
      return "is not a Data File";
    case SQLITE_CORRUPT:
      return "is damaged or was cut short";
    case SQLITE_FULL:
      return "cannot be written: the disk is full";
    case SQLITE_READONLY:
      return "cannot be written: it is read-only";
    case SQLITE_CANTOPEN:
      return "cannot be opened";
    case SQLITE_IOERR:
      return fmt::format("cannot be read or written ({})", message);
    case SQLITE_PERM:
      return "cannot be opened: permission denied";
    default:
      return message;
  }
}

namespace {

// "VKDF": marks a file as this program's own.
constexpr int kApplicationId = 0x564B4446;

// A write needs a journal beside the file, which shows only at the first write: too late to tell the operator.
bool FolderIsWritable(const std::filesystem::path& path) {
  return !platform::Denied(RealPath(path).parent_path(), platform::Access::WriteIn);
}

using IdentityOfFile = std::pair<std::uint64_t, std::uint64_t>;

// Which file stands at a path now; zeros where none does.
IdentityOfFile IdentityOf(const std::filesystem::path& path) {
  std::error_code none;
  const platform::FileState state = platform::StateOf(path, none);
  return {state.device, state.identity};
}

// Whether the next opening takes the file as it stands, with no journal to go back by.
bool JournalIsEmpty(const std::filesystem::path& path) {
  std::ifstream journal(RealPath(path) += "-journal", std::ios::binary);
  return journal.get() <= 0;
}

// The engine tells only that it could not; these are the causes a person can mend.
std::string WhyNotOpened(const std::filesystem::path& path) {
  std::error_code ignored;
  const std::filesystem::path folder = std::filesystem::absolute(path).parent_path();
  if (!std::filesystem::is_directory(folder, ignored)) return "cannot be opened: its folder does not exist";
  if (std::filesystem::exists(path, ignored)) {
    if (platform::Denied(path, platform::Access::Read)) return "cannot be opened: permission denied";
  } else if (!FolderIsWritable(path)) {
    return "cannot be written: there is no permission to write in its folder";
  }
  return "cannot be opened";
}

// No field holds more than a Single does; what is beyond it, such as an infinite figure, no calculation can use.
constexpr double kLargestFigure = static_cast<double>(std::numeric_limits<float>::max());

// "the table INK_Basic, row 5 (RED), field Inventory", when that field holds such a figure. A statement of its own on
// the bare engine, for what tells a failure must not fail.
std::string PlaceBeyond(sqlite3* connection, const char* table, const char* field) {
  const std::string sql = fmt::format("SELECT rowid, * FROM main.{} WHERE typeof({}) = 'real' AND abs({}) > {} LIMIT 1",
                                      Quoted(table), Quoted(field), Quoted(field), kLargestFigure);
  sqlite3_stmt* row = nullptr;
  std::string place;
  if (sqlite3_prepare_v2(connection, sql.c_str(), -1, &row, nullptr) == SQLITE_OK && sqlite3_step(row) == SQLITE_ROW) {
    place = fmt::format("the table {}, row {}", table, sqlite3_column_int64(row, 0));
    // The first text of a row is what people call it.
    for (int i = 1; i < sqlite3_column_count(row); ++i) {
      if (sqlite3_column_type(row, i) != SQLITE_TEXT) continue;
      place += fmt::format(" ({})", reinterpret_cast<const char*>(sqlite3_column_text(row, i)));
      break;
    }
    place += fmt::format(", field {}", field);
  }
  sqlite3_finalize(row);
  return place;
}

// Why a figure cannot be read that a statement came upon: where it stands. Of one that was worked out from others, the
// first place in the file that holds such a figure.
std::string WhyNoFigure(sqlite3_stmt* statement, int column) {
  sqlite3* connection = sqlite3_db_handle(statement);
  const char* table = sqlite3_column_table_name(statement, column);
  const char* field = sqlite3_column_origin_name(statement, column);
  std::string place;
  if (table != nullptr && field != nullptr) {
    place = PlaceBeyond(connection, table, field);
  } else {
    sqlite3_stmt* fields = nullptr;
    sqlite3_prepare_v2(connection,
                       "SELECT m.name, f.name FROM sqlite_master m, pragma_table_info(m.name) f WHERE m.type = 'table' "
                       "AND f.type = 'REAL'",
                       -1, &fields, nullptr);
    while (place.empty() && sqlite3_step(fields) == SQLITE_ROW)
      place = PlaceBeyond(connection, reinterpret_cast<const char*>(sqlite3_column_text(fields, 0)),
                          reinterpret_cast<const char*>(sqlite3_column_text(fields, 1)));
    sqlite3_finalize(fields);
  }
  return place.empty() ? "holds figures that add up beyond the range of a number"
                       : "holds a figure that is not a number in " + place;
}

// The kernel takes the engine's lock away when this process closes any other descriptor of the file, as everybody does
// who looks what kind of file it is: a file dialog, a command that was given it by mistake. The lock of a byte stays.
class HeldFile {
 public:
  void Take(const std::filesystem::path& path) {
    std::error_code error;
    file_ = platform::OpenExisting(path, platform::Opening::Write, error);
    if (error) throw Failure(path.string(), error.message());
    if (!platform::TakeByteLock(file_, LockedByte::DataFile))
      throw Failure(path.string(), CauseInWords(SQLITE_BUSY, ""));
  }

 private:
  platform::OpenFile file_;
};

// Asked before the engine opens the file: it would take a transaction at work for one that was left half done.
void RequireNotHeld(const std::filesystem::path& path) {
  std::error_code error;  // of which the engine tells why
  const platform::OpenFile file = platform::OpenExisting(path, platform::Opening::Read, error);
  if (file && platform::IsByteLocked(file, LockedByte::DataFile))
    throw Failure(path.string(), CauseInWords(SQLITE_BUSY, ""));
}

// Ten thousand formulas stand in it, so that a bulk change does not read and write the same pages by turns.
constexpr const char* kPageMemory = "PRAGMA cache_size=-16000";

// More compiled statements than any one operation uses, few enough to cost no memory worth counting.
constexpr std::size_t kStoredStatements = 96;

}  // namespace

// Rows are read by the hundred thousand, so statements stand on the engine's own handle, without a shared pointer for
// each column read.
class SqliteStatement final : public EngineStatement {
 public:
  SqliteStatement(SqliteDatabase& file, sqlite3* connection, std::string sqlText)
      : sql(std::move(sqlText)), path_(file.Path()), file_(file) {
    if (sqlite3_prepare_v3(connection, sql.data(), static_cast<int>(sql.size()), SQLITE_PREPARE_PERSISTENT, &handle_,
                           nullptr) != SQLITE_OK)
      throw SQLite::Exception(connection);
  }
  ~SqliteStatement() override { sqlite3_finalize(handle_); }

  const std::string sql;

  void Bind(int parameter, std::int64_t whole) override;
  void Bind(int parameter, double number) override;
  void Bind(int parameter, std::string_view text) override;
  void BindNull(int parameter) override;
  bool Step() override;
  int Run() override;
  std::int64_t Insert() override;
  void Reset() override;
  bool IsNull(int column) const override;
  std::int64_t Whole(int column) const override;
  double Number(int column) const override;
  std::string_view TextView(int column) const override;
  Value Get(int column) const override;
  int ColumnCount() const override;
  std::string ColumnName(int column) const override;
  /// As it was made, to be bound and stepped anew.
  void Clear() noexcept {
    sqlite3_reset(handle_);
    sqlite3_clear_bindings(handle_);
  }

 private:
  [[noreturn]] void Throw() const;

  const std::filesystem::path& path_;
  SqliteDatabase& file_;
  sqlite3_stmt* handle_ = nullptr;
};

struct SqliteDatabase::Engine {
  Engine(const std::filesystem::path& path, int flags)
      : connection(path.string(), flags), rows(path, connection.getHandle()) {}
  HeldFile held;  // before the connection, so that it closes after it
  SQLite::Database connection;
  RowChecks rows;
  struct NoCase {
    bool operator()(const std::string& a, const std::string& b) const { return CompareNoCase(a, b) < 0; }
  };
  /// The tables of the layout with that number, which the engine counts up whenever it moves.
  std::set<std::string, NoCase> tables;
  std::optional<std::int64_t> layout;
  std::unordered_map<std::string, std::vector<std::unique_ptr<SqliteStatement>>> stored;
  std::size_t storedCount = 0;
};

// ---- Statement

void SqliteStatement::Throw() const {
  sqlite3* connection = sqlite3_db_handle(handle_);
  const int code = sqlite3_errcode(connection);
  std::string cause = CauseInWords(code, sqlite3_errmsg(connection));
  sqlite3_reset(handle_);
  throw Failure(path_.string(), std::move(cause));
}

void SqliteStatement::Bind(int parameter, std::int64_t whole) {
  if (sqlite3_bind_int64(handle_, parameter, whole) != SQLITE_OK) Throw();
}

void SqliteStatement::Bind(int parameter, double number) {
  if (sqlite3_bind_double(handle_, parameter, number) != SQLITE_OK) Throw();
}

void SqliteStatement::Bind(int parameter, std::string_view text) {
  if (sqlite3_bind_text(handle_, parameter, text.data() ? text.data() : "", static_cast<int>(text.size()),
                        SQLITE_TRANSIENT) != SQLITE_OK)
    Throw();
}

void SqliteStatement::BindNull(int parameter) {
  if (sqlite3_bind_null(handle_, parameter) != SQLITE_OK) Throw();
}

bool SqliteStatement::Step() {
  const int code = sqlite3_step(handle_);
  if (code == SQLITE_ROW) return true;
  if (code != SQLITE_DONE) Throw();
  return false;
}

int SqliteStatement::Run() {
  while (Step()) {
  }
  const int changed = sqlite3_changes(sqlite3_db_handle(handle_));
  Reset();
  file_.KeepWaitingRows();
  return changed;
}

std::int64_t SqliteStatement::Insert() {
  Run();
  return sqlite3_last_insert_rowid(sqlite3_db_handle(handle_));
}

void SqliteStatement::Reset() {
  sqlite3_reset(handle_);
}

bool SqliteStatement::IsNull(int column) const {
  return sqlite3_column_type(handle_, column) == SQLITE_NULL;
}
std::int64_t SqliteStatement::Whole(int column) const {
  return sqlite3_column_int64(handle_, column);
}
double SqliteStatement::Number(int column) const {
  const double number = sqlite3_column_double(handle_, column);
  if (std::fabs(number) > kLargestFigure) throw Failure(path_.string(), WhyNoFigure(handle_, column));
  return number;
}

std::string_view SqliteStatement::TextView(int column) const {
  const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(handle_, column));
  if (text == nullptr) return {};
  return {text, static_cast<std::size_t>(sqlite3_column_bytes(handle_, column))};
}

Value SqliteStatement::Get(int column) const {
  switch (sqlite3_column_type(handle_, column)) {
    case SQLITE_INTEGER:
      return Value(Whole(column));
    case SQLITE_FLOAT:
      return Value(Number(column));
    case SQLITE_TEXT:
    case SQLITE_BLOB:
      return Value(TextView(column));
    default:
      return {};
  }
}

int SqliteStatement::ColumnCount() const {
  return sqlite3_column_count(handle_);
}
std::string SqliteStatement::ColumnName(int column) const {
  return sqlite3_column_name(handle_, column);
}

// ---- Database

SqliteDatabase::SqliteDatabase(std::filesystem::path path, bool readOnly) : Database(std::move(path), readOnly) {}

SqliteDatabase::~SqliteDatabase() {
  if (!engine_) return;  // the file could not be opened
  engine_->stored.clear();
  // After a full disk the engine leaves the old pages in the journal, for the next reader to put back. That is done
  // here, so that the file alone is whole; should it fail too, the journal stays and the next to open the file does it.
  if (rolledBack_)
    sqlite3_exec(engine_->connection.getHandle(), "SELECT 1 FROM sqlite_master", nullptr, nullptr, nullptr);
}

void SqliteDatabase::Connect(int flags) {
  try {
    engine_ = std::make_unique<Engine>(Path(), flags);
    // A quoted name that a table lacks is a fault, never a text of that spelling.
    sqlite3* connection = engine_->connection.getHandle();
    sqlite3_db_config(connection, SQLITE_DBCONFIG_DQS_DML, 0, nullptr);
    sqlite3_db_config(connection, SQLITE_DBCONFIG_DQS_DDL, 0, nullptr);
  } catch (const SQLite::Exception& error) {
    if ((error.getErrorCode() & 0xFF) == SQLITE_CANTOPEN) throw Failure(Path().string(), WhyNotOpened(Path()));
    throw Failure(Path().string(), CauseInWords(error.getErrorCode(), error.what()));
  }
}

void SqliteDatabase::OpenExclusive() {
  // Whoever compacts the file puts another one in its place: a lock on the old one would guard nothing.
  for (IdentityOfFile before = IdentityOf(Path());;) {
    Connect(SQLite::OPEN_READWRITE | SQLite::OPEN_NOMUTEX);
    if (sqlite3_db_readonly(engine_->connection.getHandle(), "main") == 1)
      throw Failure(Path().string(), "cannot be written: it is read-only");
    if (!FolderIsWritable(Path()))
      throw Failure(Path().string(), "cannot be written: there is no permission to write in its folder");
    Execute("PRAGMA locking_mode=EXCLUSIVE");
    Execute("PRAGMA journal_mode=DELETE");
    Execute("PRAGMA synchronous=FULL");
    // The lock is taken here and, in this locking mode, kept until the file is closed.
    Execute("BEGIN EXCLUSIVE");
    Execute("COMMIT");
    engine_->held.Take(Path());
    const IdentityOfFile after = IdentityOf(Path());
    if (before == after) break;
    engine_.reset();
    before = after;
  }
}

std::unique_ptr<Database> SqliteDatabase::OpenFile(const std::filesystem::path& path, OpenMode mode) {
  const bool readOnly = mode == OpenMode::ReadOnly;
  RequireNotHeld(path);
  auto database = std::make_unique<SqliteDatabase>(path, readOnly);
  // One thread uses a connection, so the engine need not lock it. A looker, too, must be able to roll back what a
  // killed process left half done, so the engine may write; statements may not.
  if (readOnly)
    database->Connect(SQLite::OPEN_READWRITE | SQLite::OPEN_NOMUTEX);
  else
    database->OpenExclusive();
  const std::int64_t id = database->Scalar("PRAGMA application_id").Whole();
  if (id != kApplicationId) throw Failure(path.string(), "is not a Data File");
  database->Execute(kPageMemory);
  if (readOnly) {
    ShowRowKeys(*database);
    database->Execute("PRAGMA query_only=ON");
  } else {
    GiveRowKeys(*database);
    database->KeepRowChecks();
  }
  return database;
}

std::unique_ptr<Database> SqliteDatabase::CreateFile(const std::filesystem::path& path) {
  auto database = std::make_unique<SqliteDatabase>(path, false);
  database->Connect(SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE | SQLite::OPEN_NOMUTEX);
  database->Execute("PRAGMA locking_mode=EXCLUSIVE");
  database->Execute("PRAGMA synchronous=FULL");
  database->Execute(fmt::format("PRAGMA application_id={}", kApplicationId));
  database->Execute(kPageMemory);
  database->KeepRowChecks();
  return database;
}

bool SqliteDatabase::Keeps(const std::filesystem::path& path) {
  constexpr std::string_view kMark{"SQLite format 3\0", 16};
  return ReadFileBytes(path, kMark.size()) == kMark;
}

Statement SqliteDatabase::Prepare(std::string_view sql) {
  const std::string text(sql);
  if (const auto shelf = engine_->stored.find(text); shelf != engine_->stored.end() && !shelf->second.empty()) {
    auto compiled = std::move(shelf->second.back());
    shelf->second.pop_back();
    --engine_->storedCount;
    return Statement(*this, std::move(compiled));
  }
  try {
    return Statement(*this, std::make_unique<SqliteStatement>(*this, engine_->connection.getHandle(), text));
  } catch (const SQLite::Exception& error) {
    throw Failure(Path().string(), CauseInWords(error.getErrorCode(), error.what()));
  }
}

void SqliteDatabase::TakeBack(std::unique_ptr<EngineStatement> statement) noexcept {
  std::unique_ptr<SqliteStatement> compiled(static_cast<SqliteStatement*>(statement.release()));
  compiled->Clear();
  if (engine_->storedCount >= kStoredStatements) return;
  ++engine_->storedCount;
  auto& shelf = engine_->stored[compiled->sql];
  shelf.push_back(std::move(compiled));
}

void SqliteDatabase::Execute(std::string_view sql) {
  try {
    engine_->connection.exec(std::string(sql));
  } catch (const SQLite::Exception& error) {
    throw Failure(Path().string(), CauseInWords(error.getErrorCode(), error.what()));
  }
  engine_->rows.ForgetDropped();
  KeepWaitingRows();
}

sqlite3* SqliteDatabase::Handle() {
  return engine_->connection.getHandle();
}

RowChecks& SqliteDatabase::Rows() {
  return engine_->rows;
}

std::set<std::string> SqliteDatabase::WrittenTables() const {
  return engine_->rows.WrittenTables();
}

// A file that an earlier program made gets the digests of its rows. Where that cannot be (a damaged page, a full disk)
// the file opens as it did, and the next opening tries again; what is damaged the check of the structure names.
void SqliteDatabase::KeepRowChecks() {
  RowChecks& rows = engine_->rows;
  const bool stand = rows.StandInFile();
  try {
    if (!stand || !rows.LogStands()) {
      Transaction transaction(*this);
      stand ? rows.MakeLog() : rows.KeepAll();
      transaction.Commit();
    }
  } catch (const Failure&) {
    // A disk that failed in the very last step of the commit may have kept them all the same.
    if (!stand && !rows.StandInFile()) return rows.End();
  }
  rows.Begin();
}

// Rows that were written outside of any transaction stand in the file already. Of very many the memory is given back.
void SqliteDatabase::KeepWaitingRows() {
  RowChecks& rows = engine_->rows;
  const bool alone = sqlite3_get_autocommit(engine_->connection.getHandle()) != 0;
  if (alone ? !rows.Waiting() : !rows.ManyWait()) return;
  if (!alone) {
    rows.Keep();
    return;
  }
  engine_->connection.exec("BEGIN IMMEDIATE");
  try {
    rows.Keep();
    CommitWork();
  } catch (...) {
    Rollback();
    throw;
  }
}

bool SqliteDatabase::TableExists(std::string_view table) {
  const std::int64_t layout = Scalar("PRAGMA main.schema_version").Whole();
  if (engine_->layout != layout) {
    engine_->tables.clear();
    Statement names = Prepare("SELECT name FROM sqlite_master WHERE type='table'");
    while (names.Step()) engine_->tables.insert(names.Text(0));
    engine_->layout = layout;
  }
  return engine_->tables.contains(std::string(table));
}

std::vector<std::string> SqliteDatabase::TableNames() {
  std::vector<std::string> names;
  Statement statement = Prepare(
      "SELECT name FROM sqlite_master WHERE type='table' AND name NOT LIKE 'sqlite\\_%' "
      "ESCAPE '\\' ORDER BY rowid");
  while (statement.Step())
    if (!RowChecks::IsOwn(statement.TextView(0))) names.push_back(statement.Text(0));
  return names;
}

std::vector<std::string> SqliteDatabase::Faults() {
  std::vector<std::string> faults;
  const auto ends = [&](const std::string& of) {
    Statement check = Prepare("PRAGMA integrity_check" + of);
    try {
      while (check.Step())
        for (const std::string_view line : Split(check.TextView(0), '\n'))
          if (line != "ok" && !line.starts_with("***")) faults.emplace_back(line);
      return true;
    } catch (const Failure&) {
      if ((sqlite3_errcode(engine_->connection.getHandle()) & 0xFF) != SQLITE_CORRUPT) throw;
      return false;
    }
  };
  if (ends("")) return faults;
  // It breaks off at a table or an index whose first page is none, and says nothing of what it found before.
  faults.clear();
  std::vector<std::string> tables;
  Statement names = Prepare("SELECT name FROM sqlite_master WHERE type = 'table' ORDER BY name");
  while (names.Step()) tables.push_back(names.Text(0));
  for (const std::string& table : tables)
    if (!ends("(" + Quoted(table) + ")")) faults.push_back(fmt::format("The table {} or one of its indexes cannot be read.", table));
  if (faults.empty()) faults.emplace_back("The file is damaged or was cut short.");
  return faults;
}

void SqliteDatabase::CopyCompacted(const std::filesystem::path& copy) {
  Prepare("VACUUM INTO ?").Bind(1, copy.string()).Run();
}

// ---- Transaction

void SqliteDatabase::Begin() {
  engine_->rows.Forget();
  Prepare("BEGIN IMMEDIATE").Run();
}

void SqliteDatabase::CommitWork() {
  engine_->rows.Keep();
  try {
    Prepare("COMMIT").Run();
  } catch (const Failure& failure) {
    // The last act of a commit syncs the emptied journal: when that fails, the change may be in the file already.
    if (sqlite3_extended_errcode(engine_->connection.getHandle()) != SQLITE_IOERR_FSYNC || !JournalIsEmpty(Path()))
      throw;
    throw Failure(failure.subject, failure.cause + " at the end of the change, which may be stored or not: look " +
                                       "before you make it again");
  }
}

void SqliteDatabase::Rollback() noexcept {
  rolledBack_ = true;
  engine_->rows.TakeBack();
  engine_->layout.reset();  // its number goes back too, and may come again for another one
  // The engine rolls back by itself after some failures (a full disk); only a transaction that is still open needs it.
  sqlite3* connection = engine_->connection.getHandle();
  if (sqlite3_get_autocommit(connection) == 0 &&
      sqlite3_exec(connection, "ROLLBACK", nullptr, nullptr, nullptr) != SQLITE_OK)
    std::terminate();
}

}  // namespace vellumark
