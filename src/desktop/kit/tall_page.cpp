#include "desktop/kit/tall_page.h"

#include <QApplication>
#include <QResizeEvent>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>
#include <algorithm>

#include "desktop/kit/look.h"

namespace vellumark::desktop {
namespace {

constexpr int kLeastHeight = 240;
constexpr int kTitle = 40;  // and what a panel takes of the screen

class TallPage : public QScrollArea {
 public:
  TallPage() {
    setWidgetResizable(true);
    setFrameShape(QFrame::NoFrame);
    setFocusPolicy(Qt::NoFocus);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    auto* content = new QWidget;
    content->setProperty("flush", true);
    content->setAutoFillBackground(false);
    setWidget(content);
    viewport()->setAutoFillBackground(false);
    connect(qApp, &QApplication::focusChanged, this, [this](const QWidget*, QWidget* to) {
      if (to != nullptr && widget()->isAncestorOf(to)) ensureWidgetVisible(to, 0, space::kGroup);
    });
  }
  TallPage(const TallPage&) = delete;
  TallPage& operator=(const TallPage&) = delete;
  ~TallPage() override { qApp->disconnect(this); }  // the focus still moves while its parts go
  QSize sizeHint() const override {
    const QSize hint = widget()->sizeHint().expandedTo(widget()->minimumSizeHint());
    const int height = widget()->hasHeightForWidth() ? widget()->heightForWidth(hint.width()) : hint.height();
    return {hint.width() + Bar(), std::max(hint.height(), height)};
  }
  QSize minimumSizeHint() const override {
    const QSize least = widget()->minimumSizeHint();
    return {least.width() + Bar(), std::min(least.height(), kLeastHeight)};
  }

 protected:
  void resizeEvent(QResizeEvent* event) override {
    QScrollArea::resizeEvent(event);
    updateGeometry();
  }
  bool eventFilter(QObject* watched, QEvent* event) override {
    if (watched == widget() && event->type() == QEvent::LayoutRequest) updateGeometry();
    return QScrollArea::eventFilter(watched, event);
  }

 private:
  int Bar() const {
    return verticalScrollBar()->maximum() > 0 ? verticalScrollBar()->sizeHint().width() : 0;
  }
};

}  // namespace

Form TallPart(FormHost& host, Form& whole) {
  auto* page = new TallPage;
  whole.Wide(page, 1);
  return {host, *page->widget()};
}

void FitScreen(QWidget& dialog, QSize size) {
  // A button that is the default, or is looked at in high contrast, is a little higher than one that is measured here.
  if (!size.isValid()) size = dialog.sizeHint() + QSize(0, space::kTight);
  dialog.resize(size.boundedTo(dialog.screen()->availableSize() - QSize(0, kTitle)));
}

}  // namespace vellumark::desktop
