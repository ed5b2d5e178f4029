#pragma once

#include <QLayout>
#include <vector>

namespace vellumark::desktop {

/// Widgets side by side, at the right, that go on in a further line when the window is too narrow for them.
class FlowLayout : public QLayout {
  Q_OBJECT

 public:
  explicit FlowLayout(QWidget* parent);
  ~FlowLayout() override;

  void addItem(QLayoutItem* item) override { items_.push_back(item); }
  int count() const override { return static_cast<int>(items_.size()); }
  QLayoutItem* itemAt(int index) const override;
  QLayoutItem* takeAt(int index) override;
  Qt::Orientations expandingDirections() const override { return {}; }
  bool hasHeightForWidth() const override { return true; }
  int heightForWidth(int width) const override { return Arrange({0, 0, width, 0}, false); }
  QSize sizeHint() const override;
  QSize minimumSize() const override;
  void setGeometry(const QRect& rect) override;

 private:
  /// The height of the lines in a rectangle of that width; moves the widgets there when asked to.
  int Arrange(const QRect& rect, bool move) const;

  std::vector<QLayoutItem*> items_;
};

}  // namespace vellumark::desktop
