#pragma once

#include <cstdint>
#include <filesystem>
#include <initializer_list>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "core/base/changes.h"
#include "core/datafile/value.h"

namespace vellumark {

class Database;
struct Table;

/// What an engine makes of a statement's text: bound and stepped. Columns are numbered from 0, parameters from 1.
class EngineStatement {
 public:
  EngineStatement() = default;
  virtual ~EngineStatement() = default;
  EngineStatement(const EngineStatement&) = delete;
  EngineStatement& operator=(const EngineStatement&) = delete;

  virtual void Bind(int parameter, std::int64_t whole) = 0;
  virtual void Bind(int parameter, double number) = 0;
  /// The text is copied.
  virtual void Bind(int parameter, std::string_view text) = 0;
  virtual void BindNull(int parameter) = 0;
  virtual bool Step() = 0;
  virtual int Run() = 0;
  virtual std::int64_t Insert() = 0;
  virtual void Reset() = 0;
  virtual bool IsNull(int column) const = 0;
  virtual std::int64_t Whole(int column) const = 0;
  virtual double Number(int column) const = 0;
  virtual std::string_view TextView(int column) const = 0;
  virtual Value Get(int column) const = 0;
  virtual int ColumnCount() const = 0;
  virtual std::string ColumnName(int column) const = 0;
};

/// A compiled statement, bound and stepped. It goes back to its Database's store when it ends, so that preparing the
/// same text again costs nothing. Columns are numbered from 0, parameters from 1.
class Statement {
 public:
  /// For a Database, which takes it back.
  Statement(Database& database, std::unique_ptr<EngineStatement> made) : database_(&database), made_(std::move(made)) {}
  Statement(Statement&&) noexcept = default;
  Statement& operator=(Statement&& other) noexcept {
    std::swap(database_, other.database_);
    std::swap(made_, other.made_);
    return *this;
  }
  ~Statement();

  Statement& Bind(int parameter, const Value& value);
  Statement& Bind(int parameter, std::int64_t whole) { return Bound(parameter, whole); }
  Statement& Bind(int parameter, double number) { return Bound(parameter, number); }
  Statement& Bind(int parameter, float number) { return Bound(parameter, static_cast<double>(number)); }
  Statement& Bind(int parameter, int whole) { return Bound(parameter, static_cast<std::int64_t>(whole)); }
  /// The text is copied.
  Statement& Bind(int parameter, std::string_view text) { return Bound(parameter, text); }
  Statement& Bind(int parameter, const char* text) { return Bound(parameter, std::string_view(text)); }
  Statement& Bind(int parameter, const std::string& text) { return Bound(parameter, std::string_view(text)); }
  Statement& BindNull(int parameter) {
    made_->BindNull(parameter);
    return *this;
  }

  /// The next row; false at the end.
  bool Step() { return made_->Step(); }
  /// Runs a statement that gives no rows and makes it ready to be bound anew; the number of rows changed.
  int Run() { return made_->Run(); }
  /// Runs an INSERT of one row; the key that the row got.
  std::int64_t Insert() { return made_->Insert(); }
  void Reset() { made_->Reset(); }

  bool IsNull(int column) const { return made_->IsNull(column); }
  std::int64_t Whole(int column) const { return made_->Whole(column); }
  double Number(int column) const { return made_->Number(column); }
  float Single(int column) const { return static_cast<float>(Number(column)); }
  bool Bool(int column) const { return Whole(column) != 0; }
  std::string Text(int column) const { return std::string(TextView(column)); }
  /// Valid until the next Step or Reset.
  std::string_view TextView(int column) const { return made_->TextView(column); }
  std::optional<DateTime> Date(int column) const { return ParseDateTime(TextView(column)); }
  Value Get(int column) const { return made_->Get(column); }
  int ColumnCount() const { return made_->ColumnCount(); }
  std::string ColumnName(int column) const { return made_->ColumnName(column); }

 private:
  template <class T>
  Statement& Bound(int parameter, T value) {
    made_->Bind(parameter, value);
    return *this;
  }

  Database* database_ = nullptr;
  std::unique_ptr<EngineStatement> made_;
};

enum class OpenMode {
  Exclusive,  ///< reads and writes, and keeps every other process out
  ReadOnly,   ///< looks at a file that nobody may change; refused while another process holds it
};

/// One open file, whatever engine keeps its rows. Every failure is a Failure that names the file and the cause in
/// words. docs/engine.md tells what an engine has to provide.
class Database {
 public:
  /// Opens an existing file. Throws Failure: not there, not a Data File, cut short, held by another process.
  static std::unique_ptr<Database> Open(const std::filesystem::path& path, OpenMode mode);
  /// Makes a new, empty file; an existing one is refused.
  static std::unique_ptr<Database> Create(const std::filesystem::path& path);
  /// Whether a file that is there is of the engine's format, whatever it holds. Throws Failure when it cannot be read.
  static bool IsDatabaseFile(const std::filesystem::path& path);

  virtual ~Database() = default;
  Database(const Database&) = delete;
  Database& operator=(const Database&) = delete;

  virtual Statement Prepare(std::string_view sql) = 0;
  virtual void Execute(std::string_view sql) = 0;
  /// The first column of the first row; null when there is no row.
  Value Scalar(std::string_view sql, std::initializer_list<Value> parameters = {});

  // What stands in the file beside its rows; changed inside a transaction, like them.
  virtual bool TableExists(std::string_view table) = 0;
  virtual std::vector<std::string> TableNames() = 0;
  virtual void CreateTable(std::string_view name, const Table& table) = 0;
  virtual void DropTable(std::string_view name) = 0;
  /// Gives a table another name, and its indexes the names that go with it.
  virtual void RenameTable(std::string_view name, std::string_view newName, const Table& table) = 0;
  /// A table of this connection alone, empty, found by its key. It may be made and filled in a transaction.
  virtual void MakeScratchTable(std::string_view name, const Table& table) = 0;
  /// Makes an index unless the file has it; true when it was made. With `where`, of those rows only.
  virtual bool EnsureIndex(std::string_view table, std::string_view name, const std::vector<std::string>& fields,
                           std::string_view where = {}) = 0;
  /// Makes what these Databases lack because an older program made their file: the table of weighing, and the indexes
  /// of the layout as far as their tables are whole.
  virtual void CompleteLayout(const std::vector<std::string>& databases) = 0;
  /// The fields and indexes that stand in the file; of all tables, without a name.
  virtual std::vector<std::string> StoredFields(std::string_view table) = 0;
  virtual std::vector<std::string> StoredIndexes(std::string_view table = {}) = 0;
  /// Adds the fields that an earlier program's table lacks.
  virtual void AddMissingFields(std::string_view name, const Table& table) = 0;

  /// Writes the file without its unused space to another place.
  virtual void CopyCompacted(const std::filesystem::path& copy) = 0;
  /// The engine's own check of the file's structure: what it found wrong, a line each; empty when sound.
  virtual std::vector<std::string> Faults() = 0;

  /// What this opening of the file is called in marks that tell whose work is under way; no two openings share it.
  const std::string& Opening() const { return opening_; }
  /// Whether the opening that left a mark is still at work.
  virtual bool IsAtWork(std::string_view opening) const = 0;

  const std::filesystem::path& Path() const { return path_; }
  bool IsReadOnly() const { return readOnly_; }
  /// Where commits tell what they changed; may be null.
  void SetChanges(Changes* changes) { changes_ = changes; }

 protected:
  Database(std::filesystem::path path, bool readOnly);

  virtual void Begin() = 0;
  /// A Failure says that nothing was written, or, when the disk failed in the very last step, that nobody knows.
  virtual void CommitWork() = 0;
  /// Takes back what the transaction wrote. It cannot fail: whoever cannot take it back ends the program.
  virtual void Rollback() noexcept = 0;
  /// The tables in whose rows the transaction wrote; counted only for a witness of commits.
  virtual std::set<std::string> WrittenTables() const = 0;
  /// A statement that has come to its end.
  virtual void TakeBack(std::unique_ptr<EngineStatement> statement) noexcept = 0;

 private:
  friend class Statement;
  friend class Transaction;

  std::filesystem::path path_;
  bool readOnly_;
  std::string opening_;
  Changes* changes_ = nullptr;
  int depth_ = 0;
  bool doomed_ = false;
  std::vector<Change> pending_;
};

inline Statement::~Statement() {
  if (made_) database_->TakeBack(std::move(made_));
}

/// All of it or none of it, also when the machine dies in the middle. A Transaction that ends without Commit rolls
/// back. One opened inside another joins it: its Commit waits for the outer one, its rollback dooms the outer one.
class Transaction {
 public:
  explicit Transaction(Database& database);
  ~Transaction();
  Transaction(const Transaction&) = delete;
  Transaction& operator=(const Transaction&) = delete;

  /// Remembers a change to be told when the outermost transaction commits.
  void Note(Change change);
  /// A Failure says that nothing was written, or, when the disk failed in the very last step, that nobody knows.
  void Commit();

 private:
  Database& database_;
  bool open_ = true;
};

/// `name` as a quoted SQL identifier.
std::string Quoted(std::string_view name);
/// `text` with LIKE's own characters escaped by a backslash, for use with ESCAPE '\'.
std::string LikeLiteral(std::string_view text);

}  // namespace vellumark
