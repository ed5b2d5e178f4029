#include "paper/chart_picture.h"

#include <fmt/format.h>

#include <QBuffer>
#include <QImage>
#include <QPainter>
#include <QSvgGenerator>
#include <algorithm>
#include <cmath>
#include <memory>

#include "core/base/number.h"
#include "core/base/text.h"
#include "paper/pdf.h"
#include "paper/typeface.h"

namespace vellumark::paper {
namespace {

constexpr QSize kSize{640, 352};
constexpr int kImageScale = 3;  // dots of a picture to one of the drawing
constexpr double kMargin = 8;
constexpr double kGap = 6;
constexpr double kTitleHeight = 28;
constexpr int kTitlePixels = 15;
constexpr int kTextPixels = 12;
constexpr double kBarShare = 0.7;          // of the room that a bar has
constexpr double kMostNameShare = 0.4;     // of the width, for names beside bars
constexpr double kTicks = 4;               // as near as round steps come to it
constexpr std::size_t kMostFigures = 12;   // more columns have no room for their figures
constexpr std::size_t kMostFlatNames = 6;  // more periods are written upright
constexpr std::size_t kMostNames = 24;     // of more periods, some
const QColor kBar(0x40, 0x40, 0x40);
const QColor kLine(0xc0, 0xc0, 0xc0);

QString NameOf(const ChartSlice& slice) {
  return slice.name.empty() ? QString("(none)") : Q(slice.name);
}

// From and to round values, in round steps.
struct Scale {
  double low = 0;
  double high = 1;
  double step = 1;
  double Share(double value) const { return (value - low) / (high - low); }
};

Scale ScaleOf(const ReportChart& chart) {
  double least = 0;
  double most = 0;
  for (const ChartSlice& slice : chart.slices) {
    least = std::min(least, slice.value);
    most = std::max(most, slice.value);
  }
  if (most == least) most = 1;
  const double raw = (most - least) / kTicks;
  const double power = std::pow(10, std::floor(std::log10(raw)));
  const double digit = raw / power;
  const double step = power * (digit <= 1 ? 1 : digit <= 2 ? 2 : digit <= 5 ? 5 : 10);
  return {std::floor(least / step) * step, std::ceil(most / step) * step, step};
}

class ChartPainter {
 public:
  ChartPainter(QPainter& painter, const ReportChart& chart)
      : painter_(painter), chart_(chart), scale_(ScaleOf(chart)), figures_(chart.slices.size() <= kMostFigures) {
    font_.setPixelSize(kTextPixels);
    painter_.setFont(font_);
    metrics_ = std::make_unique<QFontMetricsF>(font_);
  }

  void Paint(bool title) {
    QRectF room = QRectF({}, QSizeF(kSize)).adjusted(kMargin, kMargin, -kMargin, -kMargin);
    if (title) {
      QFont bold = font_;
      bold.setBold(true);
      bold.setPixelSize(kTitlePixels);
      painter_.setFont(bold);
      Text(QRectF(room.left(), room.top(), room.width(), kTitleHeight), Qt::AlignHCenter | Qt::AlignTop,
           Q(ChartTitle(chart_)));
      painter_.setFont(font_);
      room.setTop(room.top() + kTitleHeight);
    }
    if (chart_.slices.empty()) return Text(room, Qt::AlignCenter, "Nothing was found");
    if (chart_.group <= ChartGroup::Quarter)
      PaintColumns(room);
    else
      PaintBars(room);
  }

 private:
  void PaintColumns(const QRectF& room) {
    const std::size_t count = chart_.slices.size();
    const bool flat = count <= kMostFlatNames;
    double names = 0;
    for (const ChartSlice& slice : chart_.slices) names = std::max(names, Width(NameOf(slice)));
    const double line = metrics_->height();
    const QRectF plot =
        room.adjusted(WidestTick() + kGap, figures_ ? line + kGap : kGap, 0, -(flat ? line : names) - kGap);
    const auto y = [&](double value) { return plot.bottom() - plot.height() * scale_.Share(value); };
    for (double at = scale_.low; at <= scale_.high + scale_.step / 2; at += scale_.step) {
      Line({plot.left(), y(at)}, {plot.right(), y(at)});
      Text({room.left(), y(at) - line, plot.left() - kGap - room.left(), 2 * line}, Qt::AlignRight | Qt::AlignVCenter,
           TickText(at));
    }
    const double slot = plot.width() / static_cast<double>(count);
    const std::size_t step = (count + kMostNames - 1) / kMostNames;
    for (std::size_t i = 0; i < count; ++i) {
      const ChartSlice& slice = chart_.slices[i];
      const double middle = plot.left() + slot * (static_cast<double>(i) + 0.5);
      Bar({middle - slot * kBarShare / 2, y(slice.value)}, {middle + slot * kBarShare / 2, y(0)});
      if (figures_)
        Text({middle - slot, std::min(y(slice.value), y(0)) - line - 1, 2 * slot, line}, Qt::AlignCenter,
             Figure(slice));
      if (i % step != 0) continue;
      if (flat) {
        Text({middle - slot / 2, plot.bottom() + kGap, slot, line}, Qt::AlignHCenter | Qt::AlignTop, NameOf(slice));
        continue;
      }
      painter_.save();
      painter_.translate(middle, plot.bottom() + kGap);
      painter_.rotate(-90);
      Text({-names, -line / 2, names, line}, Qt::AlignRight | Qt::AlignVCenter, NameOf(slice));
      painter_.restore();
    }
  }

  // The first one on top.
  void PaintBars(const QRectF& room) {
    double names = 0;
    double figures = 0;
    for (const ChartSlice& slice : chart_.slices) {
      names = std::max(names, Width(NameOf(slice)));
      figures = std::max(figures, Width(Figure(slice)));
    }
    names = std::min(names, room.width() * kMostNameShare);
    const double line = metrics_->height();
    const QRectF plot = room.adjusted(names + kGap, 0, -(figures_ ? figures : 0) - 2 * kGap, -line - kGap);
    const auto x = [&](double value) { return plot.left() + plot.width() * scale_.Share(value); };
    for (double at = scale_.low; at <= scale_.high + scale_.step / 2; at += scale_.step) {
      Line({x(at), plot.top()}, {x(at), plot.bottom()});
      Text({x(at) - names, plot.bottom() + kGap, 2 * names, line}, Qt::AlignHCenter | Qt::AlignTop, TickText(at));
    }
    const double slot = plot.height() / static_cast<double>(chart_.slices.size());
    for (std::size_t i = 0; i < chart_.slices.size(); ++i) {
      const ChartSlice& slice = chart_.slices[i];
      const double middle = plot.top() + slot * (static_cast<double>(i) + 0.5);
      Bar({x(0), middle - slot * kBarShare / 2}, {x(slice.value), middle + slot * kBarShare / 2});
      Text({room.left(), middle - line, names, 2 * line}, Qt::AlignRight | Qt::AlignVCenter,
           metrics_->elidedText(NameOf(slice), Qt::ElideRight, names + 1));
      if (figures_)
        Text({std::max(x(slice.value), x(0)) + kGap, middle - line, figures + kGap, 2 * line},
             Qt::AlignLeft | Qt::AlignVCenter, Figure(slice));
    }
  }

  QString Figure(const ChartSlice& slice) const { return Q(CellText(chart_.column, slice.value)); }

  QString TickText(double value) const {
    const bool percent = chart_.column.format == Format::Percent;
    const double factor = percent ? 100 : 1;
    const int decimals = std::max(0, static_cast<int>(-std::floor(std::log10(scale_.step * factor) + 1e-9)));
    return Q(Fixed(value * factor, std::min(decimals, 4))) + (percent ? " %" : "");
  }
  double WidestTick() const {
    double widest = 0;
    for (double at = scale_.low; at <= scale_.high + scale_.step / 2; at += scale_.step)
      widest = std::max(widest, Width(TickText(at)));
    return widest;
  }
  double Width(const QString& text) const { return metrics_->horizontalAdvance(text); }

  void Line(QPointF from, QPointF to) {
    painter_.setPen(QPen(kLine, 1));
    painter_.drawLine(from, to);
  }
  void Bar(QPointF one, QPointF other) { painter_.fillRect(QRectF(one, other).normalized(), kBar); }
  void Text(const QRectF& place, int flags, const QString& text) {
    painter_.setPen(Qt::black);
    painter_.drawText(place, flags | Qt::TextDontClip, text);
  }

  QPainter& painter_;
  const ReportChart& chart_;
  Scale scale_;
  bool figures_;
  QFont font_;
  std::unique_ptr<QFontMetricsF> metrics_;
};

std::string SvgOf(const ReportChart& chart, bool title) {
  const OffscreenFonts fonts;
  QBuffer bytes;
  QSvgGenerator svg;
  svg.setOutputDevice(&bytes);
  svg.setSize(kSize);
  svg.setViewBox(QRect({}, kSize));
  svg.setTitle(Q(ChartTitle(chart)));
  svg.setDescription(Q(chart.title));
  {
    QPainter painter(&svg);
    ChartPainter(painter, chart).Paint(title);
  }
  return bytes.data().toStdString();
}

}  // namespace

std::string ChartTitle(const ReportChart& chart) {
  return fmt::format("{} by {}", Trim(chart.figure), ChartGroupName(chart.group));
}

std::string ChartPng(const ReportChart& chart) {
  const OffscreenFonts fonts;
  QImage image(kSize * kImageScale, QImage::Format_RGB32);
  image.fill(Qt::white);
  {
    QPainter painter(&image);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing);
    painter.scale(kImageScale, kImageScale);
    ChartPainter(painter, chart).Paint(true);
  }
  QBuffer bytes;
  image.save(&bytes, "PNG");
  return bytes.data().toStdString();
}

std::string ChartSvg(const ReportChart& chart) {
  return SvgOf(chart, true);
}

// Its title is text of the page, which can be found and copied.
SheetBlock ChartBlock(const ReportChart& chart) {
  return {.heading = ChartTitle(chart),
          .picture = SheetPicture{SvgOf(chart, false), static_cast<double>(kSize.width()),
                                  static_cast<double>(kSize.height())}};
}

}  // namespace vellumark::paper
