#include "desktop/kit/icons.h"

#include <QFile>
#include <QIconEngine>
#include <QPainter>
#include <QPixmap>
#include <QSvgRenderer>
#include <stdexcept>

#include "desktop/kit/look.h"

namespace vellumark::desktop {
namespace {

QString PathOf(const QString& name) {
  return ":/icons/" + name + ".svg";
}

// Signals keep their colour, everything else is drawn as text is.
QColor Ink(const QString& name, QIcon::Mode mode) {
  const Colors& colors = Look::Now();
  if (mode == QIcon::Disabled) return colors.off;
  if (name == "warning" || name == "low-stock") return colors.warning;
  if (name == "critical" || name == "fault") return colors.danger;
  if (name == "information" || name == "question") return colors.accent;
  return colors.text;
}

/// Paints the file anew at the size asked for, with the theme's colour in the place of currentColor.
class InkIconEngine final : public QIconEngine {
 public:
  InkIconEngine(QString name, QByteArray svg) : name_(std::move(name)), svg_(std::move(svg)) {}

  void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State) override {
    QByteArray svg = svg_;
    svg.replace("currentColor", Ink(name_, mode).name().toLatin1());
    svg.replace("accentColor", (mode == QIcon::Disabled ? Look::Now().off : Look::Now().accent).name().toLatin1());
    QSvgRenderer renderer(svg);
    renderer.setAspectRatioMode(Qt::KeepAspectRatio);
    renderer.render(painter, rect);
  }

  QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
    QPixmap picture(size);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    paint(&painter, QRect(QPoint(0, 0), size), mode, state);
    return picture;
  }

  QIconEngine* clone() const override { return new InkIconEngine(name_, svg_); }
  QString key() const override { return "ink"; }

 private:
  QString name_;
  QByteArray svg_;
};

}  // namespace

IconView::IconView(const QString& iconName, int size, const QString& objectName) : icon_(Icon(iconName)) {
  setFixedSize(size, size);
  setObjectName(objectName);
}

void IconView::Show(const QString& iconName) {
  icon_ = Icon(iconName);
  update();
}

void IconView::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  icon_.paint(&painter, rect(), Qt::AlignCenter, isEnabled() ? QIcon::Normal : QIcon::Disabled);
}

QIcon Icon(const QString& name) {
  QFile file(PathOf(name));
  if (!file.open(QIODevice::ReadOnly)) throw std::logic_error("there is no icon " + name.toStdString());
  return QIcon(new InkIconEngine(name, file.readAll()));
}

}  // namespace vellumark::desktop
