#pragma once

#include <QColor>
#include <QWidget>
#include <optional>

namespace vellumark::desktop {

/// A patch of ink; crossed out while the colour is not known.
class SwatchView : public QWidget {
  Q_OBJECT

 public:
  SwatchView(const QString& name, QSize size);
  void Show(std::optional<QColor> ink);

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  std::optional<QColor> ink_;
};

}  // namespace vellumark::desktop
