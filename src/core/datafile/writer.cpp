#include "core/datafile/writer.h"

#include <stdexcept>

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
  updateSql_ = "UPDATE " + Quoted(tableName_) + " SET " + sets + " WHERE rowid = ?";
}

RowWriter& RowWriter::Set(std::size_t place, const Value& value) {
  values_.at(place) = FittedValue(*fields_[place], tableName_, value);
  return *this;
}

std::int64_t RowWriter::Insert() {
  Statement statement = file_.Prepare(insertSql_);
  int parameter = 1;
  for (const Value& value : values_) statement.Bind(parameter++, value);
  statement.Run();
  return file_.LastRowId();
}

bool RowWriter::Update(std::int64_t rowId) {
  if (fields_.empty()) return true;
  Statement statement = file_.Prepare(updateSql_);
  int parameter = 1;
  for (const Value& value : values_) statement.Bind(parameter++, value);
  return statement.Bind(parameter, rowId).Run() > 0;
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

bool UpdateRow(Database& file, const Table& table, const std::string& tableName, std::int64_t rowId,
               const std::vector<Cell>& cells) {
  return WriterFor(file, table, tableName, cells).Update(rowId);
}

}  // namespace vellumark
