#pragma once

#include "desktop/kit/window.h"

namespace vellumark::desktop {

/// Removes Databases other than the current one.
class DeleteDBForm : public Dialog {
  Q_OBJECT

 public:
  DeleteDBForm(WindowList& windowList, QWidget* owner);
  void UpdateEnabled() override;

 public Q_SLOTS:
  void cmdDelete_Click();

 private:
  CheckListField* databases_;
  CommandButton* delete_;
};

}  // namespace vellumark::desktop
