#pragma once

#include <QFont>
#include <QFontMetricsF>
#include <QString>
#include <array>
#include <string_view>

namespace vellumark::paper {

/// Texts of the core are UTF-8.
inline QString Q(std::string_view text) {
  return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

/// A font family in two weights, measured apart from any device: sizes and widths in points, a width in proportion to
/// the size. Letters stand side by side without kerning and ligatures, so that the width of a text is the sum of
/// theirs.
class Typeface {
 public:
  /// The system's own choice when it has no such family.
  explicit Typeface(const QString& family);

  double Width(QStringView text, double size, bool bold = false) const;
  double Ascent(double size) const { return ascent_ * size; }
  double LineHeight(double size) const { return height_ * size; }
  QFont Font(double size, bool bold) const;

 private:
  static constexpr int kMeasured = 1000;  // pixels

  /// Width of one letter at size 1.
  double Letter(QChar letter, bool bold) const;

  QString family_;
  std::array<QFontMetricsF, 2> metrics_;
  std::array<std::array<double, 0x180>, 2> widths_{};  // of the Latin letters
  double ascent_;
  double height_;
};

}  // namespace vellumark::paper
