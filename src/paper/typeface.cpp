#include "paper/typeface.h"

#include <QFontDatabase>
#include <QFontInfo>
#include <QGuiApplication>

namespace vellumark::paper {
namespace {

// A family that is not installed here is replaced by the program's own, the same one each time: what the system puts in
// its place may change while the program runs.
QString Installed(const QString& family) {
  return QFontDatabase::hasFamily(family) ? family : QFontInfo(QGuiApplication::font()).family();
}

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
    : family_(Installed(family)),
      metrics_{Measured(family_, false, kMeasured), Measured(family_, true, kMeasured)},
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
