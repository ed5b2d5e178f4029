#include "postgres/database.h"

#include <fmt/format.h>

#include <charconv>
#include <cmath>
#include <fstream>
#include <limits>
#include <random>
#include <thread>

#include "core/base/files.h"
#include "core/base/number.h"
#include "core/base/refusal.h"
#include "core/base/text.h"
#include "core/datafile/commit_witness.h"
#include "core/datafile/other_engine.h"
#include "core/datafile/schema.h"

namespace vellumark::postgres {
namespace {

// The server's numbers of its own types.
enum TypeNumber : Oid {
  kBoolean = 16,
  kInt64 = 20,
  kInt16 = 21,
  kInt32 = 23,
  kSingle = 700,
  kDouble = 701,
  kNumeric = 1700,
};

// More texts than any one operation uses.
constexpr std::size_t kMostTexts = 400;
// For half a second.
constexpr int kTries = 20;
// No field holds more than a Single does.
constexpr double kLargestFigure = static_cast<double>(std::numeric_limits<float>::max());

template <class T>
T NumberAt(std::string_view text) {
  T number{};
  std::from_chars(text.data(), text.data() + text.size(), number);
  return number;
}

class PostgresStatement final : public EngineStatement {
 public:
  PostgresStatement(PostgresDatabase& file, std::shared_ptr<KnownText> known) : file_(file), known_(std::move(known)) {}

  void Bind(int parameter, std::int64_t whole) override { At(parameter) = {kInt64, false, std::to_string(whole)}; }
  void Bind(int parameter, double number) override { At(parameter) = {kDouble, false, fmt::format("{}", number)}; }
  void Bind(int parameter, std::string_view text) override {
    At(parameter) = {file_.TextType(), false, std::string(text)};
  }
  void BindNull(int parameter) override { At(parameter) = {}; }

  // All rows are fetched at once: what is written while they are read changes none of them.
  bool Step() override {
    if (!answer_) {
      answer_ = Perform(false);
      row_ = -1;
    }
    if (++row_ < answer_.Rows()) return true;
    answer_ = Answer();
    return false;
  }
  int Run() override {
    Reset();
    const Answer answer = Perform(false);
    return NumberAt<int>(PQcmdTuples(answer.Get()));
  }
  std::int64_t Insert() override {
    Reset();
    return NumberAt<std::int64_t>(Perform(true).Text(0, 0));
  }
  void Reset() override { answer_ = Answer(); }

  bool IsNull(int column) const override { return answer_.IsNull(row_, column); }
  std::int64_t Whole(int column) const override {
    const Oid type = TypeOf(column);
    if (type == kDouble || type == kSingle) return static_cast<std::int64_t>(Number(column));
    return NumberAt<std::int64_t>(TextView(column));
  }
  double Number(int column) const override {
    const std::string_view text = TextView(column);
    if (!IsNumber(TypeOf(column))) return LeadingNumber(text);
    const auto number = NumberAt<double>(text);
    if (!(std::fabs(number) <= kLargestFigure)) throw Failure(file_.Path().string(), WhyNoFigure(column));
    return number;
  }
  std::string_view TextView(int column) const override {
    const std::string_view text = answer_.Text(row_, column);
    return TypeOf(column) == kBoolean && !text.empty() ? (text == "t" ? "1" : "0") : text;
  }
  Value Get(int column) const override {
    if (IsNull(column)) return {};
    const Oid type = TypeOf(column);
    const std::string_view text = TextView(column);
    if (type == kDouble || type == kSingle || (type == kNumeric && text.find('.') != std::string_view::npos))
      return Number(column);
    if (IsNumber(type) || type == kBoolean) return Whole(column);
    return text;
  }
  int ColumnCount() const override { return answer_.Columns(); }
  std::string ColumnName(int column) const override { return PQfname(answer_.Get(), column); }

 private:
  static bool IsNumber(Oid type) {
    return type == kInt64 || type == kInt32 || type == kInt16 || type == kDouble || type == kSingle || type == kNumeric;
  }
  Oid TypeOf(int column) const { return PQftype(answer_.Get(), column); }
  Parameter& At(int parameter) {
    Reset();
    const auto place = static_cast<std::size_t>(parameter);
    if (values_.size() < place) values_.resize(place);
    return values_[place - 1];
  }
  Answer Perform(bool key) {
    std::vector<Parameter> values;
    for (const int value : known_->text.values)
      values.push_back(static_cast<std::size_t>(value) <= values_.size() ? values_[static_cast<std::size_t>(value) - 1]
                                                                         : Parameter());
    return file_.Perform(*known_, values, key);
  }

  // Where the figure stands, when it is no result of a calculation.
  std::string WhyNoFigure(int column) const {
    const Oid table = PQftable(answer_.Get(), column);
    const int place = PQftablecol(answer_.Get(), column);
    if (table == 0) return "holds figures that add up beyond the range of a number";
    Connection& server = file_.Server();
    const Answer names = server.Run(fmt::format(
        "SELECT split_part(obj_description(c.oid), E'\\n', 1), f.attname, k.attname, (SELECT t.attname FROM "
        "pg_attribute t "
        "WHERE t.attrelid = c.oid AND t.atttypid = {} ORDER BY t.attnum LIMIT 1), c.relname FROM pg_class c JOIN "
        "pg_attribute f ON f.attrelid = c.oid AND f.attnum = {} JOIN pg_attribute k ON k.attrelid = c.oid AND "
        "k.attidentity <> '' WHERE c.oid = {}",
        file_.TextType(), place, table));
    if (names.Rows() == 0) return "holds a figure that is not a number";
    const Answer row =
        server.Run(fmt::format("SELECT {0}, {1} FROM {2} WHERE abs({3}) > {4} ORDER BY {0} LIMIT 1",
                               QuotedName(names.Text(0, 2)), names.IsNull(0, 3) ? "''" : QuotedName(names.Text(0, 3)),
                               QuotedName(names.Text(0, 4)), QuotedName(names.Text(0, 1)), kLargestFigure));
    std::string field(names.Text(0, 1));
    for (const std::string& told : file_.StoredFields(names.Text(0, 4)))
      if (EqualNoCase(told, field)) field = told;
    return fmt::format("holds a figure that is not a number in the table {}, row {} ({}), field {}", names.Text(0, 0),
                       row.Rows() == 0 ? "" : row.Text(0, 0), row.Rows() == 0 ? "" : row.Text(0, 1), field);
  }

  PostgresDatabase& file_;
  std::shared_ptr<KnownText> known_;
  std::vector<Parameter> values_;  // by the numbers of the core
  Answer answer_;
  int row_ = -1;
};

constexpr std::string_view kMark = "The Vellumark: a Data File on a server\n";

std::string NewSchemaName() {
  std::random_device random;
  return fmt::format("vkd_{:08x}{:08x}{:08x}", random(), random(), random());
}

// What a new database has to have: texts that compare without regard to case, the check of the structure, and Booleans
// that are kept as 0 or 1.
constexpr const char* kPreparation =
    "CREATE EXTENSION citext; CREATE EXTENSION amcheck; "
    "CREATE FUNCTION whole_of(boolean) RETURNS bigint LANGUAGE sql IMMUTABLE STRICT AS 'SELECT $1::integer::bigint'; "
    "CREATE CAST (boolean AS bigint) WITH FUNCTION whole_of(boolean) AS IMPLICIT; "
    "CREATE FUNCTION truth_of(bigint) RETURNS boolean LANGUAGE sql IMMUTABLE STRICT AS 'SELECT $1 <> 0'; "
    "CREATE CAST (bigint AS boolean) WITH FUNCTION truth_of(bigint) AS ASSIGNMENT";

}  // namespace

// ---- Where the rows stand

std::string TextOf(const FilePlace& place) {
  return fmt::format("{}host={}\nuser={}\ndatabase={}\nschema={}\n", kMark, place.server.host, place.server.user,
                     place.server.database, place.schema);
}

bool IsPlaceText(std::string_view text) {
  return text.starts_with(kMark);
}

FilePlace PlaceOf(std::string_view text, const std::string& subject) {
  FilePlace place;
  const std::pair<std::string_view, std::string*> fields[] = {{"host=", &place.server.host},
                                                              {"user=", &place.server.user},
                                                              {"database=", &place.server.database},
                                                              {"schema=", &place.schema}};
  for (const std::string_view line : Split(text, '\n'))
    for (const auto& [name, value] : fields)
      if (line.starts_with(name)) *value = line.substr(name.size());
  if (!IsPlaceText(text) || place.schema.empty()) throw Failure(subject, "is damaged or was cut short");
  return place;
}

// ---- Database

PostgresDatabase::PostgresDatabase(std::filesystem::path path, const FilePlace& place, bool readOnly)
    : Database(std::move(path), readOnly), place_(place), connection_(place.server, Path().string()) {}

PostgresDatabase::~PostgresDatabase() {
  known_.clear();
  // The server hears of the end of a conversation later than who opens the file next asks for it.
  try {
    if (!connection_.InTransaction()) connection_.Run("SELECT pg_advisory_unlock_all()");
  } catch (const Failure&) {
    return;  // it is gone, and with it what it held
  }
}

void PostgresDatabase::Hold() {
  const std::string take =
      fmt::format("SELECT pg_try_advisory_lock{}(hashtextextended($1, 0))", IsReadOnly() ? "_shared" : "");
  // Of the end of a process that was killed the server hears a moment later.
  for (int tries = 0; connection_.Run(take, place_.schema).Text(0, 0) != "t"; ++tries) {
    if (tries == kTries) throw Failure(Path().string(), "is in use by another process");
    std::this_thread::sleep_for(std::chrono::milliseconds(25));
  }
}

void PostgresDatabase::Enter() {
  if (connection_.Run("SELECT 1 FROM pg_namespace WHERE nspname = $1", place_.schema).Rows() == 0)
    throw Failure(Path().string(), "is not a Data File: its server keeps no rows for it");
  connection_.Run(fmt::format("SET search_path TO {}, public", QuotedName(place_.schema)));
  if (IsReadOnly()) connection_.Run("SET default_transaction_read_only TO on");
  textType_ = NumberAt<Oid>(connection_.Run("SELECT 'citext'::regtype::oid").Text(0, 0));
}

void PostgresDatabase::MakeSchema() {
  const Answer kind = connection_.Run(
      "SELECT pg_encoding_to_char(encoding), datctype FROM pg_database WHERE datname = current_database()");
  if (kind.Text(0, 0) != "UTF8" || kind.Text(0, 1) != "C")
    throw Failure(Path().string(), fmt::format("cannot be made: the database {} is not of encoding UTF8 and locale C",
                                               place_.server.database));
  connection_.Run("BEGIN; SELECT pg_advisory_xact_lock(hashtextextended('vellumark', 1))");
  if (connection_.Run("SELECT 1 FROM pg_extension WHERE extname = 'citext'").Rows() == 0) connection_.Run(kPreparation);
  connection_.Run("COMMIT; CREATE SCHEMA " + QuotedName(place_.schema));
}

Statement PostgresDatabase::Prepare(std::string_view sql) {
  std::string text(sql);
  const auto found = known_.find(text);
  if (found != known_.end()) return Statement(*this, std::make_unique<PostgresStatement>(*this, found->second));
  if (known_.size() >= kMostTexts && !connection_.InTransaction()) {
    ForgetLayout();
    known_.clear();
  }
  auto known = std::make_shared<KnownText>(KnownText{text, Translated(text)});
  known_.emplace(std::move(text), known);
  return Statement(*this, std::make_unique<PostgresStatement>(*this, std::move(known)));
}

void PostgresDatabase::TakeBack(std::unique_ptr<EngineStatement> statement) noexcept {
  statement.reset();
}

void PostgresDatabase::ForgetLayout() {
  connection_.Run("DEALLOCATE ALL");
  for (const auto& [sql, known] : known_) known->plans.clear();
  keys_.clear();
  told_.clear();
  tables_.clear();
}

void PostgresDatabase::Execute(std::string_view sql) {
  const StatementText text = Translated(sql);
  NoteWritten(text, connection_.Run(text.sql));
  if (text.written.empty()) ForgetLayout();
}

Answer PostgresDatabase::Perform(KnownText& known, const std::vector<Parameter>& values, bool key) {
  std::string mixture = key ? "k" : "";
  for (const Parameter& value : values) mixture += fmt::format(" {}", value.type);
  KnownText::Plan& plan = known.plans[mixture];
  const std::string sql =
      !plan.name.empty() ? std::string()
      : key              ? fmt::format("{} RETURNING {}", known.text.sql, QuotedName(KeyColumn(known.text.written)))
                         : known.text.sql;
  Answer answer;
  if (++plan.runs == 1) {
    answer = connection_.Run(sql, values);
  } else {
    if (plan.name.empty()) {
      const std::string name = fmt::format("s{}", ++plans_);
      connection_.Prepare(name, sql, values);
      plan.name = name;
    }
    answer = connection_.RunPrepared(plan.name, values);
  }
  NoteWritten(known.text, answer);
  return answer;
}

void PostgresDatabase::NoteWritten(const StatementText& text, const Answer& answer) {
  if (text.written.empty() || NumberAt<int>(PQcmdTuples(answer.Get())) == 0) return;
  written_.insert(text.written);
  // The next key is above all that stand.
  if (const std::string& key = text.key; !key.empty() && key == KeyColumn(text.written))
    connection_.Run(
        fmt::format("SELECT setval(s, GREATEST((SELECT MAX({1}) FROM {0}), nextval(s))) FROM "
                    "pg_get_serial_sequence({2}, {3}) AS s",
                    QuotedName(text.written), QuotedName(key), QuotedText(QuotedName(text.written)), QuotedText(key)));
}

const std::string& PostgresDatabase::KeyColumn(const std::string& table) {
  if (const auto known = keys_.find(table); known != keys_.end()) return known->second;
  const Answer key = connection_.Run(
      "SELECT attname FROM pg_attribute WHERE attrelid = to_regclass($1) AND attidentity <> ''", QuotedName(table));
  return keys_[table] = key.Rows() == 0 ? std::string() : std::string(key.Text(0, 0));
}

// ---- Transaction

void PostgresDatabase::Begin() {
  written_.clear();
  connection_.Run("BEGIN");
}

void PostgresDatabase::CommitWork() {
  // After a statement that failed the server answers a commit by taking everything back.
  if (std::string_view(PQcmdStatus(connection_.Run("COMMIT").Get())) != "COMMIT")
    throw Failure(Path().string(), "a step of the change failed; nothing was written");
}

void PostgresDatabase::Rollback() noexcept {
  try {
    if (connection_.InTransaction()) connection_.Run("ROLLBACK");
    ForgetLayout();  // with tables that the transaction made
  } catch (const Failure&) {
    return;  // a server without its client takes back by itself
  }
}

std::set<std::string> PostgresDatabase::WrittenTables() const {
  std::set<std::string> tables;
  for (const std::string& table : written_) tables.insert(ToldName(table));
  return tables;
}

}  // namespace vellumark::postgres

namespace vellumark {

void UsePostgres(PostgresServer server) {
  using namespace postgres;
  SetOtherEngine({
      [](const std::filesystem::path& path) { return IsPlaceText(ReadFileBytes(path, kMark.size())); },
      [](const std::filesystem::path& path, OpenMode mode) -> std::unique_ptr<Database> {
        const FilePlace place = PlaceOf(ReadFileBytes(path), path.string());
        auto file = std::make_unique<PostgresDatabase>(path, place, mode == OpenMode::ReadOnly);
        file->Hold();
        file->Enter();
        return file;
      },
      [server = std::move(server)](const std::filesystem::path& path) -> std::unique_ptr<Database> {
        const FilePlace place{server, NewSchemaName()};
        std::ofstream text(path, std::ios::binary);
        if (!(text << TextOf(place) << std::flush)) throw Failure(path.string(), "cannot be written");
        auto file = std::make_unique<PostgresDatabase>(path, place, false);
        file->Hold();
        file->MakeSchema();
        file->Enter();
        return file;
      },
  });
}

}  // namespace vellumark
