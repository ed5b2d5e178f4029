#include "desktop/kit/grid.h"

#include <QApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMenu>
#include <QPainter>
#include <QScrollBar>
#include <QVBoxLayout>
#include <algorithm>
#include <cstdlib>

#include "desktop/kit/access_letters.h"
#include "desktop/kit/grid_parts.h"
#include "desktop/kit/icons.h"
#include "desktop/kit/look.h"
#include "desktop/kit/text.h"

namespace vellumark::desktop {

Grid::Grid(const QString& name) {
  setObjectName(name);
  view_ = new QTableView;
  view_->setObjectName(name + "_View");
  auto* header = new GridHeader(*this, view_);
  view_->setHorizontalHeader(header);
  view_->setItemDelegate(new GridDelegate(*this));
  model_.setParent(this);  // among what a closing window goes through
  view_->setModel(&model_);
  view_->setSelectionBehavior(QAbstractItemView::SelectRows);
  view_->setSelectionMode(QAbstractItemView::SingleSelection);
  view_->setEditTriggers(QAbstractItemView::EditKeyPressed | QAbstractItemView::AnyKeyPressed);
  view_->setTabKeyNavigation(false);
  view_->setWordWrap(false);
  view_->setShowGrid(true);
  view_->setCornerButtonEnabled(false);
  view_->setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
  view_->verticalHeader()->hide();
  view_->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
  view_->verticalHeader()->setDefaultSectionSize(space::kRowHeight);
  view_->viewport()->installEventFilter(this);
  setFocusProxy(view_);
  totals_ = new TotalsRow(*this);
  totals_->setObjectName(name + "_Totals");

  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(0);
  layout->addWidget(view_, 1);
  layout->addWidget(totals_);

  connect(header, &QHeaderView::sectionClicked, this,
          [this](int column) { ClickCaption(column, (QApplication::keyboardModifiers() & Qt::ShiftModifier) != 0); });
  connect(header, &QHeaderView::customContextMenuRequested, this,
          [this, header](const QPoint& at) { ChooseColumns(header->mapToGlobal(at)); });
  connect(header, &QHeaderView::sectionResized, this, [this](int column, int, int width) {
    if (width > 0) model_.Column(column).width = width;
    totals_->update();
  });
  connect(view_->horizontalScrollBar(), &QScrollBar::valueChanged, totals_, qOverload<>(&QWidget::update));
  connect(view_, &QTableView::clicked, this, [this](const QModelIndex& index) {
    if ((index.flags() & Qt::ItemIsEditable) != 0) view_->edit(index);
    Q_EMIT CellClicked(model_.SourceRow(index.row()), index.column());
  });
  connect(view_, &QTableView::activated, this,
          [this](const QModelIndex& index) { Q_EMIT RowActivated(model_.SourceRow(index.row())); });
  connect(view_->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
          [this] {
            NotePlace();
            Q_EMIT CurrentRowChanged(CurrentRow());
          });
  connect(&model_, &GridModel::Edited, this, &Grid::Edited);
  connect(&model_, &GridModel::EditRefused, this, [this](const Refusal& refusal) {
    if (!refusal.declined) Q_EMIT EditRefused(refusal);
  });
}

template <class F>
void Grid::KeepingPlace(F change) {
  const bool had = CurrentRow() >= 0;
  const int column = std::max(view_->currentIndex().column(), 0);
  const int across = view_->horizontalScrollBar()->value();
  change();
  const int now = had && model_.Source() != nullptr ? RowOfPlace() : -1;
  const int shown = now < 0 ? -1 : model_.ShownRow(now);
  if (shown >= 0) view_->setCurrentIndex(model_.index(shown, column));
  view_->horizontalScrollBar()->setValue(across);
  totals_->update();
}

// By then the source may have been read anew, so that what stood in the row is asked when the operator comes to it.
void Grid::NotePlace() {
  const int row = CurrentRow();
  if (row < 0) return;
  const GridSource& source = *model_.Source();
  place_ = {row, source.Key(row), source.IsEditable(row, 0) ? std::string() : source.Text(row, 0)};
}

int Grid::RowOfPlace() const {
  const GridSource& source = *model_.Source();
  if (place_.key >= 0) return source.RowOf(place_.key);
  const int row = place_.row < source.Rows() ? place_.row : -1;
  if (place_.text.empty() || (row >= 0 && source.Text(row, 0) == place_.text)) return row;
  int nearest = -1;
  for (int other = 0; other < source.Rows(); ++other)
    if (source.Text(other, 0) == place_.text &&
        (nearest < 0 || std::abs(other - place_.row) < std::abs(nearest - place_.row)))
      nearest = other;
  return nearest >= 0 ? nearest : row;
}

void Grid::SetColumns(std::vector<GridColumn> columns) {
  model_.SetColumns(std::move(columns));
  double tallest = 1;
  for (const GridColumn& column : model_.Columns()) tallest = std::max(tallest, column.scale);
  const int needed = QFontMetrics(Look::Figures(tallest)).height() + space::kUnit;
  const int height = std::max(space::kRowHeight, (needed + space::kTight - 1) / space::kTight * space::kTight);
  view_->verticalHeader()->setDefaultSectionSize(height);
  ApplyColumns();
}

void Grid::ApplyColumns() {
  for (int i = 0; i < model_.columnCount(); ++i) {
    const GridColumn& column = model_.Column(i);
    const bool hidden = column.width == 0 || !column.shown;
    const int width = column.width;
    if (!hidden) view_->setColumnWidth(i, width);
    view_->setColumnHidden(i, hidden);
  }
}

void Grid::SetSource(std::shared_ptr<GridSource> source) {
  model_.SetSource(std::move(source));
  totals_->update();
}

void Grid::Refresh() {
  KeepingPlace([this] { model_.Refresh(); });
}

QLineEdit* Grid::ShowFilter(const QString& placeholder) {
  filter_ = new QLineEdit;
  filter_->setObjectName(objectName() + "_Filter");
  filter_->setPlaceholderText(placeholder);
  filter_->setAccessibleName(placeholder);
  filter_->setClearButtonEnabled(true);
  filter_->addAction(Icon("Find"), QLineEdit::LeadingPosition);
  filter_->setMaximumWidth(320);
  filter_->installEventFilter(this);
  connect(filter_, &QLineEdit::textChanged, this,
          [this](const QString& text) { KeepingPlace([&] { model_.SetFilter(text); }); });
  auto* column = qobject_cast<QVBoxLayout*>(layout());
  column->insertWidget(0, filter_);
  column->insertSpacing(1, space::kUnit);
  setTabOrder(filter_, view_);
  return filter_;
}

void Grid::SetTotals(std::vector<std::string> texts) {
  totals_->SetTexts(std::move(texts));
}

void Grid::SetEmptyText(const QString& text) {
  emptyText_ = text;
  view_->viewport()->update();
}

int Grid::CurrentRow() const {
  const QModelIndex index = view_->currentIndex();
  return index.isValid() ? model_.SourceRow(index.row()) : -1;
}

void Grid::SetCurrentRow(int row) {
  const int shown = row < 0 ? -1 : model_.ShownRow(row);
  if (shown < 0) {
    view_->setCurrentIndex({});
    return;
  }
  const QModelIndex index = model_.index(shown, std::max(view_->currentIndex().column(), 0));
  view_->setCurrentIndex(index);
  NotePlace();
  view_->scrollTo(index);
}

std::vector<int> Grid::SelectedRows() const {
  std::vector<int> rows;
  for (const QModelIndex& index : view_->selectionModel()->selectedRows())
    rows.push_back(model_.SourceRow(index.row()));
  std::ranges::sort(rows);
  return rows;
}

void Grid::AllowManyRows() {
  view_->setSelectionMode(QAbstractItemView::ExtendedSelection);
}

std::vector<int> Grid::ShownColumns() const {
  std::vector<int> columns;
  for (int i = 0; i < model_.columnCount(); ++i) {
    if (IsShown(i)) columns.push_back(i);
  }
  return columns;
}

void Grid::SetSort(const GridSort& sort) {
  KeepingPlace([&] { model_.SetSort(sort); });
  view_->horizontalHeader()->viewport()->update();
}

void Grid::ClickCaption(int column, bool shift) {
  if (!model_.Column(column).sortable) return;
  GridSort sort = model_.Sort();
  if (shift && sort.column >= 0 && column != sort.column) {
    sort.secondDescending = column == sort.second && !sort.secondDescending;
    sort.second = column;
  } else {
    sort.descending = column == sort.column && !sort.descending;
    sort.column = column;
    sort.second = -1;
    sort.secondDescending = false;
  }
  SetSort(sort);
}

bool Grid::IsShown(int column) const {
  const GridColumn& it = model_.Columns().at(static_cast<std::size_t>(column));
  return it.width > 0 && it.shown;
}

void Grid::ShowColumn(int column, bool shown) {
  model_.Column(column).shown = shown;
  ApplyColumns();
  // The filter looks through what is shown.
  Refresh();
  Q_EMIT ColumnsChanged();
}

std::string Grid::ColumnSet() const {
  std::string set;
  for (const GridColumn& column : model_.Columns()) {
    if (column.choosable && column.shown) set += "|" + U8(column.name) + "|";
  }
  return set;
}

void Grid::SetColumnSet(std::string_view set) {
  for (int i = 0; i < model_.columnCount(); ++i) {
    GridColumn& column = model_.Column(i);
    if (column.choosable) column.shown = set.find("|" + U8(column.name) + "|") != std::string_view::npos;
  }
  ApplyColumns();
  Refresh();
  Q_EMIT ColumnsChanged();
}

int Grid::ColumnWidth(int column) const {
  return model_.Columns().at(static_cast<std::size_t>(column)).width;
}

void Grid::SetColumnWidth(int column, int width) {
  model_.Column(column).width = width;
  ApplyColumns();
}

void Grid::ChooseColumns(const QPoint& at) {
  QMenu menu;
  for (int i = 0; i < model_.columnCount(); ++i) {
    const GridColumn& column = model_.Column(i);
    if (!column.choosable || column.width == 0) continue;
    QAction* action = menu.addAction(QString(column.name).replace('&', "&&"));
    action->setCheckable(true);
    action->setChecked(column.shown);
    connect(action, &QAction::toggled, this, [this, i](bool shown) { ShowColumn(i, shown); });
  }
  LetterActions(menu.actions());
  if (!menu.isEmpty()) menu.exec(at);
}

void Grid::MoveOn(const QModelIndex& from, int key) {
  const auto editable = [this](int row, int column) {
    const QModelIndex index = model_.index(row, column);
    return IsShown(column) && (index.flags() & Qt::ItemIsEditable) != 0;
  };
  const int rows = model_.rowCount();
  const int columns = model_.columnCount();
  int row = from.row();
  int column = from.column();
  const int page = std::max(view_->viewport()->height() / view_->verticalHeader()->defaultSectionSize() - 1, 1);
  // To the next cell that can be edited, over those that cannot.
  do {
    switch (key) {
      case Qt::Key_Up:
        --row;
        break;
      case Qt::Key_PageUp:
        row = row == 0 ? -1 : std::max(row - page, 0);
        break;
      case Qt::Key_PageDown:
        row = row == rows - 1 ? rows : std::min(row + page, rows - 1);
        break;
      case Qt::Key_Left:
        if (--column < 0) {
          column = columns - 1;
          --row;
        }
        break;
      case Qt::Key_Right:
        if (++column >= columns) {
          column = 0;
          ++row;
        }
        break;
      default:
        ++row;
        break;
    }
    if (row < 0 || row >= rows) {
      view_->setFocus();
      return;
    }
  } while (!editable(row, column));
  const QModelIndex next = model_.index(row, column);
  view_->setCurrentIndex(next);
  view_->scrollTo(next);
  view_->edit(next);
}

bool Grid::eventFilter(QObject* watched, QEvent* event) {
  if (watched == view_->viewport() && event->type() == QEvent::Paint && model_.rowCount() == 0 &&
      !emptyText_.isEmpty()) {
    QPainter painter(view_->viewport());
    painter.setPen(Look::Now().quiet);
    painter.drawText(view_->viewport()->rect(), Qt::AlignCenter, emptyText_);
    return false;
  }
  if (watched == filter_ && event->type() == QEvent::KeyPress) {
    const int key = static_cast<QKeyEvent*>(event)->key();
    if (key == Qt::Key_Down || key == Qt::Key_Return || key == Qt::Key_Enter) {
      view_->setFocus(Qt::TabFocusReason);
      if (!view_->currentIndex().isValid() && model_.rowCount() > 0) view_->setCurrentIndex(model_.index(0, 0));
      return true;
    }
    if (key == Qt::Key_Escape && !filter_->text().isEmpty()) {
      filter_->clear();
      return true;
    }
  }
  return QWidget::eventFilter(watched, event);
}

}  // namespace vellumark::desktop
