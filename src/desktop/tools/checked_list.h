#pragma once

#include <QObject>
#include <memory>
#include <vector>

#include "desktop/kit/form.h"

namespace vellumark::desktop {

/// Rows with a check box in their first column. The boxes are drawn, not widgets, so any number of rows may have one.
class CheckedSource : public GridSource {
 public:
  /// A row that may not be checked has no box.
  virtual bool CanCheck(int) const { return true; }
  bool IsChecked(int row) const { return checked_.at(static_cast<std::size_t>(row)) != 0; }
  void SetChecked(int row, bool checked);
  std::vector<int> CheckedRows() const;

  double Number(int row, int column) const override;
  const char* Mark(int row, int column) const override;

 protected:
  /// So many rows, none of them checked.
  void ResetChecks(std::size_t rows) { checked_.assign(rows, 0); }

 private:
  std::vector<char> checked_;
};

/// Lets the operator check the rows of a grid: a click on the box, or Space for all rows that are selected (Shift and
/// Ctrl select several, Ctrl+A all that the filter shows).
class CheckedList : public QObject {
  Q_OBJECT

 public:
  /// The grid shows `source` from now on. Its columns are the check box and `columns`.
  CheckedList(Grid& grid, std::shared_ptr<CheckedSource> source, std::vector<GridColumn> columns);

  /// Checks or unchecks the rows that the filter lets through.
  void CheckShown(bool checked);
  /// Unchecks all rows, shown or not.
  void UncheckAll();
  /// The source has other rows.
  void Refresh();
  Grid& List() const { return grid_; }

 Q_SIGNALS:
  void CheckedChanged();

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void SelectARow();
  void Toggle(const std::vector<int>& rows, bool checked);

  Grid& grid_;
  std::shared_ptr<CheckedSource> source_;
};

}  // namespace vellumark::desktop
