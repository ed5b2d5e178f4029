#pragma once

#include <QIcon>
#include <QTimer>
#include <QWidget>

namespace vellumark::desktop {

/// Arrows that turn for a moment when colours are recycled, and stand still while the Batch holds any. Decoration: it
/// takes no focus, and where the desktop moves nothing, neither does it.
class RecycleGraphic : public QWidget {
  Q_OBJECT

 public:
  explicit RecycleGraphic(QWidget* parent);

  void Turn();
  bool IsTurning() const { return timer_.isActive(); }

 protected:
  void paintEvent(QPaintEvent* event) override;
  void hideEvent(QHideEvent* event) override;

 private:
  void Rest();

  QIcon icon_;
  QTimer timer_;
  int degrees_ = 0;
};

}  // namespace vellumark::desktop
