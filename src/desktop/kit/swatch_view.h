#pragma once

#include <QColor>
#include <QWidget>
#include <optional>

#include "core/colors/ink.h"

class QPainter;

namespace vellumark::desktop {

/// An ink as grids and pictures have it. That it is estimated is told by its alpha, a step below full, which nobody
/// sees; PaintInk does.
QColor ColorOf(const Ink& ink);
std::optional<QColor> ColorOf(const std::optional<Ink>& ink);
/// A patch of ink with its edge. What is estimated has its corner turned down.
void PaintInk(QPainter& painter, const QRectF& box, const QColor& ink, double corner = 4);
/// "#c81900", for a screen reader and a tooltip; says that it is estimated.
QString InkText(const std::optional<Ink>& ink);

/// A patch of ink beside a name. While the colour is not known it is crossed out, or stays empty.
class SwatchView : public QWidget {
  Q_OBJECT

 public:
  enum class Unknown { CrossedOut, Empty };
  SwatchView(const QString& name, QSize size, Unknown unknown = Unknown::CrossedOut);
  void Show(const std::optional<Ink>& ink);

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  std::optional<Ink> ink_;
  Unknown unknown_;
};

}  // namespace vellumark::desktop
