#pragma once

#include <QAbstractButton>

namespace vellumark::desktop {

/// A text in a row of the Batch that can be clicked: a name, an amount, a mark. It looks like text until the mouse or
/// the focus is on it.
class CellButton : public QAbstractButton {
  Q_OBJECT

 public:
  enum class Tone { Normal, Quiet, Danger, Link };

  /// `scale` times the base size; text that does not fit is cut with dots.
  CellButton(const QString& name, double scale, Qt::Alignment alignment);

  void SetTone(Tone tone);
  /// Without an effect the text is only to be read; Enter and clicks then do nothing.
  void SetClickable(bool clickable);
  /// Room for at least this text, so that a column of cells stays one column.
  void KeepRoomFor(const QString& text);

  QSize sizeHint() const override;
  QSize minimumSizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void enterEvent(QEnterEvent* event) override;
  void leaveEvent(QEvent* event) override;

 private:
  QRect TextRect() const;
  QColor Color() const;

  double scale_;
  Qt::Alignment alignment_;
  Tone tone_ = Tone::Normal;
  bool clickable_ = true;
  int room_ = 0;
};

}  // namespace vellumark::desktop
