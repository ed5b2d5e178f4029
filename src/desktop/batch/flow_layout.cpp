#include "desktop/batch/flow_layout.h"

#include <QWidget>
#include <algorithm>

#include "desktop/kit/look.h"

namespace vellumark::desktop {

FlowLayout::FlowLayout(QWidget* parent) : QLayout(parent) {
  setContentsMargins(0, 0, 0, 0);
  setSpacing(space::kUnit);
}

FlowLayout::~FlowLayout() {
  for (QLayoutItem* item : items_) delete item;
}

QLayoutItem* FlowLayout::itemAt(int index) const {
  return index >= 0 && index < count() ? items_[static_cast<std::size_t>(index)] : nullptr;
}

QLayoutItem* FlowLayout::takeAt(int index) {
  QLayoutItem* item = itemAt(index);
  if (item != nullptr) items_.erase(items_.begin() + index);
  return item;
}

QSize FlowLayout::sizeHint() const {
  QSize size;
  for (const QLayoutItem* item : items_) {
    if (item->isEmpty()) continue;
    const QSize one = item->sizeHint();
    size.rwidth() += one.width() + spacing();
    size.setHeight(std::max(size.height(), one.height()));
  }
  return size;
}

QSize FlowLayout::minimumSize() const {
  QSize size;
  for (const QLayoutItem* item : items_)
    if (!item->isEmpty()) size = size.expandedTo(item->minimumSize());
  return size;
}

void FlowLayout::setGeometry(const QRect& rect) {
  QLayout::setGeometry(rect);
  Arrange(rect, true);
}

int FlowLayout::Arrange(const QRect& rect, bool move) const {
  int y = rect.y();
  std::vector<QLayoutItem*> line;
  int width = 0;
  int height = 0;
  const auto end = [&] {
    int x = rect.right() + 1 - width;
    for (QLayoutItem* item : line) {
      const QSize size = item->sizeHint();
      if (move) item->setGeometry(QRect(QPoint(x, y + (height - size.height()) / 2), size));
      x += size.width() + spacing();
    }
    y += height;
    line.clear();
    width = height = 0;
  };
  for (QLayoutItem* item : items_) {
    if (item->isEmpty()) continue;
    const QSize size = item->sizeHint();
    if (!line.empty() && width + spacing() + size.width() > rect.width()) {
      end();
      y += spacing();
    }
    width += size.width() + (line.empty() ? 0 : spacing());
    height = std::max(height, size.height());
    line.push_back(item);
  }
  end();
  return y - rect.y();
}

}  // namespace vellumark::desktop
