// What a chart shows in the room that it has.

#include <gtest/gtest.h>

#include <QGraphicsTextItem>
#include <QtCharts/QChart>
#include <QtCharts/QChartView>

#include "desktop/reports/chart_drawing.h"
#include "support/desktop.h"

namespace vellumark::test {
namespace {

// As many bars as there may be, as low as they may get.
TEST(ChartDrawing, EachBarHasItsName) {
  ReportChart chart{.title = {}, .figure = "Quantity (lb.)"};
  chart.group = ChartGroup::Color;
  for (int n = 0; n < 12; ++n)
    chart.slices.push_back({.name = "HARBOUR BLUE " + std::to_string(10 + n), .value = 100.0 - n});
  QChartView view(MakeChart(chart, desktop::ChartColors::OnScreen()).release());
  view.resize(392, desktop::LeastChartHeight(chart));
  ShowActive(view);
  Settle();
  QString shown;
  for (const QGraphicsItem* item : view.scene()->items())
    if (const auto* text = qgraphicsitem_cast<const QGraphicsTextItem*>(item)) shown += text->toPlainText() + "|";
  for (const ChartSlice& slice : chart.slices)
    EXPECT_TRUE(shown.contains(desktop::Q(slice.name) + "|")) << slice.name << ": " << shown.toStdString();
}

}  // namespace
}  // namespace vellumark::test
