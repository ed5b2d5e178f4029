#include "desktop/labels/label_preview.h"

#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QScrollBar>
#include <algorithm>
#include <utility>

#include "desktop/kit/look.h"
#include "desktop/kit/text.h"
#include "paper/label_painter.h"

namespace vellumark::desktop {
namespace {

// On paper, whatever the theme.
const QColor kFault(0xc6, 0x28, 0x28);
const QColor kEdge(0xb8, 0xbe, 0xc6);
const QColor kFree(0xf3, 0xf4, 0xf6);
constexpr double kPointsPerInch = 72;

}  // namespace

/// The page, as large as it is shown.
class LabelPreview::Paper : public QWidget {
 public:
  explicit Paper(LabelPreview& preview) : preview_(preview) { setObjectName("Page"); }

 protected:
  void paintEvent(QPaintEvent* event) override {
    QPainter painter(this);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing | QPainter::SmoothPixmapTransform);
    painter.fillRect(rect(), Qt::white);
    const paper::LabelJob& job = preview_.job_;
    if (job.drawings.empty()) return;
    PaintPlaces(painter);
    const double scale = preview_.DotsPerInch() / job.dotsPerInch;
    painter.scale(scale, scale);
    paper::LabelPainter labels(painter, job.dotsPerInch, PicturesOfLabels(preview_.session_));
    labels.Smooth();
    const auto [first, last] = preview_.LabelsShown();
    for (int i = first; i < last; ++i) {
      const LabelPlace place = PlaceOfLabel(job.paper, job.start, i);
      if (!preview_.PlaceOnPage(place).intersects(event->rect())) continue;
      const std::size_t drawing = static_cast<std::size_t>(i) % job.drawings.size();
      labels.Paint(job.drawings[drawing], place.left, place.top);
      if (drawing < preview_.faults_.size()) PaintFaults(painter, drawing, place);
    }
  }

  void mouseReleaseEvent(QMouseEvent* event) override {
    const LabelPaper& paper = preview_.job_.paper;
    for (int i = 0; preview_.shown_ == 0 && i < paper.Capacity(); ++i)
      if (preview_.PlaceOnPage(PlaceOfLabel(paper, 1, i)).contains(event->position()))
        Q_EMIT preview_.PlaceClicked(i + 1);
  }

 private:
  // Where labels lie on the sheet; the used ones are white.
  void PaintPlaces(QPainter& painter) {
    const paper::LabelJob& job = preview_.job_;
    const auto [first, last] = preview_.LabelsShown();
    const int used = first + job.start - 1;
    for (int i = 0; i < job.paper.Capacity(); ++i) {
      const QRectF place = preview_.PlaceOnPage(PlaceOfLabel(job.paper, 1, i));
      const int number = preview_.shown_ * job.paper.Capacity() + i;
      painter.setPen(QPen(kEdge, 1, Qt::DashLine));
      painter.setBrush(number >= used && number < used + last - first ? Qt::white : kFree);
      painter.drawRect(place.adjusted(0.5, 0.5, -0.5, -0.5));
    }
  }

  void PaintFaults(QPainter& painter, std::size_t drawing, const LabelPlace& place) {
    const LabelDrawing& label = preview_.job_.drawings[drawing];
    const int dots = preview_.job_.dotsPerInch;
    const double twips = dots / kTwipsPerInch;
    const QRectF whole(place.left * twips, place.top * twips, label.width * twips, label.length * twips);
    for (const paper::CodeCheck& fault : preview_.faults_[drawing]) {
      const auto found = std::ranges::find_if(label.elements, [&](const LabelElement& element) {
        return element.item == fault.Field;
      });
      if (found == label.elements.end()) continue;
      // What cannot be drawn is marked where it would stand.
      const QRectF area = paper::AreaOf(label, *found, dots, PicturesOfLabels(preview_.session_))
                              .value_or(QRectF(found->left * twips, found->top * twips, dots, found->size * 20 * twips));
      const QRectF seen = area.translated(whole.topLeft()).intersected(whole);
      painter.fillRect(seen, QColor(kFault.red(), kFault.green(), kFault.blue(), 110));
      painter.setPen(QPen(kFault, dots / 48.0));
      painter.setBrush(Qt::NoBrush);
      painter.drawRect(seen);
    }
  }

  LabelPreview& preview_;
};

LabelPreview::LabelPreview(const QString& name, const Session& session) : session_(session), page_(new Paper(*this)) {
  setObjectName(name);
  setAlignment(Qt::AlignCenter);
  setAccessibleName(tr("Preview of the labels"));
  setMinimumSize(240, 160);
  setWidget(page_);
}

QWidget* LabelPreview::Page() const {
  return page_;
}

void LabelPreview::Show(paper::LabelJob job) {
  job_ = std::move(job);
  faults_.assign(job_.drawings.size(), {});
  shown_ = std::clamp(shown_, 0, std::max(0, PageCount() - 1));
  Fit();
  Q_EMIT Turned();
}

void LabelPreview::ShowFaults(std::size_t drawing, std::vector<paper::CodeCheck> faults) {
  faults_.at(drawing) = std::move(faults);
  page_->update();
}

void LabelPreview::SetZoom(double zoom) {
  zoom_ = zoom;
  Fit();
  if (zoom_ == kWholePage) return;
  const QRectF first = PlaceOnPage(PlaceOfLabel(job_.paper, shown_ == 0 ? job_.start : 1, 0));
  horizontalScrollBar()->setValue(static_cast<int>(first.left()) - space::kUnit);
  verticalScrollBar()->setValue(static_cast<int>(first.top()) - space::kUnit);
}

void LabelPreview::TurnTo(int page) {
  shown_ = std::clamp(page, 0, std::max(0, PageCount() - 1));
  page_->update();
  Q_EMIT Turned();
}

int LabelPreview::PageCount() const {
  if (job_.drawings.empty()) return 0;
  return PlaceOfLabel(job_.paper, job_.start, job_.count - 1).page + 1;
}

std::pair<int, int> LabelPreview::LabelsShown() const {
  const int capacity = job_.paper.Capacity();
  const int first = std::max(0, shown_ * capacity - (job_.start - 1));
  return {first, std::min(job_.count, (shown_ + 1) * capacity - (job_.start - 1))};
}

QRectF LabelPreview::PlaceOnPage(const LabelPlace& place) const {
  const double twips = DotsPerInch() / kTwipsPerInch;
  return {place.left * twips, place.top * twips, job_.paper.width * twips, job_.paper.length * twips};
}

double LabelPreview::DotsPerInch() const {
  const double inches = paper::PageOfLabels(job_.paper).width() / kPointsPerInch;
  return inches > 0 ? page_->width() / inches : 1;
}

void LabelPreview::resizeEvent(QResizeEvent* event) {
  QScrollArea::resizeEvent(event);
  Fit();
}

void LabelPreview::Fit() {
  if (job_.drawings.empty()) return;
  const double dots = page_->logicalDpiX();
  const QSizeF page = paper::PageOfLabels(job_.paper) / kPointsPerInch * dots;
  const QSizeF label = QSizeF(job_.paper.width, job_.paper.length) / kTwipsPerInch * dots;
  const auto filling = [&](const QSizeF& what) {
    return std::min((viewport()->width() - space::kUnit) / what.width(),
                    (viewport()->height() - space::kUnit) / what.height());
  };
  const double zoom = zoom_ > 0 ? zoom_ : filling(zoom_ == kWholeLabel ? label : page);
  page_->resize((page * std::max(zoom, 0.02)).toSize());
  page_->update();
}

}  // namespace vellumark::desktop
