#pragma once

#include <QObject>

#include "core/colors/formulas.h"
#include "core/colors/live_totals.h"
#include "desktop/colors/figure_fields.h"
#include "desktop/colors/swatch_fields.h"
#include "desktop/kit/form.h"

namespace vellumark::desktop {

/// Everything of a formula that is neither recipe nor list: code, figures, swatch, guide and dates.
class MixDetailsPanel : public QObject {
  Q_OBJECT

 public:
  /// The fields go to `bound`; `ink` shows the swatch.
  MixDetailsPanel(FormHost& host, Form form, BoundFields& bound, SwatchView& ink);

  /// What is no field of `bound`.
  void Show(const MixColor& mix, bool keepTyped);
  void Clear();
  void Take(ColorAttachments& attachments) const { swatch_->Take(attachments); }
  /// What the ingredients come to, beside the figures that were typed.
  void ShowTotals(const LiveTotals& totals);
  bool IsBelowReorder() const { return isLow_; }
  /// Units as the settings are now.
  void Relabel() { figures_->Relabel(); }

 private:
  void BuildFigures(Form& form, BoundFields& bound);
  void BuildRecord(Form& form, SwatchView& ink);

  FormHost& host_;
  FigureFields* figures_ = nullptr;
  QLabel* basicCost_ = nullptr;
  QLabel* basicVOC_ = nullptr;
  QLabel* basicHAP_ = nullptr;
  SwatchFields* swatch_ = nullptr;
  QLabel* guide_ = nullptr;
  QLabel* page_ = nullptr;
  QLabel* row_ = nullptr;
  QLabel* entered_ = nullptr;
  QLabel* modified_ = nullptr;
  QLabel* produced_ = nullptr;
  bool isLow_ = false;
};

}  // namespace vellumark::desktop
