#pragma once

#include <QByteArray>
#include <QImage>
#include <QPainter>
#include <QPointF>
#include <QRectF>
#include <QSizeF>
#include <QString>
#include <cstdint>
#include <deque>
#include <functional>
#include <vector>

#include "paper/typeface.h"

namespace vellumark::paper {

/// A text on a page; `x` is its left end, `y` its base line.
struct PageText {
  double x = 0;
  double y = 0;
  QString text;
  float size = 12;
  bool bold = false;
};

struct PageLine {
  QPointF from;
  QPointF to;
  bool dotted = false;
};

/// A bar code on a page: bars and spaces in turn, in modules of `module` points.
struct PageBars {
  QPointF at;  ///< its upper left corner
  double module = 0.7;
  double height = 20;
  std::vector<std::uint8_t> widths;
};

/// A drawing, or a photo where there is one.
struct PagePicture {
  QRectF place;
  QByteArray svg{};
  QImage photo{};
};

/// A page as it was laid out, before any device: places and sizes in points from the upper left corner of the printable
/// area. Printer, PDF and preview paint this same page.
struct Page {
  static constexpr int kAcross = 80;  ///< units of the page's frame
  static constexpr int kDown = 60;

  QSizeF area;
  std::vector<PageText> texts;
  std::vector<PageLine> lines;
  std::vector<PageBars> codes{};
  std::vector<PagePicture> pictures{};

  double X(double units) const { return area.width() * units / kAcross; }
  double Y(double units) const { return area.height() * units / kDown; }
};

/// Takes a page; false when no more are wanted.
using PageSink = std::function<bool(Page&& page)>;

/// Paints pages onto a device whose painter stands at the upper left corner of the printable area.
class PagePainter {
 public:
  PagePainter(QPainter& painter, const Typeface& typeface);
  void Paint(const Page& page);

 private:
  const QFont& FontOf(const PageText& text);
  void PaintBars(const PageBars& bars);

  struct Known {
    float size;
    bool bold;
    QFont font;
  };

  QPainter& painter_;
  const Typeface& typeface_;
  double scale_;  // of the device's dots to a point
  std::deque<Known> fonts_;
};

}  // namespace vellumark::paper
