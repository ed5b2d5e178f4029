#include "desktop/kit/swatch_view.h"

#include <QPainter>

#include "desktop/kit/look.h"

namespace vellumark::desktop {

SwatchView::SwatchView(const QString& name, QSize size) {
  setObjectName(name);
  setFixedSize(size);
  setAccessibleName(tr("Swatch"));
}

void SwatchView::Show(std::optional<QColor> ink) {
  ink_ = ink;
  setAccessibleDescription(ink ? ink->name() : QString());
  update();
}

void SwatchView::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  const QRectF box = QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5);
  painter.setPen(Look::Now().border);
  painter.setBrush(ink_ ? QBrush(*ink_) : QBrush(Qt::NoBrush));
  painter.drawRoundedRect(box, 4, 4);
  if (!ink_) painter.drawLine(box.bottomLeft() + QPointF(3, -3), box.topRight() + QPointF(-3, 3));
}

}  // namespace vellumark::desktop
