#pragma once

#include <QObject>
#include <utility>
#include <vector>

#include "core/colors/formulas.h"
#include "core/colors/live_totals.h"
#include "desktop/colors/swatch_fields.h"
#include "desktop/kit/form.h"

namespace vellumark::desktop {

/// Everything of a formula that is neither recipe nor list: code, figures, swatch, guide and dates.
class MixDetailsPanel : public QObject {
  Q_OBJECT

 public:
  /// `shown` tells that there is a formula on screen; `ink` shows its swatch.
  MixDetailsPanel(FormHost& host, Form form, SwatchView& ink, std::function<bool()> shown);

  void Show(const FormulaWork& work, const MixColor& mix, bool keepTyped);
  void Clear();
  void ReadInto(FormulaWork& work) const;
  void Take(ColorAttachments& attachments) const { swatch_->Take(attachments); }
  /// What the ingredients come to, beside the figures that were typed.
  void ShowTotals(const LiveTotals& totals);
  bool IsBelowReorder() const { return isLow_; }
  /// Units as the settings are now.
  void Relabel();

 private:
  void BuildFigures(Form& form, const std::function<bool()>& shown);
  void BuildRecord(Form& form, SwatchView& ink);

  FormHost& host_;
  TextField* code_ = nullptr;
  CheckField* recycle_ = nullptr;
  NumberField* reorder_ = nullptr;
  NumberField* cost_ = nullptr;
  NumberField* voc_ = nullptr;
  NumberField* hap_ = nullptr;
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
  std::vector<std::pair<QLabel*, QString>> unitHints_;  ///< with their words, to which the unit is added
  bool isLow_ = false;
};

}  // namespace vellumark::desktop
