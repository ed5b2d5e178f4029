#pragma once

#include <QTableView>
#include <QWidget>
#include <memory>
#include <string>
#include <vector>

#include "desktop/kit/grid_model.h"

class QLineEdit;

namespace vellumark::desktop {

class TotalsRow;

/// A table with a fixed caption row, sorted by a click on a caption and by Shift+click on a second one, with columns
/// that can be chosen and dragged, a filter box above and a row of totals below if wanted. It asks its source for what
/// it shows, so 350,000 cells scroll, sort and filter without a stutter.
class Grid : public QWidget {
  Q_OBJECT

 public:
  explicit Grid(const QString& name);

  void SetColumns(std::vector<GridColumn> columns);
  void SetSource(std::shared_ptr<GridSource> source);
  /// The source has other rows or values. The current row, the sort and the filter stay.
  void Refresh();

  /// A box above that filters as one types. Its objectName is the grid's and "_Filter".
  QLineEdit* ShowFilter(const QString& placeholder);
  /// A text for each column, below the rows; empty: no totals.
  void SetTotals(std::vector<std::string> texts);
  /// Quiet text in the middle while there are no rows.
  void SetEmptyText(const QString& text);

  /// Rows are the source's; -1 and empty when there is none.
  int CurrentRow() const;
  void SetCurrentRow(int row);
  std::vector<int> SelectedRows() const;
  void AllowManyRows();
  /// As shown, for printing and files.
  const std::vector<int>& ShownRows() const { return model_.ShownRows(); }
  std::vector<int> ShownColumns() const;

  const GridSort& Sort() const { return model_.Sort(); }
  void SetSort(const GridSort& sort);
  /// A click on a caption, with or without Shift.
  void ClickCaption(int column, bool shift);

  bool IsShown(int column) const;
  void ShowColumn(int column, bool shown);
  /// The chosen ones of the columns that can be chosen: "|Date Entered||Quantity|".
  std::string ColumnSet() const;
  void SetColumnSet(std::string_view set);
  /// Pixels, also of a hidden column.
  int ColumnWidth(int column) const;
  void SetColumnWidth(int column, int width);

  QTableView& View() { return *view_; }
  GridModel& Model() { return model_; }
  const std::vector<GridColumn>& Columns() const { return model_.Columns(); }

 Q_SIGNALS:
  void CurrentRowChanged(int row);
  /// One click on a cell.
  void CellClicked(int row, int column);
  /// Enter or a double click.
  void RowActivated(int row);
  void Edited(int row, int column);
  void EditRefused(const Refusal& refusal);
  void ColumnsChanged();

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  friend class GridDelegate;
  void MoveOn(const QModelIndex& from, int key);
  void ChooseColumns(const QPoint& at);
  void ApplyColumns();
  template <class F>
  void KeepingPlace(F change);
  void NotePlace();
  int RowOfPlace() const;

  // What the current row was when it became that.
  struct Place {
    int row = -1;
    std::int64_t key = -1;
    std::string text{};
  };

  GridModel model_;
  QTableView* view_;
  TotalsRow* totals_;
  QLineEdit* filter_ = nullptr;
  QString emptyText_;
  Place place_;
};

/// Widths in settings are twips, 1440 to the inch; a pixel at 100 percent is 15 of them.
inline constexpr int kTwipsPerPixel = 15;

}  // namespace vellumark::desktop
