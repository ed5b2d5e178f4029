#include "desktop/batch/pour_view.h"

#include <QGridLayout>
#include <QLabel>
#include <QPainter>
#include <utility>

#include "desktop/kit/look.h"
#include "desktop/kit/text.h"

namespace vellumark::desktop {
namespace {

constexpr int kBarHeight = 40;
constexpr double kCorner = 4;
constexpr double kReadingScale = 4;

QString Tr(const char* text) {
  return PourReading::tr(text);
}

}  // namespace

PourColors ColorsOf(WeighColor color) {
  const QColor dark("#0d1114");
  switch (color) {
    case WeighColor::Red:
      return {QColor(200, 0, 0), QColor("#ffffff")};
    case WeighColor::White:
      return {QColor(255, 255, 255), dark};
    case WeighColor::LightGreen:
      return {QColor(192, 255, 192), dark};
    case WeighColor::Green:
      return {QColor(128, 255, 128), dark};
    case WeighColor::FullGreen:
      return {QColor(0, 255, 0), dark};
  }
  std::unreachable();
}

QString PourWord(const WeighProgress& progress, PourEnd end) {
  if (progress.p < 0) return Tr("Below nothing: tare");
  if (end == PourEnd::OnTarget) return Tr("On target");
  if (end == PourEnd::Over) return Tr("Too much");
  if (progress.p >= 95) return Tr("Drop by drop");
  if (progress.p >= 90) return Tr("Slowly");
  if (progress.p >= 75) return Tr("Nearly there");
  return Tr("Pour");
}

// ---- The bar

PourBar::PourBar(const QString& name) {
  setObjectName(name);
  setMinimumHeight(kBarHeight);
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
  setAccessibleName(tr("How far the pour has come"));
}

void PourBar::Show(const WeighProgress& progress) {
  if (progress.bar == progress_.bar && progress.color == progress_.color && progress.percent == progress_.percent) return;
  progress_ = progress;
  setAccessibleDescription(Q(progress.percent));
  update();
}

void PourBar::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  const QRectF all = QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5);
  painter.setPen(QPen(Look::Now().border, 1));
  painter.setBrush(Look::Now().surface);
  painter.drawRoundedRect(all, kCorner, kCorner);
  if (progress_.bar > 0) {
    QRectF done = all.adjusted(1, 1, -1, -1);
    done.setWidth(done.width() * progress_.bar / 100);
    // White on white is no bar: the first three quarters have the accent.
    const bool white = progress_.color == WeighColor::White;
    painter.setPen(Qt::NoPen);
    painter.setBrush(white ? Look::Now().accent : ColorsOf(progress_.color).ground);
    painter.drawRoundedRect(done, kCorner, kCorner);
  }
  // Where the pour has to be slowed down.
  painter.setPen(QPen(Look::Now().border, 1));
  for (const int mark : {75, 90}) {
    const double x = all.left() + all.width() * mark / 100;
    painter.drawLine(QPointF(x, all.bottom() - all.height() / 4), QPointF(x, all.bottom()));
  }
}

// ---- The reading

PourReading::PourReading() {
  setObjectName("Reading");
  weight_ = new QLabel;
  weight_->setObjectName("lblSWeight");
  weight_->setAccessibleName(tr("Weight on the scale"));
  weight_->setFont(Look::Figures(kReadingScale));
  weight_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
  unit_ = new QLabel;
  unit_->setObjectName("lblSUnit");
  unit_->setFont(Look::Figures(kReadingScale / 2));
  word_ = new QLabel;
  word_->setObjectName("lblWord");
  QFont bold = Look::Figures(2);
  bold.setWeight(QFont::DemiBold);
  word_->setFont(bold);
  auto* grid = new QGridLayout(this);
  grid->setContentsMargins(space::kGap, space::kUnit, space::kGap, space::kUnit);
  grid->setHorizontalSpacing(space::kUnit);
  grid->setVerticalSpacing(0);
  grid->addWidget(weight_, 0, 0);
  grid->addWidget(unit_, 0, 1, Qt::AlignBottom);
  grid->addWidget(word_, 1, 0, 1, 2, Qt::AlignRight);
  grid->setColumnStretch(0, 1);
  Show("0.000", {}, " ", WeighColor::White);
}

void PourReading::Show(const QString& weight, const QString& unit, const QString& word, WeighColor color) {
  weight_->setText(weight);
  unit_->setText(unit);
  word_->setText(word);
  const QString tone = "color: " + ColorsOf(color).text.name();
  if (weight_->styleSheet() != tone)
    for (QLabel* label : {weight_, unit_, word_}) label->setStyleSheet(tone);
  if (std::exchange(color_, color) != color) update();
}

void PourReading::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(QPen(Look::Now().border, 1));
  painter.setBrush(ColorsOf(color_).ground);
  painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), kCorner, kCorner);
}

}  // namespace vellumark::desktop
