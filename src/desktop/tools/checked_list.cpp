#include "desktop/tools/checked_list.h"

#include <QKeyEvent>

namespace vellumark::desktop {
namespace {

constexpr int kBoxWidth = 32;

}  // namespace

void CheckedSource::SetChecked(int row, bool checked) {
  if (CanCheck(row)) checked_.at(static_cast<std::size_t>(row)) = checked ? 1 : 0;
}

std::vector<int> CheckedSource::CheckedRows() const {
  std::vector<int> rows;
  for (std::size_t row = 0; row < checked_.size(); ++row)
    if (checked_[row] != 0) rows.push_back(static_cast<int>(row));
  return rows;
}

double CheckedSource::Number(int row, int column) const {
  // Sorted by its boxes, a list has the checked rows together.
  if (column == 0) return IsChecked(row) ? 0 : 1;
  return GridSource::Number(row, column);
}

const char* CheckedSource::Mark(int row, int column) const {
  if (column != 0 || !CanCheck(row)) return nullptr;
  return IsChecked(row) ? "checked" : "unchecked";
}

CheckedList::CheckedList(Grid& grid, std::shared_ptr<CheckedSource> source, std::vector<GridColumn> columns)
    : QObject(&grid), grid_(grid), source_(std::move(source)) {
  GridColumn box{{}, kBoxWidth, GridColumn::Sort::Number};
  columns.insert(columns.begin(), std::move(box));
  grid_.SetColumns(std::move(columns));
  grid_.AllowManyRows();
  grid_.SetSource(source_);
  grid_.View().installEventFilter(this);
  connect(&grid_, &Grid::CellClicked, this, [this](int row, int column) {
    if (column == 0) Toggle({row}, !source_->IsChecked(row));
  });
}

void CheckedList::CheckShown(bool checked) {
  Toggle(grid_.ShownRows(), checked);
}

void CheckedList::UncheckAll() {
  Toggle(source_->CheckedRows(), false);
}

void CheckedList::Refresh() {
  grid_.Refresh();
  Q_EMIT CheckedChanged();
}

void CheckedList::Toggle(const std::vector<int>& rows, bool checked) {
  for (const int row : rows) source_->SetChecked(row, checked);
  grid_.View().viewport()->update();
  Q_EMIT CheckedChanged();
}

void CheckedList::SelectARow() {
  QTableView& view = grid_.View();
  if (view.selectionModel()->hasSelection() || grid_.Model().rowCount() == 0) return;
  const QModelIndex current = view.currentIndex();
  view.setCurrentIndex(grid_.Model().index(current.isValid() ? current.row() : 0, 1));
  view.selectRow(view.currentIndex().row());
}

bool CheckedList::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::FocusIn) {
    // Who comes by the keyboard sees which row Space is for; a click has selected its row by then.
    QMetaObject::invokeMethod(
        this, [this] { SelectARow(); }, Qt::QueuedConnection);
  }
  if (event->type() != QEvent::KeyPress) return QObject::eventFilter(watched, event);
  const auto& key = *static_cast<QKeyEvent*>(event);
  const int current = grid_.CurrentRow();
  if (key.key() != Qt::Key_Space || key.modifiers() != Qt::NoModifier || current < 0)
    return QObject::eventFilter(watched, event);
  SelectARow();
  Toggle(grid_.SelectedRows(), !source_->IsChecked(current));
  return true;
}

}  // namespace vellumark::desktop
