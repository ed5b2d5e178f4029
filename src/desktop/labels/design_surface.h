#pragma once

#include <QAbstractScrollArea>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "core/labels/label_work.h"
#include "desktop/kit/fields.h"

namespace vellumark::desktop {

/// One thing on the label that can be moved.
struct SurfaceBox {
  PlacedItem item;
  QString caption;
  QString fault{};     ///< what is wrong with it, if anything
  bool empty = false;  ///< nothing is painted in it but its caption
};

/// What the surface shows.
struct SurfaceContent {
  double width = 0;  ///< twips of the label; none: `note` stands in its place
  double length = 0;
  LabelDrawing data{};     ///< what is printed
  LabelDrawing samples{};  ///< what only holds the place of data that is not there
  std::vector<SurfaceBox> boxes{};
  LabelUnit unit{};
  std::filesystem::path pictures{};
  QString note{};
};

/// A label as it is printed, at its true size on this screen or any other, with rulers and a box around each thing on
/// it. The mouse drags boxes, or a frame around several; the keys: arrows move by a step, with Shift by a line of the
/// grid, PageUp and PageDown go from box to box, with Shift adding it, Ctrl+A takes all, Space opens one, Delete hides,
/// + - 0 and 1 zoom.
class DesignSurface : public QAbstractScrollArea, public Field {
  Q_OBJECT

 public:
  explicit DesignSurface(const QString& name);
  QWidget& Control() override { return *this; }
  QVariant Content() const override { return {}; }

  void Show(SurfaceContent content);
  const SurfaceContent& Shown() const { return content_; }
  const std::vector<std::string>& Selected() const { return selected_; }
  std::vector<PlacedItem> SelectedItems() const;
  /// Names that have no box are left out.
  void Select(std::vector<std::string> names);

  /// 1 is the true size; 0 shows the whole label.
  void SetZoom(double zoom);
  double Zoom() const { return zoom_; }
  double PixelsPerTwip() const;
  void SetSnap(bool snap);
  /// The selected boxes by so many steps, or lines of the grid.
  void Nudge(int across, int down, bool byGrid);
  /// Where a place on the label is in the viewport.
  QRectF OnScreen(const PlacedItem& item) const;
  QRectF LabelOnScreen() const;
  QSize sizeHint() const override { return {480, 320}; }

 Q_SIGNALS:
  /// Where the boxes are to be now; moves of one gesture are one step.
  void MovedTo(const std::vector<PlacedItem>& items, const QString& gesture);
  void GestureEnded();
  void SelectionChanged();
  /// The box under the pointer, or an empty text.
  void Pointed(const QString& name);
  void Activated(const QString& name);
  void HideWanted();
  void ZoomWanted(double zoom);

 protected:
  bool viewportEvent(QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void scrollContentsBy(int, int) override { viewport()->update(); }
  void keyPressEvent(QKeyEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;
  void focusInEvent(QFocusEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;

 private:
  struct Drag {
    QPointF from;
    std::string held;
    std::vector<PlacedItem> items;
    bool moving = false;
  };

  double TrueDots() const;
  QSizeF Extent() const;  ///< twips of the label and of what lies beside it
  QPointF Origin() const;
  void Arrange();
  const SurfaceBox* BoxAt(QPointF point) const;
  bool IsSelected(const std::string& name) const;
  void StepTo(int by, bool adding);
  void Point(const SurfaceBox* box);
  void ZoomBy(int steps);
  void DragTo(QPointF point, bool freely);
  void CancelDrag();
  void KeepInView(QPointF point);
  void Describe();

  void PaintLabel(QPainter& painter) const;
  void PaintGrid(QPainter& painter) const;
  void PaintBoxes(QPainter& painter) const;
  void PaintRulers(QPainter& painter) const;

  SurfaceContent content_;
  std::vector<std::string> selected_;
  std::string pointed_;
  double zoom_ = 0;
  bool snap_ = true;
  std::optional<Drag> drag_;
  std::optional<QRectF> frame_;  ///< around what is being selected
  QPointF frameFrom_;
  LabelMove lines_;
};

}  // namespace vellumark::desktop
