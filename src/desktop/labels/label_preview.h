#pragma once

#include <QScrollArea>
#include <vector>

#include "paper/label_print.h"

namespace vellumark::desktop {

/// The pages of labels as they will be printed, one at a time, upright. What does not read as it should is red.
class LabelPreview : public QScrollArea {
  Q_OBJECT

 public:
  LabelPreview(const QString& name, const Session& session);

  /// How large a page is shown: so many times its real size, as large as there is room, or so that one label fills it.
  static constexpr double kWholePage = 0;
  static constexpr double kWholeLabel = -1;

  void Show(paper::LabelJob job);
  const paper::LabelJob& Job() const { return job_; }
  /// What was found of the drawing of that number.
  void ShowFaults(std::size_t drawing, std::vector<paper::CodeCheck> faults);
  void SetZoom(double zoom);
  /// To the page of that number, from 0, or the nearest one that there is.
  void TurnTo(int page);
  int PageShown() const { return shown_; }
  int PageCount() const;
  /// Of the screen to an inch of the page.
  double DotsPerInch() const;
  /// Where a label of the page shown stands on it, in pixels of the page.
  QRectF PlaceOnPage(const LabelPlace& place) const;
  QWidget* Page() const;

 Q_SIGNALS:
  void Turned();
  /// On the first page, at the place of that number, from 1.
  void PlaceClicked(int place);

 protected:
  void resizeEvent(QResizeEvent* event) override;

 private:
  class Paper;
  void Fit();
  /// The labels of the page shown, by their numbers.
  std::pair<int, int> LabelsShown() const;

  const Session& session_;
  Paper* page_;
  paper::LabelJob job_;
  std::vector<std::vector<paper::CodeCheck>> faults_;
  double zoom_ = kWholePage;
  int shown_ = 0;
};

}  // namespace vellumark::desktop
