#pragma once

#include <QHeaderView>
#include <QStyledItemDelegate>
#include <QWidget>
#include <string>
#include <vector>

#include "desktop/kit/grid.h"

namespace vellumark::desktop {

/// The captions: an arrow on the sorted columns, a darker ground, a 2 beside the second sort.
class GridHeader : public QHeaderView {
  Q_OBJECT

 public:
  GridHeader(Grid& grid, QWidget* parent);

 protected:
  void paintSection(QPainter* painter, const QRect& rect, int section) const override;
  QSize sectionSizeFromContents(int section) const override;

 private:
  Grid& grid_;
};

/// Paints the cells and makes their editors.
class GridDelegate : public QStyledItemDelegate {
  Q_OBJECT

 public:
  explicit GridDelegate(Grid& grid);
  void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
  QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
  void setEditorData(QWidget* editor, const QModelIndex& index) const override;
  void setModelData(QWidget* editor, QAbstractItemModel* model, const QModelIndex& index) const override;
  void updateEditorGeometry(QWidget* editor, const QStyleOptionViewItem& option,
                            const QModelIndex& index) const override;
  bool eventFilter(QObject* editor, QEvent* event) override;

 private:
  bool IsNumber(const QModelIndex& index) const;

  Grid& grid_;
};

/// The row under the rows, which scrolls sideways with them.
class TotalsRow : public QWidget {
  Q_OBJECT

 public:
  explicit TotalsRow(Grid& grid);
  void SetTexts(std::vector<std::string> texts);
  const std::vector<std::string>& Texts() const { return texts_; }
  QSize sizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  Grid& grid_;
  std::vector<std::string> texts_;
};

}  // namespace vellumark::desktop
