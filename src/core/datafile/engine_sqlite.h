#pragma once

#include <memory>
#include <set>
#include <string>
#include <vector>

#include "core/datafile/engine.h"

struct sqlite3;

namespace vellumark {

class RowChecks;

/// What the engine's code of a failure means to a person.
std::string CauseInWords(int code, const char* message);

/// A Data File whose rows SQLite keeps.
class SqliteDatabase final : public Database {
 public:
  SqliteDatabase(std::filesystem::path path, bool readOnly);
  /// For Database::Open, Create and IsDatabaseFile.
  static std::unique_ptr<Database> OpenFile(const std::filesystem::path& path, OpenMode mode);
  static std::unique_ptr<Database> CreateFile(const std::filesystem::path& path);
  static bool Keeps(const std::filesystem::path& path);
  /// For OpenWorkFile.
  static std::unique_ptr<Database> OpenWork(const std::filesystem::path& path);
  ~SqliteDatabase() override;

  Statement Prepare(std::string_view sql) override;
  void Execute(std::string_view sql) override;
  bool TableExists(std::string_view table) override;
  std::vector<std::string> TableNames() override;
  void CreateTable(std::string_view name, const Table& table) override;
  void DropTable(std::string_view name) override;
  void RenameTable(std::string_view name, std::string_view newName, const Table& table) override;
  void MakeScratchTable(std::string_view name, const Table& table) override;
  bool EnsureIndex(std::string_view table, std::string_view name, const std::vector<std::string>& fields,
                   std::string_view where) override;
  void CompleteLayout(const std::vector<std::string>& databases) override;
  std::vector<std::string> StoredFields(std::string_view table) override;
  std::vector<std::string> StoredIndexes(std::string_view table) override;
  void AddMissingFields(std::string_view name, const Table& table) override;
  void CopyCompacted(const std::filesystem::path& copy) override;
  std::vector<std::string> Faults() override;
  /// Nobody but this opening can be, since it holds the file alone.
  bool IsAtWork(std::string_view opening) const override { return opening == Opening(); }
  RowChecks& Rows();
  sqlite3* Handle();
  /// Whether a ChangeRecorder listens.
  bool& Recording() { return recording_; }
  void KeepWaitingRows();

 protected:
  void Begin() override;
  void CommitWork() override;
  void Rollback() noexcept override;
  std::set<std::string> WrittenTables() const override;
  void TakeBack(std::unique_ptr<EngineStatement> statement) noexcept override;

 private:
  struct Engine;
  void Connect(int flags);
  void OpenExclusive();
  void KeepRowChecks();
  void CreateIndexes(std::string_view name, const Table& table);

  std::unique_ptr<Engine> engine_;
  bool rolledBack_ = false;
  bool recording_ = false;
};

}  // namespace vellumark
