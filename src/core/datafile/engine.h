#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <initializer_list>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "core/base/changes.h"
#include "core/datafile/value.h"

namespace vellumark {

class Database;

/// A compiled statement, bound and stepped. It goes back to its Database's store when it ends, so that preparing the
/// same text again costs nothing. Columns are numbered from 0, parameters from 1.
class Statement {
 public:
  Statement(Statement&&) noexcept;
  Statement& operator=(Statement&&) noexcept;
  ~Statement();

  Statement& Bind(int parameter, const Value& value);
  Statement& Bind(int parameter, std::int64_t whole);
  Statement& Bind(int parameter, double number);
  Statement& Bind(int parameter, float number) { return Bind(parameter, static_cast<double>(number)); }
  Statement& Bind(int parameter, int whole) { return Bind(parameter, static_cast<std::int64_t>(whole)); }
  /// The text is copied.
  Statement& Bind(int parameter, std::string_view text);
  Statement& Bind(int parameter, const char* text) { return Bind(parameter, std::string_view(text)); }
  Statement& Bind(int parameter, const std::string& text) { return Bind(parameter, std::string_view(text)); }
  Statement& BindNull(int parameter);

  /// The next row; false at the end.
  bool Step();
  /// Runs a statement that gives no rows and makes it ready to be bound anew; the number of rows changed.
  int Run();
  /// Runs an INSERT of one row; the key that the row got.
  std::int64_t Insert();
  void Reset();

  bool IsNull(int column) const;
  std::int64_t Whole(int column) const;
  double Number(int column) const;
  float Single(int column) const { return static_cast<float>(Number(column)); }
  bool Bool(int column) const { return Whole(column) != 0; }
  std::string Text(int column) const { return std::string(TextView(column)); }
  /// Valid until the next Step or Reset.
  std::string_view TextView(int column) const;
  std::optional<DateTime> Date(int column) const;
  Value Get(int column) const;
  int ColumnCount() const;
  std::string ColumnName(int column) const;

 private:
  friend class Database;
  struct Compiled;
  Statement(Database& database, std::unique_ptr<Compiled> compiled);
  [[noreturn]] void Throw() const;

  Database* database_ = nullptr;
  std::unique_ptr<Compiled> compiled_;
};

enum class OpenMode {
  Exclusive,  ///< reads and writes, and keeps every other process out
  ReadOnly,   ///< looks at a file that nobody may change; refused while another process holds it
};

/// One open file. Every failure is a Failure that names the file and the cause in words.
class Database {
 public:
  /// Opens an existing file. Throws Failure: not there, not a Data File, cut short, held by another process.
  static std::unique_ptr<Database> Open(const std::filesystem::path& path, OpenMode mode);
  /// Makes a new, empty file; an existing one is refused.
  static std::unique_ptr<Database> Create(const std::filesystem::path& path);
  ~Database();
  Database(const Database&) = delete;
  Database& operator=(const Database&) = delete;

  /// Whether a file that is there is of the engine's format, whatever it holds. Throws Failure when it cannot be read.
  static bool IsDatabaseFile(const std::filesystem::path& path);

  Statement Prepare(std::string_view sql);
  void Execute(std::string_view sql);
  /// The first column of the first row; null when there is no row.
  Value Scalar(std::string_view sql, std::initializer_list<Value> parameters = {});
  bool TableExists(std::string_view table);
  std::vector<std::string> TableNames();
  /// Writes the file without its unused space to another place.
  void CopyCompacted(const std::filesystem::path& copy);
  /// The engine's own check of the file's structure: what it found wrong, a line each; empty when sound.
  std::vector<std::string> Faults();

  /// What this opening of the file is called in marks that tell whose work is under way; no two openings share it.
  const std::string& Opening() const { return opening_; }
  /// Whether the opening that left a mark is still at work: nobody but this one can be, since it holds the file alone.
  bool IsAtWork(std::string_view opening) const { return opening == opening_; }

  const std::filesystem::path& Path() const { return path_; }
  bool IsReadOnly() const { return readOnly_; }
  /// Where commits tell what they changed; may be null.
  void SetChanges(Changes* changes) { changes_ = changes; }

 private:
  friend class Statement;
  friend class Transaction;
  struct Engine;
  Database(std::filesystem::path path, bool readOnly);
  void Connect(int flags);

  std::filesystem::path path_;
  bool readOnly_;
  std::string opening_;
  std::unique_ptr<Engine> engine_;
  Changes* changes_ = nullptr;
  int depth_ = 0;
  bool doomed_ = false;
  bool rolledBack_ = false;
  std::vector<Change> pending_;
};

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
