#pragma once

#include "desktop/kit/window.h"

namespace vellumark::desktop {

/// Deletes a user who is no administrator.
class DeleteUserForm : public Dialog {
  Q_OBJECT

 public:
  DeleteUserForm(WindowList& windowList, QWidget* owner);
  void UpdateEnabled() override;

 public Q_SLOTS:
  void cmdDelete_Click();

 private:
  ComboField* username_;
  CommandButton* delete_ = nullptr;
};

}  // namespace vellumark::desktop
