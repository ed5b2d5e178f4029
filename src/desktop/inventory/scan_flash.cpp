#include "desktop/inventory/scan_flash.h"

#include <QPainter>
#include <QPolygonF>

#include "desktop/kit/look.h"
#include "desktop/kit/swatch_view.h"

namespace vellumark::desktop {
namespace {

constexpr int kHeight = 88;
constexpr int kHead = 32;
constexpr int kMoment = 450;  // ms
constexpr int kMark = 32;

}  // namespace

ScanFlash::ScanFlash(const QString& name) {
  setObjectName(name);
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
  light_.setSingleShot(true);
  light_.setInterval(kMoment);
  connect(&light_, &QTimer::timeout, this, qOverload<>(&QWidget::update));
}

QSize ScanFlash::sizeHint() const {
  return {320, kHeight};
}

void ScanFlash::Show(Kind kind, const QString& head, const QString& text, const std::optional<Ink>& ink) {
  kind_ = kind;
  head_ = head;
  text_ = text;
  ink_ = ink;
  setAccessibleName(head + ". " + text);
  setToolTip(text);
  if (kind == Kind::Good || kind == Kind::Bad)
    light_.start();
  else
    light_.stop();
  update();
}

QColor ScanFlash::Signal() const {
  const Colors& colors = Look::Now();
  switch (kind_) {
    case Kind::Good:
      return colors.good;
    case Kind::Bad:
      return colors.danger;
    case Kind::Waiting:
      return colors.accent;
    case Kind::Idle:
      break;
  }
  return colors.line;
}

void ScanFlash::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  const Colors& colors = Look::Now();
  const QColor signal = Signal();
  const bool lit = light_.isActive();
  const QRectF box = QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5);
  painter.setPen(lit ? signal : colors.line);
  painter.setBrush(lit ? signal : colors.surface);
  painter.drawRoundedRect(box, 4, 4);
  if (!lit) painter.fillRect(QRect(0, 0, space::kUnit, height()), signal);

  QRect inside = rect().adjusted(space::kGap + space::kUnit, space::kUnit, -space::kGap, -space::kUnit);
  if (ink_) {
    const QRect patch(inside.left(), inside.center().y() - kMark / 2, 2 * kMark, kMark);
    PaintInk(painter, patch, ColorOf(*ink_));
    inside.setLeft(patch.right() + space::kGap);
  }
  // On the lit ground whichever of the two stands out.
  const bool light = Look::Contrast(Qt::white, signal) > Look::Contrast(Qt::black, signal);
  const QColor onSignal = light ? Qt::white : Qt::black;
  const QFont large = Look::Figures(1.4);
  if (kind_ == Kind::Good || kind_ == Kind::Bad) {
    // A tick or an exclamation mark, drawn in the colour of what is around it.
    const QRectF mark(inside.left(), inside.center().y() - kMark / 2.0, kMark, kMark);
    painter.setPen(QPen(lit ? onSignal : signal, 4, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    const auto at = [&](double x, double y) { return mark.topLeft() + QPointF(x * kMark, y * kMark); };
    if (kind_ == Kind::Good) {
      painter.drawPolyline(QPolygonF{at(0.1, 0.55), at(0.4, 0.85), at(0.9, 0.2)});
    } else {
      painter.drawLine(at(0.5, 0.1), at(0.5, 0.6));
      painter.drawPoint(at(0.5, 0.88));
    }
    inside.setLeft(inside.left() + kMark + space::kGap);
  }
  painter.setFont(large);
  painter.setPen(lit ? onSignal : kind_ == Kind::Idle ? colors.quiet : colors.text);
  const QRect top(inside.left(), inside.top(), inside.width(), kHead);
  painter.drawText(top, Qt::AlignLeft | Qt::AlignVCenter,
                   QFontMetrics(large).elidedText(head_, Qt::ElideRight, top.width()));
  // What to do stands at the end of a refusal: it goes over two lines.
  painter.setFont(Look::Base());
  painter.setPen(lit ? onSignal : colors.quiet);
  const QRect bottom(top.left(), top.bottom() + 1, inside.width(), inside.bottom() - top.bottom());
  painter.drawText(bottom, Qt::AlignLeft | Qt::AlignTop | Qt::TextWordWrap, text_);
}

}  // namespace vellumark::desktop
