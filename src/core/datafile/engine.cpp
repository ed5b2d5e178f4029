#include "core/datafile/engine.h"

#include <fmt/format.h>

#include <random>
#include <system_error>

#include "core/base/platform.h"
#include "core/base/refusal.h"
#include "core/datafile/commit_witness.h"
#include "core/datafile/engine_sqlite.h"
#include "core/datafile/other_engine.h"

// What is the same whatever engine keeps the rows.

namespace vellumark {
namespace {

// The process tells who it was; the number makes it one of its kind.
std::string NameOfOpening() {
  std::random_device random;
  return fmt::format("{}/{:08x}{:08x}", platform::ProcessMark(), random(), random());
}

CommitWitness& Witness() {
  static CommitWitness witness;
  return witness;
}

// Without functions when there is none.
OtherEngine& Other() {
  static OtherEngine engine;
  return engine;
}

bool OtherKeeps(const std::filesystem::path& path) {
  return Other().keeps && Other().keeps(path);
}

}  // namespace

void SetOtherEngine(OtherEngine engine) {
  Other() = std::move(engine);
}

void SetCommitWitness(CommitWitness witness) {
  Witness() = std::move(witness);
}

const CommitWitness& TheCommitWitness() {
  return Witness();
}

Database::Database(std::filesystem::path path, bool readOnly)
    : path_(std::move(path)), readOnly_(readOnly), opening_(NameOfOpening()) {}

std::unique_ptr<Database> Database::Open(const std::filesystem::path& path, OpenMode mode) {
  std::error_code ignored;
  const auto status = std::filesystem::status(path, ignored);
  if (!std::filesystem::exists(status)) throw Failure(path.string(), "does not exist");
  if (!std::filesystem::is_regular_file(status)) throw Failure(path.string(), "is not a file");
  if (std::filesystem::file_size(path, ignored) == 0) throw Failure(path.string(), "is empty, not a Data File");
  return OtherKeeps(path) ? Other().open(path, mode) : SqliteDatabase::OpenFile(path, mode);
}

std::unique_ptr<Database> Database::Create(const std::filesystem::path& path) {
  std::error_code ignored;
  // An empty one is the place that its maker took beforehand.
  if (std::filesystem::exists(path, ignored) && std::filesystem::file_size(path, ignored) != 0)
    throw Failure(path.string(), "already exists");
  return Other().create ? Other().create(path) : SqliteDatabase::CreateFile(path);
}

bool Database::IsDatabaseFile(const std::filesystem::path& path) {
  return OtherKeeps(path) || SqliteDatabase::Keeps(path);
}

Value Database::Scalar(std::string_view sql, std::initializer_list<Value> parameters) {
  Statement statement = Prepare(sql);
  int index = 1;
  for (const Value& parameter : parameters) statement.Bind(index++, parameter);
  return statement.Step() ? statement.Get(0) : Value{};
}

Statement& Statement::Bind(int parameter, const Value& value) {
  if (value.IsNull()) return BindNull(parameter);
  if (value.IsWhole()) return Bind(parameter, value.Whole());
  if (value.IsNumber()) return Bind(parameter, value.Number());
  return Bind(parameter, std::string_view(std::get<std::string>(value.Held())));
}

// ---- Transaction

Transaction::Transaction(Database& database) : database_(database) {
  if (database_.depth_ == 0) {
    database_.Begin();
    database_.doomed_ = false;
    database_.pending_.clear();
  }
  ++database_.depth_;
}

Transaction::~Transaction() {
  if (!open_) return;
  if (--database_.depth_ > 0) {
    database_.doomed_ = true;
    return;
  }
  database_.pending_.clear();
  database_.Rollback();
}

void Transaction::Note(Change change) {
  database_.pending_.push_back(std::move(change));
}

void Transaction::Commit() {
  if (database_.depth_ > 1) {
    open_ = false;
    --database_.depth_;
    return;
  }
  if (database_.doomed_) throw Failure(database_.path_.string(), "a step of the change failed; nothing was written");
  database_.CommitWork();
  open_ = false;
  --database_.depth_;
  const std::vector<Change> told = std::exchange(database_.pending_, {});
  if (database_.changes_ == nullptr) return;
  if (Witness()) Witness()(database_.WrittenTables(), told);
  database_.changes_->Tell(told);
}

// ---- Texts of SQL

std::string Quoted(std::string_view name) {
  std::string quoted = "\"";
  for (const char c : name) {
    if (c == '"') quoted += '"';
    quoted += c;
  }
  return quoted + '"';
}

std::string LikeLiteral(std::string_view text) {
  std::string literal;
  for (const char c : text) {
    if (c == '%' || c == '_' || c == '\\') literal += '\\';
    literal += c;
  }
  return literal;
}

}  // namespace vellumark
