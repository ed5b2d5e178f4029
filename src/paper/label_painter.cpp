#include "paper/label_painter.h"

#include <qrencode.h>

#include <QFontMetricsF>
#include <QImageReader>
#include <QPageLayout>
#include <QPageSize>
#include <QSvgRenderer>
#include <algorithm>
#include <cmath>
#include <memory>

#include "core/base/refusal.h"
#include "core/base/text.h"
#include "paper/typeface.h"

// A macro that works outside of any namespace alone.
static void InitPictograms() {
  Q_INIT_RESOURCE(pictograms);
}

namespace vellumark::paper {
namespace {

constexpr double kPictureDots = 96;  // of an inch of a picture
constexpr double kPointsPerInch = 72;
constexpr double kModulePerPoint = 0.001;  // inches of a module for each point of the font: 0.25 mm at 10 points
constexpr int kQuietOfSquare = 4;
constexpr double kSquareModule = 0.02;  // inches

QPageSize NamedPage(const std::string& name) {
  for (int id = 0; id <= QPageSize::LastPageSize; ++id) {
    const QPageSize page(static_cast<QPageSize::PageSizeId>(id));
    if (page.isValid() && (page.name().compare(Q(name), Qt::CaseInsensitive) == 0 ||
                           page.key().compare(Q(name), Qt::CaseInsensitive) == 0))
      return page;
  }
  return {};
}

struct SquareCode {
  std::unique_ptr<QRcode, decltype(&QRcode_free)> code;
  int module;
  int left;
  int top;
};

std::optional<SquareCode> SquareOf(const LabelDrawing& drawing, const LabelElement& element, int dots) {
  SquareCode square{{QRcode_encodeString8bit(element.text.c_str(), 0, QR_ECLEVEL_M), &QRcode_free}, 0, 0, 0};
  if (!square.code) return std::nullopt;
  square.module = std::max(1, static_cast<int>(std::lround(kSquareModule * dots)));
  const int side = (square.code->width + 2 * kQuietOfSquare) * square.module;
  square.left = static_cast<int>(drawing.width * dots / kTwipsPerInch) - side + kQuietOfSquare * square.module;
  square.top = static_cast<int>(drawing.length * dots / kTwipsPerInch) - side + kQuietOfSquare * square.module;
  return square;
}

}  // namespace

std::optional<QRectF> ExtentOf(const LabelDrawing& drawing, const LabelElement& element, int dotsPerInch,
                               const std::filesystem::path& pictures) {
  const double twips = kTwipsPerInch / dotsPerInch;
  const auto at = [&](double width, double height) { return QRectF(element.left, element.top, width, height); };
  switch (element.what) {
    case LabelElement::What::Text: {
      const TextBox box = BoxOfText(drawing, element, dotsPerInch);
      const double height = QFontMetricsF(box.font).height() + box.spacing * static_cast<double>(box.lines.size() - 1);
      return at(box.ink.width() * twips, height * twips);
    }
    case LabelElement::What::Code:
      if (const auto box = BoxOfCode(drawing, element, dotsPerInch))
        return QRectF(box->left * twips, box->top * twips, box->Width() * twips, box->height * twips);
      return std::nullopt;
    case LabelElement::What::Square:
      if (const auto square = SquareOf(drawing, element, dotsPerInch)) {
        const double side = square->code->width * square->module * twips;
        return QRectF(square->left * twips, square->top * twips, side, side);
      }
      return std::nullopt;
    case LabelElement::What::Picture: {
      const QSize size = QImageReader(Q((pictures / element.text).string())).size();
      if (!size.isValid()) return std::nullopt;
      return at(size.width() * kTwipsPerInch / kPictureDots, size.height() * kTwipsPerInch / kPictureDots);
    }
    case LabelElement::What::Pictogram:
      return at(element.size, element.size);
  }
  return std::nullopt;
}

std::optional<CodeBox> BoxOfCode(const LabelDrawing& drawing, const LabelElement& element, int dotsPerInch) {
  const auto font = EncodeBarcode(drawing.symbology, element.text);
  if (!font || font->empty()) return std::nullopt;
  auto bars = BarsOf(drawing.symbology, *font);
  if (!bars) return std::nullopt;
  CodeBox box{.bars = *std::move(bars)};
  const auto dots = [&](double twips) { return static_cast<int>(std::lround(twips * dotsPerInch / kTwipsPerInch)); };
  box.top = dots(element.top);
  box.height = std::max(1, dots(element.size * 20));
  const int labelWidth = dots(drawing.width);
  box.module = std::max(1, static_cast<int>(std::lround(element.size * kModulePerPoint * dotsPerInch)));
  for (;; --box.module) {
    box.quiet = kQuietModules * box.module;
    box.left = std::max(dots(element.left), box.quiet);
    if (box.module == 1 || box.Right() <= labelWidth) return box;
  }
}

// ---- Texts

namespace {

constexpr double kLeastForNeighbour = 0.5;

QStringList Wrapped(const QString& text, const QFontMetricsF& metrics, double room) {
  QStringList lines;
  for (const QString& paragraph : text.split('\n')) {
    QString line;
    for (const QString& word : paragraph.split(' ')) {
      const QString longer = line.isEmpty() ? word : line + ' ' + word;
      if (!line.isEmpty() && metrics.horizontalAdvance(longer) > room) {
        lines += line;
        line = word;
      } else {
        line = longer;
      }
    }
    lines += line;
  }
  return lines;
}

// Where the nearest thing begins that stands beside the text, as far down as `bottom`; the edge of the label when
// nothing does.
double RightOf(const LabelDrawing& drawing, const LabelElement& text, double bottom, int dots) {
  const double scale = dots / kTwipsPerInch;
  double limit = drawing.width * scale;
  for (const LabelElement& other : drawing.elements) {
    if (&other == &text || other.left <= text.left) continue;
    double left = other.left * scale;
    double low = (other.top + other.size * 20) * scale;
    if (other.what == LabelElement::What::Code) {
      const auto box = BoxOfCode(drawing, other, dots);
      if (!box) continue;
      left = box->left - box->quiet;
    } else if (other.what == LabelElement::What::Pictogram) {
      low = (other.top + other.size) * scale;
    } else if (other.what != LabelElement::What::Text) {
      continue;
    }
    if (left > text.left * scale && other.top * scale < bottom && low > text.top * scale) limit = std::min(limit, left);
  }
  return limit;
}

}  // namespace

TextBox BoxOfText(const LabelDrawing& drawing, const LabelElement& element, int dotsPerInch) {
  TextBox box{.font = QFont(Q(element.font))};
  box.font.setBold(element.bold);
  box.font.setKerning(false);
  const double wanted = element.size * dotsPerInch / kPointsPerInch;
  const auto setSize = [&](double size) { box.font.setPixelSize(std::max(1, static_cast<int>(std::floor(size)))); };
  setSize(std::round(wanted));
  const double scale = dotsPerInch / kTwipsPerInch;
  const double left = element.left * scale;
  const double top = element.top * scale;
  const double toEdge = drawing.width * scale - left;
  const QString text = Q(element.text);
  box.lines = text.split('\n');
  const double bottom = top + QFontMetricsF(box.font).lineSpacing() * static_cast<double>(box.lines.size());
  double room = RightOf(drawing, element, bottom, dotsPerInch) - left;
  if (element.wraps) {
    if (room < toEdge * kLeastForNeighbour) room = toEdge;
    box.lines = Wrapped(text, QFontMetricsF(box.font), room);
  }
  double widest = 0;
  for (const QString& line : box.lines) widest = std::max(widest, QFontMetricsF(box.font).horizontalAdvance(line));
  if (room < widest * kLeastForNeighbour) room = toEdge;
  if (widest > room && room > 0) setSize(wanted * room / widest);
  const QFontMetricsF metrics(box.font);
  box.baseline = top + metrics.ascent();
  box.spacing = metrics.lineSpacing();
  double y = box.baseline;
  for (const QString& line : box.lines) {
    box.ink |= metrics.tightBoundingRect(line).translated(left, y);
    y += box.spacing;
  }
  return box;
}

std::optional<QRectF> AreaOf(const LabelDrawing& drawing, const LabelElement& element, int dotsPerInch,
                             const std::filesystem::path& pictures) {
  if (element.what == LabelElement::What::Text) return BoxOfText(drawing, element, dotsPerInch).ink;
  const auto extent = ExtentOf(drawing, element, dotsPerInch, pictures);
  if (!extent) return std::nullopt;
  const double scale = dotsPerInch / kTwipsPerInch;
  return QRectF(extent->topLeft() * scale, extent->size() * scale);
}

// ---- Painting

LabelPainter::LabelPainter(QPainter& painter, int dotsPerInch, std::filesystem::path pictures)
    : painter_(painter), dots_(dotsPerInch), pictures_(std::move(pictures)) {}

void LabelPainter::Paint(const LabelDrawing& drawing, double left, double top) {
  left_ = std::round(Dots(left));
  top_ = std::round(Dots(top));
  painter_.save();
  painter_.setRenderHint(QPainter::Antialiasing, smooth_);
  for (const LabelElement& element : drawing.elements) {
    switch (element.what) {
      case LabelElement::What::Text:
        PaintText(drawing, element);
        break;
      case LabelElement::What::Code:
        PaintCode(drawing, element);
        break;
      case LabelElement::What::Square:
        PaintSquare(drawing, element);
        break;
      case LabelElement::What::Picture:
        PaintPicture(element);
        break;
      case LabelElement::What::Pictogram:
        PaintPictogram(element);
        break;
    }
  }
  painter_.restore();
}

void LabelPainter::PaintText(const LabelDrawing& drawing, const LabelElement& element) {
  const TextBox box = BoxOfText(drawing, element, dots_);
  painter_.setFont(box.font);
  painter_.setPen(Qt::black);
  double y = top_ + box.baseline;
  for (const QString& line : box.lines) {
    painter_.drawText(QPointF(left_ + Dots(element.left), y), line);
    y += box.spacing;
  }
}

void LabelPainter::PaintCode(const LabelDrawing& drawing, const LabelElement& element) {
  const auto box = BoxOfCode(drawing, element, dots_);
  if (!box) return;
  double x = left_ + box->left;
  bool bar = true;
  for (const std::uint8_t width : box->bars.widths) {
    if (bar) painter_.fillRect(QRectF(x, top_ + box->top, width * box->module, box->height), Qt::black);
    x += width * box->module;
    bar = !bar;
  }
}

void LabelPainter::PaintSquare(const LabelDrawing& drawing, const LabelElement& element) {
  const auto square = SquareOf(drawing, element, dots_);
  if (!square) return;
  const int side = square->code->width;
  for (int row = 0; row < side; ++row)
    for (int column = 0; column < side; ++column)
      if ((square->code->data[row * side + column] & 1) != 0)
        painter_.fillRect(QRectF(left_ + square->left + column * square->module,
                                 top_ + square->top + row * square->module, square->module, square->module),
                          Qt::black);
}

void LabelPainter::PaintPicture(const LabelElement& element) {
  auto known = images_.find(element.text);
  if (known == images_.end())
    known = images_.emplace(element.text, QImage(Q((pictures_ / element.text).string()))).first;
  const QImage& image = known->second;
  if (image.isNull()) return;
  painter_.drawImage(QRectF(left_ + Dots(element.left), top_ + Dots(element.top), image.width() * dots_ / kPictureDots,
                            image.height() * dots_ / kPictureDots),
                     image);
}

void LabelPainter::PaintPictogram(const LabelElement& element) {
  const double side = Dots(element.size);
  paper::PaintPictogram(painter_, element.number,
                        QRectF(left_ + Dots(element.left), top_ + Dots(element.top), side, side));
}

void PaintPictogram(QPainter& painter, int number, const QRectF& area) {
  InitPictograms();
  QSvgRenderer svg(QStringLiteral(":/pictograms/%1.svg").arg(number));
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing, true);
  svg.render(&painter, area);
  painter.restore();
}

QSizeF PageOfLabels(const LabelPaper& paper) {
  const double points = kPointsPerInch / kTwipsPerInch;
  // A PDF's page is of whole points.
  QSizeF page(std::ceil((paper.left + paper.across * paper.width) * points),
              std::ceil((paper.top + paper.down * paper.length) * points));
  if (const QPageSize named = NamedPage(paper.paper); named.isValid()) {
    page = named.size(QPageSize::Point);
    if (paper.orientation == 1 || paper.orientation == 3) page.transpose();
  }
  return page;
}

void SetUpLabelPages(QPagedPaintDevice& device, const LabelPaper& paper) {
  if (const QPageSize named = NamedPage(paper.paper); named.isValid()) {
    device.setPageSize(named);
    device.setPageOrientation(paper.orientation == 1 ? QPageLayout::Landscape : QPageLayout::Portrait);
  } else {
    QSizeF page = PageOfLabels(paper);
    if (paper.orientation == 3) page.transpose();
    device.setPageSize(QPageSize(page, QPageSize::Point, {}, QPageSize::ExactMatch));
  }
  device.setPageMargins(QMarginsF(0, 0, 0, 0));
}

int PaintLabels(QPagedPaintDevice& device, const std::string& name, const Session& session, const LabelJob& job) {
  QPainter painter;
  if (!painter.begin(&device)) throw Failure(name, "cannot be printed to");
  const QSizeF page = PageOfLabels(job.paper) * job.dotsPerInch / kPointsPerInch;
  const auto turn = [&] {
    painter.resetTransform();
    if (job.paper.orientation == 2) {
      painter.translate(std::round(page.width()), std::round(page.height()));
      painter.rotate(180);
    } else if (job.paper.orientation == 3) {
      painter.translate(0, std::round(page.width()));
      painter.rotate(-90);
    }
  };
  turn();
  LabelPainter labels(painter, job.dotsPerInch, PicturesOfLabels(session));
  int onPage = 0;
  for (int i = 0; i < job.count && !job.drawings.empty(); ++i) {
    const LabelPlace place = PlaceOfLabel(job.paper, job.start, i);
    for (; onPage < place.page; ++onPage) {
      if (!device.newPage()) throw Failure(name, "takes no further page");
      turn();
    }
    labels.Paint(job.drawings[static_cast<std::size_t>(i) % job.drawings.size()], place.left, place.top);
  }
  if (!painter.end()) throw Failure(name, "cannot be printed to");
  return onPage + 1;
}

}  // namespace vellumark::paper
