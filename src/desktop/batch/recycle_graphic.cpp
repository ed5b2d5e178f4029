#include "desktop/batch/recycle_graphic.h"

#include <QPainter>
#include <QStyle>

#include "desktop/kit/icons.h"

namespace vellumark::desktop {
namespace {

constexpr int kSize = 20;
constexpr int kStep = 40;         // ms
constexpr int kDegreesOfStep = 12;
constexpr int kDegrees = 2 * 360;  // two turns, 2.4 s

}  // namespace

RecycleGraphic::RecycleGraphic(QWidget* parent) : QWidget(parent), icon_(Icon("recycled")) {
  setObjectName("RecycleGraphic");
  setFixedSize(kSize, kSize);
  QSizePolicy policy = sizePolicy();
  policy.setRetainSizeWhenHidden(true);
  setSizePolicy(policy);
  timer_.setInterval(kStep);
  connect(&timer_, &QTimer::timeout, this, [this] {
    degrees_ += kDegreesOfStep;
    if (degrees_ >= kDegrees) Rest();
    update();
  });
}

void RecycleGraphic::Turn() {
  Rest();
  if (style()->styleHint(QStyle::SH_Widget_Animation_Duration, nullptr, this) > 0) timer_.start();
  update();
}

void RecycleGraphic::Rest() {
  timer_.stop();
  degrees_ = 0;
}

void RecycleGraphic::hideEvent(QHideEvent* event) {
  Rest();
  QWidget::hideEvent(event);
}

void RecycleGraphic::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::SmoothPixmapTransform);
  const QPointF middle = QRectF(rect()).center();
  painter.translate(middle);
  painter.rotate(degrees_);
  painter.translate(-middle);
  icon_.paint(&painter, rect());
}

}  // namespace vellumark::desktop
