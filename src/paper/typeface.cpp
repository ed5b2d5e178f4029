#include "paper/typeface.h"

namespace vellumark::paper {
namespace {

QFont Plain(const QString& family, bool bold) {
  QFont font(family);
  font.setBold(bold);
  font.setKerning(false);
  font.setHintingPreference(QFont::PreferNoHinting);
  font.setStyleStrategy(QFont::PreferNoShaping);
  return font;
}

QFontMetricsF Measured(const QString& family, bool bold, int pixels) {
  QFont font = Plain(family, bold);
  font.setPixelSize(pixels);
  return QFontMetricsF(font);
}

}  // namespace

Typeface::Typeface(const QString& family)
    : family_(family),
      metrics_{Measured(family, false, kMeasured), Measured(family, true, kMeasured)},
      ascent_(metrics_[1].ascent() / kMeasured),
      height_(metrics_[1].height() / kMeasured) {
  for (const bool bold : {false, true})
    for (std::size_t code = 0; code < widths_[bold].size(); ++code)
      widths_[bold][code] = metrics_[bold].horizontalAdvance(QChar(static_cast<char16_t>(code))) / kMeasured;
}

double Typeface::Letter(QChar letter, bool bold) const {
  const auto& known = widths_[bold];
  return letter.unicode() < known.size() ? known[letter.unicode()]
                                         : metrics_[bold].horizontalAdvance(letter) / kMeasured;
}

double Typeface::Width(QStringView text, double size, bool bold) const {
  double width = 0;
  for (const QChar letter : text) width += Letter(letter, bold);
  return width * size;
}

QFont Typeface::Font(double size, bool bold) const {
  QFont font = Plain(family_, bold);
  font.setPointSizeF(size);
  return font;
}

}  // namespace vellumark::paper
