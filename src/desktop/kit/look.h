#pragma once

#include <QColor>
#include <QFont>

class QApplication;

namespace vellumark::desktop {

/// The two with high contrast follow a system that is set so.
enum class Theme { Light, Dark, LightContrast, DarkContrast };

/// The colours of a theme: one neutral scale, one accent, and the three signals that always stand beside a word or a
/// mark of their own shape.
struct Colors {
  QColor window;   ///< behind everything
  QColor surface;  ///< fields and lists
  QColor raised;   ///< buttons, captions of columns
  QColor line;     ///< hairlines that only part things
  QColor border;   ///< the edge of a field, at least 3:1 against what is around it
  QColor text;
  QColor quiet;     ///< labels, hints
  QColor off;       ///< of what is disabled
  QColor accent;    ///< the default button, the focus, the selected row
  QColor onAccent;  ///< text on the accent
  QColor chosen;    ///< ground of a selected row
  QColor danger;
  QColor warning;
  QColor good;
};

/// Distances, in pixels at 100 percent: everything lies on a grid of eight.
namespace space {
inline constexpr int kTight = 4;
inline constexpr int kUnit = 8;
inline constexpr int kGap = 16;
inline constexpr int kGroup = 24;
inline constexpr int kFieldHeight = 32;
inline constexpr int kRowHeight = 28;
}  // namespace space

/// The look of the program, in one place: palette, style sheet, fonts.
class Look {
 public:
  /// Takes hold of the application: the system's own theme, until one is set, and its changes.
  static void Apply(QApplication& application);
  static void SetTheme(Theme theme);
  static Theme Current();
  static const Colors& Of(Theme theme);
  static const Colors& Now() { return Of(Current()); }

  /// All sizes of text times `scale`; 1 on a normal system.
  static void SetFontScale(double scale);

  static QFont Base();
  static QFont Heading();
  /// Tabular figures in `scale` times the base size, for what is read across a bench.
  static QFont Figures(double scale = 1.0);

  /// Contrast of two colours as the eye sees it: 1 (none) to 21, by the relative luminance of WCAG 2.1.
  static double Contrast(const QColor& a, const QColor& b);
};

}  // namespace vellumark::desktop
