#pragma once

#include "core/batch/cost_model.h"
#include "desktop/kit/form.h"

namespace vellumark::desktop {

/// A cost model with what it means: type, recycled ink, additional costs. Shown by a window that reads and stores it.
class CostModelPanel {
 public:
  /// `form` gets the lines.
  CostModelPanel(FormHost& host, Form& form);

  void Show(const BatchCostModel& model);
  CostModelEntry Read() const;
  /// To be called by the window's own UpdateEnabled.
  void UpdateEnabled();

 private:
  NumberField* Cost(Form& form, const QString& name, const QString& label, const QString& unit);

  FormHost& host_;
  RadioField* type_;
  QLabel* means_;
  QLabel* example_;
  ComboField* recycled_;
  NumberField* ofBatch_;
  NumberField* perUnit_;
  NumberField* markup_;
};

/// Which values of recycled ink count for VOC and for HAP.
class EmissionModelPanel {
 public:
  explicit EmissionModelPanel(Form& form);

  void Show(const BatchCostModel& model);
  int MixVOCModelType() const { return voc_->Chosen(); }
  int MixHAPModelType() const { return hap_->Chosen(); }

 private:
  RadioField* voc_;
  RadioField* hap_;
};

}  // namespace vellumark::desktop
