#include "desktop/labels/surface_paint.h"

#include <QPainter>
#include <array>
#include <cmath>

#include "desktop/kit/look.h"
#include "desktop/kit/text.h"
#include "desktop/labels/design_surface.h"
#include "paper/label_painter.h"

namespace vellumark::desktop {
namespace {

constexpr double kPlaceholder = 0.35;  // how strong what is not printed is shown
constexpr double kThinnest = 5;        // pixels between two lines

// Paper is white in both themes, and what is drawn on it has the colours of the light one.
const Colors& OnPaper() {
  return Look::Of(Theme::Light);
}

struct Ticks {
  double step;     // of the unit, between two ticks
  double numbers;  // between two numbers
};

Ticks TicksOf(const LabelUnit& unit, double scale) {
  const bool inches = unit.text == "in.";
  const std::array<double, 8> inchSteps{0.0625, 0.125, 0.25, 0.5, 1, 2, 5, 10};
  const std::array<double, 8> millimetreSteps{1, 2, 5, 10, 20, 50, 100, 200};
  const auto& steps = inches ? inchSteps : millimetreSteps;
  constexpr double kNumberRoom = 36;
  const auto first = [&](double pixels, double least) {
    for (const double step : steps)
      if (step >= least && step * unit.twips * scale >= pixels) return step;
    return steps.back();
  };
  return {first(kThinnest, 0), first(kNumberRoom, inches ? 0.5 : 5)};
}

// Along x; the painter is turned for the other one.
void PaintRuler(QPainter& painter, double origin, double room, const LabelUnit& unit, double scale, double most) {
  const Colors& colors = Look::Now();
  const Ticks ticks = TicksOf(unit, scale);
  const auto count = static_cast<int>(std::floor(most / (ticks.step * unit.twips) + 0.001));
  for (int i = 0; i <= count; ++i) {
    const double value = i * ticks.step;
    const double x = std::round(origin + value * unit.twips * scale) + 0.5;
    if (x < surface::kRuler || x > room) continue;
    const double whole = value / ticks.numbers;
    const bool number = std::abs(whole - std::round(whole)) < 0.001;
    painter.setPen(number ? colors.quiet : colors.border);
    painter.drawLine(QPointF(x, surface::kRuler - (number ? 9 : 5)), QPointF(x, surface::kRuler - 1));
    if (!number) continue;
    painter.setPen(colors.quiet);
    painter.drawText(QRectF(x + 2, 0, 48, surface::kRuler - 8), Qt::AlignLeft | Qt::AlignVCenter,
                     QString::number(value));
  }
}

}  // namespace

void DesignSurface::paintEvent(QPaintEvent*) {
  QPainter painter(viewport());
  const Colors& colors = Look::Now();
  painter.fillRect(viewport()->rect(), colors.raised);
  if (content_.width <= 0 || content_.length <= 0) {
    painter.setPen(colors.quiet);
    painter.drawText(viewport()->rect().adjusted(24, 24, -24, -24), Qt::AlignCenter | Qt::TextWordWrap, content_.note);
  } else {
    painter.save();
    painter.setClipRect(viewport()->rect().adjusted(surface::kRuler, surface::kRuler, 0, 0));
    PaintLabel(painter);
    PaintBoxes(painter);
    painter.restore();
    PaintRulers(painter);
  }
  painter.setBrush(Qt::NoBrush);
  painter.setPen(QPen(hasFocus() ? colors.accent : colors.line, hasFocus() ? 2 : 1));
  const double inset = hasFocus() ? 1 : 0.5;
  painter.drawRect(QRectF(viewport()->rect()).adjusted(inset, inset, -inset, -inset));
}

void DesignSurface::PaintLabel(QPainter& painter) const {
  const QRectF label = LabelOnScreen();
  painter.fillRect(label, Qt::white);
  PaintGrid(painter);
  painter.setPen(Look::Now().border);
  painter.setBrush(Qt::NoBrush);
  painter.drawRect(label.adjusted(-0.5, -0.5, 0.5, 0.5));
  // In the dots of the printer, so that all breaks and widths are those of the paper.
  const double scale = PixelsPerTwip() * kTwipsPerInch / paper::kLabelDots;
  painter.save();
  painter.translate(label.topLeft());
  painter.scale(scale, scale);
  painter.setRenderHint(QPainter::TextAntialiasing);
  painter.setRenderHint(QPainter::SmoothPixmapTransform);
  paper::LabelPainter labels(painter, paper::kLabelDots, content_.pictures);
  painter.setOpacity(kPlaceholder);
  labels.Paint(content_.samples, 0, 0);
  painter.setOpacity(1);
  labels.Paint(content_.data, 0, 0);
  painter.restore();
}

void DesignSurface::PaintGrid(QPainter& painter) const {
  if (!snap_) return;
  const double scale = PixelsPerTwip();
  double step = content_.unit.grid;
  while (step * scale < 2 * kThinnest) step *= 2;
  const QRectF label = LabelOnScreen();
  QColor line = OnPaper().line;
  line.setAlpha(90);
  painter.setPen(line);
  for (double x = step; x < content_.width; x += step) {
    const double at = std::round(label.left() + x * scale) + 0.5;
    painter.drawLine(QPointF(at, label.top()), QPointF(at, label.bottom()));
  }
  for (double y = step; y < content_.length; y += step) {
    const double at = std::round(label.top() + y * scale) + 0.5;
    painter.drawLine(QPointF(label.left(), at), QPointF(label.right(), at));
  }
}

void DesignSurface::PaintBoxes(QPainter& painter) const {
  const Colors& colors = OnPaper();
  painter.setBrush(Qt::NoBrush);
  for (const SurfaceBox& box : content_.boxes) {
    const QRectF place = OnScreen(box.item).adjusted(-1.5, -1.5, 1.5, 1.5);
    const bool selected = IsSelected(box.item.name);
    QPen pen(colors.border, 1, Qt::DotLine);
    if (box.item.name == pointed_) pen = QPen(colors.accent, 1);
    if (!box.fault.isEmpty()) pen = QPen(colors.danger, 2, Qt::DashLine);
    if (selected) pen = QPen(box.fault.isEmpty() ? colors.accent : colors.danger, 2);
    painter.setPen(pen);
    painter.drawRect(place);
    if (selected) {
      QColor tint = colors.accent;
      tint.setAlpha(28);
      painter.fillRect(place, tint);
    }
    if (!box.empty) continue;
    painter.setPen(colors.quiet);
    painter.drawText(place.adjusted(4, 4, -4, -4), Qt::AlignCenter | Qt::TextWordWrap, box.caption);
  }
  const double scale = PixelsPerTwip();
  const QPointF origin = Origin();
  painter.setPen(QPen(colors.accent, 1));
  for (const double across : lines_.acrossLines) {
    const double x = std::round(origin.x() + across * scale) + 0.5;
    painter.drawLine(QPointF(x, surface::kRuler), QPointF(x, viewport()->height()));
  }
  for (const double down : lines_.downLines) {
    const double y = std::round(origin.y() + down * scale) + 0.5;
    painter.drawLine(QPointF(surface::kRuler, y), QPointF(viewport()->width(), y));
  }
  if (!frame_) return;
  QColor tint = colors.accent;
  tint.setAlpha(28);
  painter.fillRect(*frame_, tint);
  painter.drawRect(*frame_);
}

void DesignSurface::PaintRulers(QPainter& painter) const {
  const Colors& colors = Look::Now();
  const double scale = PixelsPerTwip();
  const QPointF origin = Origin();
  const QSizeF room = viewport()->size();
  QFont font = Look::Base();
  font.setPointSizeF(font.pointSizeF() * 0.8);
  painter.setFont(font);
  painter.fillRect(QRectF(0, 0, room.width(), surface::kRuler), colors.surface);
  painter.fillRect(QRectF(0, 0, surface::kRuler, room.height()), colors.surface);
  // How far the selected boxes reach.
  for (const PlacedItem& item : SelectedItems()) {
    const QRectF place = OnScreen(item);
    const double left = std::max<double>(place.left(), surface::kRuler);
    const double top = std::max<double>(place.top(), surface::kRuler);
    painter.fillRect(QRectF(left, 0, place.right() - left, surface::kRuler), colors.chosen);
    painter.fillRect(QRectF(0, top, surface::kRuler, place.bottom() - top), colors.chosen);
  }
  PaintRuler(painter, origin.x(), room.width(), content_.unit, scale, content_.width);
  painter.save();
  painter.rotate(90);
  painter.scale(1, -1);
  painter.restore();
  // The other one stands upright: x and y change places, and its numbers are read from the top.
  painter.save();
  painter.translate(surface::kRuler, 0);
  painter.rotate(90);
  painter.translate(0, 0);
  PaintRuler(painter, origin.y(), room.height(), content_.unit, scale, content_.length);
  painter.restore();
  painter.fillRect(QRectF(0, 0, surface::kRuler, surface::kRuler), colors.surface);
  painter.setPen(colors.quiet);
  painter.drawText(QRectF(0, 0, surface::kRuler, surface::kRuler), Qt::AlignCenter, Q(content_.unit.text).trimmed());
  painter.setPen(colors.line);
  painter.drawLine(QPointF(0, surface::kRuler - 0.5), QPointF(room.width(), surface::kRuler - 0.5));
  painter.drawLine(QPointF(surface::kRuler - 0.5, 0), QPointF(surface::kRuler - 0.5, room.height()));
}

}  // namespace vellumark::desktop
