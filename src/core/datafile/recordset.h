#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "core/datafile/schema.h"

namespace vellumark {

/// A walk over the rows of one table in an order, holding the current row and no others: a step is a seek in an index,
/// so opening costs nothing at any size and the walk sees what others wrote. Rows whose order fields are equal follow
/// in the order of entry; null comes first.
class Recordset {
 public:
  enum class EditMode { None = 0, InProgress = 1, Add = 2 };

  /// `order` should be an indexed list of fields. `where` (may be empty) narrows the rows; `parameters` go with it.
  Recordset(Database& file, const Table& table, std::string tableName, std::vector<std::string> order,
            std::string where = {}, std::vector<Value> parameters = {});

  void MoveFirst();
  void MoveLast();
  /// Past the last row the set is at its end and has no current row; a further step stays there.
  void MoveNext();
  void MovePrevious();
  /// To the first row, in order, for which the SQL condition holds; false (and no move) when there is none.
  bool FindFirst(std::string_view condition, const std::vector<Value>& parameters = {});
  /// To the row of that number (see RowId); false (and no move) when it is gone or outside the set.
  bool MoveTo(std::int64_t rowId);
  /// Reads the current row anew; false when it is gone.
  bool Refresh();

  bool HasRow() const { return state_ == State::OnRow; }
  bool Bof() const { return state_ == State::BeforeFirst; }
  bool Eof() const { return state_ == State::AfterLast; }
  std::int64_t RowId() const { return rowId_; }
  std::int64_t RecordCount();
  /// How far through the set the current row stands, 0 to 100.
  double PercentPosition();

  EditMode Mode() const { return mode_; }
  void AddNew();
  void Edit();
  void Set(std::string_view field, const Value& value);
  /// Writes what was set and makes that row current. Throws BadValue and stays in its edit mode when a value does not
  /// fit.
  void Update();
  void CancelUpdate();
  /// Deletes the current row; a following MoveNext goes to the row after it.
  void Delete();

  /// The pending value in an edit, else the stored one. Throws std::logic_error without a row or for an unknown field.
  Value Get(std::string_view field) const;
  std::string Text(std::string_view field) const { return Get(field).Text(); }
  float Single(std::string_view field) const { return Get(field).Single(); }

 private:
  enum class State { BeforeFirst, OnRow, AfterLast };
  std::size_t FieldPlace(std::string_view field) const;
  bool Seek(bool forward, std::size_t equalFields, bool fromEnd);
  bool SeekWhere(const std::string& condition, const std::vector<Value>& parameters, bool forward);
  void Step(bool forward);
  void Load(std::int64_t rowId);
  std::int64_t Count(const std::string& condition, const std::vector<Value>& parameters);

  Database& file_;
  const Table& table_;
  std::string tableName_;
  std::vector<std::string> order_;
  std::string where_;
  std::vector<Value> parameters_;
  std::string rowSql_;

  State state_ = State::BeforeFirst;
  EditMode mode_ = EditMode::None;
  std::int64_t rowId_ = 0;
  std::vector<Value> row_;
  std::map<std::size_t, Value> pending_;
};

}  // namespace vellumark
