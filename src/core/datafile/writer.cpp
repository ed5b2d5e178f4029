#include "core/datafile/writer.h"

#include <fmt/format.h>

#include <stdexcept>

#include "core/base/refusal.h"

namespace vellumark {

RowWriter::RowWriter(Database& file, const Table& table, std::string tableName, const std::vector<std::string>& fields)
    : file_(file), tableName_(std::move(tableName)), values_(fields.size()) {
  for (const std::string& name : fields) {
    const int place = table.Find(name);
    if (place < 0) throw std::logic_error("the table " + table.name + " has no field " + name);
    fields_.push_back(&table.fields[static_cast<std::size_t>(place)]);
  }
  std::string names;
  std::string marks;
  std::string sets;
  for (const Field* field : fields_) {
    const std::string_view comma = names.empty() ? "" : ", ";
    const std::string quoted = Quoted(field->name);
    names.append(comma).append(quoted);
    marks.append(comma).append("?");
    sets.append(comma).append(quoted).append(" = ?");
  }
  insertSql_ = "INSERT INTO " + Quoted(tableName_) + " (" + names + ") VALUES (" + marks + ")";
  updateSql_ = "UPDATE " + Quoted(tableName_) + " SET " + sets + " WHERE RowKey = ?";
  for (std::size_t place = 0; place < fields_.size(); ++place) {
    if (table.key.empty() || fields_[place]->name != table.key) continue;
    keyPlace_ = place;
    // A row that has its key already may keep it, also in a file where an older program let it stand twice.
    keySql_ = fmt::format(
        "SELECT 1 FROM {0} WHERE {1} = ?1 AND RowKey <> ?2 AND NOT EXISTS (SELECT 1 FROM {0} WHERE RowKey = ?2 AND {1} "
        "= ?1) LIMIT 1",
        Quoted(tableName_), Quoted(table.key));
  }
}

void RowWriter::RequireOwnKey(std::int64_t key) {
  if (keySql_.empty()) return;
  Statement other = file_.Prepare(keySql_);
  if (other.Bind(1, values_[keyPlace_]).Bind(2, key).Step())
    throw BadValue(fmt::format("The table {} has {} already: {} names one row only.", tableName_,
                               values_[keyPlace_].Text(), fields_[keyPlace_]->name));
}

RowWriter& RowWriter::Set(std::size_t place, const Value& value) {
  values_.at(place) = FittedValue(*fields_[place], tableName_, value);
  return *this;
}

std::int64_t RowWriter::Insert() {
  RequireOwnKey(0);
  Statement statement = file_.Prepare(insertSql_);
  int parameter = 1;
  for (const Value& value : values_) statement.Bind(parameter++, value);
  return statement.Insert();
}

bool RowWriter::Update(std::int64_t key) {
  if (fields_.empty()) return true;
  RequireOwnKey(key);
  Statement statement = file_.Prepare(updateSql_);
  int parameter = 1;
  for (const Value& value : values_) statement.Bind(parameter++, value);
  return statement.Bind(parameter, key).Run() > 0;
}

namespace {

RowWriter WriterFor(Database& file, const Table& table, const std::string& tableName, const std::vector<Cell>& cells) {
  std::vector<std::string> fields;
  for (const Cell& cell : cells) fields.push_back(cell.first);
  RowWriter writer(file, table, tableName, fields);
  for (std::size_t i = 0; i < cells.size(); ++i) writer.Set(i, cells[i].second);
  return writer;
}

}  // namespace

std::int64_t InsertRow(Database& file, const Table& table, const std::string& tableName,
                       const std::vector<Cell>& cells) {
  return WriterFor(file, table, tableName, cells).Insert();
}

bool UpdateRow(Database& file, const Table& table, const std::string& tableName, std::int64_t key,
               const std::vector<Cell>& cells) {
  return WriterFor(file, table, tableName, cells).Update(key);
}

}  // namespace vellumark
