#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "core/base/text.h"
#include "core/datafile/row_checks.h"

struct sqlite3;
struct sqlite3_stmt;

namespace vellumark {

/// The digests of the rows of one open file (see row_checks.h). They stand in a table of the engine's own, 64 rows of a
/// table in one record, so that a bulk change costs one record for many. What a save of few rows changes is written
/// into a log beside, one record for each commit and all of them on the same page; now and then it goes into the table.
/// The engine tells each row that is written, by whichever statement; before the commit the row is read again.
class RowChecks {
 public:
  RowChecks(const std::filesystem::path& path, sqlite3* connection);
  ~RowChecks();
  RowChecks(const RowChecks&) = delete;
  RowChecks& operator=(const RowChecks&) = delete;

  static constexpr std::string_view kTable = "MSysRowChecks";
  static constexpr std::string_view kLog = "MSysRowLog";
  /// Whether a table is one of those two, in whatever letters: the engine finds them all the same.
  static bool IsOwn(std::string_view table) { return EqualNoCase(table, kTable) || EqualNoCase(table, kLog); }

  bool StandInFile() const;
  /// Whether the log stands in it too, which an earlier program did not have.
  bool LogStands() const;
  /// In a transaction.
  void MakeLog();
  /// From now on digests are kept: the file has them.
  void Begin();
  void End() { kept_ = false; }
  /// Makes the table unless it is there, and a digest of every row of the file. In a transaction.
  void KeepAll();
  /// The digests of all rows written since the last time. In the transaction of the rows.
  void Keep();
  /// So many rows wait that they take memory worth counting.
  bool ManyWait() const { return written_.size() >= kManyRows; }
  bool Waiting() const { return !written_.empty(); }
  /// A transaction begins.
  void Forget();
  /// It was taken back, and what it had done to the digests.
  void TakeBack() {
    Forget();
    takenBack_ = true;
  }
  /// Those in whose rows the transaction wrote.
  std::set<std::string> WrittenTables() const;
  /// The rows of a table as they stand now, by their keys in their order: `take` hears the place of each key and its
  /// row, whose first column is the key; null where it is gone. The commit does not read them again for their digests,
  /// unless they are written again.
  void ReadRows(std::string_view table, std::span<const std::int64_t> keys,
                const std::function<void(std::size_t place, sqlite3_stmt* row)>& take);
  /// The fields of such a row, and those of a table of which no row is being read.
  static std::vector<std::string> FieldsOf(sqlite3_stmt* row);
  std::vector<std::string> FieldsOf(std::string_view table);

  void TableRenamed(std::string_view name, std::string_view newName);
  /// After a statement: tables that it dropped have no digests any more.
  void ForgetDropped();

  void ForEachStrayRow(const std::function<void(const StrayRow&)>& found,
                       const std::function<bool(std::int64_t done, std::int64_t all)>& goOn,
                       const std::function<void(const ReadTable&)>& read, const LookAtTable& look);
  ReadTable ReadRowsOf(const std::string& table);

 private:
  static constexpr std::size_t kManyRows = 16384;
  static constexpr std::size_t kFewRows = 128;         // that a commit puts into the log
  static constexpr std::int64_t kMostEntries = 256;    // of the log
  using Sums = std::map<std::int64_t, std::uint64_t>;  // by the keys of the rows; 0: there is none
  using LoggedSums = std::map<std::string, Sums, std::less<>>;
  struct Row {
    std::size_t table = 0;
    std::int64_t key = 0;
    bool read = false;      // since it was written
    std::uint64_t sum = 0;  // of a row that was
    bool IsOf(const Row& other) const { return table == other.table && key == other.key; }
  };
  struct KnownTable {
    std::string name;
    sqlite3_stmt* row = nullptr;   // one row by its key
    sqlite3_stmt* rows = nullptr;  // a range of them
    bool written = false;          // in this transaction
  };
  struct Record;
  class Query;

  bool Stands(std::string_view table) const;
  static void OnWrite(void* self, int what, const char* database, const char* table, long long key);
  static int OnAuthorize(void* self, int action, const char* table, const char*, const char* database, const char*);
  std::size_t PlaceOf(std::string_view table);
  void DigestRows(std::span<const Row> rows, Record& record);
  using Taking = std::function<void(std::size_t place, sqlite3_stmt* row)>;
  /// Keys of one block.
  void Walk(std::size_t table, std::span<const std::int64_t> keys, const Taking& take);
  sqlite3_stmt* RowOf(KnownTable& table);
  void DropReadTwice();
  void CountLog();
  /// After a transaction was taken back, and with it what it did to the tables of the digests.
  void LookAgain();
  /// What the log says goes into the blocks.
  void EmptyLog();
  std::uint64_t DigestRow(const Row& row);
  void KeepInBlocks();
  void KeepInLog();
  /// What the log says, the latest of each row; `unsound` hears of entries that cannot be relied on.
  LoggedSums ReadLog(const std::function<void(std::int64_t entry)>& unsound);
  /// Takes the log into the table of digests. What cannot be relied on stays in it.
  void Fold();
  bool Read(std::string_view table, std::int64_t block, Record& record);
  void Write(std::string_view table, const Record& record);
  sqlite3_stmt* Made(const std::string& sql) const;
  bool Step(sqlite3_stmt* statement) const;
  void Run(sqlite3_stmt* statement) const;
  void Execute(const std::string& sql) const;
  void KeepTable(const std::string& table);
  class Kept;
  bool CheckTable(ReadTable& read, const Sums& logged, const std::function<void(const StrayRow&)>& found,
                  const std::function<bool()>& goOn, const LookAtTable& look);
  std::vector<std::string> Tables() const;
  [[noreturn]] void Throw() const;

  const std::filesystem::path& path_;
  sqlite3* connection_;
  bool kept_ = false;
  bool logs_ = false;
  bool takenBack_ = false;
  std::int64_t entry_ = 0;    // the last of the log
  std::int64_t entries_ = 0;  // at most so many stand in it
  std::vector<KnownTable> tables_;
  std::size_t last_ = 0;  // the table that was written last
  std::vector<Row> written_;
  std::vector<std::string> dropped_;  // or to be dropped, by the statement that is made
  sqlite3_stmt* read_ = nullptr;
  sqlite3_stmt* insert_ = nullptr;
  sqlite3_stmt* update_ = nullptr;
  sqlite3_stmt* remove_ = nullptr;
  sqlite3_stmt* log_ = nullptr;
};

}  // namespace vellumark
