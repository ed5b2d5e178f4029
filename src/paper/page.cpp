#include "paper/page.h"

#include <QPen>
#include <QSvgRenderer>
#include <algorithm>
#include <cmath>

namespace vellumark::paper {

PagePainter::PagePainter(QPainter& painter, const Typeface& typeface)
    : painter_(painter), typeface_(typeface), scale_(painter.device()->logicalDpiX() / 72.0) {}

const QFont& PagePainter::FontOf(const PageText& text) {
  for (const Known& known : fonts_)
    if (known.size == text.size && known.bold == text.bold) return known.font;
  return fonts_.emplace_back(text.size, text.bold, typeface_.Font(text.size, text.bold)).font;
}

void PagePainter::Paint(const Page& page) {
  const QFont* now = nullptr;
  painter_.setPen(Qt::black);
  for (const PageText& text : page.texts) {
    const QFont& font = FontOf(text);
    if (&font != now) painter_.setFont(font);
    now = &font;
    painter_.drawText(QPointF(text.x, text.y) * scale_, text.text);
  }
  for (const PageLine& line : page.lines) {
    QPen pen(Qt::black, (line.dotted ? 0.4 : 0.6) * scale_);
    if (line.dotted) pen.setDashPattern({1, 4});
    painter_.setPen(pen);
    painter_.drawLine(line.from * scale_, line.to * scale_);
  }
  for (const PageBars& bars : page.codes) PaintBars(bars);
  for (const PagePicture& picture : page.pictures) {
    const QRectF place(picture.place.topLeft() * scale_, picture.place.size() * scale_);
    if (picture.photo.isNull()) {
      QSvgRenderer(picture.svg).render(&painter_, place);
    } else {
      painter_.drawImage(place, picture.photo);
    }
  }
}

// Of a printer every module is a whole number of its dots; a screen has too few of them for that.
void PagePainter::PaintBars(const PageBars& bars) {
  constexpr double kFewDots = 2;  // to a point
  double module = bars.module * scale_;
  double x = bars.at.x() * scale_;
  if (scale_ >= kFewDots) {
    module = std::max(1.0, std::floor(module));
    x = std::round(x);
  }
  bool bar = true;
  for (const std::uint8_t width : bars.widths) {
    if (bar) painter_.fillRect(QRectF(x, bars.at.y() * scale_, width * module, bars.height * scale_), Qt::black);
    x += width * module;
    bar = !bar;
  }
}

}  // namespace vellumark::paper
