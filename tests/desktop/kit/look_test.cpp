#include "desktop/kit/look.h"

#include <QDir>
#include <QFontInfo>
#include <QFontMetrics>
#include <QGridLayout>
#include <QLabel>
#include <QPainter>
#include <QDBusVariant>
#include <QToolButton>

#include "desktop/kit/icons.h"
#include "desktop/kit/system_theme.h"
#include "support/desktop.h"

namespace vellumark::test {
namespace {

using desktop::Colors;
using desktop::Look;
using desktop::Theme;

TEST(LookOfThings, EveryTextCanBeReadOnEveryGroundItStandsOn) {
  EXPECT_NEAR(Look::Contrast("#000000", "#ffffff"), 21, 1e-9);
  EXPECT_NEAR(Look::Contrast("#777777", "#ffffff"), 4.48, 0.01) << "a grey known to fail by a hair";
  for (const Theme theme : {Theme::Light, Theme::Dark, Theme::LightContrast, Theme::DarkContrast}) {
    const Colors& c = Look::Of(theme);
    const bool contrast = theme == Theme::LightContrast || theme == Theme::DarkContrast;
    const double least = contrast ? 7 : 4.5;
    const struct {
      const char* what;
      QColor ink;
      std::vector<QColor> grounds;
      double least;
    } rows[] = {
        {"text", c.text, {c.window, c.surface, c.raised, c.chosen}, least},
        {"text on what is pressed", c.text, {c.line}, 4.5},
        {"quiet text", c.quiet, {c.window, c.surface, c.raised}, least},
        {"text on the accent", c.onAccent, {c.accent}, least},
        {"links", c.accent, {c.window, c.surface}, least},
        {"danger", c.danger, {c.window, c.surface}, least},
        {"warning", c.warning, {c.window, c.surface, c.chosen}, least},
        {"good", c.good, {c.window, c.surface}, least},
        {"edges of fields", c.border, {c.window, c.surface}, contrast ? 7.0 : 3.0},
        {"what is off", c.off, {c.window, c.surface}, contrast ? 4.5 : 2.0},
    };
    for (const auto& row : rows) {
      for (const QColor& ground : row.grounds) {
        EXPECT_GE(Look::Contrast(row.ink, ground), row.least)
            << "theme " << static_cast<int>(theme) << ": " << row.what << " on " << ground.name().toStdString();
      }
    }
  }
}

TEST(LookOfThings, TheSystemsSettingsMakeTheTheme) {
  desktop::SystemTheme system(nullptr);
  std::vector<Theme> told;
  QObject::connect(&system, &desktop::SystemTheme::Changed, [&](Theme theme) { told.push_back(theme); });
  const auto sets = [&](const char* key, uint value, const char* group = "org.freedesktop.appearance") {
    QMetaObject::invokeMethod(&system, "OnSetting", Q_ARG(QString, group), Q_ARG(QString, key),
                              Q_ARG(QDBusVariant, QDBusVariant(value)));
  };
  sets("color-scheme", 2);
  told.clear();
  sets("contrast", 1);
  sets("color-scheme", 1);
  sets("color-scheme", 0);  // no preference: as it was
  sets("contrast", 1, "another.group");
  sets("contrast", 0);
  EXPECT_EQ(told, (std::vector<Theme>{Theme::LightContrast, Theme::DarkContrast, Theme::Dark}));
  EXPECT_EQ(system.Now(), Theme::Dark);
}

TEST(LookOfThings, FiguresStandUnderOneAnother) {
  const QFontMetrics metrics(Look::Figures());
  for (const char digit : {'1', '4', '7', '8'}) {
    EXPECT_EQ(metrics.horizontalAdvance(QLatin1Char(digit)), metrics.horizontalAdvance(QLatin1Char('0'))) << digit;
  }
}

TEST(LookOfThings, TheFontScaleReachesEveryText) {
  const double before = QFontInfo(QApplication::font()).pointSizeF();
  Look::SetFontScale(1.5);
  EXPECT_NEAR(QFontInfo(QApplication::font()).pointSizeF(), before * 1.5, 0.6);
  Look::SetFontScale(1);
}

TEST(Icons, AreDrawnInTheColorOfTheTheme) {
  const auto ink = [](const QString& name) {
    const QImage picture = desktop::Icon(name).pixmap(QSize(48, 48)).toImage();
    QColor strongest(Qt::transparent);
    for (int y = 0; y < picture.height(); ++y) {
      for (int x = 0; x < picture.width(); ++x) {
        const QColor pixel = picture.pixelColor(x, y);
        if (pixel.alpha() > strongest.alpha()) strongest = pixel;
      }
    }
    return strongest;
  };
  for (const char* name : {"InkEst", "Color", "Batch", "Job", "Inventory", "Label", "Report", "DBTools", "Find",
                           "Users", "additions", "recycled", "basic", "lot", "print", "save", "delete", "columns"}) {
    Look::SetTheme(Theme::Light);
    EXPECT_EQ(ink(name).name(), Look::Of(Theme::Light).text.name()) << name;
    Look::SetTheme(Theme::Dark);
    EXPECT_EQ(ink(name).name(), Look::Of(Theme::Dark).text.name()) << name;
  }
  for (const char* name : {"vellumark", "low-stock", "warning", "critical", "information", "question"}) {
    EXPECT_EQ(ink(name).alpha(), 255) << name;
  }
  Look::SetTheme(Theme::Light);
  EXPECT_THROW(desktop::Icon("no such icon"), std::logic_error);
}

TEST(Icons, Look) {
  QWidget sheet;
  auto* grid = new QGridLayout(&sheet);
  grid->setContentsMargins(24, 24, 24, 24);
  grid->setSpacing(16);
  int at = 0;
  for (const QFileInfo& file : QDir(":/icons").entryInfoList(QDir::Files, QDir::Name)) {
    const QString name = file.completeBaseName();
    if (name.endsWith("-light") || name.endsWith("-dark")) continue;
    auto* button = new QToolButton;
    button->setIcon(desktop::Icon(name));
    button->setIconSize({32, 32});
    button->setText(name);
    button->setToolButtonStyle(Qt::ToolButtonTextUnderIcon);
    grid->addWidget(button, at / 9, at % 9);
    ++at;
  }
  Picture(sheet, "kit-icons", {880, 300});
}

}  // namespace
}  // namespace vellumark::test
