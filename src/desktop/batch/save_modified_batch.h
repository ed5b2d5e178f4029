#pragma once

#include "core/batch/record.h"
#include "desktop/kit/window.h"

namespace vellumark::desktop {

/// What a Batch with additions does to its Master Formula when it is saved. Opened with
/// {"Record", const BatchRecord*}; gives {"Choice", ModifiedBatchChoice}, already checked.
class SaveModifiedBatch : public Dialog {
  Q_OBJECT

 public:
  SaveModifiedBatch(WindowList& windowList, QWidget* owner);
  void OnOpen(const Arguments& arguments) override;
  void UpdateEnabled() override;

 public Q_SLOTS:
  void cmdSave_Click();

 private:
  const BatchRecord* record_ = nullptr;

  ValueField* color_;
  RadioField* action_;
  TextField* name_;
};

}  // namespace vellumark::desktop
