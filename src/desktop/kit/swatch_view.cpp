#include "desktop/kit/swatch_view.h"

#include <QPainter>
#include <QPainterPath>
#include <algorithm>

#include "desktop/kit/look.h"

namespace vellumark::desktop {

namespace {

constexpr int kEstimated = 254;  // of the alpha

}  // namespace

QColor ColorOf(const Ink& ink) {
  return {ink.Red, ink.Green, ink.Blue, ink.estimated ? kEstimated : 255};
}

std::optional<QColor> ColorOf(const std::optional<Ink>& ink) {
  return ink ? std::optional(ColorOf(*ink)) : std::nullopt;
}

void PaintInk(QPainter& painter, const QRectF& box, const QColor& ink, double corner) {
  const Colors& colors = Look::Now();
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(colors.border);
  painter.setBrush(QColor(ink.rgb()));
  painter.drawRoundedRect(box, corner, corner);
  if (ink.alpha() == kEstimated) {
    const double turned = std::min(box.width(), box.height()) * 0.55;
    const QPolygonF fold{box.bottomRight(), box.bottomRight() - QPointF(turned, 0),
                         box.bottomRight() - QPointF(0, turned)};
    painter.setBrush(colors.surface);
    painter.drawPolygon(fold);
  }
  painter.restore();
}

QString InkText(const std::optional<Ink>& ink) {
  if (!ink) return {};
  const QString name = ColorOf(*ink).name();
  return ink->estimated ? SwatchView::tr("%1, estimated from its ingredients").arg(name) : name;
}

SwatchView::SwatchView(const QString& name, QSize size, Unknown unknown) : unknown_(unknown) {
  setObjectName(name);
  setFixedSize(size);
  setAccessibleName(tr("Swatch"));
}

void SwatchView::Show(const std::optional<Ink>& ink) {
  if (ink == ink_) return;
  ink_ = ink;
  setAccessibleDescription(InkText(ink));
  setToolTip(ink && ink->estimated ? tr("Estimated from its ingredients") : QString());
  update();
}

void SwatchView::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  const QRectF box = QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5);
  if (ink_) return PaintInk(painter, box, ColorOf(*ink_));
  if (unknown_ == Unknown::Empty) return;
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(Look::Now().border);
  painter.drawRoundedRect(box, 4, 4);
  painter.drawLine(box.bottomLeft() + QPointF(3, -3), box.topRight() + QPointF(-3, 3));
}

}  // namespace vellumark::desktop
