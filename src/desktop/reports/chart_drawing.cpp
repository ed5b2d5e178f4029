#include "desktop/reports/chart_drawing.h"

#include <QCoreApplication>
#include <QtCharts/QBarCategoryAxis>
#include <QtCharts/QBarSeries>
#include <QtCharts/QBarSet>
#include <QtCharts/QCategoryAxis>
#include <QtCharts/QChart>
#include <QtCharts/QHorizontalBarSeries>
#include <QtCharts/QValueAxis>
#include <algorithm>
#include <functional>

#include "desktop/kit/look.h"
#include "desktop/kit/text.h"
#include "paper/chart_picture.h"

namespace vellumark::desktop {
namespace {

constexpr int kAroundBars = 84;            // title, axis and margins
constexpr int kNameHeight = 28;            // a lower bar is left without its name
constexpr int kLeastColumn = 80;
constexpr int kDigits = 12;                // of a figure beside its bar
constexpr double kRoomForFigure = 0.18;    // of the axis, beyond the longest bar
constexpr std::size_t kMostFigures = 12;   // more columns have no room for their figures
constexpr std::size_t kMostFlatNames = 6;  // more periods are written upright
constexpr std::size_t kMostNames = 24;     // of more periods, some

QString Tr(const char* text) {
  return QCoreApplication::translate("ReportChart", text);
}

bool IsPercent(const ReportChart& chart) {
  return chart.column.format == Format::Percent;
}

double ShownValue(const ReportChart& chart, const ChartSlice& slice) {
  return IsPercent(chart) ? slice.value * 100 : slice.value;
}

QString NameOf(const ChartSlice& slice) {
  return slice.name.empty() ? Tr("(none)") : Q(slice.name);
}

class Maker {
 public:
  Maker(const ReportChart& of, const ChartColors& colors) : of_(of), colors_(colors), chart_(new QChart) {
    chart_->setAnimationOptions(QChart::NoAnimation);
    chart_->legend()->hide();
    chart_->setBackgroundRoundness(0);
    chart_->setBackgroundPen(Qt::NoPen);
    chart_->setBackgroundBrush(colors.ground);
    chart_->setMargins({space::kUnit, space::kUnit, space::kUnit, space::kUnit});
    chart_->setLocalizeNumbers(true);
    chart_->setTitle(Q(paper::ChartTitle(of)));
    chart_->setTitleBrush(colors.text);
    QFont bold = Look::Base();
    bold.setBold(true);
    chart_->setTitleFont(bold);
  }

  std::unique_ptr<QChart> Make() {
    if (of_.slices.empty()) {
      chart_->setTitle(Q(paper::ChartTitle(of_)) + "\n" + Tr("Nothing was found"));
      return std::move(chart_);
    }
    if (of_.group <= ChartGroup::Quarter)
      MakeColumns();
    else
      MakeBars();
    return std::move(chart_);
  }

 private:
  void MakeColumns() {
    AddSeries(new QBarSeries, of_.slices);
    auto* periods = new QCategoryAxis;
    periods->setLabelsPosition(QCategoryAxis::AxisLabelsPositionOnValue);
    const std::size_t count = of_.slices.size();
    const std::size_t step = (count + kMostNames - 1) / kMostNames;
    periods->setStartValue(-0.5);
    for (std::size_t i = 0; i < count; i += step) periods->append(NameOf(of_.slices[i]), static_cast<double>(i));
    periods->setRange(-0.5, static_cast<double>(count) - 0.5);
    if (count > kMostFlatNames) periods->setLabelsAngle(-90);
    periods->setGridLineVisible(false);
    Attach(periods, Qt::AlignBottom);
    Attach(Values(), Qt::AlignLeft);
  }

  // The first one on top.
  void MakeBars() {
    const std::vector<ChartSlice> upwards(of_.slices.rbegin(), of_.slices.rend());
    AddSeries(new QHorizontalBarSeries, upwards);
    auto* names = new QBarCategoryAxis;
    for (const ChartSlice& slice : upwards) names->append(NameOf(slice));
    names->setGridLineVisible(false);
    Attach(names, Qt::AlignLeft);
    Attach(Values(), Qt::AlignBottom);
  }

  void AddSeries(QAbstractBarSeries* series, const std::vector<ChartSlice>& slices) {
    auto* set = new QBarSet(Q(of_.figure));
    for (const ChartSlice& slice : slices) set->append(ShownValue(of_, slice));
    set->setBrush(colors_.bar);
    set->setPen(Qt::NoPen);
    set->setLabelColor(colors_.text);
    set->setLabelFont(Look::Figures());
    series->append(set);
    series->setBarWidth(0.7);
    series->setLabelsVisible(slices.size() <= kMostFigures);
    series->setLabelsPosition(QAbstractBarSeries::LabelsOutsideEnd);
    series->setLabelsPrecision(kDigits);
    if (IsPercent(of_)) series->setLabelsFormat("@value %");
    chart_->addSeries(series);
    series_ = series;
  }

  QValueAxis* Values() const {
    double least = 0;
    double most = 0;
    for (const ChartSlice& slice : of_.slices) {
      least = std::min(least, ShownValue(of_, slice));
      most = std::max(most, ShownValue(of_, slice));
    }
    const double beyond = most - least == 0 ? 1 : (most - least) * kRoomForFigure;
    auto* axis = new QValueAxis;
    axis->setRange(least < 0 ? least - beyond : 0, most > 0 || least == 0 ? most + beyond : 0);
    axis->applyNiceNumbers();
    axis->setGridLineColor(colors_.line);
    return axis;
  }

  void Attach(QAbstractAxis* axis, Qt::Alignment side) {
    axis->setLabelsColor(colors_.text);
    axis->setLabelsFont(Look::Figures());
    axis->setLinePenColor(colors_.line);
    chart_->addAxis(axis, side);
    series_->attachAxis(axis);
  }

  const ReportChart& of_;
  const ChartColors& colors_;
  std::unique_ptr<QChart> chart_;
  QAbstractBarSeries* series_ = nullptr;
};

}  // namespace

ChartColors ChartColors::OnScreen() {
  const Colors& now = Look::Now();
  return {now.surface, now.text, now.line, now.accent};
}

std::unique_ptr<QChart> MakeChart(const ReportChart& chart, const ChartColors& colors) {
  return Maker(chart, colors).Make();
}

int LeastChartHeight(const ReportChart& chart) {
  const bool names = chart.group > ChartGroup::Quarter;
  return kAroundBars + (names ? static_cast<int>(chart.slices.size()) * kNameHeight : kLeastColumn);
}

}  // namespace vellumark::desktop
