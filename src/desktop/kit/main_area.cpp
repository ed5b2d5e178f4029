#include "desktop/kit/main_area.h"

#include <QAction>
#include <QApplication>
#include <QMdiSubWindow>
#include <QMenu>
#include <QResizeEvent>
#include <QTabBar>

#include "desktop/kit/window.h"

namespace vellumark::desktop {

MainArea::MainArea(QWidget* frame) : QMdiArea(frame), frame_(frame) {
  setObjectName("MainArea");
  setActivationOrder(QMdiArea::ActivationHistoryOrder);
  setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
  setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
  ShowAsTabs();
  connect(this, &QMdiArea::subWindowActivated, this, [this](QMdiSubWindow* sub) {
    // The one behind a closed tab comes forward in the size it had before it was a tab.
    if (sub != nullptr && viewMode() == QMdiArea::TabbedView && !sub->isMaximized()) sub->showMaximized();
  });
}

MainArea::~MainArea() = default;

QWidget* MainArea::MakeRoom() {
  // It is in the area before it is filled: being taken in would style all that is in it anew.
  auto* sub = new QMdiSubWindow;
  sub->setAttribute(Qt::WA_DeleteOnClose);
  addSubWindow(sub);
  // The menu of the main window closes by these keys; of two entries with the same key neither would hear it.
  if (QMenu* own = sub->systemMenu(); own != nullptr)
    for (QAction* entry : own->actions()) entry->setShortcuts(QList<QKeySequence>());
  return sub;
}

void MainArea::Add(Window& window) {
  if (window.IsFloating()) {
    window.setParent(frame_, Qt::Tool);
    // Told outright: not every screen has somebody who would find a place for it.
    window.move(floatingPlace_.isNull() ? frame_->geometry().center() : floatingPlace_);
    window.show();
    window.activateWindow();
    return;
  }
  QMdiSubWindow* sub = SubWindowOf(window);
  sub->setWidget(&window);
  sub->setWindowIcon(window.windowIcon());
  if (viewMode() == QMdiArea::TabbedView) {
    sub->showMaximized();
  } else {
    sub->show();
  }
  setActiveSubWindow(sub);
}

void MainArea::BringForward(Window& window) {
  if (QMdiSubWindow* sub = SubWindowOf(window)) {
    setActiveSubWindow(sub);
    if (viewMode() != QMdiArea::TabbedView && sub->isMinimized()) sub->showNormal();
    return;
  }
  window.raise();
  window.activateWindow();
}

void MainArea::Remove(Window& window) {
  QMdiSubWindow* sub = SubWindowOf(window);
  if (sub == nullptr) return;
  // The frame of the window goes with it, whoever closed which of the two.
  sub->setWidget(nullptr);
  window.setParent(nullptr);
  removeSubWindow(sub);
  sub->deleteLater();
}

Window* MainArea::Active() const {
  for (QWidget* widget = QApplication::focusWidget(); widget != nullptr; widget = widget->parentWidget()) {
    auto* window = qobject_cast<Window*>(widget);
    if (window != nullptr && window->IsFloating()) return window;
  }
  const QMdiSubWindow* sub = activeSubWindow();
  // One that was opened out of a dialog stands in front before the platform has given the keys back.
  for (const QMdiSubWindow* one : subWindowList(QMdiArea::ActivationHistoryOrder))
    if (activeSubWindow() == nullptr && one->isVisible()) sub = one;
  return sub == nullptr ? nullptr : qobject_cast<Window*>(sub->widget());
}

void MainArea::ShowAsTabs() {
  setViewMode(QMdiArea::TabbedView);
  setTabsClosable(true);
  setTabsMovable(true);
  setDocumentMode(true);
  for (auto* bar : findChildren<QTabBar*>()) bar->setExpanding(false);
}

void MainArea::ShowFree() {
  setViewMode(QMdiArea::SubWindowView);
}

void MainArea::Tile() {
  ShowFree();
  tileSubWindows();
}

void MainArea::Cascade() {
  ShowFree();
  cascadeSubWindows();
}

// A window takes the least room that it needs as it is made; once it is shown it hides what it has no use for, and later
// it may show that again. As a tab it is then to be as large as the area, and larger only where it must.
bool MainArea::eventFilter(QObject* watched, QEvent* event) {
  const bool done = QMdiArea::eventFilter(watched, event);
  if (event->type() == QEvent::LayoutRequest && qobject_cast<QMdiSubWindow*>(watched) != nullptr &&
      viewMode() == QMdiArea::TabbedView) {
    QResizeEvent anew(viewport()->size(), viewport()->size());
    resizeEvent(&anew);
  }
  return done;
}

QMdiSubWindow* MainArea::SubWindowOf(const Window& window) const {
  return qobject_cast<QMdiSubWindow*>(window.parentWidget());
}

}  // namespace vellumark::desktop
