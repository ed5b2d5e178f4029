#include "desktop/reports/chart_panel.h"

#include <QEvent>
#include <QImage>
#include <QScrollArea>
#include <QtCharts/QChart>
#include <QtCharts/QChartView>

#include "core/base/files.h"
#include "desktop/datafile/file_choice.h"
#include "desktop/kit/look.h"
#include "desktop/kit/text.h"
#include "desktop/kit/window.h"
#include "desktop/reports/chart_drawing.h"
#include "paper/chart_picture.h"

namespace vellumark::desktop {
namespace {

constexpr int kLeastWidth = 280;
constexpr int kLeastHeight = 160;

}  // namespace

ChartPanel::ChartPanel(FormHost& host, const QString& window, FileChooser choose)
    : host_(host), window_(window), choose_(std::move(choose)) {
  setObjectName("Chart");
  setContentsMargins(space::kUnit, 0, 0, 0);
  Form form(host, *this);
  figure_ = form.Combo("cmbChartFigure");
  figure_->setAccessibleName(tr("Figure of the chart"));
  group_ = form.Combo("cmbChartGroup");
  group_->setAccessibleName(tr("Bars of the chart"));
  for (ComboField* combo : {figure_, group_}) {
    combo->DoNotTrack();
    combo->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    combo->setMinimumContentsLength(8);
  }
  figure_->OnChosen([this](int) {
    memory::Keep("chart/" + window_ + "/figure", figure_->currentText());
    Draw();
  });
  group_->OnChosen([this](int) {
    memory::Keep("chart/" + window_ + "/group", group_->currentText());
    Draw();
  });
  form.Row(tr("Fi&gure"), figure_);
  form.Row(tr("&By"), group_);
  view_ = new QChartView;
  view_->setObjectName("ChartView");
  view_->setAccessibleName(tr("Chart of the report"));
  view_->setRenderHint(QPainter::Antialiasing);
  view_->setFrameShape(QFrame::NoFrame);
  view_->setFocusPolicy(Qt::NoFocus);
  auto* area = new QScrollArea(this);
  area->setWidgetResizable(true);
  area->setMinimumHeight(kLeastHeight);
  area->setFocusPolicy(Qt::NoFocus);
  area->setWidget(view_);
  form.Wide(area, 1);
  form.Wide(save_ = form.Button("cmdSaveChart", tr("Save p&icture ..."), [this] { Save(); }));
  setMinimumWidth(kLeastWidth);
}

bool ChartPanel::WasOpen() const {
  return memory::Recall("chart/" + window_ + "/open").toBool();
}

void ChartPanel::KeepOpen(bool open) const {
  memory::Keep("chart/" + window_ + "/open", open);
}

void ChartPanel::Show(std::shared_ptr<const BuiltReport> report) {
  const bool same = report_ == report;
  report_ = std::move(report);
  if (!same) ShowChoices();
  Draw();
}

// What was chosen the last time, as far as the report has it.
void ChartPanel::ShowChoices() {
  figures_.clear();
  groups_.clear();
  if (report_) {
    figures_ = ChartFiguresOf(*report_);
    groups_ = ChartGroupsOf(*report_);
  }
  const auto fill = [&](ComboField& combo, const QStringList& items, const char* key, std::size_t usual) {
    combo.clear();
    combo.addItems(items);
    const int kept = combo.findText(memory::Recall("chart/" + window_ + key).toString());
    combo.setCurrentIndex(kept >= 0 ? kept : items.isEmpty() ? -1 : static_cast<int>(usual));
  };
  QStringList figures;
  for (const std::size_t column : figures_) figures += Q(report_->columns[column].Caption()).trimmed();
  QStringList groups;
  for (const ChartGroup group : groups_) groups += tr(std::string(ChartGroupName(group)).c_str());
  fill(*figure_, figures, "/figure", report_ ? UsualChartFigure(*report_, figures_) : 0);
  fill(*group_, groups, "/group", UsualChartGroup(groups_));
}

std::optional<ReportChart> ChartPanel::Chart() const {
  if (!report_ || figure_->currentIndex() < 0 || group_->currentIndex() < 0) return std::nullopt;
  return ChartOf(*report_, groups_.at(static_cast<std::size_t>(group_->currentIndex())),
                 figures_.at(static_cast<std::size_t>(figure_->currentIndex())));
}

void ChartPanel::Draw() {
  const std::optional<ReportChart> chart = Chart();
  save_->setEnabled(chart.has_value());
  const std::unique_ptr<QChart> before(view_->chart());
  auto next = chart ? MakeChart(*chart, ChartColors::OnScreen()) : std::make_unique<QChart>();
  if (!chart) next->setBackgroundBrush(ChartColors::OnScreen().ground);
  view_->setBackgroundBrush(ChartColors::OnScreen().ground);
  view_->setChart(next.release());
  view_->setMinimumHeight(chart ? LeastChartHeight(*chart) : 0);
}

// Another theme: the colours anew.
void ChartPanel::changeEvent(QEvent* event) {
  QWidget::changeEvent(event);
  if (event->type() == QEvent::PaletteChange && view_ != nullptr) Draw();
}

void ChartPanel::Save() {
  const std::optional<ReportChart> chart = Chart();
  if (!chart) return;
  const QString file = ChooseDocument(choose_, host_.session.prompt,
                                      {.title = tr("Save picture"),
                                       .filter = tr("Pictures (*.png *.svg)") + " | *.png *.svg",
                                       .extension = ".png",
                                       .folder = {}},
                                      this);
  if (file.isEmpty()) return;
  try {
    WriteFile(file, *chart);
  } catch (const Failure& failure) {
    host_.session.prompt.Tell(failure.subject, failure.cause, vellumark::Icon::Critical);
  }
}

void ChartPanel::WriteFile(const QString& file, const ReportChart& chart) {
  FileBeside beside(U8(file), Readers::Everybody);
  beside.Write(file.endsWith(".svg", Qt::CaseInsensitive) ? paper::ChartSvg(chart) : paper::ChartPng(chart));
  beside.Replace();
}

}  // namespace vellumark::desktop
