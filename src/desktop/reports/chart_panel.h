#pragma once

#include <QWidget>
#include <memory>
#include <optional>

#include "core/reports/chart.h"
#include "desktop/datafile/file_choice.h"
#include "desktop/kit/form.h"

class QChartView;

namespace vellumark::desktop {

/// The chart beside a report: which figure, by what, and the picture, which can be saved.
class ChartPanel : public QWidget {
  Q_OBJECT

 public:
  /// Of the window of that name, which keeps the choices.
  ChartPanel(FormHost& host, const QString& window, FileChooser choose);

  /// The rows that are shown have changed. Nothing that can be drawn: an empty picture.
  void Show(std::shared_ptr<const BuiltReport> report);
  std::optional<ReportChart> Chart() const;

  /// Whether the window had it open the last time.
  bool WasOpen() const;
  void KeepOpen(bool open) const;

 protected:
  void changeEvent(QEvent* event) override;

 private:
  void ShowChoices();
  void Draw();
  void Save();
  void WriteFile(const QString& file, const ReportChart& chart);

  FormHost& host_;
  QString window_;
  FileChooser choose_;
  std::shared_ptr<const BuiltReport> report_;
  std::vector<std::size_t> figures_;
  std::vector<ChartGroup> groups_;
  ComboField* figure_ = nullptr;
  ComboField* group_ = nullptr;
  CommandButton* save_ = nullptr;
  QChartView* view_ = nullptr;
};

}  // namespace vellumark::desktop
