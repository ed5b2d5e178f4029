#include "desktop/reports/page_preview.h"

#include <QPaintEvent>
#include <algorithm>

#include "desktop/kit/look.h"

namespace vellumark::desktop {

/// The paper, as large as it is shown.
class PagePreview::Sheet : public QWidget {
 public:
  explicit Sheet(PagePreview& preview) : preview_(preview) {}

  /// Dots of the screen to a point of a page in its real size.
  double DotsPerPoint() const { return logicalDpiX() / 72.0; }

 protected:
  void paintEvent(QPaintEvent*) override {
    if (preview_.pages_.empty()) return;
    QPainter painter(this);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing);
    painter.fillRect(rect(), Qt::white);
    const QRectF paper = preview_.layout_.fullRect(QPageLayout::Point);
    const QRectF area = preview_.layout_.paintRect(QPageLayout::Point);
    const double scale = width() / (paper.width() * DotsPerPoint());
    painter.scale(scale, scale);
    painter.translate(area.topLeft() * DotsPerPoint());
    paper::PagePainter(painter, *preview_.typeface_)
        .Paint(preview_.pages_.at(static_cast<std::size_t>(preview_.shown_)));
  }

 private:
  PagePreview& preview_;
};

PagePreview::PagePreview(const QString& name) : sheet_(new Sheet(*this)) {
  setObjectName(name);
  setAlignment(Qt::AlignCenter);
  setAccessibleName(tr("Preview of the page"));
  setMinimumSize(280, 240);
  setWidget(sheet_);
}

void PagePreview::Show(std::vector<paper::Page> pages, const paper::PageOptions& options) {
  pages_ = std::move(pages);
  typeface_ = std::make_unique<paper::Typeface>(options.family);
  layout_ = options.Layout();
  TurnTo(shown_);
  Fit();
}

void PagePreview::SetZoom(double zoom) {
  zoom_ = zoom;
  Fit();
}

void PagePreview::TurnTo(int page) {
  shown_ = std::clamp(page, 0, std::max(0, PageCount() - 1));
  ensureVisible(0, 0);
  sheet_->update();
  Q_EMIT Turned();
}

void PagePreview::resizeEvent(QResizeEvent* event) {
  QScrollArea::resizeEvent(event);
  Fit();
}

void PagePreview::Fit() {
  const QSizeF paper = layout_.fullRect(QPageLayout::Point).size() * sheet_->DotsPerPoint();
  if (paper.isEmpty()) return;
  const double wide = (viewport()->width() - space::kUnit) / paper.width();
  const double zoom = zoom_ > 0             ? zoom_
                      : zoom_ == kPageWidth ? wide
                                            : std::min(wide, (viewport()->height() - space::kUnit) / paper.height());
  sheet_->resize((paper * zoom).toSize());
  sheet_->update();
}

}  // namespace vellumark::desktop
