#pragma once

#include <QWidget>

#include "core/batch/weighing.h"

class QLabel;

namespace vellumark::desktop {

/// The ground and the text of a reading; the same in both themes.
struct PourColors {
  QColor ground;
  QColor text;
};
PourColors ColorsOf(WeighColor color);

/// The word that says what the colour says.
QString PourWord(const WeighProgress& progress, PourEnd end);

/// A bar that can be read across the room, full at the target.
class PourBar : public QWidget {
  Q_OBJECT

 public:
  explicit PourBar(const QString& name);
  void Show(const WeighProgress& progress);
  int Value() const { return progress_.bar; }

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  WeighProgress progress_;
};

/// The reading in figures for across the room, its unit and the word, on the ground of its colour.
class PourReading : public QWidget {
  Q_OBJECT

 public:
  PourReading();
  void Show(const QString& weight, const QString& unit, const QString& word, WeighColor color);

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  WeighColor color_ = WeighColor::White;
  QLabel* weight_;
  QLabel* unit_;
  QLabel* word_;
};

}  // namespace vellumark::desktop
