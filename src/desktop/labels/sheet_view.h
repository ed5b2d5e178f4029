#pragma once

#include <QWidget>

#include "core/labels/label_drawing.h"

namespace vellumark::desktop {

/// A small picture of a sheet and how its labels lie on it.
class SheetView : public QWidget {
  Q_OBJECT

 public:
  explicit SheetView(const QString& name);
  void Show(const LabelPaper& paper);
  QSize sizeHint() const override { return {200, 160}; }

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  LabelPaper paper_;
};

/// True where the labels of a sheet of a known paper do not fit on it.
bool LabelsLeaveThePaper(const LabelPaper& paper);

}  // namespace vellumark::desktop
