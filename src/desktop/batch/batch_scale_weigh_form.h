#pragma once

#include <QPointer>
#include <QTimer>
#include <optional>
#include <string>

#include "core/scale/scale_setup.h"
#include "desktop/batch/weigh_bench.h"
#include "desktop/kit/window.h"
#include "desktop/scale/bench_scale.h"

namespace vellumark::desktop {

class SwatchView;
class PourBar;
class PourReading;

/// Leads through the pour of one row after the other, beside the Batch Window: what is on the scale, how far the pour has
/// come, what is still to be poured. A row that is heavier than the scale is weighed in drafts. Opened with
/// {"Bench", WeighBench*} and {"Owner", QObject*}, the window that it belongs to; {"Row", number} begins with that row.
class BatchScaleWeighForm : public Window {
  Q_OBJECT

 public:
  BatchScaleWeighForm(WindowList& windowList, BenchScale& scale);
  ~BatchScaleWeighForm() override;

  void OnOpen(const Arguments& arguments) override;
  void UpdateEnabled() override;
  bool MayClose() override;

 public Q_SLOTS:
  void cmdSave_Click() override;
  void cmdTare_Click();
  void cmdCancel_Click() { Leave(); }

 Q_SIGNALS:
  /// The pour has gone beyond its target; heard once for each time.
  void Overpoured();

 private:
  void Build();
  /// Goes on with that row or the next; false when there is none.
  bool Begin(std::optional<std::size_t> wanted);
  void End();
  /// A look at the line.
  void Follow();
  void Show();
  void ShowRow();
  /// Why no weight can be taken, or that it is an old one; empty while all is well.
  QString Trouble() const;
  /// What is on the scale, in the Batch's unit; 0 without a reading.
  double OnScale() const;
  double Draft() const;
  double Tolerance() const;
  void Zero();

  QPointer<BenchScale> scale_;
  QPointer<QObject> owner_;
  WeighBench* bench_ = nullptr;
  ScaleSetup setup_;
  std::optional<WeighTicket> ticket_;
  double poured_ = 0;   // of the row, in drafts before this one
  int draft_ = 1;       // the number of this one
  bool taking_ = false;  // the Batch takes the weight, and asks
  bool ended_ = false;
  bool over_ = false;
  std::string openFault_;
  std::int64_t tryAgain_ = 0;
  QTimer look_;

  QLabel* left_;
  SwatchView* ink_;
  QLabel* kind_;
  ValueField* ingredient_;
  PourReading* reading_;
  PourBar* bar_;
  QLabel* upper_;
  ValueField* target_;
  ValueField* rest_;
  QLabel* restCaption_;
  QLabel* more_;
  QLabel* trouble_;
  CommandButton* save_;
  CommandButton* tare_;
};

}  // namespace vellumark::desktop
