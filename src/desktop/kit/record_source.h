#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "core/base/table.h"
#include "desktop/kit/grid_source.h"

namespace vellumark::desktop {

/// A column of a grid as a table of the core tells it: its heading in windows, its width, what it is sorted by.
GridColumn ColumnOf(const TableColumn& column);
/// A cell as a window shows it: dates and figures as the locale writes them, all else as people read it everywhere.
std::string CellTextInWindow(const TableColumn& column, const TableValue& value);
/// What a cell is sorted by; kNoNumber of one that is sorted by its text, or is empty.
double CellNumber(const TableValue& value);

/// Shows records by their definition in the core: what columns there are, how they are called, written, sorted and how
/// wide they are comes from there, and each cell is worked out when it is asked for. Who has the records says so.
template <class Record>
class RecordSource : public GridSource {
 public:
  /// With the columns of these keys or captions, in that order; without any, those that people see.
  explicit RecordSource(TableOf<Record> table, const std::vector<std::string_view>& columns = {}) {
    Define(std::move(table), columns);
  }
  /// Another definition, such as one in other units.
  void Define(TableOf<Record> table, const std::vector<std::string_view>& columns = {}) {
    table_ = std::move(table);
    const ListTable all = table_.Of(std::vector<Record>());
    places_.clear();
    for (const std::string_view column : columns) places_.push_back(all.Find(column).value());
    if (columns.empty()) places_ = all.Shown();
  }

  std::vector<GridColumn> Columns() const {
    std::vector<GridColumn> columns;
    for (const std::size_t place : places_) columns.push_back(ColumnOf(table_.Columns()[place]));
    return columns;
  }
  std::string Text(int row, int column) const override {
    return CellTextInWindow(table_.Columns()[Place(column)], Value(row, column));
  }
  double Number(int row, int column) const override { return CellNumber(Value(row, column)); }

 protected:
  virtual const Record& At(int row) const = 0;

 private:
  std::size_t Place(int column) const { return places_[static_cast<std::size_t>(column)]; }
  TableValue Value(int row, int column) const { return table_.ValueOf(At(row), Place(column)); }

  TableOf<Record> table_;
  std::vector<std::size_t> places_;
};

/// Keeps the records itself.
template <class Record>
class RecordRows : public RecordSource<Record> {
 public:
  using RecordSource<Record>::RecordSource;

  std::vector<Record> rows;

  int Rows() const override { return static_cast<int>(rows.size()); }
  const Record& At(int row) const override { return rows.at(static_cast<std::size_t>(row)); }
};

}  // namespace vellumark::desktop
