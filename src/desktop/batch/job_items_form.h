#pragma once

#include <vector>

#include "core/batch/jobs.h"
#include "desktop/kit/window.h"

namespace vellumark::desktop {

/// The Batch shared between jobs. Opened with {"Record", BatchRecord*}; it changes the record. The fields of a pair
/// bear its number: JobNumber0, txtQtyUsed0.
class JobItemsForm : public Dialog {
  Q_OBJECT

 public:
  JobItemsForm(WindowList& windowList, QWidget* owner);
  void OnOpen(const Arguments& arguments) override;
  void UpdateEnabled() override;

 public Q_SLOTS:
  void cmdSave_Click();

 private:
  struct Pair {
    TextField* job;
    NumberField* used;
  };
  void AddPair(Form& form, std::size_t number);
  bool Enter(Pair& pair);
  std::vector<JobItem> Typed() const;
  void FocusFault(const Refusal& refusal);

  BatchRecord* record_ = nullptr;
  std::vector<Pair> pairs_;
  QLabel* usedCaption_;
  ValueField* returned_;
  QLabel* unit_;
};

}  // namespace vellumark::desktop
