#include "desktop/batch/cell_button.h"

#include <QKeyEvent>
#include <QPainter>

#include "desktop/kit/look.h"

namespace vellumark::desktop {
namespace {

constexpr int kIconSize = 16;

}  // namespace

CellButton::CellButton(const QString& name, double scale, Qt::Alignment alignment)
    : scale_(scale), alignment_(alignment) {
  setObjectName(name);
  setFont(Look::Figures(scale));
  setFocusPolicy(Qt::ClickFocus);
  setCursor(Qt::PointingHandCursor);
  const bool isName = (alignment & Qt::AlignLeft) != 0 && scale == 1;
  setSizePolicy(isName ? QSizePolicy::Expanding : QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void CellButton::SetTone(Tone tone) {
  tone_ = tone;
  update();
}

void CellButton::SetClickable(bool clickable) {
  clickable_ = clickable;
  setCursor(clickable ? Qt::PointingHandCursor : Qt::ArrowCursor);
  update();
}

void CellButton::KeepRoomFor(const QString& text) {
  room_ = QFontMetrics(Look::Figures(scale_)).horizontalAdvance(text);
  updateGeometry();
}

QSize CellButton::sizeHint() const {
  const QFontMetrics metrics(Look::Figures(scale_));
  int width = std::max(metrics.horizontalAdvance(text()), room_) + 2 * space::kTight + 2;
  if (!icon().isNull()) width += kIconSize + space::kTight;
  return {width, metrics.height() + space::kTight};
}

QSize CellButton::minimumSizeHint() const {
  if (sizePolicy().horizontalPolicy() != QSizePolicy::Expanding) return sizeHint();
  return {QFontMetrics(Look::Figures(scale_)).horizontalAdvance(QLatin1String("MMMMMM")), sizeHint().height()};
}

QRect CellButton::TextRect() const {
  QRect box = rect().adjusted(space::kTight, 0, -space::kTight, 0);
  if (!icon().isNull()) box.setLeft(box.left() + kIconSize + space::kTight);
  return box;
}

QColor CellButton::Color() const {
  const Colors& colors = Look::Now();
  switch (tone_) {
    case Tone::Quiet:
      return colors.quiet;
    case Tone::Danger:
      return colors.danger;
    case Tone::Link:
      return colors.accent;
    case Tone::Normal:
      break;
  }
  return colors.text;
}

void CellButton::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  if (!icon().isNull()) {
    const QRect box(space::kTight, (height() - kIconSize) / 2, kIconSize, kIconSize);
    icon().paint(&painter, box);
  }
  QFont font = Look::Figures(scale_);
  font.setUnderline(clickable_ && underMouse());
  painter.setFont(font);
  painter.setPen(Color());
  const QRect box = TextRect();
  const QString shown = QFontMetrics(font).elidedText(text(), Qt::ElideRight, box.width());
  painter.drawText(box, static_cast<int>(alignment_ | Qt::AlignVCenter) | Qt::TextSingleLine, shown);
  if (!hasFocus()) return;
  painter.setPen(QPen(Look::Now().accent, 2));
  painter.setBrush(Qt::NoBrush);
  painter.drawRoundedRect(QRectF(rect()).adjusted(1, 1, -1, -1), 4, 4);
}

void CellButton::keyPressEvent(QKeyEvent* event) {
  const bool presses = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter || event->key() == Qt::Key_Space;
  if (!presses || (event->modifiers() & ~Qt::KeypadModifier) != 0) {
    event->ignore();  // arrows are the panel's
    return;
  }
  if (clickable_) click();
}

void CellButton::mousePressEvent(QMouseEvent* event) {
  if (!clickable_) {
    event->ignore();
    return;
  }
  QAbstractButton::mousePressEvent(event);
}

void CellButton::enterEvent(QEnterEvent* event) {
  QAbstractButton::enterEvent(event);
  update();
}

void CellButton::leaveEvent(QEvent* event) {
  QAbstractButton::leaveEvent(event);
  update();
}

}  // namespace vellumark::desktop
