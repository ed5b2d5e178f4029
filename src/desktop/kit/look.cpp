#include "desktop/kit/look.h"

#include <QApplication>
#include <QPalette>
#include <QPointer>
#include <QStyle>
#include <QStyleFactory>
#include <QWidget>
#include <cmath>

#include "desktop/kit/style_sheet.h"
#include "desktop/kit/system_theme.h"

namespace vellumark::desktop {
namespace {

struct State {
  QApplication* application = nullptr;
  SystemTheme* system = nullptr;
  Theme theme = Theme::Light;
  bool follow = true;
  double fontScale = 1;
};

State& TheLook() {
  static State state;
  return state;
}

constexpr double kPointSize = 10;

QPalette PaletteOf(const Colors& c) {
  QPalette p;
  p.setColor(QPalette::Window, c.window);
  p.setColor(QPalette::WindowText, c.text);
  p.setColor(QPalette::Base, c.surface);
  p.setColor(QPalette::AlternateBase, c.window);
  p.setColor(QPalette::Text, c.text);
  p.setColor(QPalette::PlaceholderText, c.quiet);
  p.setColor(QPalette::Button, c.raised);
  p.setColor(QPalette::ButtonText, c.text);
  p.setColor(QPalette::BrightText, c.danger);
  p.setColor(QPalette::Highlight, c.accent);
  p.setColor(QPalette::HighlightedText, c.onAccent);
  p.setColor(QPalette::Link, c.accent);
  p.setColor(QPalette::LinkVisited, c.accent);
  p.setColor(QPalette::ToolTipBase, c.surface);
  p.setColor(QPalette::ToolTipText, c.text);
  p.setColor(QPalette::Mid, c.border);
  p.setColor(QPalette::Light, c.surface);
  p.setColor(QPalette::Midlight, c.line);
  p.setColor(QPalette::Dark, c.border);
  p.setColor(QPalette::Shadow, c.border);
  for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
    p.setColor(QPalette::Disabled, role, c.off);
  }
  return p;
}

QFont FontOf(double scale) {
  QFont font;
  // All three have figures of one width, so numbers stand under one another in every field and list.
  font.setFamilies({"Noto Sans", "Open Sans", "DejaVu Sans"});
  font.setPointSizeF(kPointSize * TheLook().fontScale * scale);
  return font;
}

void Refresh() {
  State& state = TheLook();
  if (state.application == nullptr) return;
  const Colors& colors = Look::Of(state.theme);
  // A button box lays itself out anew for a new style and would give the focus to its first button.
  const QPointer<QWidget> focused = QApplication::focusWidget();
  QApplication::setPalette(PaletteOf(colors));
  QApplication::setFont(Look::Base());
  state.application->setStyleSheet(StyleSheetOf(colors));
  for (QWidget* widget : QApplication::allWidgets()) widget->update();
  if (focused != nullptr && focused != QApplication::focusWidget()) focused->setFocus(Qt::OtherFocusReason);
}

double Linear(double channel) {
  return channel <= 0.04045 ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
}

double Luminance(const QColor& color) {
  return 0.2126 * Linear(color.redF()) + 0.7152 * Linear(color.greenF()) + 0.0722 * Linear(color.blueF());
}

}  // namespace

const Colors& Look::Of(Theme theme) {
  static const Colors light{
      .window = "#f5f6f7",
      .surface = "#ffffff",
      .raised = "#eaedef",
      .line = "#dce0e4",
      .border = "#7f8a95",
      .text = "#1a1e23",
      .quiet = "#56606b",
      .off = "#8d969f",
      .accent = "#0a6577",
      .onAccent = "#ffffff",
      .chosen = "#d5e9ed",
      .danger = "#b3261e",
      .warning = "#815300",
      .good = "#1d6b3b",
  };
  static const Colors dark{
      .window = "#1a1e23",
      .surface = "#14171b",
      .raised = "#2a3037",
      .line = "#353c44",
      .border = "#78838e",
      .text = "#e9ecef",
      .quiet = "#a9b3bd",
      .off = "#737d87",
      .accent = "#58c1d3",
      .onAccent = "#0d1114",
      .chosen = "#1d4450",
      .danger = "#ff9189",
      .warning = "#efbf57",
      .good = "#82d9a0",
  };
  static const Colors lightContrast{
      .window = "#ffffff",
      .surface = "#ffffff",
      .raised = "#f0f0f0",
      .line = "#8c8c8c",
      .border = "#000000",
      .text = "#000000",
      .quiet = "#1f1f1f",
      .off = "#5f5f5f",
      .accent = "#00308f",
      .onAccent = "#ffffff",
      .chosen = "#cfe3ff",
      .danger = "#8f0000",
      .warning = "#5c3a00",
      .good = "#004d1a",
  };
  static const Colors darkContrast{
      .window = "#000000",
      .surface = "#000000",
      .raised = "#1c1c1c",
      .line = "#707070",
      .border = "#ffffff",
      .text = "#ffffff",
      .quiet = "#e6e6e6",
      .off = "#a8a8a8",
      .accent = "#ffe600",
      .onAccent = "#000000",
      .chosen = "#003a66",
      .danger = "#ff9c94",
      .warning = "#ffd45c",
      .good = "#7dffa8",
  };
  switch (theme) {
    case Theme::Light:
      return light;
    case Theme::Dark:
      return dark;
    case Theme::LightContrast:
      return lightContrast;
    default:
      return darkContrast;
  }
}

void Look::Apply(QApplication& application) {
  State& state = TheLook();
  state.application = &application;
  QApplication::setStyle(QStyleFactory::create("Fusion"));
  state.system = new SystemTheme(&application);
  QObject::connect(state.system, &SystemTheme::Changed, &application, [](Theme theme) {
    if (!TheLook().follow || TheLook().theme == theme) return;
    TheLook().theme = theme;
    Refresh();
  });
  if (state.follow) state.theme = state.system->Now();
  Refresh();
}

void Look::SetTheme(Theme theme) {
  TheLook().follow = false;
  TheLook().theme = theme;
  Refresh();
}

Theme Look::Current() {
  return TheLook().theme;
}

void Look::SetFontScale(double scale) {
  TheLook().fontScale = scale;
  Refresh();
}

QFont Look::Base() {
  return FontOf(1);
}

QFont Look::Heading() {
  QFont font = FontOf(1.2);
  font.setWeight(QFont::DemiBold);
  return font;
}

QFont Look::Figures(double scale) {
  return FontOf(scale);
}

double Look::Contrast(const QColor& a, const QColor& b) {
  const double first = Luminance(a);
  const double second = Luminance(b);
  return (std::max(first, second) + 0.05) / (std::min(first, second) + 0.05);
}

}  // namespace vellumark::desktop
