#pragma once

#include <QAbstractTableModel>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "desktop/kit/grid_source.h"

namespace vellumark::desktop {

/// Rows of a source, sorted and filtered by index. The keys of a sort and the text that a filter looks through are read
/// from the source once. A source that reads on demand keeps only what the filter wants, and is read as far as the
/// operator scrolls; another order than its own needs all of it.
class GridModel : public QAbstractTableModel {
  Q_OBJECT

 public:
  using QAbstractTableModel::QAbstractTableModel;

  void SetColumns(std::vector<GridColumn> columns);
  const std::vector<GridColumn>& Columns() const { return columns_; }
  GridColumn& Column(int column) { return columns_.at(static_cast<std::size_t>(column)); }
  void SetSource(std::shared_ptr<GridSource> source);
  GridSource* Source() const { return source_.get(); }
  /// The source has other rows or values.
  void Refresh();

  void SetSort(const GridSort& sort);
  const GridSort& Sort() const { return sort_; }
  /// Rows in which each word of `text` stands somewhere, in any case.
  void SetFilter(const QString& text);

  /// The source's row behind a shown one, and back (-1 when it is not shown).
  int SourceRow(int shown) const { return shown_.at(static_cast<std::size_t>(shown)); }
  int ShownRow(int sourceRow) const;
  const std::vector<int>& ShownRows() const { return shown_; }

  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
  Qt::ItemFlags flags(const QModelIndex& index) const override;
  bool setData(const QModelIndex& index, const QVariant& value, int role) override;
  bool canFetchMore(const QModelIndex& parent = {}) const override { return !parent.isValid() && more_; }
  void fetchMore(const QModelIndex& parent = {}) override;

 Q_SIGNALS:
  /// A source that reads on demand has read.
  void RowsRead();
  void Edited(int sourceRow, int column);
  void EditRefused(const Refusal& refusal);

 private:
  void SortRows();
  void FilterRows();
  void MakeHaystack();
  void BeginReading();
  void ReadAllAndSort();
  std::string RowText(int row) const;

  std::vector<GridColumn> columns_;
  std::shared_ptr<GridSource> source_;
  GridSort sort_;
  std::vector<std::string> words_;  ///< of the filter, in capitals
  bool onDemand_ = false;
  bool more_ = false;    ///< may still be read
  bool goesOn_ = false;  ///< reads again without being asked
  std::vector<int> sorted_;
  std::vector<int> shown_;
  std::string haystack_;                ///< the visible text of all rows, in capitals
  std::vector<std::size_t> rowStarts_;  ///< where each row begins in it, and the end
};

}  // namespace vellumark::desktop
