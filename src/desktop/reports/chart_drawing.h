#pragma once

#include <QColor>
#include <QImage>
#include <QSize>
#include <memory>

#include "core/base/sheet.h"
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
  /// Legible where there is no colour.
  static ChartColors OnPaper();
};

/// Columns along the calendar, and bars under each other for names, each with its figure beside it.
std::unique_ptr<QChart> MakeChart(const ReportChart& chart, const ChartColors& colors);
/// In pixels: in less, bars would lose their names.
int LeastChartHeight(const ReportChart& chart);

// As it goes out of the program.

QImage ChartImage(const ReportChart& chart);
std::string ChartSvg(const ReportChart& chart);
/// Over the report on paper.
SheetBlock ChartBlock(const ReportChart& chart);

/// "Quantity (lb.) by Month".
QString ChartTitle(const ReportChart& chart);

}  // namespace vellumark::desktop
