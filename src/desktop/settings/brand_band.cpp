#include "desktop/settings/brand_band.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QPainterPath>
#include <QScrollArea>
#include <QStringList>
#include <QVBoxLayout>

#include "core/shell/opening.h"
#include "desktop/kit/icons.h"
#include "desktop/kit/look.h"
#include "desktop/kit/text.h"

namespace vellumark::desktop {
namespace {

constexpr int kHeight = 168;
constexpr int kWave = 24;
constexpr int kIconSize = 88;
constexpr int kTallestText = 144;

QLabel* OnBand(const QString& text, const QString& name, const QFont& font) {
  auto* label = new QLabel(text);
  label->setObjectName(name);
  label->setFont(font);
  label->setStyleSheet("color: #ffffff;");
  return label;
}

}  // namespace

BrandBand::BrandBand(QWidget* parent) : QWidget(parent) {
  auto* icon = new QLabel;
  icon->setObjectName("imgIcon");
  icon->setPixmap(Icon("vellumark").pixmap(QSize(kIconSize, kIconSize), 2.0));
  icon->setFixedSize(kIconSize, kIconSize);

  QFont name = Look::Figures(2.4);
  name.setWeight(QFont::Light);
  auto* words = new QVBoxLayout;
  words->setSpacing(space::kTight);
  words->addStretch();
  words->addWidget(OnBand(tr("The Vellumark"), "lblProduct", name));
  words->addWidget(OnBand(Q(VersionCaption()), "lblVersion", Look::Figures(1.1)));
  words->addStretch();

  auto* layout = new QHBoxLayout(this);
  // The icon's own edge is part of the distance.
  layout->setContentsMargins(space::kGap, space::kGap, 4 * space::kUnit, space::kGap + kWave);
  layout->setSpacing(space::kUnit);
  layout->addWidget(icon);
  layout->addLayout(words, 1);
  setFixedHeight(kHeight);
}

void BrandBand::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  const QColor ground = Look::Of(Theme::Light).accent;
  const double w = width();
  const double h = height();
  const auto wave = [&](double level, double swing) {
    QPainterPath path;
    path.lineTo(0, h - level);
    path.cubicTo(w * 0.22, h - level + swing, w * 0.36, h - level + swing, w * 0.5, h - level);
    path.cubicTo(w * 0.64, h - level - swing, w * 0.8, h - level - swing, w, h - level + swing / 3);
    path.lineTo(w, 0);
    path.closeSubpath();
    return path;
  };
  QColor thin = ground;
  thin.setAlpha(90);
  painter.fillPath(wave(kWave * 0.5, kWave * 0.5), thin);
  painter.fillPath(wave(kWave, kWave * 0.9), ground);
}

QString WarrantyText() {
  return BrandBand::tr(
      "The Vellumark is provided as it is, without warranty of any kind. Weights, costs and emission figures are "
      "worked "
      "out from what was entered: check a formula on press before you rely on it. The printer of the job answers for "
      "the "
      "color that leaves the shop.");
}

QString DatabaseNotices(const Session& session) {
  QStringList notices;
  for (const std::string& notice : {session.Disclaimer, session.TradeMark}) {
    if (const QString text = Q(notice).trimmed(); !text.isEmpty()) notices += text;
  }
  return notices.join("\n\n");
}

QWidget* ReadingText(const QString& text, const QString& name, int width) {
  auto* label = new QLabel(text);
  label->setObjectName(name);
  label->setTextFormat(Qt::PlainText);
  label->setWordWrap(true);
  label->setProperty("role", "hint");
  label->setAlignment(Qt::AlignLeft | Qt::AlignTop);
  if (label->heightForWidth(width) <= kTallestText) {
    label->setFixedWidth(width);
    return label;
  }
  auto* area = new QScrollArea;
  area->setObjectName(name + "Area");
  area->setWidget(label);
  area->setWidgetResizable(true);
  area->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  area->setFixedSize(width, kTallestText);
  area->setFocusPolicy(Qt::TabFocus);
  return area;
}

}  // namespace vellumark::desktop
