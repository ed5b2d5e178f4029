#pragma once

#include <QImage>
#include <QListWidget>
#include <QWidget>
#include <functional>
#include <string>

namespace vellumark::desktop {

/// Decodes pictures beside the interface's thread, shown in the order in which they come. What is still under way when
/// other pictures are asked for, or when this object goes, is dropped.
class PictureLoader : public QObject {
  Q_OBJECT

 public:
  explicit PictureLoader(QObject* parent);
  /// Forgets what was asked for.
  void Drop() { ++wanted_; }
  /// `read` gives the bytes, in the other thread; `shown` hears of the picture here, fitted into `size`; a null one
  /// when there is none.
  void Load(std::function<std::string()> read, QSize size, std::function<void(const QImage&)> shown);

 private:
  int wanted_ = 0;
};

/// Shows a picture as large as there is room; a file that is dropped on it is told.
class PhotoFrame : public QWidget {
  Q_OBJECT

 public:
  explicit PhotoFrame(const QString& name);
  void Show(const QImage& image, const QString& text);
  const QImage& Image() const { return image_; }
  QSize sizeHint() const override { return {360, 240}; }

 Q_SIGNALS:
  void Dropped(const QString& path);

 protected:
  void paintEvent(QPaintEvent* event) override;
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dropEvent(QDropEvent* event) override;

 private:
  QImage image_;
  QString text_;
};

}  // namespace vellumark::desktop
