#include "desktop/batch/ink_patch.h"

#include <QPainter>

#include "desktop/kit/look.h"

namespace vellumark::desktop {

InkPatch::InkPatch(const QString& name, int size) {
  setObjectName(name);
  setFixedSize(size, size);
  setAccessibleName(tr("Swatch"));
}

void InkPatch::Show(const std::optional<Ink>& ink) {
  if (ink == ink_) return;
  ink_ = ink;
  setAccessibleDescription(ink ? ColorOf(*ink).name() : QString());
  update();
}

void InkPatch::paintEvent(QPaintEvent*) {
  if (!ink_) return;
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(Look::Now().border);
  painter.setBrush(ColorOf(*ink_));
  painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), 4, 4);
}

}  // namespace vellumark::desktop
