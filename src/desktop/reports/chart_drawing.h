#pragma once

#include <QColor>
#include <memory>

#include "core/reports/chart.h"

class QChart;

namespace vellumark::desktop {

/// What a chart is drawn with.
struct ChartColors {
  QColor ground;
  QColor text;
  QColor line;
  QColor bar;
  static ChartColors OnScreen();
};

/// For the screen; what goes out of the program `paper` draws. Columns along the calendar, and bars under each other
/// for names, each with its figure beside it.
std::unique_ptr<QChart> MakeChart(const ReportChart& chart, const ChartColors& colors);
/// In pixels: in less, bars would lose their names.
int LeastChartHeight(const ReportChart& chart);

}  // namespace vellumark::desktop
