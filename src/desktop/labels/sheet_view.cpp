#include "desktop/labels/sheet_view.h"

#include <QPainter>
#include <algorithm>

#include "desktop/kit/look.h"
#include "paper/label_painter.h"

namespace vellumark::desktop {
namespace {

constexpr double kTwipsPerPoint = 20;

QSizeF PageInTwips(const LabelPaper& paper) {
  return paper::PageOfLabels(paper) * kTwipsPerPoint;
}

}  // namespace

SheetView::SheetView(const QString& name) {
  setObjectName(name);
  setMinimumHeight(120);
  setAccessibleName(tr("How the labels lie on the sheet"));
}

void SheetView::Show(const LabelPaper& paper) {
  paper_ = paper;
  update();
}

void SheetView::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  const Colors& colors = Look::Now();
  const QSizeF page = PageInTwips(paper_);
  if (page.isEmpty() || paper_.width <= 1 || paper_.length <= 1) return;
  const QSizeF shown = page.scaled(QSizeF(size()) - QSizeF(2, 2), Qt::KeepAspectRatio);
  const double scale = shown.width() / page.width();
  painter.fillRect(QRectF(QPointF(1, 1), shown), Qt::white);
  painter.setPen(colors.border);
  painter.drawRect(QRectF(QPointF(0.5, 0.5), shown));
  painter.setClipRect(QRectF(QPointF(1, 1), shown));
  painter.setPen(LabelsLeaveThePaper(paper_) ? Look::Of(Theme::Light).danger : Look::Of(Theme::Light).accent);
  for (int i = 0; i < paper_.Capacity(); ++i) {
    const LabelPlace place = PlaceOfLabel(paper_, 1, i);
    painter.drawRect(QRectF(1 + place.left * scale, 1 + place.top * scale, paper_.width * scale, paper_.length * scale)
                         .adjusted(0.5, 0.5, -0.5, -0.5));
  }
}

bool LabelsLeaveThePaper(const LabelPaper& paper) {
  constexpr double kSlack = 20;  // a page is of whole points
  const QSizeF page = PageInTwips(paper);
  return paper.left + paper.across * paper.width > page.width() + kSlack ||
         paper.top + paper.down * paper.length > page.height() + kSlack;
}

}  // namespace vellumark::desktop
