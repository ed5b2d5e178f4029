#pragma once

#include <QMdiArea>
#include <QMdiSubWindow>

#include "desktop/kit/window_list.h"

namespace vellumark::desktop {

/// The middle of the main window: child windows as tabs, which the operator may also see as free windows, tiled or in a
/// cascade. Floating windows stand over it.
class MainArea : public QMdiArea, public WindowPlace {
  Q_OBJECT

 public:
  explicit MainArea(QWidget* frame);
  ~MainArea() override;

  QWidget* MakeRoom() override;
  void Add(Window& window) override;
  void BringForward(Window& window) override;
  void Remove(Window& window) override;
  Window* Active() const override;
  QWidget* Frame() override { return frame_; }

  /// Where on the screen the next floating window stands with its upper left corner, such as under the button that
  /// opens it.
  void SetFloatingPlace(const QPoint& place) { floatingPlace_ = place; }

  void ShowAsTabs();
  void ShowFree();
  void Tile();
  void Cascade();

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  QMdiSubWindow* SubWindowOf(const Window& window) const;
  QWidget* frame_;
  QPoint floatingPlace_;
};

}  // namespace vellumark::desktop
