#include "core/datafile/recordset.h"

#include <stdexcept>

#include "core/datafile/writer.h"

namespace vellumark {

Recordset::Recordset(Database& file, const Table& table, std::string tableName, std::vector<std::string> order,
                     std::string where, std::vector<Value> parameters)
    : file_(file),
      table_(table),
      tableName_(std::move(tableName)),
      order_(std::move(order)),
      where_(std::move(where)),
      parameters_(std::move(parameters)),
      row_(table.fields.size()) {
  for (const std::string& field : order_) FieldPlace(field);
  std::string columns;
  for (const Field& field : table.fields) columns += (columns.empty() ? "" : ", ") + Quoted(field.name);
  rowSql_ = "SELECT " + columns + " FROM " + Quoted(tableName_) + " WHERE RowKey = ?";
}

std::size_t Recordset::FieldPlace(std::string_view field) const {
  const int place = table_.Find(field);
  if (place < 0) throw std::logic_error("the table " + tableName_ + " has no field " + std::string(field));
  return static_cast<std::size_t>(place);
}

bool Recordset::SeekWhere(const std::string& condition, const std::vector<Value>& parameters, bool forward) {
  std::string sql = "SELECT RowKey FROM " + Quoted(tableName_);
  std::string joined = condition;
  if (!where_.empty()) joined = joined.empty() ? "(" + where_ + ")" : "(" + where_ + ") AND (" + joined + ")";
  if (!joined.empty()) sql += " WHERE " + joined;
  sql += " ORDER BY ";
  const std::string_view direction = forward ? " ASC" : " DESC";
  for (const std::string& field : order_) sql.append(Quoted(field)).append(direction).append(", ");
  sql.append("RowKey").append(direction).append(" LIMIT 1");
  Statement statement = file_.Prepare(sql);
  int parameter = 1;
  for (const Value& value : parameters_) statement.Bind(parameter++, value);
  for (const Value& value : parameters) statement.Bind(parameter++, value);
  if (!statement.Step()) return false;
  Load(statement.Whole(0));
  return true;
}

// One tier of a step: the first `equalFields` order fields as in the current row, the next one beyond it. With
// `fromEnd`, a step back from a value that takes the rows in which that field is null.
bool Recordset::Seek(bool forward, std::size_t equalFields, bool fromEnd) {
  std::string condition;
  std::vector<Value> parameters;
  for (std::size_t i = 0; i < equalFields; ++i) {
    condition += Quoted(order_[i]) + " IS NOT DISTINCT FROM ? AND ";
    parameters.push_back(row_[FieldPlace(order_[i])]);
  }
  if (equalFields == order_.size()) {
    condition += forward ? "RowKey > ?" : "RowKey < ?";
    parameters.emplace_back(rowId_);
    return SeekWhere(condition, parameters, forward);
  }
  const Value& current = row_[FieldPlace(order_[equalFields])];
  const std::string field = Quoted(order_[equalFields]);
  if (fromEnd) {
    if (current.IsNull()) return false;
    condition += field + " IS NULL";
  } else if (current.IsNull()) {
    if (!forward) return false;
    condition += field + " IS NOT NULL";
  } else {
    condition += field + (forward ? " > ?" : " < ?");
    parameters.push_back(current);
  }
  return SeekWhere(condition, parameters, forward);
}

void Recordset::Step(bool forward) {
  CancelUpdate();
  for (std::size_t equal = order_.size() + 1; equal-- > 0;) {
    if (Seek(forward, equal, false)) return;
    if (!forward && equal < order_.size() && Seek(forward, equal, true)) return;
  }
  state_ = forward ? State::AfterLast : State::BeforeFirst;
}

void Recordset::MoveFirst() {
  CancelUpdate();
  if (!SeekWhere({}, {}, true)) state_ = State::AfterLast;
}

void Recordset::MoveLast() {
  CancelUpdate();
  if (!SeekWhere({}, {}, false)) state_ = State::BeforeFirst;
}

void Recordset::MoveNext() {
  if (state_ == State::BeforeFirst) {
    MoveFirst();
  } else if (state_ == State::OnRow) {
    Step(true);
  }
}

void Recordset::MovePrevious() {
  if (state_ == State::AfterLast) {
    MoveLast();
  } else if (state_ == State::OnRow) {
    Step(false);
  }
}

bool Recordset::FindFirst(std::string_view condition, const std::vector<Value>& parameters) {
  CancelUpdate();
  return SeekWhere(std::string(condition), parameters, true);
}

bool Recordset::MoveTo(std::int64_t rowId) {
  CancelUpdate();
  return SeekWhere("RowKey = ?", {rowId}, true);
}

bool Recordset::Refresh() {
  return state_ == State::OnRow && MoveTo(rowId_);
}

void Recordset::Load(std::int64_t rowId) {
  Statement statement = file_.Prepare(rowSql_);
  statement.Bind(1, rowId);
  if (!statement.Step()) throw std::logic_error("a row of " + tableName_ + " vanished while it was read");
  for (std::size_t i = 0; i < row_.size(); ++i) row_[i] = statement.Get(static_cast<int>(i));
  rowId_ = rowId;
  state_ = State::OnRow;
}

std::int64_t Recordset::Count(const std::string& condition, const std::vector<Value>& parameters) {
  std::string sql = "SELECT COUNT(*) FROM " + Quoted(tableName_);
  std::string joined = condition;
  if (!where_.empty()) joined = joined.empty() ? "(" + where_ + ")" : "(" + where_ + ") AND (" + joined + ")";
  if (!joined.empty()) sql += " WHERE " + joined;
  Statement statement = file_.Prepare(sql);
  int parameter = 1;
  for (const Value& value : parameters_) statement.Bind(parameter++, value);
  for (const Value& value : parameters) statement.Bind(parameter++, value);
  statement.Step();
  return statement.Whole(0);
}

std::int64_t Recordset::RecordCount() {
  return Count({}, {});
}

double Recordset::PercentPosition() {
  if (state_ == State::AfterLast) return 100;
  if (state_ == State::BeforeFirst) return 0;
  const std::int64_t count = RecordCount();
  if (count < 2) return 0;
  if (order_.empty()) {
    return 100.0 * static_cast<double>(Count("RowKey < ?", {rowId_})) / static_cast<double>(count);
  }
  const std::int64_t before = Count(Quoted(order_[0]) + " < ?", {row_[FieldPlace(order_[0])]});
  return 100.0 * static_cast<double>(before) / static_cast<double>(count);
}

void Recordset::AddNew() {
  pending_.clear();
  mode_ = EditMode::Add;
}

void Recordset::Edit() {
  if (state_ != State::OnRow) throw std::logic_error("no current row to edit in " + tableName_);
  pending_.clear();
  mode_ = EditMode::InProgress;
}

void Recordset::Set(std::string_view field, const Value& value) {
  if (mode_ == EditMode::None) throw std::logic_error("no edit is in progress in " + tableName_);
  pending_[FieldPlace(field)] = value;
}

void Recordset::Update() {
  if (mode_ == EditMode::None) throw std::logic_error("no edit is in progress in " + tableName_);
  std::vector<Cell> cells;
  for (const auto& [place, value] : pending_) cells.emplace_back(table_.fields[place].name, value);
  Transaction transaction(file_);
  std::int64_t rowId = rowId_;
  if (mode_ == EditMode::Add) {
    rowId = InsertRow(file_, table_, tableName_, cells);
  } else if (!UpdateRow(file_, table_, tableName_, rowId_, cells)) {
    throw std::logic_error("the row to update in " + tableName_ + " is gone");
  }
  transaction.Commit();
  CancelUpdate();
  Load(rowId);
}

void Recordset::CancelUpdate() {
  pending_.clear();
  mode_ = EditMode::None;
}

void Recordset::Delete() {
  if (state_ != State::OnRow) throw std::logic_error("no current row to delete in " + tableName_);
  CancelUpdate();
  Transaction transaction(file_);
  file_.Prepare("DELETE FROM " + Quoted(tableName_) + " WHERE RowKey = ?").Bind(1, rowId_).Run();
  transaction.Commit();
}

Value Recordset::Get(std::string_view field) const {
  const std::size_t place = FieldPlace(field);
  if (mode_ != EditMode::None) {
    if (const auto found = pending_.find(place); found != pending_.end()) return found->second;
    if (mode_ == EditMode::Add) return {};
  }
  if (state_ != State::OnRow) throw std::logic_error("no current row in " + tableName_);
  return row_[place];
}

}  // namespace vellumark
