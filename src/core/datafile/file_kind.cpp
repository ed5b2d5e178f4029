#include "core/datafile/file_kind.h"

#include <fmt/format.h>

#include <cmath>
#include <limits>
#include <optional>
#include <system_error>

#include "core/base/refusal.h"
#include "core/datafile/jet/jet_file.h"
#include "core/datafile/lifecycle.h"
#include "core/datafile/schema.h"

namespace vellumark {
namespace {

FieldType TypeOf(JetType type) {
  switch (type) {
    case JetType::Boolean:
      return FieldType::Boolean;
    case JetType::Byte:
      return FieldType::Byte;
    case JetType::Integer:
      return FieldType::Integer;
    case JetType::Long:
      return FieldType::Long;
    case JetType::Currency:
    case JetType::Single:
    case JetType::Double:
      return FieldType::Single;
    case JetType::Date:
      return FieldType::Date;
    default:
      return FieldType::Memo;
  }
}

// One table on its way. What a column of the work file cannot hold counts as damage.
class TableCopy {
 public:
  TableCopy(const JetTable& table, Database& work) : table_(table), unfit_(table.columns.size(), 0) {
    Table layout{table.name, {}, {}};
    std::string names;
    std::string marks;
    for (const JetColumn& column : table.columns) {
      layout.fields.push_back({column.name, TypeOf(column.type)});
      names += (names.empty() ? "" : ", ") + Quoted(column.name);
      marks += marks.empty() ? "?" : ", ?";
    }
    work.CreateTable(table.name, layout);
    insert_.emplace(
        work.Prepare(fmt::format("INSERT INTO {} ({}) VALUES ({})", Quoted(table.name), names, marks)));
  }

  void Take(const JetRow& row) {
    for (std::size_t i = 0; i < row.values.size(); ++i) Bind(i, row.values[i]);
    insert_->Run();
  }

  void Tell(std::vector<SourceDamage>& damage) const {
    for (std::size_t i = 0; i < unfit_.size(); ++i)
      if (unfit_[i] > 0)
        damage.push_back({table_.name, unfit_[i], fmt::format("{} holds what is no date or number", table_.columns[i].name)});
  }

 private:
  void Bind(std::size_t place, const Value& value) {
    const int parameter = static_cast<int>(place) + 1;
    const JetType type = table_.columns[place].type;
    if (value.IsNull()) {
      insert_->BindNull(parameter);
    } else if (type == JetType::Date) {
      const auto date = JetDate(value.Number());
      unfit_[place] += date ? 0 : 1;
      insert_->Bind(parameter, Value(date));
    } else if (type == JetType::Currency) {
      insert_->Bind(parameter, static_cast<double>(value.Whole()) / 10000.0);
    } else if (value.IsNumber() && !(std::fabs(value.Number()) <= static_cast<double>(std::numeric_limits<float>::max()))) {
      ++unfit_[place];
      insert_->BindNull(parameter);
    } else {
      insert_->Bind(parameter, value);
    }
  }

  const JetTable& table_;
  std::optional<Statement> insert_;
  std::vector<std::int64_t> unfit_;
};

std::optional<int> JetFileVersion(const JetFile& file) {
  const JetTable* info = file.Find("FileInfo");
  const auto place = info == nullptr ? std::nullopt : info->Find("FileVersion");
  if (!place) return std::nullopt;
  std::optional<int> version;
  file.Read(*info, [&](const JetRow& row) {
    version = static_cast<int>(row.values[*place].Whole());
    return false;
  });
  return version;
}

bool IsJet(const std::filesystem::path& path) {
  std::error_code ignored;
  if (!std::filesystem::is_regular_file(path, ignored)) return false;
  try {
    return JetFile::IsJetFile(path);
  } catch (const Failure&) {
    return false;  // why it cannot be read the engine says, which tries next
  }
}

}  // namespace

DataFileKind LookAtDataFile(const std::filesystem::path& path) {
  if (!IsJet(path)) return {false, ReadFileVersion(path)};
  const auto version = JetFileVersion(JetFile::Open(path));
  if (!version) throw Failure(path.string(), "is not a Data File: it has no FileInfo table that could be read");
  return {true, *version};
}

std::string UnusableText(const std::filesystem::path& path, int version) {
  return fmt::format(
      "Data File: {}\nhas a file version of: {}\n\nVellumark {} can only use data files up to version: {}\n\n"
      "Consider the following options:\n1) Update this Vellumark Software\n2) Create a new data file\n"
      "3) Open another data file\n4) Restore from another file",
      path.string(), version, VELLUMARK_VERSION, kFileVersion);
}

std::vector<SourceDamage> CopyJetTables(const std::filesystem::path& path, Database& work,
                                        const std::function<void(std::string_view table, double percent)>& tell,
                                        const std::function<bool(std::string_view table)>& wanted) {
  const JetFile source = JetFile::Open(path);
  std::vector<SourceDamage> damage;
  for (const JetDamage& one : source.Damage()) damage.push_back({one.table, 1, one.Text()});
  std::int64_t all = 1;
  std::int64_t done = 0;
  for (const JetTable& table : source.Tables()) all += table.rows;
  for (const JetTable& table : source.Tables()) {
    if (wanted && !wanted(table.name)) continue;
    Transaction transaction(work);
    TableCopy copy(table, work);
    const auto percent = [&] { return std::min(100.0, 100.0 * static_cast<double>(done) / static_cast<double>(all)); };
    tell(table.name, percent());
    const JetReading reading = source.Read(table, [&](const JetRow& row) {
      copy.Take(row);
      if (++done % 4096 == 0) tell(table.name, percent());
      return true;
    });
    transaction.Commit();
    for (const JetDamage& one : reading.damage) damage.push_back({table.name, 1, one.Text()});
    if (const std::int64_t more = reading.faults - std::ssize(reading.damage); more > 0)
      damage.push_back({table.name, more, "more that could not be read"});
    if (reading.rows < table.rows)
      damage.push_back({table.name, table.rows - reading.rows, "rows that the table says it has were not found"});
    copy.Tell(damage);
  }
  return damage;
}

}  // namespace vellumark
