#pragma once

#include <map>
#include <memory>
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

#include "core/datafile/engine.h"
#include "postgres/connection.h"
#include "postgres/statement_text.h"

namespace vellumark::postgres {

/// Where the rows of a Data File stand.
struct FilePlace {
  PostgresServer server;
  std::string schema;
};
/// The text that stands under the name of the file.
std::string TextOf(const FilePlace& place);
bool IsPlaceText(std::string_view text);
/// Throws Failure of `subject` when it tells none.
FilePlace PlaceOf(std::string_view text, const std::string& subject);

/// A statement of which the server knows the plans: one for each mixture of kinds of values that it was given.
struct KnownText {
  struct Plan {
    int runs = 0;
    std::string name = {};  ///< empty until it runs for the second time
  };
  std::string sql;  ///< as the core has it
  StatementText text;
  std::string key = {};  ///< the column of the keys of the table into which it inserts
  std::map<std::string, Plan> plans = {};
};

/// A Data File whose rows a server keeps, in a schema of its own.
class PostgresDatabase final : public Database {
 public:
  PostgresDatabase(std::filesystem::path path, const FilePlace& place, bool readOnly);
  ~PostgresDatabase() override;
  /// Keeps others out until it is closed: everybody, or who would write.
  void Hold();
  /// Takes the schema for all statements; a Failure when it is not there.
  void Enter();
  void MakeSchema();

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

  Connection& Server() { return connection_; }
  /// The type of texts, which compare without regard to case.
  Oid TextType() const { return textType_; }
  /// Runs a statement; with `key` the answer holds the key of the row that it inserts.
  Answer Perform(KnownText& known, const std::vector<Parameter>& values, bool key);

 protected:
  void Begin() override;
  void CommitWork() override;
  void Rollback() noexcept override;
  std::set<std::string> WrittenTables() const override;
  void TakeBack(std::unique_ptr<EngineStatement> statement) noexcept override;

 private:
  /// The layout is another.
  void ForgetLayout();
  void LoadTables();
  void NoteWritten(const StatementText& text, const Answer& answer);
  const std::string& KeyColumn(const std::string& table);
  std::string ToldName(const std::string& table) const;
  void Tell(std::string_view name, const std::vector<std::string>& fields);
  void CreateIndexes(std::string_view name, const Table& table);
  void CopyTables(PostgresDatabase& copy);

  FilePlace place_;
  mutable Connection connection_;
  Oid textType_ = 0;
  std::unordered_map<std::string, std::shared_ptr<KnownText>> known_;
  std::int64_t plans_ = 0;                   // that were ever made
  std::map<std::string, std::string> keys_;  // their columns, by table
  std::set<std::string> written_;            // as the server calls them
  std::set<std::string> tables_;             // that stand in the file, likewise; empty: not asked for yet
  mutable std::map<std::string, std::string> told_;
};

}  // namespace vellumark::postgres
