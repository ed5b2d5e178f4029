#pragma once

#include <string>

#include "core/batch/record.h"
#include "desktop/kit/window.h"

namespace vellumark::desktop {

enum class AdjustedRow { Basic, Addition };

/// The amount of one row of the Batch, typed anew: what is there of a basic row of which too much was poured, or another
/// amount of an addition. Opened with {"Record", BatchRecord*} and {"Row", row}; it changes the record, and gives of a
/// basic row {"Overpour", Overpour} of the core.
class AdjustRowForm : public Dialog {
  Q_OBJECT

 public:
  AdjustRowForm(WindowList& windowList, QWidget* owner, AdjustedRow kind);
  void OnOpen(const Arguments& arguments) override;

 public Q_SLOTS:
  void cmdSave_Click();

 private:
  AdjustedRow kind_;
  BatchRecord* record_ = nullptr;
  std::size_t row_ = 0;
  ValueField* name_;
  NumberField* amount_;
  QLabel* unit_;
};

}  // namespace vellumark::desktop
