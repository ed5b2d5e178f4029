#pragma once

#include <QIcon>
#include <QString>
#include <QWidget>

namespace vellumark::desktop {

/// A picture of data/icons by its name ("Batch", "low-stock"), in the colours of the theme that is in force when it is
/// painted, sharp at any size. A name that has no file is the caller's mistake: std::logic_error.
QIcon Icon(const QString& name);

/// An icon as a part of a form, such as the mark of low stock.
class IconView : public QWidget {
  Q_OBJECT

 public:
  IconView(const QString& iconName, int size, const QString& objectName = {});
  void Show(const QString& iconName);

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  QIcon icon_;
};

}  // namespace vellumark::desktop
