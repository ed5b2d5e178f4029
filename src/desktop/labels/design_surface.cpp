#include "desktop/labels/design_surface.h"

#include <QHelpEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QScreen>
#include <QScrollBar>
#include <QToolTip>
#include <QWheelEvent>
#include <algorithm>
#include <cmath>

#include "desktop/kit/text.h"
#include "desktop/labels/surface_paint.h"

namespace vellumark::desktop {
namespace {

constexpr double kZooms[] = {0.1, 0.25, 0.5, 0.75, 1, 1.5, 2, 3, 4, 6, 8};
constexpr double kNear = 5;         // pixels within which boxes pull each other
constexpr double kSlack = 3;        // pixels that a click may shake
constexpr double kSmallest = 0.02;  // of the true size

}  // namespace

DesignSurface::DesignSurface(const QString& name) {
  setObjectName(name);
  setAccessibleName(tr("Label"));
  setFocusPolicy(Qt::StrongFocus);
  setFrameShape(QFrame::NoFrame);
  setMinimumSize(240, 140);
  viewport()->setMouseTracking(true);
  viewport()->setAttribute(Qt::WA_OpaquePaintEvent);
  DoNotTrack();
}

void DesignSurface::Show(SurfaceContent content) {
  content_ = std::move(content);
  const std::size_t before = selected_.size();
  std::erase_if(selected_, [&](const std::string& name) {
    return std::ranges::none_of(content_.boxes, [&](const SurfaceBox& box) { return box.item.name == name; });
  });
  Arrange();
  if (selected_.size() != before) Q_EMIT SelectionChanged();
  Describe();
}

std::vector<PlacedItem> DesignSurface::SelectedItems() const {
  std::vector<PlacedItem> items;
  for (const std::string& name : selected_)
    for (const SurfaceBox& box : content_.boxes)
      if (box.item.name == name) items.push_back(box.item);
  return items;
}

void DesignSurface::Select(std::vector<std::string> names) {
  std::erase_if(names, [&](const std::string& name) {
    return std::ranges::none_of(content_.boxes, [&](const SurfaceBox& box) { return box.item.name == name; });
  });
  if (names == selected_) return;
  selected_ = std::move(names);
  viewport()->update();
  Q_EMIT SelectionChanged();
  Describe();
}

// What a screen reader says of the surface.
void DesignSurface::Describe() {
  QStringList parts;
  for (const PlacedItem& item : SelectedItems())
    parts += tr("%1, X = %2 %3, Y = %4 %3")
                 .arg(Q(item.name), Q(LengthText(content_.unit, item.left)), Q(content_.unit.text).trimmed(),
                      Q(LengthText(content_.unit, item.top)));
  setAccessibleDescription(parts.isEmpty() ? tr("Nothing is selected") : parts.join("; "));
}

bool DesignSurface::IsSelected(const std::string& name) const {
  return std::ranges::find(selected_, name) != selected_.end();
}

// ---- Zoom and place

double DesignSurface::TrueDots() const {
  const double physical = screen()->physicalDotsPerInch();
  // Some screens tell no size, or a wrong one.
  return physical >= 50 && physical <= 400 ? physical : logicalDpiX();
}

QSizeF DesignSurface::Extent() const {
  QSizeF extent(content_.width, content_.length);
  for (const SurfaceBox& box : content_.boxes) extent = extent.expandedTo({box.item.Right(), box.item.Bottom()});
  return extent;
}

double DesignSurface::PixelsPerTwip() const {
  const double trueSize = TrueDots() / kTwipsPerInch;
  if (zoom_ > 0) return zoom_ * trueSize;
  const QSizeF extent = Extent();
  const double across = viewport()->width() - surface::kRuler - 2 * surface::kAround;
  const double down = viewport()->height() - surface::kRuler - 2 * surface::kAround;
  if (extent.isEmpty()) return trueSize;
  return std::max(std::min(across / extent.width(), down / extent.height()), kSmallest * trueSize);
}

void DesignSurface::SetZoom(double zoom) {
  if (zoom == zoom_) return;
  zoom_ = zoom;
  Arrange();
}

void DesignSurface::ZoomBy(int steps) {
  const double now = PixelsPerTwip() * kTwipsPerInch / TrueDots();
  for (; steps > 0; --steps) {
    const auto* next = std::ranges::upper_bound(kZooms, now * 1.001);
    if (next != std::end(kZooms)) Q_EMIT ZoomWanted(*next);
  }
  for (; steps < 0; ++steps) {
    const auto* next = std::ranges::lower_bound(kZooms, now * 0.999);
    if (next != std::begin(kZooms)) Q_EMIT ZoomWanted(*std::prev(next));
  }
}

void DesignSurface::SetSnap(bool snap) {
  snap_ = snap;
  viewport()->update();
}

void DesignSurface::Arrange() {
  const double scale = PixelsPerTwip();
  const QSizeF extent = Extent();
  const auto fit = [&](QScrollBar& bar, double size, int room) {
    const int all = static_cast<int>(std::ceil(size * scale + 2 * surface::kAround));
    bar.setRange(0, std::max(0, all - (room - surface::kRuler)));
    bar.setPageStep(std::max(1, room - surface::kRuler));
    bar.setSingleStep(24);
  };
  fit(*horizontalScrollBar(), zoom_ > 0 ? extent.width() : 0, viewport()->width());
  fit(*verticalScrollBar(), zoom_ > 0 ? extent.height() : 0, viewport()->height());
  viewport()->update();
}

QPointF DesignSurface::Origin() const {
  const double scale = PixelsPerTwip();
  const QSizeF extent = Extent() * scale;
  const auto begin = [&](double size, double room, const QScrollBar& bar) {
    const double free = room - surface::kRuler - size;
    // Whole pixels, so that lines are sharp.
    return bar.maximum() == 0 && free > 0 ? surface::kRuler + std::floor(free / 2)
                                          : surface::kRuler + surface::kAround - bar.value();
  };
  return {begin(extent.width(), viewport()->width(), *horizontalScrollBar()),
          begin(extent.height(), viewport()->height(), *verticalScrollBar())};
}

QRectF DesignSurface::OnScreen(const PlacedItem& item) const {
  const double scale = PixelsPerTwip();
  const QPointF origin = Origin();
  return {origin.x() + item.left * scale, origin.y() + item.top * scale, item.width * scale, item.height * scale};
}

QRectF DesignSurface::LabelOnScreen() const {
  return OnScreen({{}, 0, 0, content_.width, content_.length});
}

void DesignSurface::resizeEvent(QResizeEvent* event) {
  QAbstractScrollArea::resizeEvent(event);
  Arrange();
}

void DesignSurface::focusInEvent(QFocusEvent* event) {
  QAbstractScrollArea::focusInEvent(event);
  viewport()->update();
}

void DesignSurface::focusOutEvent(QFocusEvent* event) {
  CancelDrag();
  QAbstractScrollArea::focusOutEvent(event);
  viewport()->update();
}

// ---- Keys

void DesignSurface::Nudge(int across, int down, bool byGrid) {
  const std::vector<PlacedItem> items = SelectedItems();
  if (items.empty()) return;
  LabelUnit unit = content_.unit;
  if (byGrid) unit.nudge = unit.grid;
  LabelMove move;
  if (across != 0) move.across = Nudged(unit, items.front().left, across) - items.front().left;
  if (down != 0) move.down = Nudged(unit, items.front().top, down) - items.front().top;
  move = KeptInside(move, items, content_.width, content_.length);
  Q_EMIT MovedTo(Moved(items, move), "nudge");
}

void DesignSurface::StepTo(int by, bool adding) {
  const auto count = static_cast<int>(content_.boxes.size());
  if (count == 0) return;
  int at = by > 0 ? -1 : count;
  for (int i = 0; i < count && !selected_.empty(); ++i)
    if (content_.boxes[static_cast<std::size_t>(i)].item.name == selected_.back()) at = i;
  at = (at + by + count) % count;
  std::vector<std::string> names = adding ? selected_ : std::vector<std::string>{};
  const PlacedItem item = content_.boxes[static_cast<std::size_t>(at)].item;  // the boxes are shown anew by Select
  std::erase(names, item.name);
  names.push_back(item.name);
  Select(std::move(names));
  KeepInView(OnScreen(item).center());
}

void DesignSurface::keyPressEvent(QKeyEvent* event) {
  const bool shift = (event->modifiers() & Qt::ShiftModifier) != 0;
  switch (event->key()) {
    case Qt::Key_Left:
      return Nudge(-1, 0, shift);
    case Qt::Key_Right:
      return Nudge(1, 0, shift);
    case Qt::Key_Up:
      return Nudge(0, -1, shift);
    case Qt::Key_Down:
      return Nudge(0, 1, shift);
    case Qt::Key_PageDown:
      return StepTo(1, shift);
    case Qt::Key_PageUp:
      return StepTo(-1, shift);
    case Qt::Key_Plus:
      return ZoomBy(1);
    case Qt::Key_Minus:
      return ZoomBy(-1);
    case Qt::Key_0:
      Q_EMIT ZoomWanted(0);
      return;
    case Qt::Key_1:
      Q_EMIT ZoomWanted(1);
      return;
    case Qt::Key_Delete:
      if (!selected_.empty()) Q_EMIT HideWanted();
      return;
    case Qt::Key_Space:
      if (selected_.size() == 1) Q_EMIT Activated(Q(selected_.front()));
      return;
    case Qt::Key_A:
      if ((event->modifiers() & Qt::ControlModifier) == 0) break;
      {
        std::vector<std::string> all;
        for (const SurfaceBox& box : content_.boxes) all.push_back(box.item.name);
        return Select(std::move(all));
      }
    case Qt::Key_Escape:
      // The innermost first: a drag, the selection, and then the window.
      if (drag_ || frame_) return CancelDrag();
      if (!selected_.empty()) return Select({});
      break;
    default:
      break;
  }
  // The area itself would scroll; the window has the rest.
  event->ignore();
}

// ---- Mouse

const SurfaceBox* DesignSurface::BoxAt(QPointF point) const {
  // The smallest one, so that what lies on a large one can be reached.
  const SurfaceBox* best = nullptr;
  for (const SurfaceBox& box : content_.boxes) {
    if (!OnScreen(box.item).adjusted(-2, -2, 2, 2).contains(point)) continue;
    const auto area = [](const SurfaceBox& of) { return of.item.width * of.item.height; };
    if (best == nullptr || area(box) <= area(*best)) best = &box;
  }
  return best;
}

void DesignSurface::Point(const SurfaceBox* box) {
  const std::string name = box == nullptr ? std::string() : box->item.name;
  viewport()->setCursor(box == nullptr ? Qt::ArrowCursor : Qt::SizeAllCursor);
  if (name == pointed_) return;
  pointed_ = name;
  viewport()->update();
  Q_EMIT Pointed(Q(pointed_));
}

void DesignSurface::mousePressEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton) return;
  const QPointF at = event->position();
  const bool adding = (event->modifiers() & (Qt::ControlModifier | Qt::ShiftModifier)) != 0;
  const SurfaceBox* box = BoxAt(at);
  if (box == nullptr) {
    if (!adding) Select({});
    frameFrom_ = at;
    frame_ = QRectF(at, QSizeF());
    return;
  }
  const std::string name = box->item.name;
  if (adding) {
    std::vector<std::string> names = selected_;
    if (std::erase(names, name) == 0) names.push_back(name);
    return Select(std::move(names));
  }
  if (!IsSelected(name)) Select({name});
  drag_ = Drag{.from = at, .held = name, .items = SelectedItems()};
}

void DesignSurface::DragTo(QPointF point, bool freely) {
  const double scale = PixelsPerTwip();
  LabelMove move{.across = (point.x() - drag_->from.x()) / scale, .down = (point.y() - drag_->from.y()) / scale};
  if (snap_ && !freely) {
    const auto held = std::ranges::find(drag_->items, drag_->held, &PlacedItem::name);
    std::vector<PlacedItem> others;
    for (const SurfaceBox& box : content_.boxes)
      if (!IsSelected(box.item.name)) others.push_back(box.item);
    move = vellumark::Snapped(move, *held, others, content_.width, content_.length, content_.unit.grid, kNear / scale);
  }
  move = KeptInside(move, drag_->items, content_.width, content_.length);
  lines_ = move;
  Q_EMIT MovedTo(Moved(drag_->items, move), "drag");
}

void DesignSurface::mouseMoveEvent(QMouseEvent* event) {
  const QPointF at = event->position();
  if (frame_) {
    frame_ = QRectF(frameFrom_, at).normalized();
    viewport()->update();
    return;
  }
  if (!drag_) return Point(BoxAt(at));
  if (!drag_->moving && (at - drag_->from).manhattanLength() < kSlack) return;
  drag_->moving = true;
  KeepInView(at);
  DragTo(at, (event->modifiers() & Qt::AltModifier) != 0);
}

void DesignSurface::mouseReleaseEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton) return;
  if (frame_) {
    const QRectF frame = *frame_;
    frame_.reset();
    if (frame.width() > kSlack || frame.height() > kSlack) {
      std::vector<std::string> names = selected_;
      for (const SurfaceBox& box : content_.boxes)
        if (OnScreen(box.item).intersects(frame) && !IsSelected(box.item.name)) names.push_back(box.item.name);
      Select(std::move(names));
    }
    viewport()->update();
  }
  if (!drag_) return;
  drag_.reset();
  lines_ = {};
  viewport()->update();
  Q_EMIT GestureEnded();
}

void DesignSurface::CancelDrag() {
  frame_.reset();
  lines_ = {};
  viewport()->update();
  if (!drag_) return;
  const Drag drag = *std::move(drag_);
  drag_.reset();
  if (drag.moving) Q_EMIT MovedTo(drag.items, "drag");
  Q_EMIT GestureEnded();
}

void DesignSurface::KeepInView(QPointF point) {
  const auto follow = [](QScrollBar& bar, double at, double room) {
    if (at < surface::kRuler + kSlack) bar.setValue(bar.value() - bar.singleStep());
    if (at > room - kSlack) bar.setValue(bar.value() + bar.singleStep());
  };
  const QPointF before = Origin();
  follow(*horizontalScrollBar(), point.x(), viewport()->width());
  follow(*verticalScrollBar(), point.y(), viewport()->height());
  if (drag_) drag_->from += Origin() - before;
}

void DesignSurface::mouseDoubleClickEvent(QMouseEvent* event) {
  const SurfaceBox* box = BoxAt(event->position());
  if (box != nullptr && event->button() == Qt::LeftButton) Q_EMIT Activated(Q(box->item.name));
}

void DesignSurface::wheelEvent(QWheelEvent* event) {
  if ((event->modifiers() & Qt::ControlModifier) == 0) return QAbstractScrollArea::wheelEvent(event);
  const QPointF twips = (event->position() - Origin()) / PixelsPerTwip();
  ZoomBy(event->angleDelta().y() > 0 ? 1 : -1);
  // What is under the pointer stays there.
  const QPointF off = Origin() + twips * PixelsPerTwip() - event->position();
  horizontalScrollBar()->setValue(horizontalScrollBar()->value() + static_cast<int>(off.x()));
  verticalScrollBar()->setValue(verticalScrollBar()->value() + static_cast<int>(off.y()));
  event->accept();
}

bool DesignSurface::viewportEvent(QEvent* event) {
  if (event->type() == QEvent::Leave) Point(nullptr);
  if (event->type() == QEvent::ToolTip) {
    auto* help = static_cast<QHelpEvent*>(event);
    const SurfaceBox* box = BoxAt(help->pos());
    QToolTip::showText(
        help->globalPos(),
        box == nullptr ? QString() : box->caption + (box->fault.isEmpty() ? QString() : "\n" + box->fault), viewport());
    return true;
  }
  return QAbstractScrollArea::viewportEvent(event);
}

}  // namespace vellumark::desktop
